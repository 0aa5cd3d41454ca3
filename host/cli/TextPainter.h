// Lettering on a Canvas with FreeType: anti-aliased glyphs of one font file, bold made by
// emboldening the outlines.
#pragma once

#include <memory>
#include <string>

#include "cli/Canvas.h"
#include "cli/MapDrawing.h"

namespace host {

class TextPainter {
public:
    // A painter with the font at `fontPath`; null with a reason in *error when FreeType cannot
    // load it.
    static std::unique_ptr<TextPainter> open(const std::string& fontPath, std::string* error);
    ~TextPainter();
    TextPainter(const TextPainter&) = delete;
    TextPainter& operator=(const TextPainter&) = delete;

    // Draws `text` in `colour`; malformed UTF-8 shows as replacement characters.
    void draw(Canvas& canvas, const MapText& text, Colour colour);

private:
    struct Fonts;
    explicit TextPainter(std::unique_ptr<Fonts> fonts);
    std::unique_ptr<Fonts> fonts_;
};

}  // namespace host
