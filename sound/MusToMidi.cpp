// MUS lumps to Standard MIDI files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MusToMidi.h"

#include "sound/MusFormat.h"
#include "sound/SoundState.h"
#include "sound/WaveConversion.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace kelvar::sound
{
namespace
{

// The texts of the tempo track and of the first channel track's name.
constexpr std::string_view TempoTrackText = "Kelvar wrk midi file ";
constexpr std::string_view TrackNameText = "Kelvar MUS-MID work file  v1.01";
// 631578 microseconds a quarter note.
constexpr std::array<std::uint8_t, 7> TempoEvent = {0x00, 0xFF, 0x51, 0x03, 0x09, 0xA3, 0x1A};
constexpr std::array<std::uint8_t, 6> TimeSignatureEvent = {0x00, 0xFF, 0x59, 0x02, 0x00, 0x00};
constexpr std::array<std::uint8_t, 4> EndOfTrack = {0x00, 0xFF, 0x2F, 0x00};
constexpr std::uint8_t FreeChannel = 255;

// One MIDI track in the making.
struct MusTrack
{
    std::uint8_t Velocity = 64;     // of the last note played
    std::uint32_t DeltaTime = 0;    // ticks waiting to be written before the next event
    std::uint8_t LastStatus = 0;    // for running status
    std::vector<std::uint8_t> Data; // the bytes written, up to the buffer size
};

// The bytes of the lump, read one at a time; a read past the end gives nothing.
struct MusReader
{
    std::span<const std::uint8_t> Bytes;
    std::size_t At = 0;

    bool Read(std::uint8_t& byte)
    {
        if (At >= Bytes.size())
        {
            return false;
        }
        byte = Bytes[At++];
        return true;
    }

    // A delay: 7 bits a byte, most significant first, the high bit meaning more follow.
    bool ReadDelay(std::uint32_t& delay)
    {
        delay = 0;
        std::uint8_t byte = 0x80;
        while ((byte & 0x80) != 0)
        {
            if (!Read(byte))
            {
                return false;
            }
            delay = (delay << 7) | (byte & 0x7Fu);
        }
        return true;
    }
};

class Converter
{
public:
    Converter(std::span<const std::uint8_t> score, int primaryChannels,
              const MusToMidiOptions& options)
        : Input{score, 0}, PrimaryChannels(primaryChannels), Options(options),
          BufferSize(options.TrackBufferSize != 0 ? options.TrackBufferSize
                                                  : DefaultTrackBufferSize)
    {
        MidiChannelOf.fill(FreeChannel);
        TrackOf.fill(-1);
    }

    // Runs the score to its end event or the end of the lump. Returns a code.
    int Run()
    {
        std::uint8_t eventByte = 0;
        if (!Input.Read(eventByte))
        {
            return MusToMidiOk;
        }
        while (((eventByte >> 4) & 7) != MusScoreEnd && !Failed)
        {
            const int type = (eventByte >> 4) & 7;
            const int channel = eventByte & 15;
            const int track = TrackForChannel(channel);
            if (track < 0)
            {
                break;
            }
            if (const int code = WriteEvent(type, track); code != MusToMidiOk)
            {
                return code;
            }
            std::uint32_t delay = 0;
            if ((eventByte & 0x80) != 0 && Input.ReadDelay(delay))
            {
                // The delay runs on every track, also on those not yet in use.
                for (MusTrack& each : Tracks)
                {
                    each.DeltaTime += delay;
                }
            }
            if (!Input.Read(eventByte))
            {
                break;
            }
        }
        return Failed ? MusCorrupted : MusToMidiOk;
    }

    // The MIDI file: header, the tempo track, then each channel's track.
    std::vector<std::uint8_t> File(int division) const
    {
        std::vector<std::uint8_t> midi = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1};
        PutBe16(midi, static_cast<std::uint16_t>(TrackCount + 1));
        PutBe16(midi, static_cast<std::uint16_t>(division));
        AppendTempoTrack(midi);
        for (int track = 0; track < TrackCount; ++track)
        {
            AppendChannelTrack(midi, Tracks[static_cast<std::size_t>(track)], track == 0);
        }
        return midi;
    }

private:
    static void PutBe16(std::vector<std::uint8_t>& out, std::uint16_t value)
    {
        out.push_back(static_cast<std::uint8_t>(value >> 8));
        out.push_back(static_cast<std::uint8_t>(value));
    }

    static void PutBe32(std::vector<std::uint8_t>& out, std::uint32_t value)
    {
        PutBe16(out, static_cast<std::uint16_t>(value >> 16));
        PutBe16(out, static_cast<std::uint16_t>(value));
    }

    static void PutTextEvent(std::vector<std::uint8_t>& out, std::uint8_t kind,
                             std::string_view text)
    {
        out.insert(out.end(), {0x00, 0xFF, kind, static_cast<std::uint8_t>(text.size())});
        out.insert(out.end(), text.begin(), text.end());
    }

    static void AppendTempoTrack(std::vector<std::uint8_t>& out)
    {
        std::vector<std::uint8_t> events;
        PutTextEvent(events, 0x02, TempoTrackText);
        events.insert(events.end(), TimeSignatureEvent.begin(), TimeSignatureEvent.end());
        events.insert(events.end(), TempoEvent.begin(), TempoEvent.end());
        events.insert(events.end(), EndOfTrack.begin(), EndOfTrack.end());
        out.insert(out.end(), {'M', 'T', 'r', 'k'});
        PutBe32(out, static_cast<std::uint32_t>(events.size()));
        out.insert(out.end(), events.begin(), events.end());
    }

    // The length is counted in 16 bits, so a track of 64 KB or more gets a wrong length. This
    // is kept on purpose: players that read each track to its end event still play the file.
    static void AppendChannelTrack(std::vector<std::uint8_t>& out, const MusTrack& track,
                                   bool named)
    {
        std::vector<std::uint8_t> name;
        if (named)
        {
            PutTextEvent(name, 0x03, TrackNameText);
        }
        out.insert(out.end(), {'M', 'T', 'r', 'k'});
        PutBe32(out,
                static_cast<std::uint16_t>(track.Data.size() + EndOfTrack.size() + name.size()));
        out.insert(out.end(), name.begin(), name.end());
        out.insert(out.end(), track.Data.begin(), track.Data.end());
        out.insert(out.end(), EndOfTrack.begin(), EndOfTrack.end());
    }

    // The MIDI channel of a MUS channel, given on first use: percussion goes to 9, the others
    // one above the highest given so far (not counting percussion), passing over 9. Each new
    // channel gets the next track. Returns the track, or -1 when the run must end.
    int TrackForChannel(int musChannel)
    {
        auto& midi = MidiChannelOf[static_cast<std::size_t>(musChannel)];
        if (midi == FreeChannel)
        {
            if (musChannel == MusPercussionChannel)
            {
                midi = MidiPercussionChannel;
            }
            else
            {
                int highest = -1;
                for (int each = 0; each < MusPercussionChannel; ++each)
                {
                    const std::uint8_t given = MidiChannelOf[static_cast<std::size_t>(each)];
                    if (given != FreeChannel)
                    {
                        highest = std::max(highest, static_cast<int>(given));
                    }
                }
                midi = static_cast<std::uint8_t>(
                    highest + 1 == MidiPercussionChannel ? MidiPercussionChannel + 1 : highest + 1);
            }
            if (TrackCount >= MaxMidiTracks || midi >= MaxMidiTracks)
            {
                Failed = true;
                return -1;
            }
            TrackOf[midi] = TrackCount++;
        }
        return TrackOf[midi];
    }

    MusTrack& TrackAt(int track) { return Tracks[static_cast<std::size_t>(track)]; }

    // A full buffer fails the conversion; the byte is lost.
    void Put(int track, std::uint8_t byte)
    {
        MusTrack& out = TrackAt(track);
        if (out.Data.size() >= BufferSize)
        {
            Failed = true;
            return;
        }
        out.Data.push_back(byte);
    }

    void PutDelta(int track)
    {
        MusTrack& out = TrackAt(track);
        std::uint32_t value = out.DeltaTime;
        std::array<std::uint8_t, 5> groups{};
        std::size_t count = 0;
        do
        {
            groups[count++] = static_cast<std::uint8_t>(value & 0x7F);
            value >>= 7;
        } while (value != 0);
        while (count-- > 0)
        {
            Put(track, static_cast<std::uint8_t>(groups[count] | (count != 0 ? 0x80 : 0)));
        }
        out.DeltaTime = 0;
    }

    // The status byte, left out while it repeats the track's last one (running status).
    void PutStatus(int track, std::uint8_t kind)
    {
        MusTrack& out = TrackAt(track);
        const auto status = static_cast<std::uint8_t>(kind | ChannelOfTrack(track));
        if (status != out.LastStatus || Options.NoRunningStatus)
        {
            Put(track, status);
            out.LastStatus = status;
        }
    }

    std::uint8_t ChannelOfTrack(int track) const
    {
        for (std::size_t midi = 0; midi < TrackOf.size(); ++midi)
        {
            if (TrackOf[midi] == track)
            {
                return static_cast<std::uint8_t>(midi);
            }
        }
        return 0;
    }

    void PutMessage(int track, std::uint8_t kind, std::initializer_list<std::uint8_t> data)
    {
        PutDelta(track);
        PutStatus(track, kind);
        for (const std::uint8_t byte : data)
        {
            Put(track, byte);
        }
    }

    // Reads the event's bytes and writes its MIDI message. An event cut short by the end of
    // the lump is left out whole, so the track stays readable. Returns a code.
    int WriteEvent(int type, int track)
    {
        std::uint8_t first = 0;
        std::uint8_t second = 0;
        switch (type)
        {
        case MusReleaseNote:
            if (Input.Read(first))
            {
                PutMessage(track, 0x90, {first, 0});
            }
            return MusToMidiOk;
        case MusPlayNote:
            if (Input.Read(first))
            {
                if ((first & 0x80) != 0 && !Input.Read(TrackAt(track).Velocity))
                {
                    return MusToMidiOk;
                }
                PutMessage(track, 0x90,
                           {static_cast<std::uint8_t>(first & 0x7F), TrackAt(track).Velocity});
            }
            return MusToMidiOk;
        case MusPitchWheel:
            if (Input.Read(first))
            {
                PutMessage(track, 0xE0,
                           {static_cast<std::uint8_t>((first & 1) * 64),
                            static_cast<std::uint8_t>(first >> 1)});
            }
            return MusToMidiOk;
        case MusSystemEvent:
            return WriteSystemEvent(track);
        case MusController:
            if (Input.Read(first) && Input.Read(second))
            {
                if (first >= MusControllerToMidi.size())
                {
                    return MusCorrupted;
                }
                if (first == 0)
                {
                    PutMessage(track, 0xC0, {second});
                }
                else
                {
                    PutMessage(track, 0xB0, {MusControllerToMidi[first], second});
                }
            }
            return MusToMidiOk;
        default:
            return MusCorrupted; // types 5 and 7 are not defined
        }
    }

    int WriteSystemEvent(int track)
    {
        std::uint8_t controller = 0;
        if (!Input.Read(controller))
        {
            return MusToMidiOk;
        }
        if (controller >= MusControllerToMidi.size())
        {
            return MusCorrupted;
        }
        // Mono mode's value is the number of channels it may use.
        const auto value =
            static_cast<std::uint8_t>(controller == MusMonoEvent ? PrimaryChannels + 1 : 0);
        PutMessage(track, 0xB0, {MusControllerToMidi[controller], value});
        return MusToMidiOk;
    }

    MusReader Input;
    int PrimaryChannels;
    MusToMidiOptions Options;
    std::size_t BufferSize;
    std::array<MusTrack, MaxMidiTracks> Tracks;
    std::array<std::uint8_t, MaxMidiTracks> MidiChannelOf{}; // by MUS channel
    std::array<int, MaxMidiTracks> TrackOf{};                // by MIDI channel
    int TrackCount = 0;
    bool Failed = false;
};

} // namespace

