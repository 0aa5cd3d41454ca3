// The one narrow door through which every SCSI command leaves the library: a command block,
// a data direction, a buffer and a timeout go in; the SCSI status byte, the sense bytes, the
// residual count and the time taken come out.
//
// Three transports stand behind it, chosen by device name in openTransport():
//   - whatever a handle entered under that name in the table of open devices
//     (os/OpenDevices.h, libStorage::LookupManager) reaches: a drive that holds its device
//     open has every command sent through that handle, never a second one;
//   - an emulated device registered with os::registerEmulatedDevice() that also derives from
//     ScsiTarget (looked up first, by exact name);
//   - Linux SG_IO for "/dev/..." names;
//   - Windows SCSI pass-through direct for "\\.\..." names.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "scsi/Export.h"
#include "scsi/Status.h"

namespace kivscsi {

enum class DataDirection : uint8_t {
    None,        // no data phase; buffer and bufferLength are ignored
    FromDevice,  // the device fills buffer (READ-type commands)
    ToDevice,    // the device consumes buffer (WRITE-type commands)
};

// SCSI status byte values a target reports.
inline constexpr uint8_t kScsiGood = 0x00;
inline constexpr uint8_t kScsiCheckCondition = 0x02;
inline constexpr uint8_t kScsiBusy = 0x08;
inline constexpr uint8_t kScsiReservationConflict = 0x18;
inline constexpr uint8_t kScsiTaskSetFull = 0x28;

inline constexpr size_t kMaxCdbLength = 16;
inline constexpr size_t kMaxSenseLength = 64;

// One command as the transport sends it. The command does not own the buffer.
struct ScsiCommand {
    std::array<uint8_t, kMaxCdbLength> cdb{};
    uint8_t cdbLength = 0;  // 6, 10, 12 or 16
    DataDirection direction = DataDirection::None;
    void* buffer = nullptr;     // REQUIRES: valid for bufferLength bytes when direction != None
    uint32_t bufferLength = 0;  // bytes of the data phase (allocation / parameter list length)
    uint32_t timeoutMs = 0;     // the command is abandoned after this many milliseconds
};

// What came back. transportStatus is kStatusGood when the command reached the device and the
// device answered; then scsiStatus, sense and residual describe that answer.
struct ScsiResponse {
    Status transportStatus = kStatusGood;  // 0, or one of the 0xAAxx / 0xABxx values
    uint8_t scsiStatus = kScsiGood;        // the SCSI status byte
    std::array<uint8_t, kMaxSenseLength> sense{};
    uint8_t senseLength = 0;  // valid bytes in sense, <= kMaxSenseLength
    uint32_t residual = 0;    // bytes of bufferLength NOT transferred, <= bufferLength
    uint32_t durationMs = 0;  // measured on the one clock (os::clock()) by the transport
};

// An in-process device that answers command blocks. An emulated drive derives from both this
// and os::EmulatedDevice and registers itself with os::registerEmulatedDevice(name, ...); the
// transport finds it by that name and reaches it through dynamic_cast.
//
// execute() is called with a response already set to GOOD, no sense, residual 0. The target:
//   - for FromDevice, writes at most command.bufferLength bytes into command.buffer and sets
//     residual = bufferLength - bytes written;
//   - for ToDevice, reads at most command.bufferLength bytes from command.buffer;
//   - reports an error as scsiStatus = kScsiCheckCondition with sense bytes (fixed format 0x70
//     or descriptor format 0x72) in sense/senseLength;
//   - may set transportStatus (e.g. kStatusDeviceGone) to act as a vanished device; scsiStatus
//     and sense are then ignored;
//   - lets time pass on os::clock() (sleep) for what the command costs; the transport reports
//     kStatusTimedOut when that exceeds command.timeoutMs.
// It is called from the thread issuing the command; calls may come from several threads
// (a blank or format runs on a worker), so a target guards its own state.
class SCSI_API ScsiTarget {
public:
    virtual ~ScsiTarget();
    virtual void execute(const ScsiCommand& command, ScsiResponse& response) = 0;
};

// An open path to one device. Every command goes through the one gate, send(); a transport
// implements only deliver(), the part that differs from one way of reaching a device to another.
class SCSI_API Transport {
public:
    virtual ~Transport();
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    // Sends one command and waits for it to end. Never throws; failures are reported in the
    // returned transportStatus. REQUIRES: command.cdbLength in 1..16, and a buffer whenever a
    // data phase has bytes; a command that breaks either is refused with kStatusInvalidRequest
    // and never reaches the device. Whatever the transport does, the answer keeps its contract:
    // durationMs is measured here on os::clock(), residual is 0 without a data phase and never
    // above bufferLength, senseLength never above kMaxSenseLength.
    ScsiResponse send(const ScsiCommand& command);

protected:
    // Who keeps a command's deadline. A pass-through hands timeoutMs to the operating system,
    // which abandons the command and says so; a target in this process cannot be interrupted,
    // so an answer that took longer than timeoutMs is turned into kStatusTimedOut here.
    enum class Deadline { KeptByDevice, JudgedOnClock };
    explicit Transport(Deadline deadline) : deadline_(deadline) {}

private:
    // Passes a command that got through the gate to the device. `response` comes in GOOD, with
    // no sense and residual 0; the transport sets transportStatus when the command did not
    // reach the device or got no answer, else scsiStatus, sense, senseLength and residual.
    virtual void deliver(const ScsiCommand& command, ScsiResponse& response) = 0;

    Deadline deadline_;
};

// The result of opening a device: a transport, or the status saying why there is none.
struct OpenResult {
    std::unique_ptr<Transport> transport;  // null when status != kStatusGood
    Status status = kStatusGood;
};

// Opens the transport for `deviceName` (UTF-8): the handle entered under that name in the
// table of open devices first (the transport borrows it and never closes it), else a
// registered emulated ScsiTarget of exactly that name, else the operating system's
// pass-through. The caller owns the transport; it closes a device it opened when destroyed.
SCSI_API OpenResult openTransport(const std::string& deviceName);

}  // namespace kivscsi
