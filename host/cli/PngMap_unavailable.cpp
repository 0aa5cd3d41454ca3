#include "cli/PngMap.h"

namespace host {

bool pngMapsAvailable() { return false; }

bool pngDocument(const MapDrawing&, std::string*, std::string* error) {
    *error = "this drivediag was built without libpng";
    return false;
}

}  // namespace host
