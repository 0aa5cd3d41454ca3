#include "sim/mmc/Disc.h"

#include <algorithm>

namespace sim::mmc {
namespace {

constexpr uint8_t kFormatFull = 0x00;
constexpr uint8_t kFormatSpareExpansion = 0x01;
constexpr uint8_t kFormatDvdMinusRwFull = 0x10;
constexpr uint8_t kFormatDvdMinusRwQuick = 0x15;
constexpr uint8_t kFormatDvdPlusRw = 0x26;
constexpr uint8_t kFormatBdReWithSpare = 0x30;
constexpr uint8_t kFormatBdReWithoutSpare = 0x31;
constexpr uint8_t kFormatBdRWithSpare = 0x32;
constexpr uint8_t kUsageFill = 0xBD;  // the read/write test's fill byte

bool oneOf(uint8_t value, std::initializer_list<uint8_t> allowed) {
    return std::find(allowed.begin(), allowed.end(), value) != allowed.end();
}

}  // namespace

Disc::Disc(DiscModel model) : model_(std::move(model)) {
    const Recording kindRecording = traits().recording;
    if (kindRecording == Recording::ReadOnly) {
        complete_ = true;
        recorded_ = model_.capacitySectors;
        return;
    }
    if (model_.usageCount && model_.status == DiscStatus::Blank) {
        model_.status = DiscStatus::Appendable;
    }
    if (model_.usageCount) storeUsageMarker(*model_.usageCount);
    if (model_.kind == MediaKind::DvdMinusRw &&
        model_.profile == kProfileDvdMinusRwRestrictedOverwrite) {
        restrictedOverwrite_ = true;
        formatted_ = true;
        return;
    }
    if (kindRecording == Recording::Overwrite) {
        formatted_ = model_.status != DiscStatus::Blank;
        return;
    }
    if (model_.status == DiscStatus::Blank) return;
    recorded_ = std::min(model_.recordedSectors, model_.capacitySectors);
    if (model_.usageCount) recorded_ = std::max<uint32_t>(recorded_, 1);
    complete_ = model_.status == DiscStatus::Complete;
    if (!complete_) {
        trackStarts_.push_back(recorded_);
        sessionFirstTracks_.push_back(2);
    }
}

void Disc::storeUsageMarker(uint16_t count) {
    std::vector<uint8_t> sector(kSectorBytes, kUsageFill);
    sector[0] = sector[2] = static_cast<uint8_t>(count >> 8);
    sector[1] = sector[3] = static_cast<uint8_t>(count);
    sectors_[0] = std::move(sector);
}

std::span<const uint16_t> Disc::writeSpeeds() const {
    if (!model_.writeSpeeds.empty()) return model_.writeSpeeds;
    return traits().writeSpeeds;
}

uint16_t Disc::profile() const {
    if (model_.kind == MediaKind::DvdMinusRw) {
        return restrictedOverwrite_ ? kProfileDvdMinusRwRestrictedOverwrite
                                    : kProfileDvdMinusRwSequential;
    }
    return model_.profile;
}

Recording Disc::recording() const {
    return restrictedOverwrite_ ? Recording::Overwrite : traits().recording;
}

DiscStatus Disc::status() const {
    switch (recording()) {
        case Recording::ReadOnly:
            return DiscStatus::Complete;
        case Recording::Overwrite:
            return formatted_ ? DiscStatus::Complete : DiscStatus::Blank;
        case Recording::Sequential:
            break;
    }
    if (complete_) return DiscStatus::Complete;
    if (recorded_ == 0 && closedSessions() == 0) return DiscStatus::Blank;
    return DiscStatus::Appendable;
}

SessionState Disc::lastSessionState() const {
    switch (status()) {
        case DiscStatus::Complete:
            return SessionState::Complete;
        case DiscStatus::Blank:
            return SessionState::Empty;
        case DiscStatus::Appendable:
            break;
    }
    return sessionHasData_ ? SessionState::Incomplete : SessionState::Empty;
}

bool Disc::erasable() const {
    return traits().blankable || traits().recording == Recording::Overwrite;
}

uint32_t Disc::readableSectors() const {
    switch (recording()) {
        case Recording::ReadOnly:
            return model_.capacitySectors;
        case Recording::Overwrite:
            return formatted_ ? model_.capacitySectors : 0;
        case Recording::Sequential:
            break;
    }
    return recorded_;
}

uint16_t Disc::closedSessions() const {
    const size_t listed = sessionFirstTracks_.size();
    return static_cast<uint16_t>(complete_ ? listed : listed - 1);
}

uint16_t Disc::sessions() const {
    if (recording() != Recording::Sequential) return 1;
    return static_cast<uint16_t>(sessionFirstTracks_.size());
}

uint16_t Disc::firstTrackInLastSession() const {
    return recording() == Recording::Sequential ? sessionFirstTracks_.back() : 1;
}

uint16_t Disc::lastTrackInLastSession() const {
    if (recording() != Recording::Sequential) return 1;
    return static_cast<uint16_t>(trackStarts_.size());
}

std::optional<TrackExtent> Disc::track(uint16_t number) const {
    if (number == 0 || number > lastTrackInLastSession()) return std::nullopt;
    TrackExtent extent;
    extent.number = number;
    extent.session = 1;
    if (recording() != Recording::Sequential) {
        extent.size = model_.capacitySectors;
        extent.recorded = readableSectors();
        return extent;
    }
    for (size_t i = 1; i < sessionFirstTracks_.size() && sessionFirstTracks_[i] <= number; ++i) {
        extent.session = static_cast<uint16_t>(i + 1);
    }
    extent.start = trackStarts_[number - 1];
    extent.incomplete = !complete_ && number == trackStarts_.size();
    const uint32_t end = extent.incomplete              ? model_.capacitySectors
                         : number < trackStarts_.size() ? trackStarts_[number]
                                                        : recorded_;
    extent.size = end - extent.start;
    extent.recorded = (extent.incomplete ? recorded_ : end) - extent.start;
    return extent;
}

std::optional<TrackExtent> Disc::trackHolding(uint32_t lba) const {
    for (uint16_t number = 1; number <= lastTrackInLastSession(); ++number) {
        const auto extent = track(number);
        if (lba >= extent->start && lba - extent->start < extent->size) return extent;
    }
    return std::nullopt;
}

bool Disc::formatsInBackground() const {
    return model_.kind == MediaKind::DvdPlusRw || model_.kind == MediaKind::BdRe;
}

BackgroundFormat Disc::backgroundFormat(uint64_t nowMs) const {
    if (!formatsInBackground()) return BackgroundFormat::None;
    if (!backgroundFormatStarted_) {
        return formatted_ ? BackgroundFormat::Done : BackgroundFormat::None;
    }
    if (backgroundFormatStopped_) return BackgroundFormat::Stopped;
    if (nowMs < backgroundFormatStartMs_) return BackgroundFormat::None;
    return nowMs < backgroundFormatEndMs_ ? BackgroundFormat::Running : BackgroundFormat::Done;
}

std::optional<uint16_t> Disc::backgroundFormatProgress(uint64_t nowMs) const {
    if (backgroundFormat(nowMs) != BackgroundFormat::Running) return std::nullopt;
    return static_cast<uint16_t>((nowMs - backgroundFormatStartMs_) * 0x10000 /
                                 (backgroundFormatEndMs_ - backgroundFormatStartMs_));
}

Sense Disc::acceptWrite(uint32_t lba, uint32_t count) {
    const uint64_t end = uint64_t{lba} + count;
    switch (recording()) {
        case Recording::ReadOnly:
            return senseOf(code::kCannotWriteIncompatibleFormat);
        case Recording::Overwrite:
            if (!formatted_) return senseOf(code::kCannotWriteUnknownFormat);
            if (end > model_.capacitySectors) return senseOf(code::kLbaOutOfRange);
            return {};
        case Recording::Sequential:
            break;
    }
    if (count == 0) return {};
    if (complete_ || lba != recorded_) return senseOf(code::kInvalidAddressForWrite);
    if (end > model_.capacitySectors) return senseOf(code::kLbaOutOfRange);
    recorded_ += count;
    trackOpen_ = true;
    sessionHasData_ = true;
    return {};
}

void Disc::storeData(uint32_t lba, std::span<const uint8_t> data) {
    sectors_[lba].assign(data.begin(), data.end());
}

void Disc::readData(uint32_t lba, std::span<uint8_t> out) const {
    const auto found = sectors_.find(lba);
    if (found == sectors_.end()) {
        std::fill(out.begin(), out.end(), uint8_t{0});
        return;
    }
    const size_t n = std::min(out.size(), found->second.size());
    std::copy_n(found->second.begin(), n, out.begin());
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(n), out.end(), uint8_t{0});
}

