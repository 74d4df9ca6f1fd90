// The audio port over Qt Multimedia and FluidSynth.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtAudio.h"

#include "platform/AudioPcm.h"
#include "platform/Ui.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QBuffer>
#include <QIODevice>
#include <QMediaDevices>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fluidsynth.h>
#include <thread>
#include <vector>

namespace kelvar::platform
{
namespace
{

// The General MIDI soundfont Debian's fluid-soundfont-gm installs.
constexpr const char* SoundFontPath = "/usr/share/sounds/sf2/FluidR3_GM.sf2";

QAudioFormat OutputFormat(const QAudioDevice& device, int channels)
{
    QAudioFormat format = device.preferredFormat();
    if (format.sampleRate() <= 0)
    {
        format.setSampleRate(44100);
    }
    format.setChannelCount(channels);
    format.setSampleFormat(QAudioFormat::Int16);
    if (!device.isFormatSupported(format))
    {
        format.setSampleFormat(QAudioFormat::Float);
    }
    return format;
}

QByteArray ToBytes(const std::vector<float>& samples, QAudioFormat::SampleFormat sampleFormat)
{
    QByteArray bytes;
    if (sampleFormat == QAudioFormat::Float)
    {
        bytes.resize(static_cast<qsizetype>(samples.size() * sizeof(float)));
        std::memcpy(bytes.data(), samples.data(), samples.size() * sizeof(float));
        return bytes;
    }
    std::vector<std::int16_t> ints(samples.size());
    std::transform(
        samples.begin(), samples.end(), ints.begin(),
        [](float x)
        { return static_cast<std::int16_t>(std::lround(std::clamp(x, -1.0f, 1.0f) * 32767.0f)); });
    bytes.resize(static_cast<qsizetype>(ints.size() * sizeof(std::int16_t)));
    std::memcpy(bytes.data(), ints.data(), ints.size() * sizeof(std::int16_t));
    return bytes;
}

// The music as a stream the sink pulls from: each read renders as many frames as are asked
// for, so a song starts at once and no more of it is held than the sink's buffer.
class SynthStream final : public QIODevice
{
public:
    SynthStream(fluid_synth_t* synth, fluid_player_t* player, bool floats)
        : Synth(synth), Player(player), Floats(floats)
    {
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (fluid_player_get_status(Player) != FLUID_PLAYER_PLAYING)
        {
            return 0;
        }
        const qint64 frameBytes = Floats ? 2 * 4 : 2 * 2;
        const auto frames = static_cast<int>(std::min<qint64>(maxSize / frameBytes, 8192));
        if (Floats)
        {
            fluid_synth_write_float(Synth, frames, data, 0, 2, data, 1, 2);
        }
        else
        {
            fluid_synth_write_s16(Synth, frames, data, 0, 2, data, 1, 2);
        }
        return frames * frameBytes;
    }

    qint64 writeData(const char*, qint64) override { return -1; }

private:
    fluid_synth_t* Synth;
    fluid_player_t* Player;
    bool Floats;
};

} // namespace

struct QtAudio::Parts
{
    QByteArray SoundBytes;
    std::unique_ptr<QBuffer> SoundBuffer;
    std::unique_ptr<QAudioSink> SoundSink;

    // Written by the loader thread; read only while Loading is clear, after the join.
    fluid_settings_t* Settings = nullptr;
    fluid_synth_t* Synth = nullptr;
    std::thread Loader;
    std::atomic<bool> Loading = false;
    bool SynthFailed = false;

