// The text that names an emulated optical writer on the command line:
//
//   emu:KIND[,OPTION]...
//
// KIND is a kind of disc (cd-r, dvd+rw, bd-re, dvd-rom, ...: optical/OpticalMedia.h) or none for
// an empty tray. OPTIONs:
//   used             the disc holds data (an appendable write-once disc, a formatted one)
//   closed           the disc is closed (complete)
//   full             nothing is left to write (appendable, every sector recorded)
//   uses=N           sector 0 carries the read/write test's usage marker: used N times
//   maker=ID, disc-id=ID   the manufacturer and media type IDs (DVD, BD)
//   lead-in=MM:SS:FF, lead-out=MM:SS:FF   the ATIP times (CD)
//   speeds=KBPS[/KBPS]...   the write speeds the disc allows, in kB/s (default: its kind's)
//   fault=OP:CODE[@LBA][#N][*TIMES]
//                    commands OP (read, fua-read: from the medium, write, flush, close,
//                    blank, format, ready, speed or any) answer the sense code CODE (4 hex digits,
//                    ASC and ASCQ), only when they touch LBA, from the Nth one; TIMES commands
//                    (default: every one from then on with @LBA, one without), 0 for every one
//   stale=LBA        after each cache flush the cache holds stale data for LBA
//   lose=LBA         writes to LBA never reach the disc
//   vanish=N         the drive goes away at its Nth command
//   instant          every operation takes no time (for benchmarks)
// At most 64 options.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/mmc/DiscModel.h"
#include "sim/mmc/Faults.h"
#include "sim/mmc/WriterConfig.h"

namespace host {

struct EmulatedWriterSetup {
    sim::mmc::WriterConfig config;
    std::optional<sim::mmc::DiscModel> disc;  // none: the tray is empty
    std::vector<sim::mmc::SenseFault> faults;
    std::vector<uint32_t> staleAfterFlush;
    std::vector<uint32_t> lostWrites;
    std::optional<uint32_t> vanishAtCommand;  // 1 = the first command
};

// True when `text` names an emulated writer (starts with "emu:").
bool isEmulatedWriterText(std::string_view text);

// The writer `text` describes, or nullopt with a reason for a person in *error.
std::optional<EmulatedWriterSetup> parseEmulatedWriterText(std::string_view text,
                                                           std::string* error);

}  // namespace host
