// quel5::Registry: every parameter, event and localized string created in the process, owned
// for the life of the process, in creation order and findable by key. It exists before any
// library's static initialisers run (construct-on-first-use).
#pragma once

#include <vector>

#include "quel5/Event.h"
#include "quel5/Export.h"
#include "quel5/Parameter.h"

namespace quel5 {

// Adding, finding and setting are safe from any thread. The lists returned by parameters(),
// events(), ... are meant for reading once loading is done (nothing is added meanwhile).
class QUEL5_API Registry {
public:
    static Registry& instance();

    Parameter* addParameter(const QuelString& name, const DataType& type, const QuelString& range,
                            bool flagA, bool flagB);
    Event* addEvent(const QuelString& key);
    LocalizedString* addLocalizedString(const QuelString& key);
    void addLibrary(const QuelString& name);

    // Creation order. Handles stay valid for the life of the process.
    const std::vector<Parameter*>& parameters() const;
    const std::vector<Event*>& events() const;
    const std::vector<LocalizedString*>& localizedStrings() const;
    const std::vector<QuelString>& libraries() const;

    // The first handle created with that key, or nullptr.
    Parameter* findParameter(const QuelString& name) const;
    Event* findEvent(const QuelString& key) const;
    LocalizedString* findLocalizedString(const QuelString& key) const;

    // Host side: set or clear the first parameter of that key. False when no parameter has that
    // key or the text does not fit its type and range (a reason naming the parameter in *error;
    // the parameter keeps its value). Accepted texts: Parameter::setFromText.
    bool setParameter(const QuelString& name, const kiv::String& text, kiv::String* error);
    bool clearParameter(const QuelString& name);
    void clearAllParameters();

private:
    Registry();
    struct Impl;
    Impl* impl_;  // never freed: the registry lives until the process ends
};

}  // namespace quel5
