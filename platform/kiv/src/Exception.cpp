#include "kiv/Exception.h"

namespace kiv {

Exception::Exception(const String& message) : message_(message) {}

Exception::~Exception() = default;

InternalError::InternalError(const String& message) : Exception(message) {}

InternalError::~InternalError() = default;

}  // namespace kiv
