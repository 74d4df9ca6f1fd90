// The marker runs of the master directory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/MarkerRanges.h"

namespace kelvar::wad
{
namespace
{

MarkerRun FindRun(const LumpDirectory& master, std::string_view start, std::string_view end)
{
    MarkerRun run;
    const int first = master.FindLast(LumpName::From(start), 0, master.Size());
    const int last = master.FindLast(LumpName::From(end), 0, master.Size());
    if (first < 0)
    {
        return run;
    }
    run.Start = first;
    run.First = first + 1;
    run.Count = last >= 0 ? std::max(last - first - 1, 0) : 0;
    return run;
}

void MarkPictures(LumpDirectory& master, const MarkerRun& run, std::uint16_t group)
{
    for (int i = run.First; run.Count > 0 && i < run.First + run.Count; ++i)
    {
        if (master[static_cast<std::size_t>(i)].Size > 12)
        {
            master.Tag(static_cast<std::size_t>(i), ClassPicture, group);
        }
    }
}

} // namespace

void BuildMarkerLists()
{
    LumpDirectory& master = Master();
    MarkerRanges& markers = Wad().Markers;
    markers.Tx = FindRun(master, "TX_START", "TX_END");
    markers.Hi = FindRun(master, "HI_START", "HI_END");
    markers.F = FindRun(master, "F_START", "F_END");
    markers.FF = FindRun(master, "FF_START", "FF_END");
    markers.P = FindRun(master, "P_START", "P_END");
    markers.PP = FindRun(master, "PP_START", "PP_END");
    markers.S = FindRun(master, "S_START", "S_END");
    markers.SS = FindRun(master, "SS_START", "SS_END");
    markers.C = FindRun(master, "C_START", "C_END");
    markers.CC = FindRun(master, "CC_START", "CC_END");
    MarkPictures(master, markers.S, GroupSprite);
    MarkPictures(master, markers.SS, GroupSprite);
    MarkPictures(master, markers.P, GroupPatch);
    MarkPictures(master, markers.PP, GroupPatch);
    MarkPictures(master, markers.Tx, GroupTexture);
    MarkPictures(master, markers.Hi, GroupTexture);
}

} // namespace kelvar::wad
