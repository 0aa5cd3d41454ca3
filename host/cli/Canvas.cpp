#include "cli/Canvas.h"

#include <algorithm>

namespace host {
namespace {

uint8_t mix(uint8_t under, uint8_t over, uint8_t coverage) {
    return static_cast<uint8_t>((under * (255 - coverage) + over * coverage + 127) / 255);
}

}  // namespace

Canvas::Canvas(int width, int height, Colour background)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3) {
    fill(0, 0, width, height, background);
}

Colour Canvas::at(int x, int y) const {
    const std::size_t offset = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                static_cast<std::size_t>(x)) *
                               3;
    return {pixels_[offset], pixels_[offset + 1], pixels_[offset + 2]};
}

void Canvas::fill(int x, int y, int width, int height, Colour colour) {
    const int left = std::max(x, 0);
    const int right = std::min(x + width, width_);
    for (int row = std::max(y, 0); row < std::min(y + height, height_); ++row) {
        for (int column = left; column < right; ++column) blend(column, row, colour, 255);
    }
}

void Canvas::outline(int x, int y, int width, int height, Colour colour) {
    if (width <= 0 || height <= 0) return;
    fill(x, y, width, 1, colour);
    fill(x, y + height - 1, width, 1, colour);
    fill(x, y, 1, height, colour);
    fill(x + width - 1, y, 1, height, colour);
}

void Canvas::blend(int x, int y, Colour colour, uint8_t coverage) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    const std::size_t offset = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                static_cast<std::size_t>(x)) *
                               3;
    pixels_[offset] = mix(pixels_[offset], colour.red, coverage);
    pixels_[offset + 1] = mix(pixels_[offset + 1], colour.green, coverage);
    pixels_[offset + 2] = mix(pixels_[offset + 2], colour.blue, coverage);
}

}  // namespace host
