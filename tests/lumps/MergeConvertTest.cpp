// Tests of the merge's conversions: waves to SND, MIDI to MUS through the outside converter,
// picture files to patches, sprites and flats, from files and from lumps of a WAD, and what a
// failed conversion keeps or drops.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Merge.h"

#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/Picture.h"
#include "gfx/PngFile.h"
#include "platform/test/RecordingProcesses.h"
#include "sound/MidiToMus.h"
#include "sound/SoundFormats.h"
#include "sound/SoundState.h"
#include "sound/WaveConversion.h"
#include "tests/lumps/MergeTestLumps.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testing::LumpsNamed;
using testing::ReadWadLumps;
using testing::WadLump;
using testkit::WadBuilder;

// An 8-bit mono wave of `samples` bytes at 11025 Hz.
std::string Wave(const std::string& samples)
{
    const auto header = sound::MakeWavHeader(static_cast<std::int32_t>(36 + samples.size()), 11025,
                                             static_cast<std::int32_t>(samples.size()));
    return std::string(header.begin(), header.end()) + samples;
}

// A wave whose format is not PCM: a wave by its header, but none that converts.
std::string CompressedWave(const std::string& samples)
{
    std::string wave = Wave(samples);
    wave[20] = 2;
    return wave;
}

// A MIDI file of one track: four notes of a quarter each, then the end of the track. Long
// enough (over 45 bytes) to be told a MIDI lump inside a WAD.
std::string Midi()
{
    std::string track;
    for (const char note : {'\x3c', '\x3e', '\x40', '\x41'})
    {
        track += std::string{'\x00', '\x90', note, '\x64', '\x60', '\x80', note, '\x00'};
    }
    track += std::string{'\x00', '\xff', '\x2f', '\x00'};
    return std::string("MThd\0\0\0\x06\0\0\0\x01\0\x60", 14) + "MTrk" + std::string("\0\0\0", 3) +
           static_cast<char>(track.size()) + track;
}

class MergeConvertTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        sound::ResetSound();
        gfx::ResetPalettes();
    }
    void TearDown() override
    {
        gfx::ResetPalettes();
        sound::ResetSound();
        WadFixture::TearDown();
    }

    // Imports `files` into a new target with `options`; returns the target's lumps.
    std::vector<WadLump> Import(const std::vector<std::filesystem::path>& files,
                                const MergeOptions& options, int expected = 1)
    {
        MergeSession session;
        EXPECT_EQ(OpenMergeTarget(session, Dir.Path() / "target.wad"), 1);
        session.Options = options;
        for (const std::filesystem::path& file : files)
        {
            EXPECT_GT(AddInputFile(session, file), 0) << file;
        }
        Ui.Answer(1);
        EXPECT_EQ(SaveMerge(session), expected);
        Counts = session.Counts;
        return ReadWadLumps(Dir.Path() / "target.wad");
    }

    std::filesystem::path Write(const std::string& name, const std::string& bytes)
    {
        testkit::WriteFile(Dir.Path() / name, bytes);
        return Dir.Path() / name;
    }

    MergeCounts Counts;
};

