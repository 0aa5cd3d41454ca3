#include "cli/SurfaceMapLayout.h"

#include <algorithm>
#include <cstdio>

namespace host {
namespace {

constexpr int kLegendHeight = 60;
constexpr int kRightMargin = 20;
constexpr int kTitleSize = 14;
constexpr int kLegendStep = 120;  // pixels from one legend entry to the next
constexpr int kSwatch = 12;
constexpr Colour kSwatchOutline{128, 128, 128};
// Rows labelled at most: every row of a short map, fewer of a tall one.
constexpr uint64_t kLabelledRows = 20;

const char* const kClassNames[] = {"not read",  "under 3 ms", "3-10 ms",     "10-50 ms",
                                   "50-150 ms", "150-500 ms", "over 500 ms", "failed"};

std::string gigabytes(uint64_t sector, uint32_t sectorBytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f GB", static_cast<double>(sector) * sectorBytes / 1e9);
    return text;
}

MapText text(int x, int y, std::string content) {
    MapText line;
    line.x = x;
    line.y = y;
    line.text = std::move(content);
    return line;
}

void addHeader(MapDrawing& drawing, const SurfaceMap& map, const DeviceHeader& header,
               const RunSummary& summary) {
    MapText title = text(10, 20, summary.test + " on " + header.device);
    title.size = kTitleSize;
    title.bold = true;
    drawing.texts.push_back(title);
    drawing.texts.push_back(
        text(10, 38,
             (header.model.empty() ? header.kind : header.model + " (" + header.kind + ")") + ", " +
                 std::to_string(header.totalSectors) + " sectors of " +
                 std::to_string(header.sectorBytes) + " bytes; " +
                 std::to_string(map.sectorsPerCell()) + " sectors a cell"));
    drawing.texts.push_back(text(
        10, 56,
        "Result: " + summary.result + " (exit code " + std::to_string(summary.exitCode) + ")"));
}

void addCells(MapDrawing& drawing, const SurfaceMap& map) {
    for (uint64_t row = 0; row < map.rows(); ++row) {
        const uint64_t rowStart = row * map.columns();
        const uint64_t rowEnd = std::min(rowStart + map.columns(), map.cellCount());
        for (uint64_t index = rowStart; index < rowEnd;) {
            uint64_t next = index + 1;
            while (next < rowEnd && map.cell(next) == map.cell(index)) ++next;
            drawing.rects.push_back({kMapLeft + static_cast<int>(index - rowStart) * kMapCell,
                                     kMapTop + static_cast<int>(row) * kMapCell,
                                     static_cast<int>(next - index) * kMapCell, kMapCell,
                                     classColour(map.cell(index)), std::nullopt});
            index = next;
        }
    }
}

void addRowLabels(MapDrawing& drawing, const SurfaceMap& map, uint32_t sectorBytes) {
    const uint64_t labelEvery =
        std::max<uint64_t>(1, (map.rows() + kLabelledRows - 1) / kLabelledRows);
    for (uint64_t row = 0; row < map.rows(); row += labelEvery) {
        const uint64_t sector = map.sectorOf(row * map.columns());
        MapText label =
            text(kMapLeft - 6, kMapTop + static_cast<int>(row) * kMapCell + kMapCell,
                 "sector " + std::to_string(sector) + " (" + gigabytes(sector, sectorBytes) + ")");
        label.anchor = TextAnchor::End;
        drawing.texts.push_back(label);
    }
}

void addLegend(MapDrawing& drawing, const ReadTimes& times, int top) {
    for (std::size_t i = 0; i < kTimeClasses; ++i) {
        const int x = 10 + static_cast<int>(i) * kLegendStep;
        drawing.rects.push_back(
            {x, top, kSwatch, kSwatch, classColour(static_cast<TimeClass>(i)), kSwatchOutline});
        std::string name = kClassNames[i];
        if (i > 0) name += ": " + std::to_string(times.histogram()[i]);
        drawing.texts.push_back(text(x + kSwatch + 4, top + 10, name));
    }
}

}  // namespace

Colour classColour(TimeClass timeClass) {
    static constexpr Colour colours[] = {{0xe0, 0xe0, 0xe0}, {0x1a, 0x98, 0x50}, {0x91, 0xcf, 0x60},
                                         {0xd9, 0xef, 0x8b}, {0xfe, 0xe0, 0x8b}, {0xfc, 0x8d, 0x59},
                                         {0xd7, 0x30, 0x27}, {0x00, 0x00, 0x00}};
    return colours[static_cast<std::size_t>(timeClass)];
}

MapDrawing surfaceMapDrawing(const SurfaceMap& map, const ReadTimes& times,
                             const DeviceHeader& header, const RunSummary& summary) {
    MapDrawing drawing;
    const int gridWidth = static_cast<int>(map.columns()) * kMapCell;
    const int gridHeight = static_cast<int>(map.rows()) * kMapCell;
    drawing.width = kMapLeft + gridWidth + kRightMargin;
    drawing.height = kMapTop + gridHeight + kLegendHeight;
    addHeader(drawing, map, header, summary);
    addCells(drawing, map);
    addRowLabels(drawing, map, header.sectorBytes);
    addLegend(drawing, times, kMapTop + gridHeight + 20);
    return drawing;
}

}  // namespace host
