#include "sim/mmc/Tray.h"

#include <algorithm>

namespace sim::mmc {

Disc* Tray::readyDisc(uint64_t nowMs) { return readiness(nowMs).good() ? disc() : nullptr; }

const Disc* Tray::readyDisc(uint64_t nowMs) const {
    return readiness(nowMs).good() ? disc() : nullptr;
}

Sense Tray::readiness(uint64_t nowMs) const {
    if (open_) return senseOf(code::kNoMediumTrayOpen);
    if (!disc_) return senseOf(code::kNoMediumTrayClosed);
    if (nowMs < readyAtMs_) return senseOf(code::kBecomingReady);
    return {};
}

void Tray::openTray() {
    if (!open_ && disc_) raise(MediaEvent::MediaRemoval);
    open_ = true;
}

void Tray::closeTray(uint64_t nowMs, uint32_t spinUpMs) {
    if (!open_) return;
    open_ = false;
    if (disc_) {
        readyAtMs_ = nowMs + spinUpMs;
        mediumChanged_ = true;
        raise(MediaEvent::NewMedia);
    }
}

void Tray::takeDisc() {
    disc_.reset();
    mediumChanged_ = false;
}

void Tray::delayReady(uint64_t untilMs) { readyAtMs_ = std::max(readyAtMs_, untilMs); }

bool Tray::takeMediumChange(uint64_t nowMs) {
    if (!mediumChanged_ || !readiness(nowMs).good()) return false;
    mediumChanged_ = false;
    return true;
}

MediaEvent Tray::takeEvent() {
    const MediaEvent event = pendingEvent_;
    pendingEvent_ = MediaEvent::None;
    return event;
}

}  // namespace sim::mmc
