// A MapDrawing as an SVG document (UTF-8 text), sans-serif at MapDrawing::kTextSize pixels
// unless a text says otherwise.
#pragma once

#include <string>

#include "cli/MapDrawing.h"

namespace host {

std::string svgDocument(const MapDrawing& drawing);

}  // namespace host
