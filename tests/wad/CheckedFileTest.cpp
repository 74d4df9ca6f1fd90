// Tests of checked file access: transfers, failures and what the user is told.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/CheckedFile.h"
#include "platform/Fatal.h"
#include "platform/Messages.h"
#include "tests/testkit/WadFixture.h"
#include "wad/FileChecks.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace kelvar::wad
{
namespace
{

using testkit::WadFixture;
using Lines = std::vector<std::string>;

class CheckedFile : public WadFixture
{
protected:
    std::string MakeFile(const std::string& name, const std::string& bytes)
    {
        testkit::WriteFile(Dir.Path() / name, bytes);
        return Dir.File(name);
    }
};

// Runs `body` in a child process that can't write files it doesn't own: as root the child
// drops to the nobody account; as anyone else nothing changes.
template <typename Body> void AsUnprivileged(Body body)
{
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
    {
        std::_Exit(3);
    }
    std::_Exit(body() ? 0 : 1);
}

TEST_F(CheckedFile, TransfersOfNoBytesSucceedWithoutTouchingTheStream)
{
    // A null stream would crash any call that reached stdio.
    char byte = 0;
    EXPECT_EQ(CheckedRead(nullptr, &byte, 0), 1);
    EXPECT_EQ(CheckedWrite(nullptr, &byte, -5), 1);
    EXPECT_EQ(CopyFileSpan(nullptr, nullptr, 0), 1);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(CheckedFile, ShortReadAsksWhetherToQuitAndNoCarriesOn)
{
    StreamPtr stream = CheckedOpen(MakeFile("ten.bin", "0123456789"), "rb", 0);
    ASSERT_TRUE(stream);
    ASSERT_EQ(CheckedSeek(stream.get(), 4), 1);
    char buffer[32];
    Ui.Answer(0);
    EXPECT_EQ(CheckedRead(stream.get(), buffer, 20), 0);
    EXPECT_EQ(Wad().LastReadCount, 0u);
    EXPECT_EQ(Ui.Last().Title, "I/O error");
    EXPECT_EQ(Ui.Last().Lines, (Lines{" read error: 20 bytes at location 10",
                                      "!! ? Quit now ? !! You'll lose all work in progress",
                                      "If you continue what happens next is unpredictable!",
                                      "(If in OpenPreview - you can continue)"}));
}

TEST_F(CheckedFile, ShortReadDuringABackupIsOnlyReported)
{
    StreamPtr stream = CheckedOpen(MakeFile("ten.bin", "0123456789"), "rb", 0);
    Wad().BackupInProgress = true;
    char buffer[32];
    EXPECT_EQ(CheckedRead(stream.get(), buffer, 20), 0);
    EXPECT_FALSE(Ui.Last().IsQuestion());
    EXPECT_EQ(Ui.Last().Lines,
              (Lines{" read error: 20 bytes at location 10 (Backup)", "Press Enter"}));
}

TEST_F(CheckedFile, QuittingAfterAFailedWriteListsTheWaysToRecoverThenEndsWithCode4)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string path = MakeFile("out.bin", "");
    const auto writeAndQuit = [&]
    {
        StreamPtr stream = CheckedOpen(path, "rb", 0); // a read-only stream can't be written
        Ui.Answer(1);
        const char data[4] = {1, 2, 3, 4};
        (void)CheckedWrite(stream.get(), data, 4);
    };
    EXPECT_EXIT(writeAndQuit(), ::testing::ExitedWithCode(platform::FatalExitCode),
                "User cancelled");
}

TEST_F(CheckedFile, FailedSeekShowsTheSystemTextThenAsks)
{
    StreamPtr stream = CheckedOpen(MakeFile("ten.bin", "0123456789"), "rb", 0);
    Ui.Answer(0);
    EXPECT_EQ(CheckedSeek(stream.get(), -5), 0);
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Title, "GetLastError");
    EXPECT_EQ(Ui.Messages[0].Text(), std::strerror(EINVAL));
    EXPECT_EQ(Ui.Messages[1].Title, "Kelvar Confirm");
    EXPECT_EQ(Ui.Messages[1].Text(),
              "Seek errorcode=87 at -5\n\n!!  Quit now ?  !!\n\nYou'll lose all work in "
              "progress\nOn the other hand, if you continue,\nwhat happens next is "
              "unpredictable!");

    Ui.Clear();
    Wad().BackupInProgress = true;
    EXPECT_EQ(CheckedSeek(stream.get(), -5), 0);
    EXPECT_EQ(Ui.Last().Text(), "Seek errorcode=87 at -5 (Backup)");
}

TEST_F(CheckedFile, CopiesMoveOneBufferAtATime)
{
    std::string data(CopyBufferSize + 1, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
    {
        data[i] = static_cast<char>(i * 7);
    }
    StreamPtr source = CheckedOpen(MakeFile("source.bin", data), "rb", 0);

    ASSERT_EQ(CopyToNewFile(source.get(), 0, static_cast<std::int64_t>(CopyBufferSize),
                            Dir.File("exact.bin")),
              1);
    EXPECT_EQ(Wad().LastReadCount, CopyBufferSize); // one transfer
    ASSERT_EQ(CopyToNewFile(source.get(), 0, static_cast<std::int64_t>(data.size()),
                            Dir.File("plus1.bin")),
              1);
    EXPECT_EQ(Wad().LastReadCount, 1u); // the second transfer carried the last byte
    EXPECT_EQ(testkit::ReadFile(Dir.Path() / "plus1.bin"), data);
    EXPECT_EQ(testkit::ReadFile(Dir.Path() / "exact.bin"), data.substr(0, CopyBufferSize));
}

TEST_F(CheckedFile, SizeKeepsOrResetsThePosition)
{
    StreamPtr stream = CheckedOpen(MakeFile("ten.bin", "0123456789"), "rb", 0);
    ASSERT_EQ(CheckedSeek(stream.get(), 3), 1);
    EXPECT_EQ(FileSize(stream.get(), 1), 10);
    EXPECT_EQ(ftello(stream.get()), 3);
    EXPECT_EQ(FileSize(stream.get(), 0), 10);
    EXPECT_EQ(ftello(stream.get()), 0);
    EXPECT_EQ(FileSizeByName(Dir.File("ten.bin")), 10);
    EXPECT_EQ(FileSizeByName(Dir.File("absent.bin")), -1);
}

TEST_F(CheckedFile, MissingFilesGetTheWarningOfTheirMode)
{
    const std::string missing = Dir.File("absent.wad");
    EXPECT_FALSE(CheckedOpen(missing, "rb", 0));
    EXPECT_EQ(Ui.Last().Title, "Kelvar Error");
    EXPECT_EQ(Ui.Last().Text(), "   WARNING\n\nFile not found\n\nfile=" + missing +
                                    "\n\nEither file does not exist or you should\nIncrease "
                                    "FILES= in CONFIG.SYS (128 min)");

    const std::string nowhere = Dir.File("no/such/dir/new.wad");
    EXPECT_FALSE(CheckedOpen(nowhere, "wb", 0));
    EXPECT_EQ(Ui.Last().Text(),
              "   WARNING\n\nUnable to create - invalid name?\n\nfile=" + nowhere + "\n\n");

    // 0x8000 alone is not fatal.
    EXPECT_FALSE(CheckedOpen(missing, "rb", -32768));
}

TEST_F(CheckedFile, FatalFlagsEndTheProgramWithCode4)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string missing = Dir.File("absent.wad");
    int hooked = 0;
    const auto previous = platform::InstallFatalHook([&hooked] { ++hooked; });
    EXPECT_EXIT((void)CheckedOpen(missing, "rb", 1),
                ::testing::ExitedWithCode(platform::FatalExitCode),
                "FATAL opening .*absent.wad\n\nTo bypass all files at startup");
    EXPECT_EQ(hooked, 0); // the hook ran in the child only
    platform::InstallFatalHook(previous);
}

TEST_F(CheckedFile, WriteProtectedPwadOpensReadOnlyAfterAWarning)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string path = MakeFile("locked.wad", "PWAD");
    chmod(Dir.Path().c_str(), 0755);
    chmod(path.c_str(), 0444);
    EXPECT_EXIT(AsUnprivileged(
                    [&]
                    {
                        StreamPtr stream = CheckedOpen(path, "r+b", 0);
                        const int mode =
                            stream ? (fcntl(fileno(stream.get()), F_GETFL) & O_ACCMODE) : -1;
                        return mode == O_RDONLY && Ui.Messages.size() == 1 &&
                               Ui.Last().Text() == "  WARNING\n\nfile=" + path +
                                                       " (r+b)\n\nFile is READ only\n\nuse ATTRIB "
                                                       "command to reset";
                    }),
                ::testing::ExitedWithCode(0), "");
}

