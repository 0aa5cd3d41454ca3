// quel5::DiagDevice: the description of one device the host hands to a test: its OS locator and
// typed properties ("DriverName", "DriveLetter", "SCSIPath", filter lists, ...).
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "kiv/Array.h"
#include "quel5/Export.h"
#include "quel5/QuelString.h"
#include "quel5/Value.h"

namespace quel5 {

class QUEL5_API DeviceProperty {
public:
    DeviceProperty(QuelString name, Value value);
    const QuelString& name() const { return name_; }
    const Value& value() const { return value_; }

private:
    QuelString name_;
    Value value_;
};

class QUEL5_API DiagDevice {
public:
    explicit DiagDevice(QuelString osLocator);
    const QuelString& osLocator() const { return osLocator_; }

    // The property of that name, or nullptr when the device has none.
    const DeviceProperty* property(const QuelString& name) const;
    // Host side: adds or replaces a property. Typed shorthands for the kinds devices carry.
    void setProperty(const QuelString& name, const Value& value);
    void setText(const QuelString& name, const kiv::String& text);
    void setBool(const QuelString& name, bool value);
    void setUint32Array(const QuelString& name, std::vector<uint32_t> items);
    void setTextArray(const QuelString& name, std::vector<kiv::String> items);

private:
    QuelString osLocator_;
    std::map<QuelString, DeviceProperty> properties_;
};

}  // namespace quel5

// Helpers the framework publishes beside its types.
class QUEL5_API QuelVornInterface {
public:
    // The text items of a string-array value in order; a non-empty plain text value gives one
    // item; any other value (an empty text included) gives none.
    static kiv::Array<kiv::String> makeStringArrayFromValue(const quel5::Value& value);
};
