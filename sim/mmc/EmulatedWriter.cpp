#include "sim/mmc/EmulatedWriter.h"

#include <algorithm>
#include <cstring>

#include "Bytes.h"
#include "Commands.h"
#include "ModePages.h"
#include "os/Clock.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

uint64_t now() { return os::clock().monotonicMilliseconds(); }

std::optional<SectorRange> sectorsOf(const std::array<uint8_t, 16>& cdb) {
    switch (cdb[0]) {
        case kivscsi::opcode::kRead10:
        case kivscsi::opcode::kWrite10:
            return SectorRange{be32(&cdb[2]), be16(&cdb[7])};
        case kivscsi::opcode::kRead12:
        case kivscsi::opcode::kWrite12:
            return SectorRange{be32(&cdb[2]), be32(&cdb[6])};
        default:
            return std::nullopt;
    }
}

void sleepUntil(uint64_t deadlineMs) {
    for (uint64_t t = now(); t < deadlineMs; t = now()) {
        os::sleepMilliseconds(
            static_cast<uint32_t>(std::min<uint64_t>(deadlineMs - t, 0xFFFFFFFEu)));
    }
}

// Commands a pending unit attention lets through untouched.
bool passesUnitAttentionBy(uint8_t op) {
    return op == kivscsi::opcode::kInquiry || op == kivscsi::opcode::kGetConfiguration ||
           op == kivscsi::opcode::kGetEventStatusNotification;
}

// The unit attention of a medium change, as the failure of the command that meets it or, for
// REQUEST SENSE, as its sense data.
Reply mediumChangeAttention(const Command& command) {
    const Sense attention = senseOf(code::kNotReadyToReadyChange);
    if (command.cdb[0] != kivscsi::opcode::kRequestSense) return failure(attention);
    const auto data = fixedSenseData(attention);
    return answer({data.begin(), data.end()}, command.cdb[4]);
}

// `disc` with blanking and formatting, in the foreground and the background, ending at once.
DiscModel untimed(DiscModel disc) {
    disc.minimalBlankSeconds = 0;
    disc.fullBlankSeconds = 0;
    disc.formatSeconds = 0;
    disc.backgroundFormatSeconds = 0;
    return disc;
}

constexpr uint32_t kTracksPerCylinder = 64;
constexpr uint32_t kSectorsPerTrack = 32;

}  // namespace

EmulatedWriter::EmulatedWriter(const WriterConfig& config) : state_(config) {
    addReadinessCommands(handlers_);
    addConfigurationCommands(handlers_);
    addDiscInformationCommands(handlers_);
    addTrackCommands(handlers_);
    addDiscStructureCommands(handlers_);
    addModeCommands(handlers_);
    addDataCommands(handlers_);
    addRecordingCommands(handlers_);
}

EmulatedWriter::~EmulatedWriter() = default;

os::Error EmulatedWriter::open(uint32_t) {
    std::lock_guard lock(mutex_);
    if (state_.faults.gone()) return os::makeError(os::errorCodeNotFound(), "emulated writer gone");
    return {};
}

os::GeometryResult EmulatedWriter::geometry() {
    std::lock_guard lock(mutex_);
    os::GeometryResult result;
    if (state_.faults.gone()) {
        result.error = os::makeError(os::errorCodeNotFound(), "emulated writer gone");
        return result;
    }
    if (!mediumReadiness(state_, now()).good()) {
        result.error = os::makeError(os::errorCodeBusy(), "no disc ready");
        return result;
    }
    const uint64_t sectors = state_.tray.disc()->capacity();
    result.geometry.bytesPerSector = kSectorBytes;
    result.geometry.sectorsPerTrack = kSectorsPerTrack;
    result.geometry.tracksPerCylinder = kTracksPerCylinder;
    result.geometry.cylinders = sectors / (kSectorsPerTrack * kTracksPerCylinder);
    result.geometry.totalBytes = sectors * kSectorBytes;
    return result;
}

