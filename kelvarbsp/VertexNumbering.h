// The editor's own Vertex numbering kept through a build: zdbsp renumbers Vertexes in the
// order LineDefs use them, drops unused ones and appends its split Vertexes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace kelvar::kelvarbsp
{

/// A level's lumps that mention Vertexes.
struct VertexLumps
{
    std::string Vertexes;
    std::string LineDefs;
    std::string Segs;
};

/// The built level with the input's VERTEXES and LINEDEFS back, zdbsp's split Vertexes
/// appended behind them and SEGS pointed at the input's numbers. Nothing when zdbsp changed
/// more than the numbering (a LineDef removed, a field other than a Vertex changed) or the
/// Vertexes wouldn't fit SEGS' 16-bit numbers; `why` then says what.
std::optional<VertexLumps> KeepVertexNumbering(const VertexLumps& input, const VertexLumps& built,
                                               bool hexen, std::string& why);

} // namespace kelvar::kelvarbsp
