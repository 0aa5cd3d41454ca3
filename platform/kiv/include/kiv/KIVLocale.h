// KIVLocale: the name of a locale ("en_US"), and the process's global locale that settings
// and texts are looked up in.
#pragma once

#include "kiv/Export.h"
#include "kiv/String.h"

class KIV_API KIVLocale {
public:
    explicit KIVLocale(kiv::String name);
    const kiv::String& getName() const { return name_; }
    bool operator==(const KIVLocale& other) const { return name_ == other.name_; }

    // The global locale; "en_US" until setGlobal is called. Safe to call from any thread.
    static KIVLocale getGlobal();
    static void setGlobal(const KIVLocale& locale);

private:
    kiv::String name_;
};
