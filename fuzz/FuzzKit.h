// What every fuzz target shares: a Ui that never waits, the catch of a fatal end, scratch files.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A target is a plain function over the input bytes, so the same code runs under libFuzzer
//   and, built with the normal compiler, over the stored corpora in a GoogleTest suite.
// - The readers talk to the user through platform::Ui. SilentUi answers every question with
//   its negative button and every prompt with a cancel, which for the readers means "go on
//   and repair" rather than "quit".
// - FatalError shows its box before it ends the process, so SilentUi throws FatalEnd from
//   that box and RunGuarded catches it: the reader that asked for the end is left, the
//   process lives on for the next input. Only targets whose readers end the program by
//   design on damaged input (a level without THINGS) allow it; for the others a fatal end
//   is a fault and aborts.
#pragma once

#include "platform/Ui.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string_view>

namespace kelvar::fuzz
{

/// Thrown out of the "FATAL ERROR" box; carries no data, the text went to stderr already.
struct FatalEnd
{
};

/// A Ui that shows nothing, answers 0 to every question, cancels every prompt, and throws
/// FatalEnd when the fatal box is shown.
class SilentUi final : public platform::Ui
{
public:
    int Show(const platform::Message& message) override;
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override;
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice& choice) override;
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override;
    std::optional<int> AskNumber(const std::string& caption, const std::string& prompt, int initial,
                                 int low, int high) override;
    std::optional<std::string> AskText(const std::string& caption, const std::string& prompt,
                                       const std::string& initial) override;
    void SetStatusText(const std::string& text) override;
    void ShowProgress(const std::string& caption, const std::string& detail) override;
    void EndProgress() override;
    bool PollEscape() override;
    void Beep() override;
};

/// Whether a fatal end is a possible outcome of a target's readers.
enum class FatalRule
{
    IsAFault,  // the readers never end the program on input: abort, so the fuzzer reports it
    IsAllowed, // the readers end the program on some damaged input by design
};

/// Runs `body` with SilentUi installed. Returns false when it ended on the fatal path (only
/// under FatalRule::IsAllowed; otherwise that aborts the process).
bool RunGuarded(FatalRule rule, const std::function<void()>& body);

/// A folder of this process for the files the readers must open from disk, under /dev/shm
/// when it exists; removed when the process exits normally.
const std::filesystem::path& ScratchDir();

/// Writes `bytes` to the file `name` of ScratchDir, replacing it, and returns its path.
std::filesystem::path WriteScratchFile(std::string_view name, std::span<const std::uint8_t> bytes);

/// A target: its name (the corpus folder and the fuzzer's name without "fuzz_") and its
/// function.
struct Target
{
    std::string_view Name;
    void (*Run)(std::span<const std::uint8_t> input);
};

/// Every target, in a fixed order.
std::span<const Target> Targets();

/// The target of that name, or null.
const Target* FindTarget(std::string_view name);

// The targets. Each takes any bytes at all and must neither crash nor hang.
void FuzzPictures(std::span<const std::uint8_t> input);
void FuzzPictureFiles(std::span<const std::uint8_t> input);
void FuzzPaletteFiles(std::span<const std::uint8_t> input);
void FuzzTextures(std::span<const std::uint8_t> input);
void FuzzSounds(std::span<const std::uint8_t> input);
void FuzzMusic(std::span<const std::uint8_t> input);
void FuzzWad(std::span<const std::uint8_t> input);
void FuzzLevel(std::span<const std::uint8_t> input);
void FuzzLumpTools(std::span<const std::uint8_t> input);

} // namespace kelvar::fuzz
