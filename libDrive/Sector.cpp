#include "libDrive/Sector.h"

#include "SectorFault.h"
#include "kiv/Log.h"

namespace kivrlibdrive {

CSector::CSector(const uint64_t& start, const uint64_t& end)
    : m_qwStartSector(start), m_qwEndSector(end), total(0) {
    if (m_qwEndSector <= m_qwStartSector) {
        kiv::AssertionFailure::logAssert(L"libDrive/Sector", 20,
                                         L"m_qwEndSector > m_qwStartSector");
        raiseSectorFault();
    }
    total = m_qwEndSector - m_qwStartSector;
}

CSector::~CSector() = default;

uint64_t CSector::GetTotalSectors() const { return total; }

bool CSector::IsValid(const uint64_t& sector) const {
    return m_qwStartSector <= sector && sector < m_qwEndSector;
}

}  // namespace kivrlibdrive
