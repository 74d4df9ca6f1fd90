// The picture of a sound.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/Waveform.h"

#include "sound/SoundFormats.h"
#include "sound/WaveConversion.h"
#include "wad/WadFormat.h"

#include <algorithm>

namespace kelvar::sound
{

std::optional<std::vector<platform::Point>> WaveformPoints(std::span<const std::uint8_t> wave,
                                                           int width, int height)
{
    if (wave.size() < static_cast<std::size_t>(WavHeaderSize))
    {
        return std::nullopt;
    }
    const int tag = wad::ReadLe16(&wave[20]);
    const int channels = wad::ReadLe16(&wave[22]);
    const int bits = wad::ReadLe16(&wave[34]);
    if (tag != 1 || channels < 1 || channels > 2 || (bits != 8 && bits != 16))
    {
        return std::nullopt;
    }
    // The reduction to unsigned bytes is the one the SND conversion makes, so the picture
    // shows what an SND of this wave would hold.
    std::vector<std::uint8_t> snd;
    if (ConvertWavToSnd(wave, snd) || snd.size() <= static_cast<std::size_t>(SndHeaderSize))
    {
        return std::nullopt;
    }
    const std::span<const std::uint8_t> samples = std::span(snd).subspan(SndHeaderSize);
    const auto count = static_cast<std::int64_t>(samples.size());
    const std::int64_t step = std::max<std::int64_t>(count / 1000, 1);
    const std::int64_t points = count / step;
    std::vector<platform::Point> line;
    line.reserve(static_cast<std::size_t>(points));
    for (std::int64_t k = 0; k < points; ++k)
    {
        const std::uint8_t value = samples[static_cast<std::size_t>(k * step)];
        line.push_back({static_cast<int>(k * width / points), value * height / 256});
    }
    return line;
}

void DrawWaveform(platform::Canvas& canvas, std::span<const std::uint8_t> wave, int background,
                  int color)
{
    const int width = canvas.Width();
    const int height = canvas.Height();
    canvas.FillRect({0, 0, width, height}, background);
    const auto line = WaveformPoints(wave, width, height);
    if (!line)
    {
        canvas.SetTextColor(color);
        canvas.TextOut(4, 4, EmptyWaveformNote);
    }
    else
    {
        canvas.SetPen(color);
        canvas.MoveTo(line->front().X, line->front().Y);
        for (const platform::Point& point : *line)
        {
            canvas.LineTo(point.X, point.Y);
        }
    }
    canvas.Flush();
}

} // namespace kelvar::sound
