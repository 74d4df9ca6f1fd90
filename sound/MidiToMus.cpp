// Standard MIDI files to MUS lumps.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MidiToMus.h"

#include "sound/MidiFile.h"
#include "sound/MusFormat.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>

namespace kelvar::sound
{
namespace
{

// The MUS channel of a MIDI channel; all sixteen fit.
int MusChannelOf(int midiChannel)
{
    if (midiChannel == MidiPercussionChannel)
    {
        return MusPercussionChannel;
    }
    return midiChannel < MidiPercussionChannel ? midiChannel : midiChannel - 1;
}

// The MUS controller number of a MIDI controller, or -1 when MUS has none. Bank select is MUS
// controller 1 (0 is the program change).
int MusControllerOf(int midiController)
{
    for (std::size_t each = 1; each < MusControllerToMidi.size(); ++each)
    {
        if (MusControllerToMidi[each] == midiController)
        {
            return static_cast<int>(each);
        }
    }
    return -1;
}

// Writes the score: events, and a delay behind the last event before each later time.
class ScoreWriter
{
public:
    // Moves the score to `time` (MUS ticks from the start).
    void At(std::uint64_t time)
    {
        if (time <= Now)
        {
            return;
        }
        if (!LastEvent)
        {
            // A score can't wait before its first event: a centred pitch wheel, which changes
            // nothing, holds the place.
            Event(MusPitchWheel, FirstChannel, {128});
        }
        Score[*LastEvent] |= 0x80;
        PutNumber(time - Now);
        Now = time;
    }

    void Event(int type, int channel, std::initializer_list<std::uint8_t> data)
    {
        LastEvent = Score.size();
        Score.push_back(static_cast<std::uint8_t>((type << 4) | channel));
        Score.insert(Score.end(), data.begin(), data.end());
        if (channel != MusPercussionChannel)
        {
            Primary = std::max(Primary, channel + 1);
        }
    }

    // A note: the velocity goes with it when it differs from the channel's last one, and
    // always with the channel's first note, whose previous velocity players set differently.
    void Note(int channel, std::uint8_t note, std::uint8_t velocity)
    {
        int& last = Velocity[static_cast<std::size_t>(channel)];
        if (last == velocity)
        {
            Event(MusPlayNote, channel, {note});
            return;
        }
        last = velocity;
        Event(MusPlayNote, channel, {static_cast<std::uint8_t>(note | 0x80), velocity});
    }

    std::vector<std::uint8_t> Score;
    int Primary = 0;
    int FirstChannel = 0;

private:
    void PutNumber(std::uint64_t value)
    {
        std::array<std::uint8_t, 10> groups{};
        std::size_t count = 0;
        do
        {
            groups[count++] = static_cast<std::uint8_t>(value & 0x7F);
            value >>= 7;
        } while (value != 0);
        while (count-- > 0)
        {
            Score.push_back(static_cast<std::uint8_t>(groups[count] | (count != 0 ? 0x80 : 0)));
        }
    }

