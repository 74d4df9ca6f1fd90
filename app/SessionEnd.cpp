// The running session's timer and its end: the exit prompt, the shutdown, the fatal path.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Session.h"

#include "app/ShellState.h"
#include "app/StatusFiles.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "platform/Messages.h"
#include "wad/FileTable.h"

#include <cmath>

namespace kelvar::app
{

namespace
{

// The level of the editor lives in a PWAD of the session, not in the read-only IWAD.
bool CurrentFileIsPwad()
{
    const wad::WadState& wad = wad::Wad();
    const int number = wad.CurrentFile.FileNumber;
    if (number <= 0 || number >= wad::FileTableSize)
    {
        return false;
    }
    const wad::FileRec& file = wad.Files[static_cast<std::size_t>(number)];
    return file.ListIndex >= 0 && file.State != 0;
}

bool AnythingBusy(const SessionState& session)
{
    const map::MapState& map = map::Map();
    return session.CommandBusy || session.TimerBusy || session.BlockAutoSave ||
           session.InFileOperation || session.InDrag || map.SaveBusy || map.StoreBusy;
}

} // namespace

void TimerTick()
{
    SessionState& session = Session();
    ++session.MinutesSinceSave;
    if (session.CommandBusy || session.TimerBusy || session.AppState != AppEditing ||
        !session.LevelLoaded)
    {
        return;
    }

    // The minute timer blanks no screen: the desktop's own screen saver does that.
    const int period = Shell().Chk.AutoSavePeriod;
    const std::uint16_t changes = map::Map().Level.ChangeCount;
    if (period <= 0 || session.MinutesSinceSave <= period || changes == session.ChangesAtAutoSave ||
        !CurrentFileIsPwad() || !session.LockHandle || session.AutoSaveOff || AnythingBusy(session))
    {
        return;
    }
    session.ChangesAtAutoSave = changes;
    if (changes == 0)
    {
        return;
    }
    if (session.Hooks.QuickSaveBackup)
    {
        session.TimerBusy = true;
        (void)session.Hooks.QuickSaveBackup(false);
        session.MinutesSinceSave = 0;
        session.TimerBusy = false;
    }
}

ExitAnswer ExitPrompt()
{
    SessionState& session = Session();
    const map::LevelData& level = map::Map().Level;
    if (!session.LevelLoaded || (level.ChangeCount == 0 && level.GeometryChangeCount == 0))
    {
        return ExitAnswer::Destroy;
    }
    platform::Message question;
    question.Title = "Kelvar Confirm";
    question.Lines = {"File has been modified. Save Changes?"};
    question.Icon = platform::MessageIcon::Question;
    question.Buttons = platform::MessageButtons::YesNoCancel;
    const int answer = platform::TheUi().Show(question);
    if (answer == 2)
    {
        return ExitAnswer::Stay;
    }
    if (answer == 0)
    {
        return ExitAnswer::Destroy;
    }
    if (!session.Hooks.QuickSaveBackup)
    {
        platform::ShowError("Saving levels isn't available in this build.\n\nChoose No to quit "
                            "without saving, or Cancel to stay.");
        return ExitAnswer::Stay;
    }
    session.BlockAutoSave = true;
    session.InFileOperation = true;
    const bool saved = session.Hooks.QuickSaveBackup(true);
    session.BlockAutoSave = false;
    session.InFileOperation = false;
    return saved ? ExitAnswer::Destroy : ExitAnswer::Stay;
}

void ShutdownOnce(int left, int top, int right, int bottom)
{
    SessionState& session = Session();
    if (session.ShutdownDone)
    {
        return;
    }
    session.ShutdownDone = true;
    session.AppState = AppNotReady;
    ShellState& shell = Shell();
    shell.Chk.WindowRect = StatusRect{left, top, right, bottom};

    GatherSettings();
    if (session.LevelLoaded)
    {
        shell.Project.ViewX = std::round(shell.Project.ViewX);
        shell.Project.ViewY = std::round(shell.Project.ViewY);
    }
    // A second copy writes nothing, so its settings don't overwrite those of the first.
    if (!session.SecondCopy && shell.Chk.SessionWord != SessionCancelled)
    {
        shell.Chk.SessionWord = SessionClean;
        (void)SaveChkAndProject();
    }

    session.LevelLoaded = false;
    map::LevelFree(map::Map().Level);
    wad::CloseFiles('A', true, false);
    wad::Wad().LockFile = nullptr;
    session.LockHandle.reset();
    session.RunningLock.reset();
}

void OfferCrashSave()
{
    SessionState& session = Session();
    if (!session.LevelLoaded || !session.Hooks.CrashSave)
    {
        return;
    }
    if (platform::AskYesNo("Save Current Data as CRASH.WAD?\n\n(may not always work)"))
    {
        map::Map().SaveBusy = true;
        (void)session.Hooks.CrashSave();
        map::Map().SaveBusy = false;
    }
}

void FatalShutdown()
{
    ShellState& shell = Shell();
    if (shell.Chk.SessionWord != SessionCancelled)
    {
        shell.Chk.SessionWord = SessionClean;
        (void)SaveChk(shell.Chk);
    }
    OfferCrashSave();
    const StatusRect rect = shell.Chk.WindowRect;
    ShutdownOnce(rect.Left, rect.Top, rect.Right, rect.Bottom);
}

} // namespace kelvar::app
