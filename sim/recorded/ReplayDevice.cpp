#include "sim/recorded/ReplayDevice.h"

#include <algorithm>
#include <array>
#include <optional>

#include "scsi/SgIoStatus.h"

namespace sim::recorded {
namespace {

constexpr uint8_t kRequestSense = 0x03;
constexpr uint8_t kInquiry = 0x12;
constexpr uint8_t kStartStopUnit = 0x1B;
constexpr uint8_t kPreventAllowMediumRemoval = 0x1E;
constexpr uint8_t kReadCapacity = 0x25;

constexpr uint8_t kIllegalRequest = 0x05;
constexpr uint16_t kInvalidOpcode = 0x2000;
constexpr uint16_t kInvalidFieldInCdb = 0x2400;

struct Field {
    size_t offset;
    size_t length;
};

// Where a command that returns data carries its allocation length.
std::optional<Field> allocationField(uint8_t opcode) {
    switch (opcode) {
        case kRequestSense:
            return Field{4, 1};
        case kInquiry:
            return Field{3, 2};
        case 0x43:  // READ TOC/PMA/ATIP
        case 0x46:  // GET CONFIGURATION
        case 0x4A:  // GET EVENT STATUS NOTIFICATION
        case 0x51:  // READ DISC INFORMATION
        case 0x5A:  // MODE SENSE(10)
            return Field{7, 2};
        case 0xAD:  // READ DISC STRUCTURE
            return Field{8, 2};
        default:
            return std::nullopt;
    }
}

bool sameCommand(const std::vector<uint8_t>& recorded, const std::vector<uint8_t>& sent) {
    if (recorded.size() != sent.size()) return false;
    const auto allocation = allocationField(sent[0]);
    for (size_t i = 0; i < sent.size(); ++i) {
        const bool isAllocation =
            allocation && i >= allocation->offset && i < allocation->offset + allocation->length;
        if (!isAllocation && recorded[i] != sent[i]) return false;
    }
    return true;
}

// The same answer, one perhaps cut shorter by a smaller allocation length.
bool sameAnswer(const RecordedAnswer& a, const RecordedAnswer& b) {
    const size_t common = std::min(a.data.size(), b.data.size());
    return a.scsiStatus == b.scsiStatus && a.hostStatus == b.hostStatus &&
           a.driverStatus == b.driverStatus && a.hasSense == b.hasSense &&
           a.senseKey == b.senseKey && a.asc == b.asc && a.ascq == b.ascq &&
           std::equal(a.data.begin(), a.data.begin() + static_cast<std::ptrdiff_t>(common),
                      b.data.begin());
}

bool recordedWithTrayOpen(const RecordedAnswer& answer) {
    return answer.label.find("(tray open)") != std::string::npos;
}

bool recordedWhilePrevented(const RecordedAnswer& answer) {
    return answer.label.find("(prevented)") != std::string::npos;
}

void putFixedSense(kivscsi::ScsiResponse& response, uint8_t key, uint8_t asc, uint8_t ascq) {
    constexpr uint8_t kLength = 18;
    std::array<uint8_t, kLength> sense{};
    sense[0] = 0x70;  // current error, fixed format
    sense[2] = key;
    sense[7] = kLength - 8;
    sense[12] = asc;
    sense[13] = ascq;
    response.scsiStatus = kivscsi::kScsiCheckCondition;
    std::copy(sense.begin(), sense.end(), response.sense.begin());
    response.senseLength = kLength;
}

}  // namespace

ReplayDevice::ReplayDevice(std::vector<RecordedAnswer> answers) : answers_(std::move(answers)) {}

const RecordedAnswer* ReplayDevice::find(const std::vector<uint8_t>& cdb) const {
    std::vector<const RecordedAnswer*> candidates;
    for (const RecordedAnswer& answer : answers_) {
        if (sameCommand(answer.cdb, cdb)) candidates.push_back(&answer);
    }
    if (candidates.empty()) {
        for (const RecordedAnswer& answer : answers_) {
            if (answer.cdb[0] == cdb[0] && recordedWithTrayOpen(answer) == trayOpen_) {
                candidates.push_back(&answer);
            }
        }
        const bool allAlike = std::all_of(candidates.begin(), candidates.end(), [&](auto* a) {
            return sameAnswer(*a, *candidates.front());
        });
        if (!allAlike) return nullptr;
    }
    const auto inState = [&](bool matchPrevent) {
        return std::find_if(candidates.begin(), candidates.end(), [&](const RecordedAnswer* a) {
            return recordedWithTrayOpen(*a) == trayOpen_ &&
                   (!matchPrevent || recordedWhilePrevented(*a) == prevented_);
        });
    };
    if (auto found = inState(true); found != candidates.end()) return *found;
    if (auto found = inState(false); found != candidates.end()) return *found;
    return candidates.empty() ? nullptr : candidates.front();
}

void ReplayDevice::follow(const std::vector<uint8_t>& cdb) {
    if (cdb.size() < 5) return;
    if (cdb[0] == kPreventAllowMediumRemoval) prevented_ = (cdb[4] & 0x01) != 0;
    const bool loadEject = (cdb[4] & 0x02) != 0;
    if (cdb[0] == kStartStopUnit && loadEject) trayOpen_ = (cdb[4] & 0x01) == 0;
}

void ReplayDevice::execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) {
    std::lock_guard lock(mutex_);
    const std::vector<uint8_t> cdb(command.cdb.begin(), command.cdb.begin() + command.cdbLength);
    const RecordedAnswer* answer = find(cdb);
    if (answer == nullptr) {
        unrecorded_.push_back(cdb);
        const bool known = std::any_of(answers_.begin(), answers_.end(),
                                       [&](const RecordedAnswer& a) { return a.cdb[0] == cdb[0]; });
        const uint16_t code = known ? kInvalidFieldInCdb : kInvalidOpcode;
        putFixedSense(response, kIllegalRequest, static_cast<uint8_t>(code >> 8),
                      static_cast<uint8_t>(code));
        return;
    }
    response.transportStatus =
        kivscsi::statusFromSgIoHost(answer->hostStatus, answer->driverStatus);
    if (response.transportStatus != kivscsi::kStatusGood) return;
    if (answer->hasSense) putFixedSense(response, answer->senseKey, answer->asc, answer->ascq);
    response.scsiStatus = answer->scsiStatus;
    if (command.direction == kivscsi::DataDirection::FromDevice && answer->good()) {
        auto* buffer = static_cast<uint8_t*>(command.buffer);
        const size_t count = std::min<size_t>(answer->data.size(), command.bufferLength);
        std::copy_n(answer->data.begin(), count, buffer);
        std::fill(buffer + count, buffer + command.bufferLength, uint8_t{0});
    }
    response.residual = std::min(answer->residual, command.bufferLength);
    if (answer->good()) follow(cdb);
}

