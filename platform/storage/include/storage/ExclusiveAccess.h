// libStorage::ExclusiveAccess: keeps everybody else away from a device while this process works
// on it through an already open handle (an optical drive during a write test).
//
// Linux: a second descriptor on the same device opened with O_EXCL (refused while mounted or
// claimed by another exclusive opener; an advisory flock for image files). Windows: the volume
// of the handle is locked (FSCTL_LOCK_VOLUME) and unlocked on release. Emulated devices: their
// single exclusive claim.
#pragma once

#include <memory>

#include "os/NativeHandle.h"
#include "storage/Export.h"

namespace libStorage {

class STORAGE_API ExclusiveAccess {
public:
    ExclusiveAccess();
    // Releases exclusive access if held.
    ~ExclusiveAccess();
    // A copy refers to the same handle but holds nothing: the claim stays with the original.
    ExclusiveAccess(const ExclusiveAccess& other);
    ExclusiveAccess& operator=(const ExclusiveAccess& other);

    // The device to work on; the handle is not owned and must stay open while access is held.
    // Setting another handle first releases what was held.
    void setHandle(os::NativeHandle handle);
    // True when the device is now held exclusively (also when it already was); false when no
    // handle is set or somebody else holds or uses it.
    bool getExclusiveAccess();
    // Gives the device back; harmless when nothing is held.
    void releaseExclusiveAccess();
    bool hasExclusiveAccess() const;

    struct Claim;  // what the platform holds while access is granted

private:
    os::NativeHandle handle_;
    std::unique_ptr<Claim> claim_;
};

}  // namespace libStorage