TEST_F(CheckedFile, ReadOnlyOpenTurnsWritingOpensIntoReading)
{
    const std::string path = MakeFile("plain.wad", "PWAD");
    Wad().ReadOnlyOpen = true;
    StreamPtr stream = CheckedOpen(path, "r+b", 0);
    ASSERT_TRUE(stream);
    EXPECT_EQ(fcntl(fileno(stream.get()), F_GETFL) & O_ACCMODE, O_RDONLY);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(CheckedFile, DiagnosisNamesTheCause)
{
    // A folder opens for reading but is no file.
    EXPECT_EQ(DiagnoseOpenFailure(Dir.Path(), "r+b"), 1);
    EXPECT_EQ(Ui.Last().Text(), "  ERROR\n\nFile not found\n\nfile=" + Dir.Path().string() +
                                    "\n\nFile access denied\n\nHidden or System file?");

    const std::string longName = Dir.File(std::string(300, 'x') + ".wad");
    EXPECT_EQ(DiagnoseOpenFailure(longName, "wb"), 161);
    EXPECT_EQ(Ui.Last().Text(),
              "  ERROR\n\nUnable to create\n\nfile=" + longName + "\n\nBad Path Name");

    Ui.Clear();
    EXPECT_EQ(DiagnoseOpenFailure(Dir.File("absent.wad"), "rb"), 0);
    EXPECT_EQ(DiagnoseOpenFailure(Dir.File("absent/deeper.wad"), "rb"), 0);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(CheckedFile, TooManyOpenFilesAsksForMoreFiles)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string path = MakeFile("some.wad", "PWAD");
    const auto withoutHandles = [&]
    {
        // The sanitizers' first look at a virtual call may need a file of their own: make
        // that call while files can still be opened.
        platform::ShowError("warming up");
        Ui.Clear();
        const rlimit none{0, 0};
        setrlimit(RLIMIT_NOFILE, &none);
        const int result = DiagnoseOpenFailure(path, "rb");
        const bool ok =
            result == 4 && Ui.Last().Text() == "   ERROR\n\nFile not found\n\n" + path +
                                                   "\n\nIncrease FILES= in CONFIG.SYS (128 min)";
        std::_Exit(ok ? 0 : 1);
    };
    EXPECT_EXIT(withoutHandles(), ::testing::ExitedWithCode(0), "");
}

TEST(WindowsErrorOf, MapsTheCausesTheMessagesKnow)
{
    EXPECT_EQ(WindowsErrorOf(0), 0);
    EXPECT_EQ(WindowsErrorOf(ENOENT), 2);
    EXPECT_EQ(WindowsErrorOf(ENOTDIR), 3);
    EXPECT_EQ(WindowsErrorOf(EMFILE), 4);
    EXPECT_EQ(WindowsErrorOf(ENFILE), 4);
    EXPECT_EQ(WindowsErrorOf(EACCES), 5);
    EXPECT_EQ(WindowsErrorOf(ENAMETOOLONG), 161);
    EXPECT_EQ(WindowsErrorOf(EEXIST), 183);
    EXPECT_EQ(WindowsErrorOf(ENOSPC), 112);
    // An errno with no classic number never passes for one.
    EXPECT_EQ(WindowsErrorOf(EXDEV), 0x20000000 | EXDEV);
}

TEST_F(CheckedFile, FatalErrorAddsTheStartUpHintAndAFailingHookCannotLoop)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto fail = []
    {
        platform::InstallFatalHook(
            [] { platform::FatalError("again"); }); // a failing hook must not loop
        platform::FatalError("broken %d", 7);
    };
    EXPECT_EXIT(
        fail(), ::testing::ExitedWithCode(platform::FatalExitCode),
        "FATAL ERROR: broken 7\n\nTo bypass all files at startup\n\nFrom Windows Start Menu\n\n"
        "Run \\*\\* C:.Kelvar.Kelvar -N\n\n\\(\\*\\*replace with your installation location\\)");
}

