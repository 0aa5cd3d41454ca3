#include "quel5/DiagDevice.h"

namespace quel5 {

DeviceProperty::DeviceProperty(QuelString name, Value value)
    : name_(std::move(name)), value_(std::move(value)) {}

DiagDevice::DiagDevice(QuelString osLocator) : osLocator_(std::move(osLocator)) {}

const DeviceProperty* DiagDevice::property(const QuelString& name) const {
    const auto found = properties_.find(name);
    return found == properties_.end() ? nullptr : &found->second;
}

void DiagDevice::setProperty(const QuelString& name, const Value& value) {
    properties_.insert_or_assign(name, DeviceProperty(name, value));
}

void DiagDevice::setText(const QuelString& name, const kiv::String& text) {
    setProperty(name, Value(text));
}

void DiagDevice::setBool(const QuelString& name, bool value) {
    setProperty(name, Value::boolean(value));
}

void DiagDevice::setUint32Array(const QuelString& name, std::vector<uint32_t> items) {
    setProperty(name, Value::uint32Array(std::move(items)));
}

void DiagDevice::setTextArray(const QuelString& name, std::vector<kiv::String> items) {
    setProperty(name, Value::stringArray(std::move(items)));
}

}  // namespace quel5

kiv::Array<kiv::String> QuelVornInterface::makeStringArrayFromValue(const quel5::Value& value) {
    kiv::Array<kiv::String> items;
    if (value.kind() == quel5::DataType::Kind::STRING_ARRAY) {
        for (uint32_t i = 0; i < value.stringArraySize(); ++i) {
            items.add(value.getStringInArray(i).kivString());
        }
    } else if (value.kind() == quel5::DataType::Kind::STRING && !value.valueString().isEmpty()) {
        items.add(value.valueString().kivString());
    }
    return items;
}