MusToMidiResult MusToMidiBytes(std::span<const std::uint8_t> mus, const MusToMidiOptions& options)
{
    if (mus.size() >= MusMagic.size() && !std::equal(MusMagic.begin(), MusMagic.end(), mus.begin()))
    {
        return {MusNotMus, {}};
    }
    if (mus.size() < static_cast<std::size_t>(MusHeaderSize))
    {
        return {MusShortRead, {}};
    }
    const std::uint16_t scoreStart = wad::ReadLe16(&mus[6]);
    const std::uint16_t primaryChannels = wad::ReadLe16(&mus[8]);
    const std::uint16_t instruments = wad::ReadLe16(&mus[12]);
    // The instrument list is read and dropped: General MIDI has every instrument.
    if (mus.size() < static_cast<std::size_t>(MusHeaderSize) + 2u * instruments)
    {
        return {MusShortRead, {}};
    }
    if (scoreStart > mus.size())
    {
        return {MusCorrupted, {}};
    }
    if (primaryChannels > 15)
    {
        return {MusTooManyChannels, {}};
    }
    Converter converter(mus.subspan(scoreStart), primaryChannels, options);
    if (const int code = converter.Run(); code != MusToMidiOk)
    {
        return {code, {}};
    }
    return {MusToMidiOk, converter.File(options.Division)};
}

