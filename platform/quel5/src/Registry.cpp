#include "quel5/Registry.h"

#include <mutex>

namespace quel5 {

struct Registry::Impl {
    mutable std::mutex mutex;
    std::vector<Parameter*> parameters;
    std::vector<Event*> events;
    std::vector<LocalizedString*> localizedStrings;
    std::vector<QuelString> libraries;
};

namespace {

template <typename Handle, typename Key>
Handle* findFirst(const std::vector<Handle*>& handles, const Key& key) {
    for (Handle* handle : handles) {
        if (handle->key() == key) return handle;
    }
    return nullptr;
}

}  // namespace

Registry::Registry() : impl_(new Impl) {}

Registry& Registry::instance() {
    // Built on first use and never destroyed, so that static initialisers and destructors of
    // any module can use it whatever order the loader runs them in.
    static Registry* registry = new Registry;
    return *registry;
}

Parameter* Registry::addParameter(const QuelString& name, const DataType& type,
                                  const QuelString& range, bool flagA, bool flagB) {
    auto* parameter = new Parameter(name, type, range, flagA, flagB);
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->parameters.push_back(parameter);
    return parameter;
}

Event* Registry::addEvent(const QuelString& key) {
    auto* event = new Event(key);
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->events.push_back(event);
    return event;
}

LocalizedString* Registry::addLocalizedString(const QuelString& key) {
    auto* text = new LocalizedString(key);
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->localizedStrings.push_back(text);
    return text;
}

void Registry::addLibrary(const QuelString& name) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->libraries.push_back(name);
}

const std::vector<Parameter*>& Registry::parameters() const { return impl_->parameters; }
const std::vector<Event*>& Registry::events() const { return impl_->events; }
const std::vector<LocalizedString*>& Registry::localizedStrings() const {
    return impl_->localizedStrings;
}
const std::vector<QuelString>& Registry::libraries() const { return impl_->libraries; }

Parameter* Registry::findParameter(const QuelString& name) const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    for (Parameter* parameter : impl_->parameters) {
        if (parameter->name() == name) return parameter;
    }
    return nullptr;
}

Event* Registry::findEvent(const QuelString& key) const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return findFirst(impl_->events, key);
}

LocalizedString* Registry::findLocalizedString(const QuelString& key) const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return findFirst(impl_->localizedStrings, key);
}

bool Registry::setParameter(const QuelString& name, const kiv::String& text, kiv::String* error) {
    Parameter* parameter = findParameter(name);
    if (!parameter) {
        if (error) *error = kiv::String(L"no parameter is called \"") + name.kivString() + L"\"";
        return false;
    }
    return parameter->setFromText(text, error);
}

bool Registry::clearParameter(const QuelString& name) {
    Parameter* parameter = findParameter(name);
    if (!parameter) return false;
    parameter->clear();
    return true;
}

void Registry::clearAllParameters() {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    for (Parameter* parameter : impl_->parameters) parameter->clear();
}

}  // namespace quel5
