// Where each part of the surface map goes: a title with the device and the result, the cells in
// rows of SurfaceMap::kColumns with row labels in sectors and gigabytes, and a legend with each
// time class's read count.
#pragma once

#include "cli/MapDrawing.h"
#include "cli/RunReport.h"
#include "cli/SurfaceMap.h"
#include "drives/ReadTimes.h"

namespace host {

// The fill colour of a time class; failed blocks are black.
Colour classColour(TimeClass timeClass);

// The map of `map`, whose cells come from `times`, of the run `summary` on `header`'s device.
// Cells are kMapCell pixels a side, the first at (kMapLeft, kMapTop); a run of equal cells in a
// row is one rectangle.
inline constexpr int kMapCell = 8;
inline constexpr int kMapLeft = 190;
inline constexpr int kMapTop = 70;
MapDrawing surfaceMapDrawing(const SurfaceMap& map, const ReadTimes& times,
                             const DeviceHeader& header, const RunSummary& summary);

}  // namespace host
