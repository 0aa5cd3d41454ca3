#include "quel5/Event.h"

#include "HostAccess.h"
#include "Variables.h"

namespace quel5 {

void detail::setVariable(Variables& variables, const QuelString& name, const Value& value) {
    for (auto& [existingName, existingValue] : variables) {
        if (existingName == name) {
            existingValue = value;
            return;
        }
    }
    variables.emplace_back(name, value);
}

Event::Event(QuelString key) : key_(std::move(key)) {}

Event& Event::setVariable(const QuelString& name, const Value& value) {
    detail::setVariable(variables_, name, value);
    return *this;
}

LocalizedString::LocalizedString(QuelString key) : key_(std::move(key)) {}

LocalizedString& LocalizedString::setVariable(const QuelString& name, const Value& value) {
    detail::setVariable(variables_, name, value);
    return *this;
}

QuelString LocalizedString::localizedString() const {
    QuelString text = key_;
    detail::withHost([&](Host& host) { text = host.localize(key_, variables_); });
    return text;
}

}  // namespace quel5