Sense Disc::close(uint8_t function, bool multiSession, uint64_t nowMs) {
    const Recording mode = recording();
    if (mode == Recording::ReadOnly) return senseOf(code::kCannotWriteIncompatibleFormat);
    if (function == 0) {
        if (!formatsInBackground()) return senseOf(code::kInvalidFieldInCdb);
        if (backgroundFormat(nowMs) == BackgroundFormat::Running) backgroundFormatStopped_ = true;
        return {};
    }
    if (function > 6) return senseOf(code::kInvalidFieldInCdb);
    if (mode == Recording::Overwrite) {
        return formatted_ ? Sense{} : senseOf(code::kCommandSequenceError);
    }
    if (function == 1) {
        if (!trackOpen_) return senseOf(code::kCommandSequenceError);
        trackOpen_ = false;
        trackStarts_.push_back(recorded_);
        return {};
    }
    if (complete_ || !sessionHasData_) return senseOf(code::kCommandSequenceError);
    if (trackOpen_) {
        trackOpen_ = false;
        trackStarts_.push_back(recorded_);
    }
    sessionHasData_ = false;
    // Function 2 leaves room for another session when the write parameters ask for one;
    // functions 3 to 6 finalize the disc, and the empty track after the last one goes.
    if (function == 2 && multiSession) {
        sessionFirstTracks_.push_back(static_cast<uint16_t>(trackStarts_.size()));
    } else {
        complete_ = true;
        trackStarts_.pop_back();
    }
    return {};
}

