#include "cli/SvgWriter.h"

#include <cstdio>
#include <sstream>

namespace host {
namespace {

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

void writeRect(std::ostream& svg, const MapRect& rect) {
    svg << "<rect x=\"" << rect.x << "\" y=\"" << rect.y << "\" width=\"" << rect.width
        << "\" height=\"" << rect.height << "\" fill=\"" << hexColour(rect.fill) << "\"";
    if (rect.outline) svg << " stroke=\"" << hexColour(*rect.outline) << "\"";
    svg << "/>\n";
}

void writeText(std::ostream& svg, const MapText& text) {
    svg << "<text x=\"" << text.x << "\" y=\"" << text.y << "\"";
    if (text.size != MapDrawing::kTextSize) svg << " font-size=\"" << text.size << "\"";
    if (text.bold) svg << " font-weight=\"bold\"";
    if (text.anchor == TextAnchor::End) svg << " text-anchor=\"end\"";
    svg << ">" << escaped(text.text) << "</text>\n";
}

}  // namespace

std::string hexColour(Colour colour) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text;
}

std::string svgDocument(const MapDrawing& drawing) {
    std::ostringstream svg;
    svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << drawing.width << "\" height=\""
        << drawing.height << "\" viewBox=\"0 0 " << drawing.width << " " << drawing.height
        << "\" font-family=\"sans-serif\" font-size=\"" << MapDrawing::kTextSize << "\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"" << hexColour(drawing.background)
        << "\"/>\n";
    for (const MapRect& rect : drawing.rects) writeRect(svg, rect);
    for (const MapText& text : drawing.texts) writeText(svg, text);
    svg << "</svg>\n";
    return svg.str();
}

}  // namespace host
