// Rewriting a WAD file whole: .BAK, stream, directory, header; the .BAK back on failure.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/WadRewrite.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/CheckedFile.h"
#include "wad/DirectoryReader.h"
#include "wad/LevelWriter.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <map>
#include <system_error>

namespace kelvar::wad
{
namespace
{

// The streams a rewrite reads from, opened once each.
class Sources
{
public:
    Sources(std::filesystem::path target, std::filesystem::path backup)
        : Target(std::move(target)), Backup(std::move(backup))
    {
    }

    // The stream of `file`, the .BAK for a span of the target; null after a message.
    std::FILE* Of(const std::filesystem::path& file)
    {
        const std::filesystem::path& real = file == Target ? Backup : file;
        auto found = Open.find(real);
        if (found == Open.end())
        {
            found = Open.emplace(real, OpenStream(real, "rb")).first;
        }
        return found->second.get();
    }

private:
    std::filesystem::path Target;
    std::filesystem::path Backup;
    std::map<std::filesystem::path, StreamPtr> Open;
};

std::string WrittenName(const RewriteEntry& entry, const RewritePlan& plan)
{
    std::string name = entry.Name.substr(0, 8);
    if (!plan.KeepScriptNames && name.starts_with("SCRIPT"))
    {
        name = "SCRIPTS";
    }
    return name;
}

// The progress panel of a rewrite: the caller's caption, and with a total a count to 100 that
// moves only when its text changes.
struct ProgressPanel
{
    const RewritePlan& Plan;
    std::string Target;
    std::string Caption;
    std::string Detail;
    std::int64_t Done = 0;
    int Percent = 0;
};

void ShowPanel(ProgressPanel& panel, const std::string& caption, int percent)
{
    const std::string detail =
        panel.Plan.ProgressTotal > 0 ? platform::Format("%d of 100", percent) : panel.Target;
    if (caption != panel.Caption || detail != panel.Detail)
    {
        panel.Caption = caption;
        panel.Detail = detail;
        panel.Percent = percent;
        platform::TheUi().ShowProgress(panel.Caption, panel.Detail);
    }
}

// The data of an entry went out.
void PanelCopied(ProgressPanel& panel, std::int64_t bytes)
{
    panel.Done += bytes;
    if (panel.Plan.ProgressTotal > 0)
    {
        ShowPanel(panel, panel.Caption,
                  static_cast<int>(
                      std::min<std::int64_t>(100, panel.Done * 100 / panel.Plan.ProgressTotal)));
    }
}

// The directory is being written.
void PanelDirectory(ProgressPanel& panel)
{
    if (!panel.Plan.DirectoryCaption.empty())
    {
        ShowPanel(panel, panel.Plan.DirectoryCaption, panel.Percent);
    }
}

// Writes the entries' data from byte 12 on, then the directory, then the header, through the
// WAD output the save writes with, so every WAD is laid out by one piece of code.
bool WriteAll(WadOutput& out, const RewritePlan& plan, Sources& sources, ProgressPanel& panel)
{
    std::uint8_t header[WadHeaderSize] = {};
    if (CheckedWrite(out.Stream.get(), header, WadHeaderSize) != 1)
    {
        return false;
    }
    out.Offset = WadHeaderSize;
    out.Rows.reserve(plan.Entries.size());
    for (const RewriteEntry& entry : plan.Entries)
    {
        // Escape isn't polled: a rewrite half done would only be undone again.
        const std::int64_t start = out.Offset;
        const std::int64_t size = entry.DataSize();
        if (entry.File.empty())
        {
            if (!WriteData(out, entry.Bytes.data(), size))
            {
                return false;
            }
        }
        else if (size > 0)
        {
            std::FILE* in = sources.Of(entry.File);
            if (in == nullptr || CheckedSeek(in, entry.Offset) != 1 ||
                CopyFileSpan(out.Stream.get(), in, size) != 1)
            {
                platform::ShowError("Failure reading old File?");
                return false;
            }
            out.Offset += size;
        }
        EnterRow(out, WrittenName(entry, plan), start);
        PanelCopied(panel, size);
    }
    PanelDirectory(panel);
    return WriteDirectoryAndHeader(out, plan.Magic) && std::fflush(out.Stream.get()) == 0;
}

// A caller's message with the target's path in place of its "%s".
std::string WithTarget(std::string text, const std::filesystem::path& target)
{
    const std::size_t at = text.find("%s");
    if (at != std::string::npos)
    {
        text.replace(at, 2, target.string());
    }
    return text;
}

bool MoveToBackup(const std::filesystem::path& target, const std::filesystem::path& backup)
{
    std::error_code error;
    // A target that is itself named .BAK has no other name to keep its old bytes under:
    // deleting "the old .BAK" would delete the target.
    if (backup == target)
    {
        error = std::make_error_code(std::errc::file_exists);
    }
    else
    {
        std::filesystem::remove(backup, error);
        std::filesystem::rename(target, backup, error);
    }
    if (error)
    {
        platform::ShowError("Err %d: Could not rename file\n\n%s\n-to-\n%s\n\nFile is most likely "
                            "in use.\nTry saving to another filename\n",
                            error.value(), target.c_str(), backup.c_str());
        return false;
    }
    return true;
}

// After a failure: the half-written file goes and the .BAK becomes the target again.
void PutBackupBack(const std::filesystem::path& target, const std::filesystem::path& backup,
                   bool hadBackup)
{
    std::error_code error;
    std::filesystem::remove(target, error);
    if (hadBackup)
    {
        std::filesystem::rename(backup, target, error);
        if (error)
        {
            platform::ShowError("FAILED TO RENAME %s to %s", backup.c_str(), target.c_str());
        }
    }
}

} // namespace

RewriteEntry RewriteEntry::FromBytes(std::string name, std::vector<std::uint8_t> bytes)
{
    RewriteEntry entry;
    entry.Name = std::move(name);
    entry.Bytes = std::move(bytes);
    return entry;
}

RewriteEntry RewriteEntry::FromFile(std::string name, std::filesystem::path file,
                                    std::int64_t offset, std::int32_t size)
{
    RewriteEntry entry;
    entry.Name = std::move(name);
    entry.File = std::move(file);
    entry.Offset = offset;
    entry.Size = size;
    return entry;
}

std::filesystem::path BakPathOf(const std::filesystem::path& target)
{
    std::filesystem::path backup = target;
    backup.replace_extension(".BAK");
    return backup;
}

std::optional<RewritePlan> PlanOfWad(const std::filesystem::path& path)
{
    const StreamPtr in = OpenStream(path, "rb");
    const DirectoryReport report =
        in ? ReadDirectoryOf(in.get(), BadEntryRule::StopAtBadEntry) : DirectoryReport{};
    const bool whole = in && report.Problem == HeaderProblem::None && !report.RunsPastEnd &&
                       report.BadEntries.empty() &&
                       (report.Magic == "PWAD" || report.Magic == "IWAD");
    if (!whole)
    {
        platform::ShowError("Failure reading old File?");
        return std::nullopt;
    }
    RewritePlan plan;
    plan.Magic = report.Magic;
    plan.Entries.reserve(report.Entries.size());
    for (const LumpEntry& entry : report.Entries)
    {
        plan.Entries.push_back(
            RewriteEntry::FromFile(entry.Name.Text(), path, entry.Offset, entry.Size));
    }
    return plan;
}

bool RewriteWad(const std::filesystem::path& target, const RewritePlan& plan)
{
    const std::filesystem::path backup = BakPathOf(target);
    const bool hadTarget = std::filesystem::exists(target);
    if (hadTarget && !MoveToBackup(target, backup))
    {
        return false;
    }
    Sources sources(target, backup);
    WadOutput out;
    out.Stream = OpenStream(target, "w+b");
    if (!out.Stream)
    {
        if (plan.CreateFailure.empty())
        {
            platform::ShowError("Failure creating new TargetFile?\nYour old Target file is %s",
                                (hadTarget ? backup : target).c_str());
        }
        else
        {
            platform::ShowError("%s", WithTarget(plan.CreateFailure, target).c_str());
        }
        PutBackupBack(target, backup, hadTarget);
        return false;
    }
    ProgressPanel panel{plan, target.string(), {}, {}, 0, 0};
    ShowPanel(panel,
              plan.ProgressCaption.empty()
                  ? platform::Format("Copying %d Entries", static_cast<int>(plan.Entries.size()))
                  : plan.ProgressCaption,
              0);
    const bool written = WriteAll(out, plan, sources, panel);
    out.Stream.reset();
    if (written)
    {
        ShowPanel(panel, panel.Caption, 100);
    }
    platform::TheUi().EndProgress();
    if (!written)
    {
        PutBackupBack(target, backup, hadTarget);
        return false;
    }
    return true;
}

} // namespace kelvar::wad
