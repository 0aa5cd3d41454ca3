#include "cli/SurfaceMap.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace host {
namespace {

constexpr uint64_t kMaxCells = SurfaceMap::kColumns * SurfaceMap::kColumns;
constexpr int kCell = 8;    // pixels a side
constexpr int kLeft = 190;  // room for the row labels
constexpr int kTop = 70;    // room for the title
constexpr int kLegendHeight = 60;
// Rows labelled at most: every row of a short map, fewer of a tall one.
constexpr uint64_t kLabelledRows = 20;

const char* const kClassNames[] = {"not read",  "under 3 ms", "3-10 ms",     "10-50 ms",
                                   "50-150 ms", "150-500 ms", "over 500 ms", "failed"};

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string gigabytes(uint64_t sector, uint32_t sectorBytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f GB", static_cast<double>(sector) * sectorBytes / 1e9);
    return text;
}

}  // namespace

SurfaceMap::SurfaceMap(const ReadTimes& times, uint64_t first, uint64_t end)
    : sectorsPerBlock_(times.sectorsPerBlock()) {
    if (end <= first) return;
    firstBlock_ = first / sectorsPerBlock_;
    const uint64_t endBlock = (end + sectorsPerBlock_ - 1) / sectorsPerBlock_;
    const uint64_t blocks = endBlock - firstBlock_;
    blocksPerCell_ = (blocks + kMaxCells - 1) / kMaxCells;
    cells_.reserve(static_cast<std::size_t>((blocks + blocksPerCell_ - 1) / blocksPerCell_));
    for (uint64_t block = firstBlock_; block < endBlock; block += blocksPerCell_) {
        TimeClass slowest = TimeClass::Unread;
        for (uint64_t b = block; b < std::min(block + blocksPerCell_, endBlock); ++b)
            slowest = std::max(slowest, times.blockClass(b));
        cells_.push_back(slowest);
    }
}

uint64_t SurfaceMap::sectorOf(uint64_t index) const {
    return (firstBlock_ + index * blocksPerCell_) * sectorsPerBlock_;
}

const char* classColour(TimeClass timeClass) {
    static const char* const colours[] = {"#e0e0e0", "#1a9850", "#91cf60", "#d9ef8b",
                                          "#fee08b", "#fc8d59", "#d73027", "#000000"};
    return colours[static_cast<std::size_t>(timeClass)];
}

std::string surfaceMapSvg(const SurfaceMap& map, const ReadTimes& times, const DeviceHeader& header,
                          const RunSummary& summary) {
    const int gridWidth = static_cast<int>(map.columns()) * kCell;
    const int gridHeight = static_cast<int>(map.rows()) * kCell;
    const int width = kLeft + gridWidth + 20;
    const int height = kTop + gridHeight + kLegendHeight;
    std::ostringstream svg;
    svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" viewBox=\"0 0 " << width << " " << height
        << "\" font-family=\"sans-serif\" font-size=\"11\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
        << "<text x=\"10\" y=\"20\" font-size=\"14\" font-weight=\"bold\">"
        << escaped(summary.test + " on " + header.device) << "</text>\n"
        << "<text x=\"10\" y=\"38\">"
        << escaped(header.model.empty() ? header.kind : header.model + " (" + header.kind + ")")
        << ", " << header.totalSectors << " sectors of " << header.sectorBytes << " bytes; "
        << map.sectorsPerCell() << " sectors a cell</text>\n"
        << "<text x=\"10\" y=\"56\">Result: " << escaped(summary.result) << " (exit code "
        << summary.exitCode << ")</text>\n";
    // Rows of cells; a run of equal cells in a row is one rectangle.
    for (uint64_t row = 0; row < map.rows(); ++row) {
        const uint64_t rowStart = row * map.columns();
        const uint64_t rowEnd = std::min(rowStart + map.columns(), map.cellCount());
        for (uint64_t index = rowStart; index < rowEnd;) {
            uint64_t next = index + 1;
            while (next < rowEnd && map.cell(next) == map.cell(index)) ++next;
            svg << "<rect x=\"" << kLeft + static_cast<int>(index - rowStart) * kCell << "\" y=\""
                << kTop + static_cast<int>(row) * kCell << "\" width=\""
                << static_cast<int>(next - index) * kCell << "\" height=\"" << kCell << "\" fill=\""
                << classColour(map.cell(index)) << "\"/>\n";
            index = next;
        }
    }
    const uint64_t labelEvery =
        std::max<uint64_t>(1, (map.rows() + kLabelledRows - 1) / kLabelledRows);
    for (uint64_t row = 0; row < map.rows(); row += labelEvery) {
        const uint64_t sector = map.sectorOf(row * map.columns());
        svg << "<text x=\"" << kLeft - 6 << "\" y=\""
            << kTop + static_cast<int>(row) * kCell + kCell << "\" text-anchor=\"end\">sector "
            << sector << " (" << gigabytes(sector, header.sectorBytes) << ")</text>\n";
    }
    const int legendY = kTop + gridHeight + 20;
    for (std::size_t i = 0; i < kTimeClasses; ++i) {
        const int x = 10 + static_cast<int>(i) * 120;
        svg << "<rect x=\"" << x << "\" y=\"" << legendY << "\" width=\"12\" height=\"12\" fill=\""
            << classColour(static_cast<TimeClass>(i)) << "\" stroke=\"#808080\"/>\n"
            << "<text x=\"" << x + 16 << "\" y=\"" << legendY + 10 << "\">" << kClassNames[i];
        if (i > 0) svg << ": " << times.histogram()[i];
        svg << "</text>\n";
    }
    svg << "</svg>\n";
    return svg.str();
}

}  // namespace host
