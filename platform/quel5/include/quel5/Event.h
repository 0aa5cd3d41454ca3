// quel5::Event and quel5::LocalizedString: handles created once by key, carrying named variables
// that callers set before raising the event or reading the text. Owned by the registry.
#pragma once

#include <utility>
#include <vector>

#include "quel5/Export.h"
#include "quel5/QuelString.h"
#include "quel5/Value.h"

namespace quel5 {

// Variables in the order they were first set; setting a name again replaces its value in place.
using Variables = std::vector<std::pair<QuelString, Value>>;

class QUEL5_API Event {
public:
    explicit Event(QuelString key);
    const QuelString& key() const { return key_; }
    Event& setVariable(const QuelString& name, const Value& value);
    const Variables& variables() const { return variables_; }
    void clearVariables() { variables_.clear(); }

private:
    QuelString key_;
    Variables variables_;
};

class QUEL5_API LocalizedString {
public:
    explicit LocalizedString(QuelString key);
    const QuelString& key() const { return key_; }
    LocalizedString& setVariable(const QuelString& name, const Value& value);
    const Variables& variables() const { return variables_; }
    void clearVariables() { variables_.clear(); }
    // The text of the key with the variables filled in, as the installed host resolves it;
    // the key itself when no host is installed.
    QuelString localizedString() const;

private:
    QuelString key_;
    Variables variables_;
};

}  // namespace quel5