TEST_F(MergeConvertTest, WavesBecomeSndWhenAskedAndABadOneIsDroppedOrKept)
{
    const std::string samples(300, '\x80');
    const std::filesystem::path wave = Write("dspop.wav", Wave(samples));
    const std::filesystem::path broken = Write("dsbad.wav", CompressedWave(samples));
    WadBuilder pack;
    pack.Lump("DSINWAD", Wave(samples)).Lump("DSBROKEN", CompressedWave(samples));
    const std::filesystem::path wad = pack.Write(Dir.Path() / "pack.wad");

    MergeOptions asIs;
    const std::vector<WadLump> kept = Import({wave}, asIs);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(kept[0], (WadLump{"DSPOP", Wave(samples)}));

    std::filesystem::remove(Dir.Path() / "target.wad");
    MergeOptions snd;
    snd.WavToSnd = true;
    const std::vector<WadLump> converted = Import({wave, broken, wad}, snd);
    std::vector<std::uint8_t> expected;
    ASSERT_EQ(sound::WavToSnd(testing::AsBytes(Wave(samples)), expected), std::nullopt);
    EXPECT_EQ(sound::ReadSndHeader(expected).Format, sound::SndFormatTag);
    ASSERT_EQ(converted.size(), 3u);
    EXPECT_EQ(converted[0], (WadLump{"DSPOP", std::string(expected.begin(), expected.end())}));
    EXPECT_EQ(converted[1], (WadLump{"DSINWAD", std::string(expected.begin(), expected.end())}));
    // A bad wave file is not copied; a bad wave lump of a WAD is copied as it is.
    EXPECT_EQ(converted[2].Name, "DSBROKEN");
    EXPECT_EQ(converted[2].Data, LumpsNamed(ReadWadLumps(wad), "DSBROKEN")[0].Data);
    EXPECT_EQ(Counts.Skipped, 1);
    const auto refusal =
        std::find_if(Ui.Messages.begin(), Ui.Messages.end(),
                     [](const platform::Message& m)
                     { return m.Text().find("Entry=DSBAD\n") != std::string::npos; });
    ASSERT_NE(refusal, Ui.Messages.end());
    EXPECT_EQ(refusal->Text().substr(0, 5), "File=");
    EXPECT_EQ(refusal->Text().substr(refusal->Text().size() - 17), "!\nData not copied");
    EXPECT_NE(std::find_if(Ui.Messages.begin(), Ui.Messages.end(),
                           [](const platform::Message& m)
                           {
                               const std::string text = m.Text();
                               return text.find("Entry=DSBROKEN\n") != std::string::npos &&
                                      text.ends_with("!\nData Copied ASIS");
                           }),
              Ui.Messages.end());
}

TEST_F(MergeConvertTest, MidiBecomesMusThroughTheOutsideConverter)
{
    platform::RecordingProcesses processes;
    // The converter run in-process, as kelvarmus would run it.
    processes.OnRun = [](const platform::ChildRequest& request)
    {
        const std::vector<std::string> words = platform::SplitCommandLine(request.CommandLine);
        std::string message;
        sound::RunKelvarMus(std::vector<std::string>(words.begin() + 1, words.end()), message);
    };
    const std::filesystem::path song = Write("d_song.mid", Midi());
    WadBuilder pack;
    pack.Lump("D_INWAD", Midi());
    const std::filesystem::path wad = pack.Write(Dir.Path() / "pack.wad");
    MergeOptions mus;
    mus.MidiToMus = true;
    processes.Exit(1).Exit(1);
    const std::vector<WadLump> lumps = Import({song, wad}, mus);
    const sound::MidiToMusResult expected =
        sound::MidiToMusBytes(testing::AsBytes(Midi()), sound::Sound().MidiToMusTempo);
    ASSERT_FALSE(expected.Error);
    const std::string bytes(expected.Mus.begin(), expected.Mus.end());
    EXPECT_EQ(lumps, (std::vector<WadLump>{{"D_SONG", bytes}, {"D_INWAD", bytes}}));
    EXPECT_EQ(processes.Runs.size(), 2u);
    // The converter's files are gone from the program's directory.
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "D_SONG.MUS"));
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "D_INWAD.MUS"));
    const std::vector<std::string> log =
        testkit::RunCommand("cat '" + MergeLogPath().string() + "'").Lines();
    EXPECT_NE(std::find(log.begin(), log.end(), "MIDI converted to DOOM format"), log.end());

    // A converter that leaves no file: the lump is left out.
    std::filesystem::remove(Dir.Path() / "target.wad");
    processes.OnRun = nullptr;
    processes.Exit(1);
    EXPECT_TRUE(Import({song}, mus).empty());
    EXPECT_EQ(Ui.Last().Text(), "File=" + song.string() + "\nEntry=D_SONG\nFile " +
                                    (Dir.Path() / "D_SONG.MUS").string() +
                                    " not found?\n\nData not copied");
}

