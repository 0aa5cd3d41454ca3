// A registered emulated writer on a virtual clock, and short forms of the SCSI library calls
// the optical drive makes, for the writer's tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "scsi/Scsi.h"
#include "sim/mmc/EmulatedWriter.h"
#include "support/ScopedVirtualClock.h"

namespace mmctest {

using Bytes = std::vector<uint8_t>;
using kivscsi::Status;
using sim::mmc::DiscModel;
using sim::mmc::MediaKind;

inline constexpr const char* kDevice = "\\\\.\\SimCdRom7";
inline constexpr uint32_t kSpinUpMs = 2000;

class WriterTest : public ::testing::Test {
public:
    WriterTest();
    ~WriterTest() override;

protected:
    // A writer of `config`, whose spin-up time the fixture sets to kSpinUpMs.
    explicit WriterTest(sim::mmc::WriterConfig config);

public:
    // Inserts `disc` and lets it spin up.
    void loadReady(const DiscModel& disc);
    // A formatted (or, for write-once kinds, blank) disc of `kind`, ready, with write
    // parameters that suit it.
    void loadWritable(MediaKind kind, uint32_t capacitySectors = 0);

    Status testUnitReady();
    uint16_t currentProfile();
    kivscsi::DiscInformation discInformation();
    Status write(uint32_t lba, uint16_t count, uint8_t fill);
    // Reads `count` sectors; FUA when `forced`. The bytes land in `out`.
    Status read(uint32_t lba, uint16_t count, bool forced, Bytes& out);
    Status synchronizeCache();
    // REQUEST SENSE through the transport: the fixed sense data the drive returns.
    Bytes requestSense();
    // The sense key, ASC and ASCQ of requestSense() as 0xKKAAQQ.
    uint32_t requestSenseCode();
    // The current write speed from the capabilities page; 0 when absent.
    uint16_t currentWriteSpeed();
    // MODE SELECT of the write parameters page with `byte2` (write type), `byte3` (track
    // mode) and the data block type set.
    Status selectWriteParameters(uint8_t byte2, uint8_t byte3, uint8_t dataBlockType = 8);

    static Bytes filled(uint16_t count, uint8_t fill) {
        return Bytes(size_t{count} * sim::mmc::kSectorBytes, fill);
    }

    testsupport::ScopedVirtualClock clock;
    std::shared_ptr<sim::mmc::EmulatedWriter> writer;
    _SCSI_PATH path{};
};

}  // namespace mmctest
