// quel5::Parameter: a test parameter created by a library at load time and given a value by the
// host before a test runs. Owned by the registry.
#pragma once

#include "quel5/DataType.h"
#include "quel5/Export.h"
#include "quel5/QuelString.h"
#include "quel5/Value.h"

namespace quel5 {

class QUEL5_API Parameter {
public:
    Parameter(QuelString name, DataType type, QuelString range, bool flagA, bool flagB);

    const QuelString& name() const { return name_; }
    const DataType& dataType() const { return type_; }
    const QuelString& range() const { return range_; }  // e.g. "[1,100]"; "" when unbounded
    bool flagA() const { return flagA_; }
    bool flagB() const { return flagB_; }

    // Read side, used by the library.
    bool isset() const { return source_ != ParameterSource::NOTSET(); }
    ParameterSource valueSource() const { return source_; }
    const Value& value() const { return value_; }
    kiv::String toString() const;  // the value's text; "" when not set

    // Host side. setFromText parses `text` by the parameter's type ("true"/"false"/"1"/"0" for
    // BOOLEAN, decimal for UINT32, a number for PERCENT) and checks the range text; on failure
    // it returns false with a reason in *error and leaves the parameter unchanged.
    bool setFromText(const kiv::String& text, kiv::String* error);
    void setValue(const Value& value);
    void clear();

private:
    QuelString name_;
    DataType type_;
    QuelString range_;
    bool flagA_;
    bool flagB_;
    ParameterSource source_;
    Value value_;
};

}  // namespace quel5
