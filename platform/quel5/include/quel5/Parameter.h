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

    // Host side. setFromText parses `text` by the parameter's type ("true"/"false"/"1"/"0" in
    // any case for BOOLEAN, decimal digits for UINT32, a decimal number 0..100 with an optional
    // '%' for PERCENT, any text for STRING) and checks numbers against the range text
    // ("[1,100]" inclusive, '(' ')' exclusive, an empty bound unlimited). On failure it returns
    // false with "<name>: <reason>" in *error and leaves the parameter unchanged. On success,
    // and after setValue, the source is ParameterSource::HOST().
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
