#include <png.h>

#include "cli/Canvas.h"
#include "cli/MapFont.h"
#include "cli/PngMap.h"
#include "cli/TextPainter.h"

namespace host {
namespace {

constexpr Colour kInk{0, 0, 0};

Canvas painted(const MapDrawing& drawing, TextPainter& painter) {
    Canvas canvas(drawing.width, drawing.height, drawing.background);
    for (const MapRect& rect : drawing.rects) {
        canvas.fill(rect.x, rect.y, rect.width, rect.height, rect.fill);
        if (rect.outline) canvas.outline(rect.x, rect.y, rect.width, rect.height, *rect.outline);
    }
    for (const MapText& text : drawing.texts) painter.draw(canvas, text, kInk);
    return canvas;
}

// libpng's encoding of `canvas`, asked once for the size and once for the bytes.
bool encoded(const Canvas& canvas, std::string* png, std::string* error) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(canvas.width());
    image.height = static_cast<png_uint_32>(canvas.height());
    image.format = PNG_FORMAT_RGB;
    const png_int_32 stride = canvas.width() * 3;
    png_alloc_size_t size = 0;
    if (png_image_write_to_memory(&image, nullptr, &size, 0, canvas.pixels().data(), stride,
                                  nullptr) != 0) {
        png->resize(size);
        if (png_image_write_to_memory(&image, png->data(), &size, 0, canvas.pixels().data(), stride,
                                      nullptr) != 0) {
            png->resize(size);
            return true;
        }
    }
    *error = std::string("libpng could not encode the map: ") + image.message;
    png_image_free(&image);
    return false;
}

}  // namespace

bool pngMapsAvailable() { return true; }

bool pngDocument(const MapDrawing& drawing, std::string* png, std::string* error) {
    const std::string font = mapFontPath();
    if (font.empty()) {
        *error = std::string(
                     "no font to label the map with (install fonts-dejavu-core, or name a "
                     "font file in ") +
                 kMapFontVariable + ")";
        return false;
    }
    const std::unique_ptr<TextPainter> painter = TextPainter::open(font, error);
    return painter != nullptr && encoded(painted(drawing, *painter), png, error);
}

}  // namespace host
