// The Qt audio port: with no output it says so once and refuses plays without waiting; with one,
// sounds and music start and stop.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtAudio.h"
#include "platform/test/RecordingUi.h"
#include "sound/InterfaceSounds.h"
#include "sound/MusToMidi.h"
#include "tests/sound/SoundTestKit.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace kelvar::platform
{
namespace
{

std::vector<std::uint8_t> ShortSong()
{
    const auto mus = sound::test::MusBuilder()
                         .Event(1, 0, {60 | 0x80, 100})
                         .Delay(70)
                         .Event(0, 0, {60})
                         .End()
                         .Build();
    return sound::MusToMidiBytes(mus, sound::MusToMidiOptions{}).Midi;
}

TEST(QtAudio, WithoutAnOutputSaysSoOnceAndRefusesPlays)
{
    RecordingUi ui;
    ScopedUi installed(ui);
    QtAudio audio;
    if (audio.HasDevice())
    {
        GTEST_SKIP() << "this machine has an audio output";
    }
    EXPECT_FALSE(audio.PlayWave(sound::InterfaceSoundWave(sound::SoundTick)));
    EXPECT_FALSE(audio.PlayWave(sound::InterfaceSoundWave(sound::SoundMode)));
    EXPECT_EQ(audio.PlayMidi(ShortSong()), AudioNoDevice);
    EXPECT_FALSE(audio.MusicLoading());
    audio.StopAll();
    EXPECT_EQ(ui.StatusTexts,
              std::vector<std::string>{"No audio output found: sounds and music are not played"});
    EXPECT_TRUE(ui.Messages.empty());
}

TEST(QtAudio, WithAnOutputSoundsAndMusicStartAndStop)
{
    RecordingUi ui;
    ScopedUi installed(ui);
    QtAudio audio;
    if (!audio.HasDevice())
    {
        GTEST_SKIP() << "this machine has no audio output";
    }
    EXPECT_TRUE(audio.PlayWave(sound::InterfaceSoundWave(sound::SoundTick)));
    EXPECT_FALSE(audio.PlayWave({})); // not a wave
    EXPECT_EQ(audio.PlayMidi(ShortSong()), AudioStarted);
    // The soundfont loads on its own thread; the events keep coming meanwhile.
    QElapsedTimer waited;
    waited.start();
    while (audio.MusicLoading() && waited.elapsed() < 30000)
    {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    EXPECT_FALSE(audio.MusicLoading());
    audio.StopAll();
    EXPECT_TRUE(ui.StatusTexts.empty());
}

} // namespace
} // namespace kelvar::platform

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
