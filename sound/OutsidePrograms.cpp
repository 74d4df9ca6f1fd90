// The programs music conversion runs: kelvarmus and fluidsynth.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/OutsidePrograms.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Processes.h"
#include "sound/MidiToMus.h"
#include "sound/SoundState.h"
#include "sound/WaveConversion.h"

#include <algorithm>
#include <cctype>
#include <unistd.h>

namespace kelvar::sound
{
namespace
{

std::string Quoted(const std::filesystem::path& path)
{
    return "\"" + path.string() + "\"";
}

bool EndsInMus(const std::filesystem::path& path)
{
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension == ".mus";
}

bool WriteWholeFile(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes)
{
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (out == nullptr)
    {
        return false;
    }
    const bool written = WriteRange(out, 0, bytes);
    return std::fclose(out) == 0 && written;
}

} // namespace

std::filesystem::path LocateKelvarMus()
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error)
    {
        const std::filesystem::path beside = self.parent_path() / KelvarMusName;
        if (access(beside.c_str(), X_OK) == 0)
        {
            return beside;
        }
    }
    return KelvarMusName;
}

std::string KelvarMusCommandLine(const std::filesystem::path& program, int tempo,
                                 const std::filesystem::path& input)
{
    return Quoted(program) + " " + platform::Format("/t%hd ", static_cast<short>(tempo)) +
           Quoted(input);
}

std::optional<std::string> ConvertMidiToMus(std::FILE* file, std::int64_t offset, std::int64_t size,
                                            const std::filesystem::path& inputName,
                                            const std::filesystem::path& programDir,
                                            std::filesystem::path& outputName)
{
    std::filesystem::path input = inputName;
    std::filesystem::path temporary;
    if (file != nullptr)
    {
        temporary = std::filesystem::path(inputName).replace_extension(".tmp");
        if (!WriteWholeFile(temporary, ReadRange(file, offset, size)))
        {
            return "Can't open for writing";
        }
        input = temporary;
    }
    else if (EndsInMus(inputName))
    {
        return "Input file name cannot end in .MUS";
    }
    platform::ChildRequest request;
    request.Directory = programDir;
    request.CommandLine = KelvarMusCommandLine(LocateKelvarMus(), Sound().MidiToMusTempo, input);
    request.ShowMode = platform::ShowMinimised;
    request.Flags = platform::ChildWait | platform::ChildPump;
    const int code = platform::TheProcesses().RunChild(request);
    std::optional<std::string> error;
    if (code == platform::ChildDidNotStart)
    {
        error = platform::Format("Error code %d starting Midi2Mus", code);
    }
    else if (code != KelvarMusConverted)
    {
        platform::ShowError("Error code %d converting\nMidi2Mus possibly could not convert this "
                            "file\nVerify conversion",
                            code);
    }
    if (!temporary.empty())
    {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
    }
    outputName = MusOutputName(inputName);
    return error;
}

std::string FluidSynthCommandLine(const std::filesystem::path& midi,
                                  const std::filesystem::path& wav,
                                  const std::filesystem::path& soundFont)
{
    return "fluidsynth -ni -q -T wav -r 44100 -F " + Quoted(wav) + " " + Quoted(soundFont) + " " +
           Quoted(midi);
}

int RenderMidiToWav(const std::filesystem::path& midi, const std::filesystem::path& wav,
                    const std::filesystem::path& soundFont)
{
    platform::ChildRequest request;
    request.CommandLine = FluidSynthCommandLine(midi, wav, soundFont);
    request.Flags = platform::ChildWait | platform::ChildPump;
    return platform::TheProcesses().RunChild(request);
}

} // namespace kelvar::sound
