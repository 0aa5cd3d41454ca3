// kivrlibdrive::CRange: the sectors a hard-drive test covers on one drive, worked out from the
// range parameters when the range is constructed.
//
// Range texts ("StartRange", "EndRange" and, on large drives, "LargeDriveStartRange" and
// "LargeDriveEndRange") are small expressions: a sector number ("100000"), a size ("2GB", binary
// KB/MB/GB turned into sectors), a percentage of the capacity ("10%"), each optionally anchored
// at the start or end of the drive ("MIN+1MB", "MAX-10%"). The amount to test comes from
// "SectorPercentToTest" (percentage mode) or "NumberOfSeeks" (seeks mode).
#pragma once

#include <cstdint>

#include "kiv/String.h"
#include "libDrive/Export.h"

namespace kivrlibdrive {

class LIBDRIVE_API CRange {
public:
    enum RANGE_TYPE { RANGE_START = 0, RANGE_END = 1 };

    // Evaluates the parameters for a drive of `driveSectors` sectors of `sectorBytes` bytes.
    // `allowPercent` / `allowSeeks` say which amount parameters the caller accepts; with neither
    // the whole range is tested.
    // Throws:
    //  - InvalidRange when no accepted amount parameter is usable (after raising
    //    "InvalidSectorPercentToTestValue" and/or "InvalidNumberOfSeeksValue" as errors) or
    //    when the end does not lie above the start, or when a number in a range text, or a
    //    size or percentage worked out from it, does not fit 64 bits (nothing is logged);
    //  - CannotRun (empty message) when a start or end text is malformed, after raising
    //    "InvalidRangeEntry" with "PARAMETER_NAME" as a warning;
    //  - kiv::InternalError when a text cannot be evaluated (or the sector size is 0 where a
    //    size must be turned into sectors).
    CRange(const uint64_t& driveSectors, const unsigned int& sectorBytes, bool allowPercent,
           bool allowSeeks);
    CRange(const CRange& other);
    CRange& operator=(const CRange& other);
    virtual ~CRange();

    // First sector to test.
    uint64_t GetStartRange() const;
    // End of the range (exclusive); never above the capacity.
    uint64_t GetEndRange() const;
    // Sectors to test in percentage mode; 0 in seeks mode.
    uint64_t GetSectorTotalToTest() const;
    // Step between tested sectors.
    uint64_t GetJumpCount() const;
    // Positions to test in seeks mode (at most the span); 0 in percentage mode.
    uint64_t GetNumberOfSeeks() const;
    // Percentage of the range to test (0 to 100); 0 in seeks mode.
    double GetSectorPercentToTest() const;

private:
    // The sector a range text stands for. An empty text is 0 for the start, the capacity for the
    // end. A value above the capacity (or below 0) becomes the capacity for the end and is kept
    // for the start, where the constructor's own check rejects it.
    uint64_t GetRange(kiv::String text, RANGE_TYPE type);

    uint64_t startRange;
    uint64_t endRange;
    uint64_t sectorTotalToTest;
    double sectorPercentToTest;
    unsigned int bytesPerSector;
    uint64_t jumpCount;
    uint64_t totalSectors;
    uint64_t numberOfSeeks;
    bool usePercent;
};

}  // namespace kivrlibdrive