TEST_F(CheckedFile, AnAllocationThatFailsEndsWithTheMemoryMessage)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string message =
        "FATAL ERROR: \\(1\\) Kelvar requires 0 bytes more memory, close ALL "
        "other PGMS, increase swapfile";
    // Memory the system can't give: the new-handler.
    const auto exhausted = []
    {
        platform::InstallOutOfMemoryHandler();
        volatile std::size_t size = std::size_t{1} << 62;
        std::vector<char> bytes;
        bytes.reserve(size);
        std::printf("%p\n", static_cast<void*>(bytes.data()));
    };
#ifndef __SANITIZE_ADDRESS__
    // AddressSanitizer's allocator reports an impossible size itself and never calls the
    // new-handler, so this half runs in the plain builds only.
    EXPECT_EXIT(exhausted(), ::testing::ExitedWithCode(platform::FatalExitCode), message);
#else
    (void)exhausted;
#endif
    // More than an array can hold is thrown without asking the system; uncaught, it ends the
    // same way and not by an abort.
    const auto tooLong = []() noexcept
    {
        std::vector<int> numbers;
        numbers.reserve(numbers.max_size() + 1);
    };
    const auto uncaught = [&]
    {
        platform::InstallOutOfMemoryHandler();
        tooLong();
    };
    EXPECT_EXIT(uncaught(), ::testing::ExitedWithCode(platform::FatalExitCode), message);
}

} // namespace
} // namespace kelvar::wad
