// Operations on Vertexes: deleting a Vertex and joining the LineDefs that met there, and
// merging several Vertexes into one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

namespace kelvar::map
{

/// Deletes each Vertex of the list, joining its LineDefs where they allow it:
/// - one LineDef ends there and one starts there: the ending one runs on to the starting
///   one's end, which is deleted with its sides; the ending one's sides stand for the whole;
/// - one LineDef only: it is deleted;
/// - none, or any other meeting: the user is asked under "delete vertex" whether to delete
///   the Vertex with all its lines instead; no leaves it.
/// Vertexes left without LineDefs among those listed are removed at the end.
void JoinAtVertexes(LevelData& level, const ObjectList& list);

/// Merges the listed Vertexes into the head of the list (the last marked): every LineDef
/// from a listed Vertex to one neither listed nor the head is moved onto the head; LineDefs
/// between two listed Vertexes, or between a listed one and the head, go with the listed
/// Vertexes, which are deleted.
void MergeVertexes(LevelData& level, const ObjectList& list);

} // namespace kelvar::map
