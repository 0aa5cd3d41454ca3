// Whether the disc is approved test media (by its IDs, by patterns or by its CD lead-in and
// lead-out times), and how often it has been used for this test (the marker in sector 0).
#include <optional>
#include <vector>

#include "ReadWriteTestLog.h"
#include "kiv/Exception.h"
#include "kiv/Regex.h"
#include "libDrive/Exceptions.h"
#include "libDrive/ReadWriteTest.h"

namespace kivrlibdrive {

using readwrite::log;
using readwrite::number;

namespace {

constexpr unsigned char kFillByte = 0xBD;
constexpr unsigned int kMaximumSpeed = 0xFFFF;
constexpr uint16_t kNotMarked = 0;

// The use count of a test area's first sector: the count's high byte in bytes 0 and 2, its low
// byte in bytes 1 and 3, fill bytes after them. Anything else carries no count.
std::optional<uint16_t> decodeUsageMarker(const unsigned char* sector, std::size_t length) {
    if (length < 6) return std::nullopt;
    if (sector[0] == kFillByte && sector[1] == kFillByte && sector[2] == kFillByte &&
        sector[3] == kFillByte) {
        return std::nullopt;
    }
    if (sector[0] == sector[2] && sector[1] == sector[3] && sector[4] == kFillByte &&
        sector[5] == kFillByte) {
        return static_cast<uint16_t>(sector[0] * 256 + sector[1]);
    }
    return std::nullopt;
}

kiv::String timeText(const kiv::Array<unsigned int>& time) {
    kiv::String text;
    for (std::size_t i = 0; i < time.size(); ++i) {
        text += (i == 0 ? kiv::String() : kiv::String(L":")) + number(time[i]);
    }
    return text;
}

// True when "minutes:seconds:frames" names exactly the measured `time`.
bool sameTime(const kiv::String& approved, const kiv::Array<unsigned int>& time) {
    const kiv::Array<kiv::String> parts = approved.tokenize(L":");
    if (parts.size() != 3 || time.size() != 3) return false;
    for (std::size_t i = 0; i < 3; ++i) {
        uint64_t value = 0;
        if (!parts[i].trim().toUnsigned(value) || value != time[i]) return false;
    }
    return true;
}

kiv::String entry(const quel5::Value& list, uint32_t index) {
    return list.getStringInArray(index).kivString().trim();
}

kiv::String sizeText(const kiv::String& label, const kiv::String& measured,
                     const kiv::String& approved) {
    return label + measured + L" of size: " + number(measured.length()) + L" and " + approved +
           L" of size " + number(approved.length());
}

}  // namespace

bool ReadWriteTest::mediaQualified() {
    if (qualificationKnown) return qualificationResult;
    const bool result = drive.CDRDisc() || drive.CDRWDisc() ? compareLeadInLeadOut()
                                                            : compareDiscandManufacturerID();
    qualificationResult = result;
    qualificationKnown = true;
    return result;
}

bool ReadWriteTest::compareDiscandManufacturerID() {
    kiv::String manufacturerId;
    kiv::String discId;
    try {
        if (drive.BdrDisc() || drive.BdreDisc()) {
            manufacturerId = drive.getBLUERAYDiscManufacturerID();
            discId = drive.getBLUERAYDiscID();
        } else {
            manufacturerId = drive.getDiscManufacturerID();
            discId = drive.getDiscID();
        }
    } catch (const FailedRetrivingADIPInfo& failed) {
        log(4, 1112, failed.getMessage());
        return false;
    }
    const quel5::Value list = parameters.approvedMediaIds();
    if (parameters.useRegex()) {
        // Only the first pair is used as patterns.
        const kiv::Regex discPattern(entry(list, 0).toCString(), 0);
        if (!discPattern.isValid()) {
            log(4, 1154, L"Disc ID has an invalid regex pattern\n");
            throw kiv::InternalError(L"Disc ID has an invalid regex pattern\n");
        }
        const kiv::Regex makerPattern(entry(list, 1).toCString(), 0);
        if (!makerPattern.isValid()) {
            log(4, 1162, L"Disc ID has an invalid regex pattern\n");
            throw kiv::InternalError(L"Disc ID has an invalid regex pattern\n");
        }
        return discPattern.matcher(discId).matches() &&
               makerPattern.matcher(manufacturerId).matches();
    }
    const uint32_t size = list.stringArraySize();
    for (uint32_t i = 0; i + 1 < size; i += 2) {
        const kiv::String approvedDisc = entry(list, i);
        const kiv::String approvedMaker = entry(list, i + 1);
        log(1, 1133, sizeText(L"Comaparing ID1 : ", discId, approvedDisc));
        log(1, 1134, sizeText(L"Comaparing ID2 : ", manufacturerId, approvedMaker));
        if (discId.compare(approvedDisc) == 0 && manufacturerId.compare(approvedMaker) == 0) {
            log(1, 1137, L"Media qualified");
            return true;
        }
    }
    return false;
}

bool ReadWriteTest::compareLeadInLeadOut() {
    kiv::Array<unsigned int> leadIn;
    kiv::Array<unsigned int> leadOut;
    try {
        leadIn = drive.getLeadInTime();
        leadOut = drive.getLeadOutTime();
    } catch (const FailedRetrivingATIPInfo&) {
        return false;
    }
    const quel5::Value list = parameters.approvedMediaIds();
    const uint32_t size = list.stringArraySize();
    for (uint32_t i = 0; i + 1 < size; i += 2) {
        const kiv::String approvedIn = entry(list, i);
        const kiv::String approvedOut = entry(list, i + 1);
        log(1, 1205, L"Comparing Lead In : " + approvedIn + L" and " + timeText(leadIn));
        const bool leadInMatches = sameTime(approvedIn, leadIn);
        log(1, 1213, L"Comparing Lead Out: " + approvedOut + L" and " + timeText(leadOut));
        if (leadInMatches && sameTime(approvedOut, leadOut)) {
            log(1, 1220, L"Media is qualified");
            return true;
        }
    }
    return false;
}

unsigned short ReadWriteTest::numberOfTimesMediaUsedForTesting() {
    strings.checkingDiscUsageValueEvent();
    if (drive.emptyDisc()) return kNotMarked;
    try {
        setSpeed(kMaximumSpeed);
        getDriveGeometry();
        std::vector<unsigned char> sector(bufferSize, 0);
        drive.readSectors(0, static_cast<unsigned short>(sectorsPerTransfer), sector.data(),
                          bufferSize, true);
        if (const auto uses = decodeUsageMarker(sector.data(), sector.size())) return *uses;
        if (drive.CDRWDisc()) usageFlag = true;
        return kNotMarked;
    } catch (const FailedSettingDriveSpeed&) {
        log(4, 1245, L"CHECKING FOR USAGE LIMIT: Failed Setting Drive Speed");
    } catch (const TestFailedException&) {
        log(4, 1248, L"CHECKING FOR USAGE LIMIT: TestFailedException");
    } catch (const InternalException&) {
        log(4, 1251, L"CHECKING FOR USAGE LIMIT: Internal Exception");
    } catch (const ReadFailedException&) {
        log(4, 1254, L"CHECKING FOR USAGE LIMIT: Read Failed Exception");
    } catch (...) {
        log(4, 1257, L"CHECKING FOR USAGE LIMIT: Unknown Exception");
    }
    return kNotMarked;
}

}  // namespace kivrlibdrive
