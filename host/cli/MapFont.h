// The font the PNG map is lettered with, found when the map is drawn.
#pragma once

#include <string>

namespace host {

// The environment variable naming a TrueType or OpenType font file to letter PNG maps with.
inline constexpr const char* kMapFontVariable = "DRIVEDIAG_MAP_FONT";

// The font file to use: the file kMapFontVariable names when it is set, else DejaVu Sans where
// Debian's fonts-dejavu-core puts it, else what fontconfig's fc-match picks for sans-serif.
// "" when there is none (or the file the variable names does not exist).
std::string mapFontPath();

}  // namespace host
