// Freedoom's sounds and music against outside programs: deutex extracts and rebuilds the
// sounds, mido reads the music after MIDI -> MUS -> MIDI, fluidsynth renders it and
// chocolate-doom plays our MUS.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MusFormat.h"
#include "sound/MusToMidi.h"
#include "sound/SoundFormats.h"
#include "sound/WaveConversion.h"
#include "tests/sound/SoundTestKit.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>

namespace kelvar::sound
{
namespace
{

namespace fs = std::filesystem;
using test::Bytes;

Bytes ReadBytes(const fs::path& path)
{
    return test::ToBytes(testkit::ReadFile(path));
}

std::string Lower(std::string text)
{
    for (char& c : text)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

// The lumps of a WAD by name (the last of each name), read straight from the file.
std::map<std::string, Bytes> WadLumps(const std::string& path)
{
    const Bytes wad = ReadBytes(path);
    std::map<std::string, Bytes> lumps;
    const auto count = static_cast<std::size_t>(wad::ReadLe32(&wad[4]));
    const auto directory = static_cast<std::size_t>(wad::ReadLe32(&wad[8]));
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::uint8_t* entry = &wad[directory + 16 * i];
        const auto offset = static_cast<std::size_t>(wad::ReadLe32(entry));
        const auto size = static_cast<std::size_t>(wad::ReadLe32(entry + 4));
        const std::string name(reinterpret_cast<const char*>(entry + 8),
                               strnlen(reinterpret_cast<const char*>(entry + 8), 8));
        lumps[name] = Bytes(wad.begin() + static_cast<long>(offset),
                            wad.begin() + static_cast<long>(offset + size));
    }
    return lumps;
}

// deutex's extraction of freedoom2.wad's sounds and music, made once for the suite.
class FreedoomSounds : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        Dir = new testkit::TempDir;
        Iwad = testkit::FreedoomWad("freedoom2.wad");
        fs::create_directories(Dir->Path() / "iwad");
        fs::create_symlink(Iwad, Dir->Path() / "iwad" / "doom2.wad");
        Extract("ex", "");
        Lumps = new std::map<std::string, Bytes>(WadLumps(Iwad));
    }

    static void TearDownTestSuite()
    {
        delete Lumps;
        delete Dir;
    }

    // deutex -sounds -musics -extract of the IWAD, or of `pwad` over it, into the folder `out`
    // of the suite's directory. deutex finds its IWAD only by a path relative to where it runs.
    static void Extract(const std::string& out, const std::string& pwad)
    {
        fs::create_directories(Dir->Path() / out);
        const testkit::CommandOutput run = testkit::RunCommand(
            "cd " + Dir->Path().string() + " && /usr/games/deutex -doom2 iwad -dir " + out +
            " -sounds -musics -extract " + pwad + " 2>&1");
        ASSERT_EQ(run.Status, 0) << "deutex is missing or failed (scripts/setup installs it)\n"
                                 << run.Text;
    }

    static testkit::CommandOutput Cli(const std::string& arguments)
    {
        return testkit::RunCli(arguments, Dir->Path() / "config");
    }

    static inline testkit::TempDir* Dir = nullptr;
    static inline std::string Iwad;
    static inline std::map<std::string, Bytes>* Lumps = nullptr;
};

TEST_F(FreedoomSounds, EverySoundLumpConvertsToTheWaveDeutexWrites)
{
    int sounds = 0;
    for (const auto& [name, lump] : *Lumps)
    {
        if (!IsSnd(lump, ListRateLow))
        {
            continue;
        }
        ++sounds;
        const fs::path theirs = Dir->Path() / "ex" / "sounds" / (Lower(name) + ".wav");
        ASSERT_TRUE(fs::exists(theirs)) << name;
        Bytes wav;
        ASSERT_EQ(SndToWav(lump, wav), std::nullopt) << name;
        EXPECT_EQ(wav, ReadBytes(theirs)) << name;
    }
    EXPECT_EQ(sounds, 103);
    EXPECT_EQ(std::distance(fs::directory_iterator(Dir->Path() / "ex" / "sounds"),
                            fs::directory_iterator{}),
              103 + 107); // and the PC speaker sounds as text
}

