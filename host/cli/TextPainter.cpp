#include "cli/TextPainter.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H

#include <vector>

namespace host {
namespace {

constexpr char32_t kReplacement = 0xfffd;

// Bytes in the UTF-8 sequence that `lead` starts; 0 when it starts none.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >> 5 == 0x6) return 2;
    if (lead >> 4 == 0xe) return 3;
    if (lead >> 3 == 0x1e) return 4;
    return 0;
}

// The code points of UTF-8 `text`; each byte that starts no valid sequence is one replacement.
std::vector<char32_t> codePoints(const std::string& text) {
    std::vector<char32_t> points;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = sequenceLength(lead);
        bool valid = length != 0 && i + length <= text.size();
        char32_t point = length == 1 ? lead : lead & (0x7fu >> length);
        for (std::size_t k = 1; valid && k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            valid = next >> 6 == 0x2;
            point = point << 6 | (next & 0x3fu);
        }
        points.push_back(valid ? point : kReplacement);
        i += valid ? length : 1;
    }
    return points;
}

}  // namespace

struct TextPainter::Fonts {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    ~Fonts() {
        if (face != nullptr) FT_Done_Face(face);
        if (library != nullptr) FT_Done_FreeType(library);
    }

    // Loads the glyph of `point` at `size` pixels into the face's slot, rendered when `render`.
    bool load(char32_t point, int size, bool bold, bool render) {
        if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0) return false;
        if (FT_Load_Char(face, point, FT_LOAD_DEFAULT) != 0 &&
            FT_Load_Char(face, kReplacement, FT_LOAD_DEFAULT) != 0)
            return false;
        if (bold) FT_GlyphSlot_Embolden(face->glyph);
        return !render || FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) == 0;
    }
};

TextPainter::TextPainter(std::unique_ptr<Fonts> fonts) : fonts_(std::move(fonts)) {}

TextPainter::~TextPainter() = default;

std::unique_ptr<TextPainter> TextPainter::open(const std::string& fontPath, std::string* error) {
    auto fonts = std::make_unique<Fonts>();
    if (FT_Init_FreeType(&fonts->library) != 0) {
        *error = "FreeType could not start";
        return nullptr;
    }
    if (FT_New_Face(fonts->library, fontPath.c_str(), 0, &fonts->face) != 0) {
        *error = "cannot read the font " + fontPath;
        return nullptr;
    }
    return std::unique_ptr<TextPainter>(new TextPainter(std::move(fonts)));
}

void TextPainter::draw(Canvas& canvas, const MapText& text, Colour colour) {
    const std::vector<char32_t> points = codePoints(text.text);
    // Pen positions are kept in 1/64 pixel, as FreeType measures advances.
    long pen = static_cast<long>(text.x) * 64;
    if (text.anchor == TextAnchor::End) {
        for (const char32_t point : points) {
            if (fonts_->load(point, text.size, text.bold, false))
                pen -= fonts_->face->glyph->advance.x;
        }
    }
    for (const char32_t point : points) {
        if (!fonts_->load(point, text.size, text.bold, true)) continue;
        const FT_GlyphSlot slot = fonts_->face->glyph;
        const FT_Bitmap& bitmap = slot->bitmap;
        const int left = static_cast<int>((pen + 32) / 64) + slot->bitmap_left;
        const int top = text.y - slot->bitmap_top;
        for (unsigned row = 0; row < bitmap.rows; ++row) {
            const unsigned char* line = bitmap.buffer + static_cast<long>(row) * bitmap.pitch;
            for (unsigned column = 0; column < bitmap.width; ++column) {
                canvas.blend(left + static_cast<int>(column), top + static_cast<int>(row), colour,
                             line[column]);
            }
        }
        pen += slot->advance.x;
    }
}

}  // namespace host
