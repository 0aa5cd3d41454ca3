// What every part of the optical drive shares: its logger, the source path its events carry,
// and the status tests its operations make. Internal to the library.
#pragma once

#include <cstdint>

#include "ClassLog.h"
#include "kiv/Log.h"
#include "kiv/String.h"

namespace kivrlibdrive::optical {

// The source path events of the optical drive are raised with.
inline constexpr const wchar_t* kSource = L"libDrive/windows/WindowsOpticalDrive";

kiv::Logger* logger();

// Logs `text` behind its line-number prefix ("954 Got Exclusive ...") at `priority`.
void log(int priority, int line, const kiv::String& text);

// ASC 3Ah: medium not present (with or without a tray, open or closed).
constexpr bool isNoMedium(uint32_t status) { return (status & 0xFF00u) == 0x3A00u; }

// Whole milliseconds since `startTick` on the one clock's tick count (correct across its wrap).
uint32_t millisecondsSince(uint32_t startTick);

}  // namespace kivrlibdrive::optical
