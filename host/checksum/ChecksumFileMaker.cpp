#include "checksum/ChecksumFileMaker.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/ExitCodes.h"
#include "cli/Json.h"
#include "kiv/CString.h"
#include "kiv/KIVMD5.h"

namespace host {
namespace {

std::filesystem::path pathOf(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string rawDigest(const std::string& hex) {
    std::string raw;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        raw.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return raw;
}

}  // namespace

std::optional<std::string> checksumFileContents(const std::string& data, ChecksumFileMade* made) {
    kiv::CString digest;
    // The test hashes the data as text, so the digest stops at the first zero byte too.
    if (!KIVMD5::calculateMD5Hash(kiv::CString(data), digest) || digest.length() != 32) {
        return std::nullopt;
    }
    if (made) {
        made->dataBytes = data.size();
        made->coveredBytes = std::min(data.find('\0'), data.size());
        made->digest = digest.str();
    }
    return data + rawDigest(digest.str());
}

std::optional<ChecksumFileMade> makeChecksumFile(const std::string& dataPath,
                                                 const std::string& outPath, std::string* error) {
    const auto fail = [error](const std::string& reason) {
        if (error) *error = reason;
        return std::nullopt;
    };
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(pathOf(dataPath), ignored))
        return fail("cannot read " + dataPath + ": not a file");
    std::ifstream in(pathOf(dataPath), std::ios::binary);
    if (!in) return fail("cannot read " + dataPath);
    const std::string data{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) return fail("cannot read " + dataPath);
    ChecksumFileMade made;
    const auto contents = checksumFileContents(data, &made);
    if (!contents) return fail("cannot compute the MD5 digest of " + dataPath);
    std::ofstream out(pathOf(outPath), std::ios::binary | std::ios::trunc);
    if (!out || !out.write(contents->data(), static_cast<std::streamsize>(contents->size())) ||
        !out.flush())
        return fail("cannot write " + outPath);
    return made;
}

int makeChecksumFileCommand(const CommandLine& line, const Console& console) {
    std::string error;
    const auto made = makeChecksumFile(line.files[0], line.files[1], &error);
    if (!made) {
        console.err << "drivediag: " << error << "\n";
        return kExitNoDevice;
    }
    if (line.json) {
        console.out << JsonObject::record("checksumFile")
                           .text("file", line.files[1])
                           .number("dataBytes", made->dataBytes)
                           .number("coveredBytes", made->coveredBytes)
                           .text("md5", made->digest)
                           .str()
                    << "\n";
        return 0;
    }
    console.out << "Wrote " << line.files[1] << ": " << made->dataBytes
                << " data bytes and their MD5 " << made->digest << "\n";
    if (made->coveredBytes < made->dataBytes) {
        console.out << "Note: the data holds a zero byte at offset " << made->coveredBytes
                    << "; the digest covers only the bytes before it.\n";
    }
    return 0;
}

}  // namespace host