    fluid_player_t* Player = nullptr;
    std::unique_ptr<SynthStream> Stream;
    std::unique_ptr<QAudioSink> MusicSink;
    QAudioFormat MusicFormat;
    std::vector<std::uint8_t> PendingMidi; // music waiting for the soundfont
    bool Reported = false;
};

QtAudio::QtAudio(QObject* parent) : QObject(parent), P(std::make_unique<Parts>())
{
    // The synthesizer's warnings (a missing preset, say) would go to stderr; the music plays on
    // regardless.
    fluid_set_log_function(FLUID_WARN, nullptr, nullptr);
    fluid_set_log_function(FLUID_INFO, nullptr, nullptr);
    fluid_set_log_function(FLUID_DBG, nullptr, nullptr);
}

QtAudio::~QtAudio()
{
    StopSound();
    StopMusic();
    if (P->Loader.joinable())
    {
        P->Loader.join();
    }
    if (P->Synth != nullptr)
    {
        delete_fluid_synth(P->Synth);
    }
    if (P->Settings != nullptr)
    {
        delete_fluid_settings(P->Settings);
    }
}

bool QtAudio::HasDevice()
{
    return !QMediaDevices::defaultAudioOutput().isNull();
}

bool QtAudio::CheckDevice()
{
    if (HasDevice())
    {
        return true;
    }
    if (!P->Reported)
    {
        P->Reported = true;
        TheUi().SetStatusText("No audio output found: sounds and music are not played");
    }
    return false;
}

bool QtAudio::PlayWave(std::span<const std::uint8_t> wave)
{
    StopSound();
    if (!CheckDevice())
    {
        return false;
    }
    const std::optional<PcmWave> pcm = DecodeWave(wave);
    if (!pcm)
    {
        return false;
    }
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    const QAudioFormat format = OutputFormat(device, pcm->Channels);
    P->SoundBytes = ToBytes(ConvertPcm(*pcm, format.sampleRate(), format.channelCount()),
                            format.sampleFormat());
    P->SoundBuffer = std::make_unique<QBuffer>(&P->SoundBytes);
    P->SoundBuffer->open(QIODevice::ReadOnly);
    P->SoundSink = std::make_unique<QAudioSink>(device, format);
    P->SoundSink->start(P->SoundBuffer.get());
    return P->SoundSink->error() == QAudio::NoError;
}

void QtAudio::StopSound()
{
    if (P->SoundSink)
    {
        P->SoundSink->stop();
    }
    P->SoundSink.reset();
    P->SoundBuffer.reset();
    P->SoundBytes.clear();
}

int QtAudio::PlayMidi(std::span<const std::uint8_t> midi)
{
    StopMusic();
    if (!CheckDevice())
    {
        return AudioNoDevice;
    }
    if (P->SynthFailed || !std::filesystem::exists(SoundFontPath))
    {
        return AudioNoSynth;
    }
    P->PendingMidi.assign(midi.begin(), midi.end());
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    P->MusicFormat = OutputFormat(device, 2);
    if (!P->Loading && P->Synth != nullptr)
    {
        StartMusic();
        return P->Player != nullptr ? AudioStarted : AudioBadData;
    }
    if (!P->Loading)
    {
        // Loading the soundfont takes a while; it happens on a thread of its own and the
        // music starts when it is done.
        P->Loading = true;
        const double rate = P->MusicFormat.sampleRate();
        P->Loader = std::thread(
            [this, rate]
            {
                fluid_settings_t* settings = new_fluid_settings();
                fluid_settings_setnum(settings, "synth.sample-rate", rate);
                // The player advances with the samples rendered, not with the clock.
                fluid_settings_setstr(settings, "player.timing-source", "sample");
                fluid_settings_setint(settings, "synth.lock-memory", 0);
                fluid_synth_t* synth = new_fluid_synth(settings);
                if (synth != nullptr && fluid_synth_sfload(synth, SoundFontPath, 1) == FLUID_FAILED)
                {
                    delete_fluid_synth(synth);
                    synth = nullptr;
                }
                P->Settings = settings;
                P->Synth = synth;
                QMetaObject::invokeMethod(
                    this, [this] { SynthLoaded(); }, Qt::QueuedConnection);
            });
    }
    return AudioStarted;
}

void QtAudio::SynthLoaded()
{
    P->Loader.join();
    P->Loading = false;
    if (P->Synth == nullptr)
    {
        P->SynthFailed = true;
        TheUi().SetStatusText("The MIDI soundfont could not be loaded: music is not played");
        return;
    }
    if (!P->PendingMidi.empty())
    {
        StartMusic();
    }
}

void QtAudio::StartMusic()
{
    std::vector<std::uint8_t> midi = std::move(P->PendingMidi);
    P->PendingMidi.clear();
    fluid_synth_system_reset(P->Synth);
    P->Player = new_fluid_player(P->Synth);
    if (P->Player == nullptr ||
        fluid_player_add_mem(P->Player, midi.data(), midi.size()) == FLUID_FAILED ||
        fluid_player_play(P->Player) == FLUID_FAILED)
    {
        StopMusic();
        return;
    }
    const bool floats = P->MusicFormat.sampleFormat() == QAudioFormat::Float;
    P->Stream = std::make_unique<SynthStream>(P->Synth, P->Player, floats);
    P->Stream->open(QIODevice::ReadOnly);
    P->MusicSink =
        std::make_unique<QAudioSink>(QMediaDevices::defaultAudioOutput(), P->MusicFormat);
    P->MusicSink->start(P->Stream.get());
}

void QtAudio::StopMusic()
{
    P->PendingMidi.clear();
    if (P->MusicSink)
    {
        P->MusicSink->stop();
    }
    P->MusicSink.reset();
    P->Stream.reset();
    if (P->Player != nullptr)
    {
        fluid_player_stop(P->Player);
        delete_fluid_player(P->Player);
        P->Player = nullptr;
    }
    if (!P->Loading && P->Synth != nullptr)
    {
        fluid_synth_all_sounds_off(P->Synth, -1);
    }
}

bool QtAudio::MusicLoading() const
{
    return P->Loading;
}

} // namespace kelvar::platform
