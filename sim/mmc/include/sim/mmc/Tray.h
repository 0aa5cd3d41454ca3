// The tray and what lies in it: open or closed, the disc if any, whether medium removal is
// prevented, when a loaded disc becomes ready, and the media event GET EVENT STATUS
// NOTIFICATION reports next.
#pragma once

#include <cstdint>
#include <optional>

#include "sim/mmc/Disc.h"
#include "sim/mmc/Sense.h"

namespace sim::mmc {

// Media Event Code of the media class event.
enum class MediaEvent : uint8_t { None = 0, EjectRequest = 1, NewMedia = 2, MediaRemoval = 3 };

class Tray {
public:
    bool open() const { return open_; }
    bool prevented() const { return prevented_; }
    void setPrevented(bool prevented) { prevented_ = prevented; }

    // The disc in the tray (loaded or lying in the open tray), or null.
    Disc* disc() { return disc_ ? &*disc_ : nullptr; }
    const Disc* disc() const { return disc_ ? &*disc_ : nullptr; }
    // The disc the drive can use now: tray closed and spun up; else null.
    Disc* readyDisc(uint64_t nowMs);
    const Disc* readyDisc(uint64_t nowMs) const;

    // Good when a disc is loaded and ready; else not ready with 3A02 (tray open), 3A01 (no
    // disc) or 0401 (becoming ready).
    Sense readiness(uint64_t nowMs) const;
    uint64_t readyAtMs() const { return readyAtMs_; }

    void openTray();
    // Closes the tray; a disc in it becomes ready `spinUpMs` later.
    void closeTray(uint64_t nowMs, uint32_t spinUpMs);
    void putDisc(Disc disc) { disc_.emplace(std::move(disc)); }
    void takeDisc();
    // Keeps a loaded disc becoming ready until at least `untilMs`.
    void delayReady(uint64_t untilMs);

    // True once after a disc was loaded and has become ready: the not-ready-to-ready change a
    // drive reports as a unit attention. Taking it clears it.
    bool takeMediumChange(uint64_t nowMs);

    void raise(MediaEvent event) { pendingEvent_ = event; }
    // The pending event, which is then cleared.
    MediaEvent takeEvent();

private:
    bool open_ = false;
    bool prevented_ = false;
    uint64_t readyAtMs_ = 0;
    bool mediumChanged_ = false;
    std::optional<Disc> disc_;
    MediaEvent pendingEvent_ = MediaEvent::None;
};

}  // namespace sim::mmc
