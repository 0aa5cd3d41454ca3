#include "quel5/Parameter.h"

#include "ParameterText.h"

namespace quel5 {

Parameter::Parameter(QuelString name, DataType type, QuelString range, bool flagA, bool flagB)
    : name_(std::move(name)), type_(type), range_(std::move(range)), flagA_(flagA), flagB_(flagB) {}

kiv::String Parameter::toString() const { return isset() ? value_.toString() : kiv::String(); }

bool Parameter::setFromText(const kiv::String& text, kiv::String* error) {
    kiv::String reason;
    auto value = detail::valueFromText(type_, range_, text, &reason);
    if (!value) {
        if (error) *error = name_.kivString() + kiv::String(L": ") + reason;
        return false;
    }
    setValue(*value);
    return true;
}

void Parameter::setValue(const Value& value) {
    value_ = value;
    source_ = ParameterSource::HOST();
}

void Parameter::clear() {
    value_ = Value();
    source_ = ParameterSource::NOTSET();
}

}  // namespace quel5