void EmulatedWriter::execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) {
    std::unique_lock lock(mutex_);
    Command received;
    received.nowMs = now();
    const size_t cdbLength = std::min<size_t>(command.cdbLength, received.cdb.size());
    std::copy_n(command.cdb.begin(), cdbLength, received.cdb.begin());
    if (command.direction == kivscsi::DataDirection::ToDevice && command.buffer != nullptr) {
        received.dataOut = {static_cast<const uint8_t*>(command.buffer), command.bufferLength};
    }
    if (command.direction == kivscsi::DataDirection::FromDevice && command.buffer != nullptr) {
        received.dataInLength = command.bufferLength;
    }
    CommandRecord record{
        {received.cdb.begin(), received.cdb.begin() + cdbLength}, {}, false, received.nowMs};

    if (state_.faults.gone()) {
        response.transportStatus = kivscsi::kStatusDeviceGone;
        record.deviceGone = true;
        history_.push_back(std::move(record));
        return;
    }

    const uint8_t op = received.cdb[0];
    Reply reply;
    if (state_.config.unitAttentionOnMediumChange && !passesUnitAttentionBy(op) &&
        state_.tray.takeMediumChange(received.nowMs)) {
        reply = mediumChangeAttention(received);
    } else if (const auto planted = state_.faults.hit(op, sectorsOf(received.cdb))) {
        reply = failure(*planted);
    } else if (handlers_[op] != nullptr) {
        reply = handlers_[op](state_, received);
    } else {
        reply = failure(code::kInvalidOpcode);
    }

    record.sense = reply.sense;
    if (!reply.sense.good()) {
        const auto sense = fixedSenseData(reply.sense);
        response.scsiStatus = kivscsi::kScsiCheckCondition;
        std::copy(sense.begin(), sense.end(), response.sense.begin());
        response.senseLength = static_cast<uint8_t>(sense.size());
        reply.data.clear();
    }
    if (command.direction == kivscsi::DataDirection::FromDevice) {
        const size_t n = std::min<size_t>(reply.data.size(), received.dataInLength);
        if (n > 0) std::memcpy(command.buffer, reply.data.data(), n);
        response.residual = static_cast<uint32_t>(command.bufferLength - n);
    }
    history_.push_back(std::move(record));

    if (!state_.config.timed) return;
    unchargedMicroseconds_ += reply.costMicroseconds;
    const uint64_t transferMs = unchargedMicroseconds_ / 1000;
    unchargedMicroseconds_ %= 1000;
    lock.unlock();

    if (transferMs > 0) sleepUntil(now() + transferMs);
    sleepUntil(reply.busyUntilMs);
}

void EmulatedWriter::insertDisc(const DiscModel& disc) {
    std::lock_guard lock(mutex_);
    flushAndDropCache(state_);
    state_.tray.openTray();
    state_.tray.putDisc(Disc(state_.config.timed ? disc : untimed(disc)));
    state_.tray.closeTray(now(), spinUpMilliseconds(state_.config));
}

void EmulatedWriter::removeDisc() {
    std::lock_guard lock(mutex_);
    flushAndDropCache(state_);
    state_.tray.openTray();
    state_.tray.takeDisc();
}

bool EmulatedWriter::pressEjectButton() {
    std::lock_guard lock(mutex_);
    Tray& tray = state_.tray;
    if (tray.open()) {
        tray.closeTray(now(), spinUpMilliseconds(state_.config));
        return true;
    }
    if (tray.prevented()) {
        tray.raise(MediaEvent::EjectRequest);
        return false;
    }
    flushAndDropCache(state_);
    tray.openTray();
    return true;
}

void EmulatedWriter::injectSense(const SenseFault& fault) {
    std::lock_guard lock(mutex_);
    state_.faults.add(fault);
}

void EmulatedWriter::keepBecomingReadyFor(uint32_t milliseconds) {
    std::lock_guard lock(mutex_);
    state_.tray.delayReady(now() + milliseconds);
}

void EmulatedWriter::loseWritesAt(uint32_t lba) {
    std::lock_guard lock(mutex_);
    state_.faults.loseWritesAt(lba);
}

void EmulatedWriter::holdStaleData(uint32_t lba, std::vector<uint8_t> sector) {
    std::lock_guard lock(mutex_);
    sector.resize(kSectorBytes);
    writeToMedium(state_, state_.cache.put(lba, std::move(sector), false));
}

void EmulatedWriter::disappear() {
    std::lock_guard lock(mutex_);
    state_.faults.setGone(true);
}

void EmulatedWriter::reappear() {
    std::lock_guard lock(mutex_);
    state_.faults.setGone(false);
}

void EmulatedWriter::clearFaults() {
    std::lock_guard lock(mutex_);
    state_.faults.clear();
}

WriterSnapshot EmulatedWriter::snapshot() const {
    std::lock_guard lock(mutex_);
    const uint64_t t = now();
    const Tray& tray = state_.tray;
    const Disc* disc = tray.disc();
    WriterSnapshot shot;
    shot.trayOpen = tray.open();
    shot.removalPrevented = tray.prevented();
    shot.discInTray = disc != nullptr;
    shot.ready = mediumReadiness(state_, t).good();
    shot.dirtyCacheSectors = state_.cache.dirtySectors();
    if (disc != nullptr) {
        shot.profile = disc->profile();
        shot.status = disc->status();
        shot.nextWritable = disc->nextWritable();
        shot.readableSectors = disc->readableSectors();
        shot.currentWriteSpeed = effectiveWriteSpeed(state_.mode.requestedWriteSpeed, disc);
    }
    return shot;
}

std::optional<std::vector<uint8_t>> EmulatedWriter::mediumSector(uint32_t lba) const {
    std::lock_guard lock(mutex_);
    const Disc* disc = state_.tray.disc();
    if (disc == nullptr) return std::nullopt;
    std::vector<uint8_t> sector(kSectorBytes);
    disc->readData(lba, sector);
    return sector;
}

std::vector<CommandRecord> EmulatedWriter::history() const {
    std::lock_guard lock(mutex_);
    return history_;
}

void EmulatedWriter::clearHistory() {
    std::lock_guard lock(mutex_);
    history_.clear();
}

std::shared_ptr<EmulatedWriter> registerEmulatedWriter(const std::string& name,
                                                       const WriterConfig& config) {
    auto writer = std::make_shared<EmulatedWriter>(config);
    os::registerEmulatedDevice(name, writer);
    return writer;
}

}  // namespace sim::mmc
