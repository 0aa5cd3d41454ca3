// What every part of the read/write test shares: its logger and the source path its events
// carry. Internal to the library.
#pragma once

#include "kiv/Log.h"
#include "kiv/String.h"

namespace kivrlibdrive::readwrite {

// The source path events of the read/write test are raised with.
inline constexpr const wchar_t* kSource = L"libDrive/ReadWriteTest";

kiv::Logger* logger();

// Logs `text` behind its line-number prefix ("1567 ReadWriteTest::runTest() DONE!!").
void log(int priority, int line, const kiv::String& text);

// A number as log lines show it: unpadded decimal.
inline kiv::String number(uint64_t value) { return kiv::String::fromNumber(value); }

}  // namespace kivrlibdrive::readwrite
