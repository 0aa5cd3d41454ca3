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

// What a command that reads data answered: its status and the bytes it received.
struct Answer {
    explicit Answer(uint16_t allocation, uint8_t fill = 0) : bytes(allocation, fill) {}
    uint8_t* data() { return bytes.data(); }
    const uint8_t* data() const { return bytes.data(); }
    Status status = 0;
    Bytes bytes;
    uint32_t received = 0;
};

class WriterTest : public ::testing::Test {
public:
    WriterTest();
    ~WriterTest() override;

    // Replaces the writer with a new one of `config` (spin-up time kSpinUpMs) under kDevice.
    void renewWriter(sim::mmc::WriterConfig config = {});
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
    // FORMAT UNIT with one descriptor of `formatType`; Immed set when `immediate`.
    Status format(uint8_t formatType, bool immediate = false);
    // REQUEST SENSE through the transport: the fixed sense data the drive returns.
    Bytes requestSense();
    // The sense key, ASC and ASCQ of requestSense() as 0xKKAAQQ.
    uint32_t requestSenseCode();
    // GET CONFIGURATION of the one feature `feature` (0: the profile list), into `allocation`
    // bytes that hold 0xEE at first.
    Answer configuration(uint16_t feature, uint16_t allocation = 512);
    // READ DISC STRUCTURE of DVD structure `format`, and of the BD disc information.
    Answer dvdStructure(uint8_t format, uint16_t allocation = 256);
    Answer bdStructure();
    // READ TOC/PMA/ATIP of the ATIP, and MODE SENSE(10) of the current values of `page`.
    Answer atip();
    Answer modeSense(uint8_t page);
    // GET PERFORMANCE of at most `descriptors` write speeds.
    Answer writeSpeeds(uint16_t descriptors, uint16_t allocation = 136);
    // GET EVENT STATUS NOTIFICATION of the media class, polled.
    Answer mediaEvents();
    // READ TRACK INFORMATION by address type `type` (0 LBA, 1 track, 2 session).
    Answer trackInformation(uint8_t type, uint32_t address);
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
