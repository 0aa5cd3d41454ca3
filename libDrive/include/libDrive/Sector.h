// kivrlibdrive::CSector: a half-open span of sectors [start, end), published for hosts and other
// modules.
#pragma once

#include <cstdint>

#include "libDrive/Export.h"

namespace kivrlibdrive {

class LIBDRIVE_API CSector {
public:
    // REQUIRES: end > start. A span that breaks this is a defect of the caller: the assertion is
    // logged to "DEFECT.GENERIC" and the process gets structured exception 7 on Windows, a
    // kiv::InternalError elsewhere.
    CSector(const uint64_t& start, const uint64_t& end);
    virtual ~CSector();

    // end - start.
    uint64_t GetTotalSectors() const;
    // True when start <= sector < end.
    bool IsValid(const uint64_t& sector) const;

protected:
    uint64_t m_qwStartSector;
    uint64_t m_qwEndSector;  // exclusive
    uint64_t total;
};

}  // namespace kivrlibdrive