    std::optional<std::size_t> LastEvent;
    std::uint64_t Now = 0;
    std::array<int, 16> Velocity = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
};

// Writes one MIDI channel message as MUS; notes the instruments it uses.
void WriteMessage(ScoreWriter& score, const MidiEvent& event, std::set<std::uint16_t>& instruments)
{
    const int channel = MusChannelOf(event.Status & 15);
    switch (event.Status & 0xF0)
    {
    case 0x90:
        if (event.Data2 != 0)
        {
            score.Note(channel, event.Data1, event.Data2);
            if (channel == MusPercussionChannel)
            {
                instruments.insert(static_cast<std::uint16_t>(event.Data1 + 100));
            }
            break;
        }
        [[fallthrough]]; // a note-on of velocity 0 releases
    case 0x80:
        score.Event(MusReleaseNote, channel, {event.Data1});
        break;
    case 0xE0:
        score.Event(MusPitchWheel, channel,
                    {static_cast<std::uint8_t>(((event.Data2 << 7) | event.Data1) >> 6)});
        break;
    case 0xC0:
        score.Event(MusController, channel, {0, event.Data1});
        if (channel != MusPercussionChannel)
        {
            instruments.insert(event.Data1);
        }
        break;
    case 0xB0:
        if (const int controller = MusControllerOf(event.Data1); controller >= 0)
        {
            const auto number = static_cast<std::uint8_t>(controller);
            if (controller >= MusFirstSystemEvent)
            {
                score.Event(MusSystemEvent, channel, {number});
            }
            else
            {
                score.Event(MusController, channel, {number, event.Data2});
            }
        }
        break;
    default:
        break; // aftertouch has no MUS form
    }
}

bool IsKept(const MidiEvent& event)
{
    const int kind = event.Status & 0xF0;
    return kind == 0x80 || kind == 0x90 || kind == 0xE0 || kind == 0xC0 ||
           (kind == 0xB0 && MusControllerOf(event.Data1) >= 0);
}

std::vector<std::uint8_t> MusFile(const ScoreWriter& score,
                                  const std::set<std::uint16_t>& instruments)
{
    std::vector<std::uint8_t> mus(MusHeaderSize + 2 * instruments.size());
    std::copy(MusMagic.begin(), MusMagic.end(), mus.begin());
    // The length field has 16 bits; players read to the end event.
    wad::WriteLe16(&mus[4],
                   static_cast<std::uint16_t>(std::min<std::size_t>(score.Score.size(), 0xFFFF)));
    wad::WriteLe16(&mus[6], static_cast<std::uint16_t>(mus.size()));
    wad::WriteLe16(&mus[8], static_cast<std::uint16_t>(score.Primary));
    wad::WriteLe16(&mus[12], static_cast<std::uint16_t>(instruments.size()));
    std::size_t at = MusHeaderSize;
    for (const std::uint16_t instrument : instruments)
    {
        wad::WriteLe16(&mus[at], instrument);
        at += 2;
    }
    mus.insert(mus.end(), score.Score.begin(), score.Score.end());
    return mus;
}

// "/tN" or "-tN" with digits only: a path such as /tmp/song.mid is no tempo.
std::optional<std::string> TempoDigits(const std::string& word)
{
    if (word.size() < 3 || (word[0] != '/' && word[0] != '-') || (word[1] != 't' && word[1] != 'T'))
    {
        return std::nullopt;
    }
    const std::string digits = word.substr(2);
    if (!std::all_of(digits.begin(), digits.end(),
                     [](unsigned char c) { return std::isdigit(c) != 0; }))
    {
        return std::nullopt;
    }
    return digits;
}

// Reads "[/tTEMPO] FILE" into `tempo` and `input`. Returns 0, or KelvarMusBadUsage with
// the reason in `message`.
int ParseArguments(const std::vector<std::string>& arguments, int& tempo,
                   std::filesystem::path& input, std::string& message)
{
    for (const std::string& word : arguments)
    {
        if (const auto digits = TempoDigits(word))
        {
            const long value = digits->size() <= 3 ? std::strtol(digits->c_str(), nullptr, 10) : 0;
            if (value < 1 || value > 999)
            {
                message = "kelvarmus: the tempo /tN is 1 to 999 ticks a second";
                return KelvarMusBadUsage;
            }
            tempo = static_cast<int>(value);
        }
        else if (input.empty() && !word.empty())
        {
            input = word;
        }
        else
        {
            input.clear();
            break;
        }
    }
    if (input.empty())
    {
        message = "usage: kelvarmus [/tTEMPO] FILE.MID";
        return KelvarMusBadUsage;
    }
    return 0;
}

std::optional<std::vector<std::uint8_t>> ReadWhole(const std::filesystem::path& path)
{
    std::FILE* in = std::fopen(path.c_str(), "rb");
    if (in == nullptr)
    {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    std::array<std::uint8_t, 65536> block;
    std::size_t got = 0;
    while ((got = std::fread(block.data(), 1, block.size(), in)) > 0)
    {
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(got));
    }
    std::fclose(in);
    return bytes;
}

bool WriteWhole(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes)
{
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (out == nullptr)
    {
        return false;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
    return std::fclose(out) == 0 && written;
}

} // namespace

MidiToMusResult MidiToMusBytes(std::span<const std::uint8_t> midi, int ticksPerSecond)
{
    MidiSong song;
    if (auto error = ReadMidi(midi, song))
    {
        return {error, {}};
    }
    MidiClock clock(song.Division);
    const auto musTime = [&](std::uint64_t tick)
    {
        return static_cast<std::uint64_t>(
            std::llround(clock.Microseconds(tick) * ticksPerSecond / 1e6));
    };
    ScoreWriter score;
    const auto first = std::find_if(song.Events.begin(), song.Events.end(), IsKept);
    if (first != song.Events.end())
    {
        score.FirstChannel = MusChannelOf(first->Status & 15);
    }
    std::set<std::uint16_t> instruments;
    for (const MidiEvent& event : song.Events)
    {
        if (event.Status == MidiTempoStatus)
        {
            clock.SetTempo(event.Tick, event.Tempo);
        }
        else if (IsKept(event))
        {
            score.At(musTime(event.Tick));
            WriteMessage(score, event, instruments);
        }
    }
    score.At(musTime(song.EndTick));
    score.Event(MusScoreEnd, 0, {});
    return {std::nullopt, MusFile(score, instruments)};
}

std::filesystem::path MusOutputName(const std::filesystem::path& input)
{
    std::filesystem::path output = input;
    return output.replace_extension(".MUS");
}

int RunKelvarMus(const std::vector<std::string>& arguments, std::string& message)
{
    int tempo = 140;
    std::filesystem::path input;
    if (const int code = ParseArguments(arguments, tempo, input, message); code != 0)
    {
        return code;
    }
    const std::optional<std::vector<std::uint8_t>> bytes = ReadWhole(input);
    if (!bytes)
    {
        message = "kelvarmus: cannot read " + input.string();
        return KelvarMusCantRead;
    }
    const MidiToMusResult result = MidiToMusBytes(*bytes, tempo);
    if (result.Error)
    {
        message = "kelvarmus: " + input.string() + ": " + *result.Error;
        return KelvarMusNotConverted;
    }
    const std::filesystem::path output = MusOutputName(input);
    if (!WriteWhole(output, result.Mus))
    {
        message = "kelvarmus: cannot write " + output.string();
        return KelvarMusCantWrite;
    }
    return KelvarMusConverted;
}

} // namespace kelvar::sound