int ConvertMusToMidi(std::FILE* file, std::int64_t offset, std::int64_t size,
                     const std::filesystem::path& outputName, const MusToMidiOptions& options)
{
    std::FILE* output = std::fopen(outputName.c_str(), "wb");
    if (output == nullptr)
    {
        return MusCantWrite;
    }
    std::fclose(output);
    if (file == nullptr)
    {
        return MusNoInput;
    }
    const MusToMidiResult result = MusToMidiBytes(ReadRange(file, offset, size), options);
    if (result.Code != MusToMidiOk)
    {
        return result.Code;
    }
    output = std::fopen(outputName.c_str(), "wb");
    if (output == nullptr)
    {
        return MusCantWrite;
    }
    const bool written = WriteRange(output, 0, result.Midi);
    return std::fclose(output) == 0 && written ? MusToMidiOk : MusCantWrite;
}

std::optional<std::string> MusToMidi(std::FILE* file, std::int64_t offset, std::int64_t size,
                                     const std::filesystem::path& outputName,
                                     std::size_t trackBufferSize, bool noRunningStatus)
{
    const MusToMidiOptions options{Sound().MusToMidiTempo, trackBufferSize, noRunningStatus};
    const int code = ConvertMusToMidi(file, offset, size, outputName, options);
    if (code == MusToMidiOk)
    {
        return std::nullopt;
    }
    return MusToMidiText(code);
}

const char* MusToMidiText(int code)
{
    switch (code)
    {
    case MusNotMus:
        return "not a MUS file";
    case MusShortRead:
        return "Can't open for read";
    case MusNoInput:
        return "Can't open file.";
    case MusCantWrite:
        return "Can't write file";
    case MusCorrupted:
        return "Mus corrupted";
    case MusTooManyChannels:
        return "Mus contains more than 16 channels";
    case MusNoMemory:
        return "Not enough memory";
    default:
        return "";
    }
}

} // namespace kelvar::sound
