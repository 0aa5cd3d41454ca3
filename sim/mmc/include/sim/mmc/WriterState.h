// The emulated writer's whole state and the shape of a command handler. Handlers run with
// the writer's lock held and never sleep: a command that takes time says so in its Reply and
// the writer lets that time pass on the one clock after releasing the lock.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "sim/mmc/Faults.h"
#include "sim/mmc/Sense.h"
#include "sim/mmc/Tray.h"
#include "sim/mmc/WriteCache.h"
#include "sim/mmc/WriterConfig.h"

namespace sim::mmc {

// Bytes of the write parameters page including its two header bytes (page length 32h).
inline constexpr size_t kWriteParametersPageLength = 0x32 + 2;

enum class OperationKind { None, Blank, Format };

// A blank or foreground format in progress: the drive answers "not ready" until endMs.
struct LongOperation {
    OperationKind kind = OperationKind::None;
    uint64_t startMs = 0;
    uint64_t endMs = 0;

    bool running(uint64_t nowMs) const { return kind != OperationKind::None && nowMs < endMs; }
    // Done fraction in 1/65536ths.
    uint16_t progress(uint64_t nowMs) const;
};

struct ModeState {
    std::array<uint8_t, kWriteParametersPageLength> writeParameters{};
    uint16_t requestedWriteSpeed = 0xFFFF;  // kB/s as last set; 0xFFFF = fastest
    uint16_t requestedReadSpeed = 0xFFFF;
};

struct WriterState {
    explicit WriterState(const WriterConfig& config);

    WriterConfig config;
    Tray tray;
    WriteCache cache;
    FaultPlan faults;
    ModeState mode;
    LongOperation operation;
};

// Milliseconds from closing the tray on a disc to a ready disc.
inline uint32_t spinUpMilliseconds(const WriterConfig& config) {
    return config.timed ? config.spinUpMilliseconds : 0;
}

// One command as a handler sees it.
struct Command {
    std::array<uint8_t, 16> cdb{};     // zero past the command block's length
    std::span<const uint8_t> dataOut;  // parameter data sent with the command
    uint32_t dataInLength = 0;         // room the initiator gave for data from the device
    uint64_t nowMs = 0;                // the one clock's monotonic time at arrival
};

struct Reply {
    Sense sense;                // good, or the CHECK CONDITION sense
    std::vector<uint8_t> data;  // data for the initiator, already cut to the allocation length
    uint64_t busyUntilMs = 0;   // the command ends only at this monotonic time
    uint64_t costMicroseconds = 0;
};

inline Reply failure(const Sense& sense) { return Reply{sense, {}, 0, 0}; }
inline Reply failure(uint16_t code) { return failure(senseOf(code)); }
// `data` cut to `allocation` bytes.
Reply answer(std::vector<uint8_t> data, size_t allocation);

using Handler = Reply (*)(WriterState& state, const Command& command);
using HandlerTable = std::array<Handler, 256>;

// Good when the disc can be accessed now; otherwise the tray's not-ready sense or, while a
// blank or format runs, 0407 / 0404 with its progress.
Sense mediumReadiness(const WriterState& state, uint64_t nowMs);

// Puts sectors leaving the cache on the disc, except where a planted fault drops them.
void writeToMedium(WriterState& state, const std::vector<CachedSector>& sectors);

// Writes every dirty cached sector to the disc and forgets the cache (before an eject).
void flushAndDropCache(WriterState& state);

}  // namespace sim::mmc
