// libStorage::AutoRun: while an object disables it, the system must not start playing or
// exploring media inserted into a drive under test.
//
// The switch is process-wide and counted: autoPlaySuppressed() is true while at least one
// object has Disable(true) in effect. A host that receives the system's autoplay query (on
// Windows the "QueryCancelAutoPlay" window message) answers it from autoPlaySuppressed(); the
// system-wide registry policy is not touched, so nothing outlives the process.
#pragma once

#include "storage/Export.h"

namespace libStorage {

class STORAGE_API AutoRun {
public:
    AutoRun() = default;
    // Ends this object's disabling.
    ~AutoRun();
    // A copy disables too when the original does (each object counts once).
    AutoRun(const AutoRun& other);
    AutoRun& operator=(const AutoRun& other);

    // true: autoplay off until Disable(false) or destruction; false: this object's disabling
    // ends. Repeating the same call changes nothing.
    void Disable(bool disable);
    bool isDisabled() const { return disabled_; }

    // True while any AutoRun object in the process disables autoplay.
    static bool autoPlaySuppressed();

private:
    bool disabled_ = false;
};

}  // namespace libStorage
