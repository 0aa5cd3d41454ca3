// A picture as a list of what to draw, in pixels from the top left corner: filled rectangles and
// lines of text. The surface map is laid out once as a MapDrawing and then written as SVG text or
// as a PNG raster, so both show the same thing at the same place.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct Colour {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    bool operator==(const Colour&) const = default;
};

// "#rrggbb", lower case.
std::string hexColour(Colour colour);

struct MapRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    Colour fill;
    std::optional<Colour> outline;  // a one-pixel border drawn inside the rectangle's edge
};

enum class TextAnchor { Start, End };

struct MapText {
    int x = 0;      // where the text starts, or ends when anchored at its End
    int y = 0;      // the baseline
    int size = 11;  // pixels an em
    bool bold = false;
    TextAnchor anchor = TextAnchor::Start;
    std::string text;  // UTF-8
};

struct MapDrawing {
    static constexpr int kTextSize = 11;  // the size most texts have
    int width = 0;
    int height = 0;
    Colour background{255, 255, 255};
    std::vector<MapRect> rects;  // drawn in order, before the texts
    std::vector<MapText> texts;
};

}  // namespace host
