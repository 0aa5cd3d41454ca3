// Turning the --device text into a drive a test can run on.
#pragma once

#include <memory>
#include <string>

#include "libDrive/Drive.h"
#include "quel5/DiagDevice.h"

namespace host {

// The simulated drive used when no --device is given: 1 GiB of 512-byte sectors with a small bad
// area, a worn last quarter whose reads are slow (40 ms more) before they fail, and 3 ms per
// read, so that a plain run of a test shows its progress for a few seconds of real time and then
// stops at its error limit with the event saying so.
inline constexpr const char* kBuiltInDevice =
    "sim:1GiB,bad=500000+3000,slow=1572864+524288:40,bad=1600000+497152,cost=3";

// A drive and the device description it was built from. The device is declared first so that
// it outlives the drive, which refers to it.
struct OpenedDrive {
    std::unique_ptr<quel5::DiagDevice> device;
    std::unique_ptr<kivrlibdrive::Drive> drive;
};

enum class OpenFailure {
    None,
    BadText,     // the text is not a valid device text (a usage error)
    CannotOpen,  // a valid text, but the device could not be opened
};

struct OpenResult {
    OpenedDrive opened;  // drive is null unless failure is None
    OpenFailure failure = OpenFailure::None;
    std::string error;  // why, for a person, when failure is not None
};

// `text` is a simulated drive (see SimDeviceText.h) or the path of a block device or image file.
// Simulated drives report their estimated time left; both kinds record their operations
// (drives/RecordingDrive.h).
OpenResult openDrive(const std::string& text);

// Why `drive` refused its last lock, for a person (the mount point, the loop device, the
// read-only device), or "" when it did not or cannot say.
std::string lockRefusalOf(const kivrlibdrive::Drive& drive);

}  // namespace host
