// Answers a real SCSI device gave, kept as text (sim/recorded/qemu-scsi-cd-answers.txt): one
// section per device ("######## RAW /dev/sr0"), in it one line per command with its command
// block, SCSI status, host and driver bytes, sense and residual, followed by the data returned
// in hex, 16 bytes a line (cut after 64 bytes by the recorder).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim::recorded {

struct RecordedAnswer {
    std::string label;  // what the recorder called the command, e.g. "TestUnitReady (tray open)"
    std::vector<uint8_t> cdb;
    uint8_t scsiStatus = 0;
    uint8_t hostStatus = 0;    // sg_io_hdr.host_status
    uint8_t driverStatus = 0;  // sg_io_hdr.driver_status
    bool hasSense = false;
    uint8_t senseKey = 0;
    uint8_t asc = 0;
    uint8_t ascq = 0;
    uint32_t residual = 0;
    std::vector<uint8_t> data;  // what the device returned, as far as it was recorded

    // Whether the device answered GOOD with no host or driver failure.
    bool good() const { return scsiStatus == 0 && hostStatus == 0 && driverStatus == 0; }
};

struct RecordedDevice {
    std::string name;  // the last part of the recorded path: "sr0", "sg1"
    std::vector<RecordedAnswer> answers;
};

// The devices of a recording, in order. Lines of no known form are passed over, and so is a
// command line whose command block is not hex.
std::vector<RecordedDevice> parseRecordedAnswers(std::string_view text);

// The recording kept in the tree: QEMU's emulated SCSI CD with a CD (sr0, sg0), a DVD (sr1,
// sg1) and no disc (sr2, sg2), through a Linux kernel.
std::string_view qemuScsiCdAnswers();

}  // namespace sim::recorded