TEST_F(FreedoomSounds, OurSndLumpsAreWhatDeutexBuildsAndReadsBack)
{
    testkit::WadBuilder pwad;
    int sounds = 0;
    for (const auto& entry : fs::directory_iterator(Dir->Path() / "ex" / "sounds"))
    {
        if (entry.path().extension() != ".wav")
        {
            continue;
        }
        Bytes snd;
        ASSERT_EQ(WavToSnd(ReadBytes(entry.path()), snd), std::nullopt) << entry.path();
        std::string name = entry.path().stem().string();
        for (char& c : name)
        {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        // deutex rebuilds the IWAD's lumps byte for byte; ours must be the same bytes.
        EXPECT_EQ(snd, Lumps->at(name)) << name;
        pwad.Lump(name, std::string(snd.begin(), snd.end()));
        ++sounds;
    }
    ASSERT_EQ(sounds, 103);
    pwad.Write(Dir->Path() / "ours.wad");
    Extract("back", Dir->File("ours.wad"));
    for (const auto& entry : fs::directory_iterator(Dir->Path() / "back" / "sounds"))
    {
        --sounds;
        EXPECT_EQ(ReadBytes(entry.path()),
                  ReadBytes(Dir->Path() / "ex" / "sounds" / entry.path().filename()))
            << entry.path();
    }
    EXPECT_EQ(sounds, 0);
}

TEST_F(FreedoomSounds, MusicKeepsNotesTimesAndControllersThroughMus)
{
    std::string pairs;
    int songs = 0;
    for (const auto& entry : fs::directory_iterator(Dir->Path() / "ex" / "musics"))
    {
        const fs::path midi = Dir->Path() / "mus" / entry.path().filename();
        fs::create_directories(midi.parent_path());
        fs::copy_file(entry.path(), midi);
        const testkit::CommandOutput run =
            testkit::RunCommand(std::string(KELVARMUS) + " /t140 " + midi.string() + " 2>&1");
        ASSERT_EQ(run.Status, 1) << run.Text;
        const Bytes mus = ReadBytes(fs::path(midi).replace_extension(".MUS"));
        const MusToMidiResult back = MusToMidiBytes(mus, {});
        ASSERT_EQ(back.Code, MusToMidiOk) << midi;
        const fs::path backPath = fs::path(midi).replace_extension(".back.mid");
        testkit::WriteFile(backPath, std::string(back.Midi.begin(), back.Midi.end()));
        pairs += " " + entry.path().string() + " " + backPath.string();
        ++songs;
    }
    EXPECT_EQ(songs, 35);
    const testkit::CommandOutput compared = testkit::RunCommand(
        "/usr/bin/python3 " KELVAR_SOURCE_DIR "/tests/sound/midi_compare.py" + pairs + " 2>&1");
    EXPECT_EQ(compared.Status, 0) << compared.Text;
}

// A PWAD whose D_RUNNIN is Freedoom's MIDI made MUS by kelvar-cli music import.
std::string MusPwad(const testkit::TempDir& dir, const testkit::CommandOutput& imported)
{
    EXPECT_EQ(imported.Status, 0) << imported.Text;
    const std::map<std::string, Bytes> lumps = WadLumps(dir.File("runnin.wad"));
    EXPECT_EQ(lumps.size(), 1u);
    EXPECT_TRUE(lumps.count("D_RUNNIN") == 1 && lumps.at("D_RUNNIN").size() > 16 &&
                std::equal(MusMagic.begin(), MusMagic.end(), lumps.at("D_RUNNIN").begin()));
    return dir.File("runnin.wad");
}

TEST_F(FreedoomSounds, RenderedMusicIsHeardForTheSongsLength)
{
    const std::string pwad =
        MusPwad(*Dir, Cli("music import " + Dir->File("ex/musics/d_runnin.mid") + " -o " +
                          Dir->File("runnin.wad")));
    const testkit::CommandOutput render =
        Cli("music render " + Iwad + " " + pwad + " D_RUNNIN -o " + Dir->File("runnin.wav"));
    ASSERT_EQ(render.Status, 0) << render.Text;
    const Bytes wav = ReadBytes(Dir->File("runnin.wav"));
    ASSERT_GT(wav.size(), 44u);
    // 16-bit stereo at 44100 Hz. The song is 83.5 s as Freedoom has it, 82.9 s after the tempo
    // rounding, and fluidsynth renders about 7.4 s of reverb and release behind the last note
    // (90.9 s for Freedoom's own MIDI).
    const double seconds = static_cast<double>(wav.size() - 44) / (44100.0 * 4);
    EXPECT_GT(seconds, 82.9 + 6.0);
    EXPECT_LT(seconds, 82.9 + 9.0);
    double sum = 0;
    std::size_t samples = 0;
    for (std::size_t at = 44; at + 1 < wav.size(); at += 2, ++samples)
    {
        const auto sample = static_cast<std::int16_t>(wad::ReadLe16(&wav[at]));
        sum += static_cast<double>(sample) * sample;
    }
    EXPECT_GT(std::sqrt(sum / static_cast<double>(samples)), 500.0) << "the render is silent";
}

TEST_F(FreedoomSounds, ChocolateDoomPlaysOurMus)
{
    if (!fs::exists("/usr/games/chocolate-doom") || !fs::exists("/usr/bin/xvfb-run"))
    {
        GTEST_SKIP() << "chocolate-doom or xvfb-run is not installed";
    }
    const std::string pwad =
        MusPwad(*Dir, Cli("music import " + Dir->File("ex/musics/d_runnin.mid") + " -o " +
                          Dir->File("runnin.wad")));
    // MAP01 plays D_RUNNIN. The engine runs until the timeout (124); a MUS it can't read says
    // "Failed to load".
    const testkit::CommandOutput play = testkit::RunCommand(
        "cd " + Dir->Path().string() + " && xvfb-run -a -s '-screen 0 640x480x24' bash " +
        KELVAR_SOURCE_DIR "/tests/sound/play_music.sh " + Iwad + " " + pwad + " 2>&1");
    EXPECT_NE(play.Text.find("engine rc=124"), std::string::npos) << play.Text;
    EXPECT_EQ(play.Text.find("Failed to load"), std::string::npos) << play.Text;
    EXPECT_EQ(play.Text.find("Error"), std::string::npos) << play.Text;
}

TEST_F(FreedoomSounds, TheCliRefusesLumpsOfTheWrongKind)
{
    testkit::CommandOutput run = Cli("sound export " + Iwad + " MAP01 -o " + Dir->File("x.wav"));
    EXPECT_EQ(run.Status, 2);
    EXPECT_NE(run.Text.find("  Entry MAP01\n  Error not WAVE or Sound format!"), std::string::npos)
        << run.Text;
    run = Cli("music export " + Iwad + " DSPISTOL -o " + Dir->File("x.mid"));
    EXPECT_NE(run.Text.find("  Entry DSPISTOL\n  Error not MIDI or MUS format!"), std::string::npos)
        << run.Text;
    run = Cli("sound export " + Iwad + " NOSUCH -o " + Dir->File("x.wav"));
    EXPECT_NE(run.Text.find(" NOSUCH - Lump Name not found"), std::string::npos) << run.Text;
    const std::string header("RIFF\x40\0\0\0WAVEfmt ", 16);
    testkit::WriteFile(Dir->File("bad.wav"), header + std::string(60, '\1'));
    run = Cli("sound import " + Dir->File("bad.wav") + " -o " + Dir->File("bad.wad"));
    EXPECT_EQ(run.Status, 2);
    EXPECT_NE(run.Text.find("Type 1 (PCM), 8/16 bit .WAV files only"), std::string::npos)
        << run.Text;
    EXPECT_FALSE(fs::exists(Dir->File("bad.wad")));
    // A sound exported and imported again is the lump it was.
    ASSERT_EQ(Cli("sound export " + Iwad + " DSPISTOL -o " + Dir->File("p.wav")).Status, 0);
    ASSERT_EQ(Cli("sound import " + Dir->File("p.wav") + " -o " + Dir->File("p.wad")).Status, 0);
    EXPECT_EQ(WadLumps(Dir->File("p.wad")).at("P"), Lumps->at("DSPISTOL"));
}

} // namespace
} // namespace kelvar::sound
