// kelvar-cli sound and music: export, import and render of sound and music lumps.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SoundCommands.h"

#include "cli/Commands.h"
#include "cli/LumpFiles.h"
#include "cli/WadCommands.h"
#include "platform/Messages.h"
#include "sound/MidiFile.h"
#include "sound/MusFormat.h"
#include "sound/MusToMidi.h"
#include "sound/OutsidePrograms.h"
#include "sound/SoundFormats.h"
#include "sound/SoundState.h"
#include "sound/WaveConversion.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/LevelWriter.h"
#include "wad/WadState.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <unistd.h>

namespace kelvar::cli
{
namespace
{

namespace fs = std::filesystem;

// The words of a sound or music command.
struct Request
{
    std::vector<std::string> Positional;
    std::string Output;
    std::string Directory;
    std::string Name;
    std::string SoundFont = sound::DefaultSoundFont;
    int Tempo = 0;
    bool All = false;
};

std::optional<Request> ParseRequest(const std::vector<std::string>& arguments)
{
    Request request;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if ((word == "-o" || word == "--output") && hasValue)
        {
            request.Output = arguments[++i];
        }
        else if (word == "-d" && hasValue)
        {
            request.Directory = arguments[++i];
        }
        else if (word == "--name" && hasValue)
        {
            request.Name = arguments[++i];
        }
        else if (word == "--soundfont" && hasValue)
        {
            request.SoundFont = arguments[++i];
        }
        else if (word == "--tempo" && hasValue)
        {
            request.Tempo = std::atoi(arguments[++i].c_str());
            if (request.Tempo < 1 || request.Tempo > 999)
            {
                std::fprintf(stderr, "kelvar-cli: --tempo is 1 to 999\n");
                return std::nullopt;
            }
        }
        else if (word == "--all")
        {
            request.All = true;
        }
        else if (!word.empty() && word[0] == '-')
        {
            std::fprintf(stderr, "kelvar-cli: unknown option %s\n", word.c_str());
            return std::nullopt;
        }
        else
        {
            request.Positional.push_back(word);
        }
    }
    return request;
}

// The lump name an imported file gets: --name, else the file's own name, at most 8 letters.
std::string ImportName(const Request& request, const std::string& file)
{
    const std::string name = request.Name.empty() ? fs::path(file).stem().string() : request.Name;
    return Upper(name.substr(0, 8));
}

int ConversionRefused(const std::string& file, const std::string& entry, const std::string& text)
{
    platform::ShowError("File=%s\nEntry=%s\n%s!\nData not copied", file.c_str(), entry.c_str(),
                        text.c_str());
    return ExitBadFile;
}

int ExportOneSound(const FoundLump& lump, const std::string& output)
{
    const Bytes data = lump.Read();
    const bool isSnd = sound::IsSnd(data, sound::ListRateLow);
    const bool isWave = sound::IsRiffWave(data);
    Bytes converted;
    if (ExtensionOf(output) == ".snd")
    {
        if (isWave)
        {
            if (auto error = sound::WavToSnd(data, converted))
            {
                return ConversionRefused(output, lump.Name, *error);
            }
            return WriteFileBytes(output, converted) ? ExitOk : ExitBadFile;
        }
        if (!isSnd)
        {
            platform::ShowInfo("Entry %s probably not sound?\n\nCopied anyway, but check it!",
                               lump.Name.c_str());
        }
        return WriteFileBytes(output, data) ? ExitOk : ExitBadFile;
    }
    if (!isSnd && !isWave)
    {
        platform::ShowError("Entry %s\nError not WAVE or Sound format!", lump.Name.c_str());
        return ExitBadFile;
    }
    if (auto error = sound::SndToWav(data, converted))
    {
        return ConversionRefused(output, lump.Name, *error);
    }
    return WriteFileBytes(output, converted) ? ExitOk : ExitBadFile;
}

// Every SND lump of the master directory as DIR/name.wav; the newest of each name wins.
int ExportAllSounds(const Request& request)
{
    const int status = OpenFiles(request.Positional);
    if (wad::Wad().Files[0].State == 0)
    {
        return ExitBadFile;
    }
    std::error_code error;
    fs::create_directories(request.Directory, error);
    int written = 0;
    int refused = 0;
    Bytes data;
    Bytes wav;
    const wad::LumpDirectory& master = wad::Master();
    for (std::size_t index = 0; index < master.Size(); ++index)
    {
        const wad::LumpEntry& entry = master[index];
        if (entry.Size < sound::SndHeaderSize)
        {
            continue;
        }
        wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
        wad::EnsureOpen(file);
        // The header first: most lumps are not sounds, and most of a sound is its samples.
        std::array<std::uint8_t, sound::SndHeaderSize> header{};
        if (pread(fileno(file.Stream.get()), header.data(), header.size(), entry.Offset) !=
                static_cast<ssize_t>(header.size()) ||
            !sound::IsSndHeader(sound::ReadSndHeader(header), sound::ListRateLow, entry.Size))
        {
            continue;
        }
        data = sound::ReadRange(file.Stream.get(), entry.Offset, entry.Size);
        const std::string name = entry.Name.Text();
        const fs::path output = fs::path(request.Directory) / (Lower(name) + ".wav");
        if (auto refusal = sound::SndToWav(data, wav))
        {
            ConversionRefused(output.string(), name, *refusal);
            ++refused;
        }
        else if (WriteFileBytes(output, wav))
        {
            ++written;
        }
    }
    std::printf("%d sounds written to %s\n", written, request.Directory.c_str());
    return refused != 0 ? ExitBadFile : status;
}

int ImportSound(const Request& request)
{
    const std::string& file = request.Positional[0];
    const std::optional<Bytes> data = ReadFileBytes(file);
    if (!data)
    {
        return ExitBadFile;
    }
    const std::string name = ImportName(request, file);
    Bytes lump = *data;
    if (ExtensionOf(file) == ".wav")
    {
        if (auto error = sound::WavToSnd(*data, lump))
        {
            return ConversionRefused(file, name, *error);
        }
    }
    return WriteLumpPwad(request.Output, name, lump) ? ExitOk : ExitBadFile;
}

// MIDI bytes to a MUS through kelvarmus, by way of a file in the program's directory.
std::optional<Bytes> MidiToMusFile(std::FILE* stream, std::int64_t offset, std::int64_t size,
                                   const std::string& shownFile, const std::string& name)
{
    const fs::path programDir = wad::Wad().ProgramDir;
    std::error_code error;
    fs::create_directories(programDir, error);
    fs::path musFile;
    if (auto refusal = sound::ConvertMidiToMus(stream, offset, size, programDir / (name + ".mid"),
                                               programDir, musFile))
    {
        ConversionRefused(shownFile, name, *refusal);
        return std::nullopt;
    }
    if (!fs::exists(musFile))
    {
        platform::ShowError("File=%s\nEntry=%s\nFile %s not found?\n\nData not copied",
                            shownFile.c_str(), name.c_str(), musFile.c_str());
        return std::nullopt;
    }
    std::optional<Bytes> mus = ReadFileBytes(musFile);
    fs::remove(musFile, error);
    return mus;
}

bool IsMus(const Bytes& data)
{
    return data.size() >= sound::MusMagic.size() &&
           std::equal(sound::MusMagic.begin(), sound::MusMagic.end(), data.begin());
}

int ExportOneMusic(const FoundLump& lump, const std::string& output)
{
    const Bytes head = sound::ReadRange(lump.Stream, lump.Offset, std::min(lump.Size, 12));
    const bool isMus = IsMus(head);
    const bool isMidi = sound::IsMidi(head);
    if (!isMus && !isMidi)
    {
        platform::ShowError("Entry %s\nError not MIDI or MUS format!", lump.Name.c_str());
        return ExitBadFile;
    }
    if (ExtensionOf(output) == ".mus")
    {
        if (isMus)
        {
            return WriteFileBytes(output, lump.Read()) ? ExitOk : ExitBadFile;
        }
        const auto mus = MidiToMusFile(lump.Stream, lump.Offset, lump.Size, output, lump.Name);
        return mus && WriteFileBytes(output, *mus) ? ExitOk : ExitBadFile;
    }
    if (isMidi)
    {
        return WriteFileBytes(output, lump.Read()) ? ExitOk : ExitBadFile;
    }
    if (auto error = sound::MusToMidi(lump.Stream, lump.Offset, lump.Size, output, 0, false))
    {
        std::error_code ignored;
        fs::remove(output, ignored); // made empty to test the name
        return ConversionRefused(output, lump.Name, *error);
    }
    return ExitOk;
}

int ImportMusic(const Request& request)
{
    const std::string& file = request.Positional[0];
    std::FILE* in = std::fopen(file.c_str(), "rb");
    if (in == nullptr)
    {
        std::fprintf(stderr, "kelvar-cli: cannot read %s\n", file.c_str());
        return ExitBadFile;
    }
    const std::string name = ImportName(request, file);
    std::optional<Bytes> lump;
    if (ExtensionOf(file) == ".mid")
    {
        lump = MidiToMusFile(in, 0, -1, file, name);
    }
    else
    {
        lump = sound::ReadRange(in, 0, -1);
    }
    std::fclose(in);
    return lump && WriteLumpPwad(request.Output, name, *lump) ? ExitOk : ExitBadFile;
}

// The lump as a MIDI file in the program's directory, rendered by fluidsynth.
int RenderMusic(const FoundLump& lump, const Request& request)
{
    const fs::path programDir = wad::Wad().ProgramDir;
    std::error_code error;
    fs::create_directories(programDir, error);
    const fs::path midi = programDir / (lump.Name + ".render.mid");
    const int status = ExportOneMusic(lump, midi.string());
    if (status != ExitOk)
    {
        return status;
    }
    const int code = sound::RenderMidiToWav(midi, request.Output, request.SoundFont);
    fs::remove(midi, error);
    if (code != 0)
    {
        std::fprintf(stderr, "kelvar-cli: fluidsynth ended with code %d\n", code);
        return ExitBadFile;
    }
    return ExitOk;
}

bool Usage(const char* text)
{
    std::fprintf(stderr, "usage: kelvar-cli %s\n", text);
    return false;
}

// True when the request has what the command needs; says what is missing otherwise.
bool Complete(const Request& request, const std::string& command, bool music)
{
    if (command == "export" && request.All && !music)
    {
        return (request.Positional.size() >= 1 && !request.Directory.empty()) ||
               Usage("sound export IWAD [PWAD...] --all -d DIR");
    }
    if (command == "export" || command == "render")
    {
        return (request.Positional.size() >= 2 && !request.Output.empty()) ||
               Usage(music ? "music export|render IWAD [PWAD...] LUMP -o FILE"
                           : "sound export IWAD [PWAD...] LUMP -o FILE");
    }
    if (command == "import")
    {
        return (request.Positional.size() == 1 && !request.Output.empty()) ||
               Usage("sound|music import FILE -o OUT.wad [--name LUMP]");
    }
    return Usage("sound export|import ..., music export|import|render ...");
}

} // namespace