os::GeometryResult ReplayDevice::geometry() {
    std::lock_guard lock(mutex_);
    os::GeometryResult result;
    const RecordedAnswer* capacity = find({kReadCapacity, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    if (capacity == nullptr || !capacity->good() || capacity->data.size() < 8) {
        result.error = os::makeError(os::errorCodeBusy(), "no disc ready in the recording");
        return result;
    }
    const auto be32 = [&](size_t at) {
        return uint32_t{capacity->data[at]} << 24 | uint32_t{capacity->data[at + 1]} << 16 |
               uint32_t{capacity->data[at + 2]} << 8 | capacity->data[at + 3];
    };
    const uint64_t blocks = uint64_t{be32(0)} + 1;
    result.geometry.bytesPerSector = be32(4);
    result.geometry.sectorsPerTrack = 1;
    result.geometry.tracksPerCylinder = 1;
    result.geometry.cylinders = blocks;
    result.geometry.totalBytes = blocks * result.geometry.bytesPerSector;
    return result;
}

std::vector<std::vector<uint8_t>> ReplayDevice::unrecorded() const {
    std::lock_guard lock(mutex_);
    return unrecorded_;
}

std::vector<std::string> registerRecordedDevices() {
    std::vector<std::string> names;
    for (RecordedDevice& device : parseRecordedAnswers(qemuScsiCdAnswers())) {
        names.push_back("recorded:" + device.name);
        os::registerEmulatedDevice(names.back(),
                                   std::make_shared<ReplayDevice>(std::move(device.answers)));
    }
    return names;
}

}  // namespace sim::recorded