TEST_F(MergeConvertTest, PictureFilesBecomeLumpsOfTheKindAsked)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    ASSERT_EQ(gfx::LoadGamePalette(0), 1);
    const gfx::Palette& palette = gfx::Palettes().GamePalette;
    // Colours the palette holds once, so that matching can only give their own index back.
    std::vector<std::uint8_t> unique;
    for (int i = 0; i < 256; ++i)
    {
        if (std::count(palette.begin(), palette.end(), palette[static_cast<std::size_t>(i)]) == 1)
        {
            unique.push_back(static_cast<std::uint8_t>(i));
        }
    }
    ASSERT_GT(unique.size(), 100u);
    gfx::ImageRaster picture(24, 40, 0);
    for (int y = 0; y < 40; ++y)
    {
        for (int x = 0; x < 24; ++x)
        {
            // A hole of the transparent index in the top left corner.
            const bool hole = x < 4 && y < 4;
            picture.Set(x, y, hole ? 251 : unique[static_cast<std::size_t>(x + y) % unique.size()]);
        }
    }
    const std::filesystem::path bmp = Write("imp.bmp",
                                            [&]
                                            {
                                                const std::vector<std::uint8_t> bytes =
                                                    gfx::EncodeBmp(picture, palette);
                                                return std::string(bytes.begin(), bytes.end());
                                            }());
    const std::optional<std::vector<std::uint8_t>> png = gfx::EncodePng(picture, palette);
    ASSERT_TRUE(png);
    const std::filesystem::path pngFile = Write("imq.png", std::string(png->begin(), png->end()));

    MergeOptions sprites;
    sprites.PictureKind = gfx::LumpKind::Sprite;
    const std::vector<WadLump> lumps = Import({bmp, pngFile}, sprites);
    ASSERT_EQ(lumps.size(), 2u);
    for (const WadLump& lump : lumps)
    {
        const gfx::DecodedPicture decoded = gfx::DecodePicture(testing::AsBytes(lump.Data), 251);
        ASSERT_TRUE(decoded.Raster) << lump.Name;
        EXPECT_EQ(decoded.Kind, gfx::LumpKind::Pic);
        EXPECT_EQ(decoded.Raster->Width(), 24);
        EXPECT_EQ(decoded.Raster->Height(), 40);
        EXPECT_EQ(decoded.Raster->leftOffset, 12) << "a sprite is centred";
        EXPECT_EQ(decoded.Raster->topOffset, 36) << "and stands on its bottom rows";
        gfx::ImageRaster expected = picture;
        expected.leftOffset = 12;
        expected.topOffset = 36;
        EXPECT_TRUE(*decoded.Raster == expected) << lump.Name << " pixel for pixel";
    }

    std::filesystem::remove(Dir.Path() / "target.wad");
    MergeOptions flats;
    flats.PictureKind = gfx::LumpKind::Flat;
    const std::vector<WadLump> flat = Import({bmp}, flats);
    ASSERT_EQ(flat.size(), 1u);
    EXPECT_EQ(flat[0].Data.size(), 4096u) << "stretched to 64 x 64";

    // RAW keeps the file as it is; a file that is no picture is refused when one is asked for.
    std::filesystem::remove(Dir.Path() / "target.wad");
    const std::filesystem::path fake = Write("fake.pcx", "not a picture");
    EXPECT_EQ(Import({bmp}, MergeOptions())[0].Data, testkit::ReadFile(bmp));
    std::filesystem::remove(Dir.Path() / "target.wad");
    EXPECT_TRUE(Import({fake}, sprites).empty());
    EXPECT_EQ(Ui.Last().Text(),
              "File=" + fake.string() +
                  "\nEntry=FAKE\nNot a BMP, PCX or PNG picture!\nData not copied");
}

} // namespace
} // namespace kelvar::lumps
