// kiv::Exception, the root of every exception the library and its platform throw, and
// kiv::InternalError for defects and impossible states.
#pragma once

#include "kiv/Export.h"
#include "kiv/String.h"

namespace kiv {

class KIV_API Exception {
public:
    explicit Exception(const String& message);
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    virtual ~Exception();

    const String& getMessage() const { return message_; }

private:
    String message_;
};

class KIV_API InternalError : public Exception {
public:
    explicit InternalError(const String& message);
    InternalError(const InternalError&) = default;
    InternalError& operator=(const InternalError&) = default;
    ~InternalError() override;
};

}  // namespace kiv
