// An RGB picture in memory, 8 bits a channel, rows top to bottom: what the PNG writer paints a
// MapDrawing onto before libpng encodes it. Everything drawn is clipped to the picture.
#pragma once

#include <cstdint>
#include <vector>

#include "cli/MapDrawing.h"

namespace host {

class Canvas {
public:
    // REQUIRES: width and height >= 0.
    Canvas(int width, int height, Colour background);

    int width() const { return width_; }
    int height() const { return height_; }
    // Three bytes a pixel, width() pixels a row, no padding.
    const std::vector<uint8_t>& pixels() const { return pixels_; }
    Colour at(int x, int y) const;

    void fill(int x, int y, int width, int height, Colour colour);
    // A one-pixel border just inside the rectangle.
    void outline(int x, int y, int width, int height, Colour colour);
    // Mixes `colour` into pixel (x, y) by `coverage` (0 leaves it, 255 replaces it).
    void blend(int x, int y, Colour colour, uint8_t coverage);

private:
    int width_;
    int height_;
    std::vector<uint8_t> pixels_;
};

}  // namespace host
