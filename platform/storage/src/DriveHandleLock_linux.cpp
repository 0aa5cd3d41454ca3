#include "Hold.h"

namespace libStorage::detail {

// An exclusive open (O_EXCL, or flock on an image file) coexists with the drive's plain open,
// so the drive's handle is not needed here.
std::unique_ptr<Hold> lockDiskWith(const std::string& path, os::NativeHandle /*driveHandle*/,
                                   std::wstring& failure) {
    return lockDisk(path, failure);
}

}  // namespace libStorage::detail
