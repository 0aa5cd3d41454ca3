// What kind of drive the emulated writer is, apart from the disc in it.
#pragma once

#include <cstdint>
#include <string>

namespace sim::mmc {

struct WriterConfig {
    std::string vendor = "LIBDRIVE";          // INQUIRY, up to 8 characters
    std::string product = "EMULATED WRITER";  // up to 16 characters
    std::string revision = "1.00";            // up to 4 characters
    uint32_t spinUpMilliseconds = 2000;       // from closing the tray to a ready disc
    uint32_t cacheSectors = 1024;             // write cache size; at least 1
    // The Real Time Streaming feature's flag byte (SW, WSPD, MP2A, SCS, RBCB).
    uint8_t realTimeStreamingFlags = 0x1F;
    // After a disc was loaded and became ready, the first command answers UNIT ATTENTION,
    // NOT READY TO READY CHANGE (6/28/00), as real drives do; INQUIRY, GET CONFIGURATION and
    // GET EVENT STATUS NOTIFICATION pass it by, REQUEST SENSE returns it. Off unless asked for.
    bool unitAttentionOnMediumChange = false;
    // WRITE on CD-R, CD-RW, DVD-R, DVD-RW (sequential) and DVD-R DL checks the write
    // parameters page as those drives do, answering 5/64/00 when it does not suit the disc.
    // The power-on page suits DVD but not CD. Off for hosts that never set the page.
    bool enforceWriteParameters = true;
    // When false, nothing takes virtual time: spin-up, data transfer, blank, format and
    // background format all end at once, so a benchmark measures the host alone.
    bool timed = true;
};

}  // namespace sim::mmc
