// The undo journal's file format: what a destructive run appends before it overwrites sectors,
// and how a restore reads it back. All integers little-endian.
//
//   header:  "DDUNDO01" | u32 sector size | u64 total sectors | u32 path length | path (UTF-8)
//            | u32 CRC-32C of everything before it
//   record:  u32 'RECD' | u64 id | u64 first sector | u32 sector count | the sectors' contents
//            (count x sector size bytes) | u32 CRC-32C of the record before it
//   done:    u32 'DONE' | u64 id of a record | u32 CRC-32C of the mark before it
//
// Records hold what the sectors held before the run first overwrote them. A done mark says the
// record's data is back on the device and has been flushed there. A reader stops at the first
// entry that is cut off or fails its checksum: a crash while appending leaves such a tail, and
// the overwrite it was to protect never happened.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace host::undo {

struct Header {
    std::string devicePath;  // UTF-8
    uint64_t totalSectors = 0;
    uint32_t sectorSize = 0;
};

struct Record {
    uint64_t id = 0;
    uint64_t firstSector = 0;
    uint32_t sectorCount = 0;
    std::vector<unsigned char> data;  // sectorCount x sectorSize bytes
};

// Records larger than this are refused by the reader (a damaged count must not allocate
// gigabytes) and never written.
inline constexpr uint64_t kLargestRecordBytes = 64ull * 1024 * 1024;

std::vector<unsigned char> encodeHeader(const Header& header);
// REQUIRES: data holds sectorCount x the journal's sector size bytes.
std::vector<unsigned char> encodeRecord(uint64_t id, uint64_t firstSector, uint32_t sectorCount,
                                        const unsigned char* data, std::size_t bytes);
std::vector<unsigned char> encodeDone(uint64_t id);

struct Contents {
    Header header;
    std::vector<Record> pending;  // records without a done mark, in the order written
    std::size_t doneRecords = 0;  // records with one
    uint64_t ignoredBytes = 0;    // after the last intact entry: a cut-off or damaged tail
};

// The journal in `in`, or nullopt with a reason for a person in *error when it does not start
// with an intact header.
std::optional<Contents> readJournal(std::istream& in, std::string* error);

}  // namespace host::undo
