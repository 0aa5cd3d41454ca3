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

bool oneOf(uint8_t value, std::initializer_list<uint8_t> allowed) {
    return std::find(allowed.begin(), allowed.end(), value) != allowed.end();
}

}  // namespace

Disc::Disc(DiscModel model) : model_(std::move(model)) {
    const Recording kindRecording = traits().recording;
    if (kindRecording == Recording::ReadOnly) {
        complete_ = true;
        recorded_ = model_.capacitySectors;
        closedSessions_ = 1;
        closedTracks_ = 1;
        return;
    }
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
    closedSessions_ = 1;
    closedTracks_ = 1;
    complete_ = model_.status == DiscStatus::Complete;
    if (!complete_) lastSessionFirstTrack_ = 2;
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
    if (recorded_ == 0 && closedSessions_ == 0) return DiscStatus::Blank;
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

uint16_t Disc::sessions() const {
    if (recording() != Recording::Sequential) return 1;
    return static_cast<uint16_t>(closedSessions_ + (complete_ ? 0 : 1));
}

uint16_t Disc::firstTrackInLastSession() const {
    return recording() == Recording::Sequential ? lastSessionFirstTrack_ : 1;
}

uint16_t Disc::lastTrackInLastSession() const {
    if (recording() != Recording::Sequential) return 1;
    return static_cast<uint16_t>(closedTracks_ + (complete_ ? 0 : 1));
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
        ++closedTracks_;
        return {};
    }
    if (complete_ || !sessionHasData_) return senseOf(code::kCommandSequenceError);
    if (trackOpen_) {
        trackOpen_ = false;
        ++closedTracks_;
    }
    ++closedSessions_;
    sessionHasData_ = false;
    // Function 2 leaves room for another session when the write parameters ask for one;
    // functions 3 to 6 finalize the disc.
    if (function == 2 && multiSession) {
        lastSessionFirstTrack_ = static_cast<uint16_t>(closedTracks_ + 1);
    } else {
        complete_ = true;
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
    closedSessions_ = 0;
    closedTracks_ = 0;
    lastSessionFirstTrack_ = 1;
}

}  // namespace sim::mmc
