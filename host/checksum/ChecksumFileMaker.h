// Writing the files the checksum test reads: the data followed by a 16-byte trailer holding the
// MD5 digest, in binary, of the data's text (its bytes up to the first zero byte, or all of them).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/CommandLine.h"
#include "cli/Drivediag.h"

namespace host {

struct ChecksumFileMade {
    uint64_t dataBytes = 0;
    uint64_t coveredBytes = 0;  // bytes the digest covers: up to the first zero byte
    std::string digest;         // 32 lower-case hexadecimal digits
};

// `data` followed by its trailer, and what was made; nullopt when hashing fails.
std::optional<std::string> checksumFileContents(const std::string& data, ChecksumFileMade* made);

// Reads the file `dataPath` and writes `data` + trailer to `outPath` (both UTF-8 paths).
// nullopt with a reason for a person in *error when a file cannot be read or written.
std::optional<ChecksumFileMade> makeChecksumFile(const std::string& dataPath,
                                                 const std::string& outPath, std::string* error);

// `drivediag make-checksum-file DATA OUT`: makes the file and says what it covers, as text or
// (--json) one object of type "checksumFile". Returns the exit code.
int makeChecksumFileCommand(const CommandLine& line, const Console& console);

}  // namespace host
