// sim::recorded::ReplayDevice: a SCSI device that answers each command block with the status,
// sense and data a real device was recorded giving to it (RecordedAnswers.h).
//
//   - A command is matched to the recorded command blocks byte for byte, except for the
//     allocation length of commands that return data: the recorded answer is returned into
//     whatever room the initiator gives, padded with zeros as the recorded device pads.
//   - The tray is followed: EJECT, LOAD and PREVENT/ALLOW that were answered GOOD open, close,
//     lock and unlock it, and an answer recorded in the present state ("(tray open)",
//     "(prevented)" in its label) is preferred to one recorded in another.
//   - A form of a command that was never recorded gets the recorded answer of its operation
//     code when every recorded form of it got the same answer (the device ignored the fields
//     that differ); otherwise CHECK CONDITION, ILLEGAL REQUEST with INVALID FIELD IN CDB (or
//     INVALID COMMAND OPERATION CODE for an operation never recorded), and the command block is
//     kept in unrecorded() so a test can tell it left the recording.
//   - Host and driver failures are the transport failures of the SG_IO transport. No time
//     passes.
// Thread-safe.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "os/EmulatedDevice.h"
#include "scsi/Transport.h"
#include "sim/recorded/RecordedAnswers.h"

namespace sim::recorded {

class ReplayDevice final : public os::EmulatedDevice, public kivscsi::ScsiTarget {
public:
    explicit ReplayDevice(std::vector<RecordedAnswer> answers);

    // The disc's geometry from the recorded READ CAPACITY answer of the present state: its
    // block length, cylinders = blocks, one track of one sector; an error when that answer was
    // not GOOD.
    os::GeometryResult geometry() override;

    void execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) override;

    // Command blocks the recording held no answer for, in arrival order.
    std::vector<std::vector<uint8_t>> unrecorded() const;

private:
    const RecordedAnswer* find(const std::vector<uint8_t>& cdb) const;
    void follow(const std::vector<uint8_t>& cdb);

    mutable std::mutex mutex_;
    std::vector<RecordedAnswer> answers_;
    bool trayOpen_ = false;
    bool prevented_ = false;
    std::vector<std::vector<uint8_t>> unrecorded_;
};

// Registers a ReplayDevice for every device of the recording kept in the tree, under
// "recorded:" + its name ("recorded:sr0" a CD, "recorded:sr1" a DVD, "recorded:sr2" no disc;
// sg0 to sg2 the same through the SCSI generic driver). Returns the names registered.
std::vector<std::string> registerRecordedDevices();

}  // namespace sim::recorded