Sense Disc::blank(uint8_t type, uint32_t& seconds) {
    if (!traits().blankable) return senseOf(code::kCannotWriteIncompatibleFormat);
    if (type == 0) {
        seconds = model_.fullBlankSeconds;
    } else if (type == 1) {
        seconds = model_.minimalBlankSeconds;
    } else {
        return senseOf(code::kInvalidFieldInCdb);
    }
    eraseAll();
    restrictedOverwrite_ = false;
    formatted_ = false;
    return {};
}

Sense Disc::format(uint8_t formatType, uint64_t nowMs, uint32_t& seconds) {
    seconds = model_.formatSeconds;
    if (backgroundFormat(nowMs) == BackgroundFormat::Running) {
        return senseOf(code::kCommandSequenceError);
    }
    switch (model_.kind) {
        case MediaKind::DvdPlusRw:
            if (formatType != kFormatDvdPlusRw) break;
            seconds = 0;
            startFormatting(nowMs);
            return {};
        case MediaKind::DvdMinusRw:
            if (!oneOf(formatType, {kFormatDvdMinusRwFull, kFormatDvdMinusRwQuick})) break;
            eraseAll();
            restrictedOverwrite_ = true;
            formatted_ = true;
            return {};
        case MediaKind::BdRe:
            if (!oneOf(formatType, {kFormatFull, kFormatBdReWithSpare, kFormatBdReWithoutSpare})) {
                break;
            }
            startFormatting(nowMs + uint64_t{seconds} * 1000);
            return {};
        case MediaKind::DvdRam:
        case MediaKind::HdDvdRam:
            if (!oneOf(formatType, {kFormatFull, kFormatSpareExpansion})) break;
            eraseAll();
            formatted_ = true;
            return {};
        case MediaKind::BdR:
            // Reserving spare areas changes nothing the writer models.
            if (formatType != kFormatBdRWithSpare || status() != DiscStatus::Blank) break;
            return {};
        default:
            return senseOf(code::kCannotFormatIncompatibleMedium);
    }
    return senseOf(code::kInvalidFieldInParameterList);
}

void Disc::startFormatting(uint64_t backgroundStartMs) {
    eraseAll();
    formatted_ = true;
    backgroundFormatStarted_ = true;
    backgroundFormatStopped_ = false;
    backgroundFormatStartMs_ = backgroundStartMs;
    backgroundFormatEndMs_ = backgroundStartMs + uint64_t{model_.backgroundFormatSeconds} * 1000;
}

void Disc::eraseAll() {
    sectors_.clear();
    recorded_ = 0;
    complete_ = false;
    trackOpen_ = false;
    sessionHasData_ = false;
    trackStarts_ = {0};
    sessionFirstTracks_ = {1};
}

}  // namespace sim::mmc