int SoundCommand(const std::vector<std::string>& arguments)
{
    const std::string command = arguments.empty() ? "" : arguments[0];
    const std::optional<Request> request =
        ParseRequest({arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end()});
    if (!request || (command != "export" && command != "import") ||
        !Complete(*request, command, false))
    {
        return ExitUsage;
    }
    if (command == "import")
    {
        return ImportSound(*request);
    }
    if (request->All)
    {
        return ExportAllSounds(*request);
    }
    std::optional<FoundLump> lump;
    const int status = OpenAndFind(request->Positional, lump);
    return lump ? std::max(status, ExportOneSound(*lump, request->Output)) : status;
}

int MusicCommand(const std::vector<std::string>& arguments)
{
    const std::string command = arguments.empty() ? "" : arguments[0];
    const std::optional<Request> request =
        ParseRequest({arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end()});
    if (!request || (command != "export" && command != "import" && command != "render") ||
        !Complete(*request, command, true))
    {
        return ExitUsage;
    }
    if (request->Tempo != 0)
    {
        sound::Sound().MusToMidiTempo = request->Tempo;
        sound::Sound().MidiToMusTempo = request->Tempo;
    }
    if (command == "import")
    {
        return ImportMusic(*request);
    }
    std::optional<FoundLump> lump;
    const int status = OpenAndFind(request->Positional, lump);
    if (!lump)
    {
        return status;
    }
    const int done =
        command == "render" ? RenderMusic(*lump, *request) : ExportOneMusic(*lump, request->Output);
    return std::max(status, done);
}

} // namespace kelvar::cli
