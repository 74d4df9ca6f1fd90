// Tests of the checks file names pass: type, backups and temporaries, length, in use.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/FileChecks.h"
#include "tests/testkit/WadFixture.h"
#include "wad/FileTable.h"
#include "wad/WadState.h"

namespace kelvar::wad
{
namespace
{

using testkit::WadBuilder;

class FileChecks : public testkit::WadFixture
{
};

TEST_F(FileChecks, BackupsAndTemporariesAreRefusedButTheirCopiesPass)
{
    for (const char* name : {"X.BAK", "x.bkp", "~kelvar.wad", "~KELVAR.TMP"})
    {
        std::string path = WadBuilder().Write(Dir.Path() / name);
        Ui.Clear();
        EXPECT_EQ(CheckFileType(path, "_WAD", false, 0), -1) << name;
        EXPECT_EQ(Ui.Last().Text(), "Access to .BAK, .BKP and Temporary ~KELVAR files not "
                                    "allowed\n\n" +
                                        path +
                                        "\n\nPlease copy this file to a name "
                                        "ending in .WAD");
        EXPECT_EQ(CheckFileType(path, "_WAD", false, 1), 1) << "mode 1 lets it through";
    }
    std::string copy = WadBuilder().Write(Dir.Path() / "X.WAD");
    EXPECT_EQ(CheckFileType(copy, "_WAD", false, 0), 1);
}

TEST_F(FileChecks, MagicTagsAreMatched)
{
    std::string iwad = WadBuilder("IWAD").Write(Dir.Path() / "main.wad");
    std::string pwad = WadBuilder("PWAD").Write(Dir.Path() / "add.wad");
    std::string status = Dir.File("KELVAR.CHK");
    testkit::WriteFile(status, std::string("xCHK\x90\x11", 6));
    EXPECT_EQ(CheckFileType(iwad, "_WAD", false, 0), 2);
    EXPECT_EQ(CheckFileType(iwad, "IWAD", false, 0), 2);
    EXPECT_EQ(CheckFileType(pwad, "_WAD", false, 0), 1);
    EXPECT_EQ(CheckFileType(status, "_CHK", false, 0), 1);
    EXPECT_EQ(CheckFileType(pwad, "", false, 0), 1);
    EXPECT_TRUE(Ui.Messages.empty());

    EXPECT_EQ(CheckFileType(pwad, "IWAD", false, 0), -1);
    EXPECT_EQ(Ui.Last().Text(), pwad + " is not IWAD, found PWAD ");
    Ui.Clear();
    EXPECT_EQ(CheckFileType(status, "_WAD", false, 3), -1);
    EXPECT_TRUE(Ui.Messages.empty()) << "mode 3 refuses silently";

    // Chex Quest's main file carries the other magic and still passes.
    std::string chex = WadBuilder("PWAD").Write(Dir.Path() / "chex.wad");
    EXPECT_EQ(CheckFileType(chex, "IWAD", false, 0), 1);
}

TEST_F(FileChecks, TheHexenAddOnIsNoMainFile)
{
    std::string addOn = WadBuilder("IWAD").Write(Dir.Path() / "HEXDD.WAD");
    EXPECT_EQ(CheckFileType(addOn, "IWAD", false, 0), -1);
    EXPECT_EQ(Ui.Last().Title, "Hexen IWAD");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"for HEXEN Deathkings", "is not really an IWAD!",
                                        "Just open this as a PWAD", "Please reselect the IWAD name",
                                        "by selecting CANCEL for the next msg"}));
    EXPECT_EQ(CheckFileType(addOn, "_WAD", false, 0), 2) << "as a PWAD it opens";
}

TEST_F(FileChecks, MissingFilesAreZeroAndOptionallyCleared)
{
    std::string missing = Dir.File("absent.wad");
    EXPECT_EQ(CheckFileType(missing, "_WAD", false, 0), 0);
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(missing, Dir.File("absent.wad"));
    EXPECT_EQ(CheckFileType(missing, "_WAD", true, 0), 0);
    EXPECT_EQ(Ui.Last().Text(), " " + Dir.File("absent.wad") + "  not found!");
    EXPECT_TRUE(missing.empty());

    // A relative name is looked for in the given directory.
    WadBuilder().Write(Dir.Path() / "here.wad");
    std::string relative = "here.wad";
    EXPECT_EQ(CheckFileType(relative, "_WAD", false, 0, Dir.Path()), 1);
}

TEST_F(FileChecks, NamesLongerThanTheBuffersAreRefused)
{
    Wad().Options.DefaultPwadDir = Dir.Path();
    // The full name is the directory, a slash and the name: make it 258 and 259 long.
    const std::size_t base = Dir.Path().string().size() + 1;
    std::string fits = std::string(258 - base - 4, 'a') + ".wad";
    std::string tooLong = std::string(259 - base - 4, 'a') + ".wad";
    EXPECT_EQ(ValidateWadPath(fits), 1);
    EXPECT_EQ(ValidateWadPath(tooLong), 0);
    EXPECT_TRUE(tooLong.empty());
    EXPECT_EQ(Ui.Last().Text(),
              (Dir.Path() / (std::string(259 - base - 4, 'a') + ".wad")).string() +
                  "\nFilename is too long (max is 259)");

    std::string noDirectory = "missing/map.wad";
    EXPECT_EQ(ValidateWadPath(noDirectory), 0);
    std::string empty;
    EXPECT_EQ(ValidateWadPath(empty), 0);
    EXPECT_EQ(CompleteWadPath("mymap"), Dir.Path() / "mymap.WAD");

    std::string record(127, 'r');
    EXPECT_TRUE(PathFitsRecord(record));
    record += 'r';
    EXPECT_FALSE(PathFitsRecord(record));
    EXPECT_TRUE(record.empty());
    EXPECT_EQ(Ui.Last().Text(),
              " !!   " + std::string(128, 'r') + "    !!\n\nfound, but total path exceeds 127!");
}

TEST_F(FileChecks, FilesInUseCantBeWrittenOver)
{
    const std::string iwad =
        WadBuilder("IWAD").Level("MAP01").Lump("SARGA1", "sprite").Write(Dir.Path() / "main.wad");
    const std::string pwad = WadBuilder().Lump("PLAYPAL", "x").Write(Dir.Path() / "add.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    ASSERT_EQ(OpenPwad(pwad), 1);

    std::string name = iwad;
    EXPECT_EQ(FileInUse(name, false, true), -1);
    EXPECT_EQ(name, iwad) << "the IWAD's name is never cleared";
    name = Dir.File("sub/../ADD.WAD"); // same file, other spelling
    EXPECT_EQ(FileInUse(name, true, true), 2);
    EXPECT_TRUE(name.empty());
    EXPECT_EQ(Ui.Last().Text(),
              "File 1\n\n" + pwad + "\n\nis in use by Kelvar\nCan't write over file");
    name = Dir.File("other.wad");
    EXPECT_EQ(FileInUse(name, true, true), 0);
}

} // namespace
} // namespace kelvar::wad
