// Sizes for a person: drive capacities in binary units that read right from a 1 MiB loop
// device to a many-terabyte disk.
#pragma once

#include <cstdint>
#include <string>

namespace host {

// `bytes` in the largest binary unit (B, KiB, MiB, GiB, TiB, PiB) that shows it as at least 1,
// with one decimal ("1.5 GiB"); whole bytes below 1 KiB ("512 B"). A value that would round up
// to 1024.0 of a unit is shown in the next unit instead.
std::string binarySizeText(uint64_t bytes);

}  // namespace host
