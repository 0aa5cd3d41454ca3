// sim::mmc::Disc: the state of one disc: what is recorded where, its sessions and tracks, its
// status, and what writing, closing, blanking and formatting do to it.
//
// Timing lives elsewhere: the disc changes at once, and the writer keeps the drive busy for
// the operation's virtual duration. Data written through the drive's cache reaches the disc
// through storeData(); acceptWrite() does the bookkeeping when the command arrives.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "sim/mmc/DiscModel.h"
#include "sim/mmc/MediaKind.h"
#include "sim/mmc/Sense.h"

namespace sim::mmc {

// The State of Last Session field of the disc information.
enum class SessionState : uint8_t { Empty = 0, Incomplete = 1, Complete = 3 };

// The BG Format Status field of the disc information.
enum class BackgroundFormat : uint8_t { None = 0, Stopped = 1, Running = 2, Done = 3 };

// One track as READ TRACK INFORMATION describes it. Addresses and sizes in sectors.
struct TrackExtent {
    uint16_t number = 0;
    uint16_t session = 0;
    uint32_t start = 0;
    uint32_t size = 0;        // to the track's end; the incomplete track reaches the disc's end
    uint32_t recorded = 0;    // sectors written in it
    bool incomplete = false;  // the track writing appends to (the invisible track while empty)
};

class Disc {
public:
    explicit Disc(DiscModel model);

    const DiscModel& model() const { return model_; }
    const MediaTraits& traits() const { return traitsOf(model_.kind); }
    // kB/s, fastest first: the model's own list, else the kind's.
    std::span<const uint16_t> writeSpeeds() const;
    uint16_t profile() const;
    Recording recording() const;
    DiscStatus status() const;
    SessionState lastSessionState() const;
    bool erasable() const;
    uint32_t capacity() const { return model_.capacitySectors; }
    // Sectors from 0 that a READ may reach.
    uint32_t readableSectors() const;
    // The next writable address of a sequential disc; 0 otherwise.
    uint32_t nextWritable() const { return recorded_; }
    uint16_t sessions() const;
    uint16_t firstTrackInLastSession() const;
    uint16_t lastTrackInLastSession() const;
    // Track `number` (1 to lastTrackInLastSession()); nothing for any other number.
    std::optional<TrackExtent> track(uint16_t number) const;
    // The track that holds `lba`, the incomplete track's free space included; nothing past
    // the last track.
    std::optional<TrackExtent> trackHolding(uint32_t lba) const;
    // DVD+RW and BD-RE go on formatting in the background after FORMAT UNIT has ended.
    bool formatsInBackground() const;
    BackgroundFormat backgroundFormat(uint64_t nowMs) const;
    // Done fraction of a running background format in 1/65536ths; nothing when none runs.
    std::optional<uint16_t> backgroundFormatProgress(uint64_t nowMs) const;

    // Takes `count` sectors at `lba` into the disc's layout (the data follows via storeData).
    // Returns a non-good sense, changing nothing, when the disc cannot take them there.
    Sense acceptWrite(uint32_t lba, uint32_t count);
    // Puts one sector's bytes on the medium. REQUIRES: the sector was accepted; `data` is
    // kSectorBytes long.
    void storeData(uint32_t lba, std::span<const uint8_t> data);
    // Copies one recorded sector into `out` (kSectorBytes); never written sectors read as zeros.
    void readData(uint32_t lba, std::span<uint8_t> out) const;
    // Whether anything was ever stored at `lba`.
    bool holdsData(uint32_t lba) const { return sectors_.count(lba) != 0; }

    // CLOSE TRACK/SESSION functions (1 track, 2 session, 3..6 finalize, 0 stop background
    // format); `multiSession` is the write parameters' Multi-session field being non-zero.
    Sense close(uint8_t function, bool multiSession, uint64_t nowMs);
    // BLANK type 0 (whole disc) or 1 (minimal). Returns the seconds it takes, or the sense.
    Sense blank(uint8_t type, uint32_t& seconds);
    // FORMAT UNIT with a format type; `seconds` the foreground time (0 for DVD+RW, whose
    // format goes on in the background from the start). A format while a background format
    // still runs is out of sequence.
    Sense format(uint8_t formatType, uint64_t nowMs, uint32_t& seconds);

private:
    void eraseAll();
    uint16_t closedSessions() const;
    // Puts the usage marker of the read/write test in sector 0.
    void storeUsageMarker(uint16_t count);
    // Erases the disc, which is formatted from now on, and starts a background format.
    void startFormatting(uint64_t backgroundStartMs);

    DiscModel model_;
    std::map<uint32_t, std::vector<uint8_t>> sectors_;
    uint32_t recorded_ = 0;  // sequential: sectors recorded so far
    bool complete_ = false;
    bool trackOpen_ = false;
    bool sessionHasData_ = false;
    // Sequential: the start of every track and the first track of every session, the
    // incomplete track and the open session included until the disc is complete.
    std::vector<uint32_t> trackStarts_{0};
    std::vector<uint16_t> sessionFirstTracks_{1};
    bool formatted_ = false;            // overwrite mode reached
    bool restrictedOverwrite_ = false;  // DVD-RW formatted for overwriting
    // The last background format: it runs from its start to its end unless stopped.
    bool backgroundFormatStarted_ = false;
    bool backgroundFormatStopped_ = false;
    uint64_t backgroundFormatStartMs_ = 0;
    uint64_t backgroundFormatEndMs_ = 0;
};

}  // namespace sim::mmc
