// The surface map as a PNG picture, where the build has libpng and FreeType (not the Windows
// build, which draws maps only as SVG).
#pragma once

#include <string>

#include "cli/MapDrawing.h"

namespace host {

// True when `path` ends in ".png", in any case: drivediag then draws a PNG instead of SVG.
bool namesPngFile(const std::string& path);

// Whether this build can draw PNG maps.
bool pngMapsAvailable();

// `drawing` as the bytes of a PNG file (8-bit RGB), lettered with the font mapFontPath() finds.
// False with a reason in *error when there is no font (an unlabelled map would mislead) or the
// picture cannot be encoded. REQUIRES: pngMapsAvailable().
bool pngDocument(const MapDrawing& drawing, std::string* png, std::string* error);

}  // namespace host
