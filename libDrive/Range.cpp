#include "libDrive/Range.h"

#include <cmath>
#include <limits>

#include "ClassLog.h"
#include "InternalParameters.h"
#include "kiv/Exception.h"
#include "kiv/Log.h"
#include "kiv/Regex.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/Range";

// What a start text may look like: a plain number, a size or a percentage (0 to 99), optionally
// after "MAX -" or "MIN +"; "0" and "MIN" alone; leading zeros allowed.
const char* const kStartPattern =
    "^(0|MIN|((MAX[ ]*[-]|MIN[ ]*[\\+])[ ]*){0,1}0*([1-9]+[0-9]*(([GKM]B){0,1})|"
    "(0|[1-9]|[1-9][0-9])[%]))$";
// The same for an end text, with "MAX" alone and percentages 1 to 100.
const char* const kEndPattern =
    "^(MAX|((MAX[ ]*[-]|MIN[ ]*[\\+])[ ]*){0,1}0*([1-9]+[0-9]*(([GKM]B){0,1})|"
    "(100|[1-9]|[1-9][0-9])[%]))$";
// How any range text is taken apart for evaluation: anchor, sign, number, unit.
const char* const kEvaluationPattern =
    "^(MIN|MAX){0,1}[ ]*([\\+-]){0,1}[ ]*([0-9]*)([KMG]B|%){0,1}$";

constexpr double kSmallestPercent = 1e-7;

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.Range");
}

void log(kiv::LogPriority priority, const kiv::String& text) {
    logger()->log(static_cast<int>(priority), text);
}

// The text of a range parameter, blanks around it removed.
kiv::String trimmedText(const quel5::Parameter* parameter) { return parameter->toString().trim(); }

// Rejects a start or end text that does not have the shape its `pattern` allows.
void checkRangeText(const kiv::String& text, const char* pattern, const wchar_t* invalidPattern,
                    const wchar_t* invalidText, const wchar_t* parameterName) {
    const kiv::Regex expression(pattern);
    if (!expression.isValid()) {
        log(kiv::LogPriority::Warning, invalidPattern);
        throw kiv::InternalError(kiv::String(L"range pattern does not compile: ") +
                                 expression.getError());
    }
    kiv::Matcher matcher = expression.matcher(text);
    if (!matcher.matches()) {
        log(kiv::LogPriority::Warning, invalidText);
        LibDriveStrings::g_invalidParameterEvent->setVariable(L"PARAMETER_NAME",
                                                              quel5::Value(parameterName));
        quel5::DiagModule::warning(LibDriveStrings::g_invalidParameterEvent, kSource, __LINE__);
        throw CannotRun(kiv::String());
    }
}

// Decimal digits as a number in `value`; false when the number does not fit 64 bits.
bool decimalValue(const kiv::String& digits, uint64_t& value) {
    constexpr uint64_t kMax = std::numeric_limits<uint64_t>::max();
    value = 0;
    for (std::size_t i = 0; i < digits.length(); ++i) {
        const uint64_t digit = static_cast<uint64_t>(digits[i] - L'0');
        if (value > (kMax - digit) / 10) {
            return false;
        }
        value = value * 10 + digit;
    }
    return true;
}

// Bytes in one unit of a size text.
int64_t unitBytes(const kiv::String& unit) {
    if (unit == L"KB") return 1024;
    if (unit == L"MB") return 1048576;
    return 1073741824;
}

// `percent` of `span` in sectors, worked out in floating point and truncated toward zero. Up
// to 100 percent it never exceeds the span, however the double rounds; above, the frame
// refuses the amount.
uint64_t sectorsOfPercent(uint64_t span, double percent) {
    const double sectors = static_cast<double>(span) * (percent / 100.0);
    if (!(sectors > 0.0)) return 0;
    const uint64_t most = percent <= 100.0 ? span : std::numeric_limits<uint64_t>::max();
    if (sectors >= std::ldexp(1.0, 64)) return most;
    return static_cast<uint64_t>(sectors) < most ? static_cast<uint64_t>(sectors) : most;
}

}  // namespace

CRange::CRange(const uint64_t& driveSectors, const unsigned int& sectorBytes, bool allowPercent,
               bool allowSeeks)
    : startRange(0),
      endRange(0),
      sectorTotalToTest(0),
      sectorPercentToTest(0.0),
      bytesPerSector(sectorBytes),
      jumpCount(0),
      totalSectors(0),
      numberOfSeeks(0),
      usePercent(false) {
    const quel5::ParameterSource unset = quel5::ParameterSource::NOTSET();
    if (allowSeeks && g_NumberOfSeeks->valueSource() != unset &&
        g_NumberOfSeeks->value().valueUint32() >= 1) {
        numberOfSeeks = g_NumberOfSeeks->value().valueUint32();
        usePercent = false;
    } else if (allowPercent && g_SectorPercentToTest->valueSource() != unset &&
               g_SectorPercentToTest->value().valuePercent() >= kSmallestPercent) {
        sectorPercentToTest = g_SectorPercentToTest->value().valuePercent();
        usePercent = true;
        numberOfSeeks = 0;
    } else if (!allowPercent && !allowSeeks) {
        sectorPercentToTest = 100.0;
        usePercent = true;
    } else {
        if (allowPercent) {
            quel5::DiagModule::error(LibDriveStrings::g_InvalidSectorPercentToTestValue, kSource,
                                     __LINE__);
        }
        if (allowSeeks) {
            quel5::DiagModule::error(LibDriveStrings::g_InvalidNumberOfSeeksValue, kSource,
                                     __LINE__);
        }
        throw InvalidRange(L"NumberOfSeeks or SectorPercentToTest parameter is not set");
    }

    jumpCount = 1;
    totalSectors = driveSectors;

    kiv::String startText = L"MIN";
    if (g_StartRange->isset()) {
        log(kiv::LogPriority::Detail, L"126 Initializing start range");
        startText = trimmedText(g_StartRange);
    }
    checkRangeText(startText, kStartPattern, L"133 Regular expression for start range is invalid",
                   L"139 StartRange string is not valid", L"StartRange");

    kiv::String endText = L"MAX";
    if (g_EndRange->isset()) {
        log(kiv::LogPriority::Detail, L"146 Initializing end range");
        endText = trimmedText(g_EndRange);
    }
    checkRangeText(endText, kEndPattern, L"153 Regular expression for end range is invalid",
                   L"159 EndRange string is not valid", L"EndRange");

    // Large drives may be given other texts; those are trusted as the host wrote them and only
    // have to be evaluable.
    if (g_AdjustForLargeDrives->isset() && g_AdjustForLargeDrives->value().valueBool()) {
        log(kiv::LogPriority::Detail, L"166 Checking if its a large drive");
        if (bytesPerSector == 0) {
            throw kiv::InternalError(L"a drive with 0 bytes per sector has no size in gibibytes");
        }
        const uint32_t sectorsPerMebibyte = 1048576u / bytesPerSector;
        const uint64_t largeDriveSectors = static_cast<uint64_t>(sectorsPerMebibyte) *
                                           g_LargeDriveSize->value().valueUint32() * 1024;
        if (this->totalSectors >= largeDriveSectors) {
            log(kiv::LogPriority::Detail, L"173 Adjusting range for a large drive");
            if (g_LargeDriveStartRange->isset()) {
                log(kiv::LogPriority::Detail, L"177 Setting large drive start range");
                startText = trimmedText(g_LargeDriveStartRange);
            }
            if (g_LargeDriveEndRange->isset()) {
                log(kiv::LogPriority::Detail, L"182 Setting large drive end range");
                endText = trimmedText(g_LargeDriveEndRange);
            }
        }
    }

    startRange = GetRange(startText, RANGE_START);
    endRange = GetRange(endText, RANGE_END);
    if (endRange <= startRange) {
        log(kiv::LogPriority::Warning, L"193  EndRange is less than the start range");
        throw InvalidRange(L"The end range must be greater than start range");
    }

    const uint64_t span = endRange - startRange;
    if (usePercent) {
        // Truncated toward zero, as the frame expects.
        sectorTotalToTest = sectorsOfPercent(span, sectorPercentToTest);
        if (sectorTotalToTest != 0) {
            jumpCount = span / sectorTotalToTest;
        }
    } else if (numberOfSeeks > span) {
        jumpCount = 1;
        numberOfSeeks = span;
    } else {
        jumpCount = span / numberOfSeeks;
    }
}

CRange::CRange(const CRange& other) = default;

CRange& CRange::operator=(const CRange& other) = default;

CRange::~CRange() = default;

uint64_t CRange::GetStartRange() const {
    const ScopedTrace trace(logger(), L"CRange::GetStartRange", kSource, __LINE__);
    return startRange;
}

uint64_t CRange::GetEndRange() const {
    const ScopedTrace trace(logger(), L"CRange::GetEndRange", kSource, __LINE__);
    return endRange;
}

uint64_t CRange::GetSectorTotalToTest() const {
    const ScopedTrace trace(logger(), L"CRange::GetSectorTotalToTest", kSource, __LINE__);
    return sectorTotalToTest;
}

uint64_t CRange::GetJumpCount() const {
    const ScopedTrace trace(logger(), L"CRange::GetJumpCount", kSource, __LINE__);
    return jumpCount;
}

uint64_t CRange::GetNumberOfSeeks() const {
    const ScopedTrace trace(logger(), L"CRange::GetNumberOfSeeks", kSource, __LINE__);
    return numberOfSeeks;
}

double CRange::GetSectorPercentToTest() const {
    const ScopedTrace trace(logger(), L"CRange::GetSectorPercentToTest", kSource, __LINE__);
    return sectorPercentToTest;
}

uint64_t CRange::GetRange(kiv::String text, RANGE_TYPE type) {
    const ScopedTrace trace(logger(), L"CRange::GetRange", kSource, __LINE__);
    if (text.isEmpty()) {
        return type == RANGE_START ? 0 : totalSectors;
    }
    const kiv::Regex expression(kEvaluationPattern);
    if (!expression.isValid()) {
        log(kiv::LogPriority::Warning, L"254 GetRange pattern invalid");
        throw kiv::InternalError(kiv::String(L"range evaluation pattern does not compile: ") +
                                 expression.getError());
    }
    kiv::Matcher matcher = expression.matcher(text);
    if (!matcher.matches()) {
        log(kiv::LogPriority::Warning,
            L"261 CRange::GetRange Start or End Range input parameter is invalid");
        throw kiv::InternalError(kiv::String(L"range text cannot be evaluated: ") + text);
    }
    const kiv::String anchor = matcher.getGroup(1);
    const kiv::String sign = matcher.getGroup(2);
    const kiv::String unit = matcher.getGroup(4);
    log(kiv::LogPriority::Detail, kiv::String(L"269 ") + L" Groups returned " +
                                      matcher.getGroup(0) + L" 1." + anchor + L" 2." + sign +
                                      L" 3." + matcher.getGroup(3) + L" 4." + unit);

    // A number, product or sum that does not fit 64 bits would wrap to some small sector
    // number and test the wrong area; it is an invalid range instead.
    uint64_t value = 0;
    if (!decimalValue(matcher.getGroup(3), value)) {
        throw InvalidRange(kiv::String(L"the number does not fit 64 bits: ") + text);
    }
    if (unit == L"%") {
        uint64_t product = 0;
        if (__builtin_mul_overflow(value, totalSectors, &product)) {
            throw InvalidRange(kiv::String(L"the percentage does not fit 64 bits: ") + text);
        }
        value = product / 100;
    } else if (!unit.isEmpty()) {
        if (bytesPerSector == 0) {
            throw kiv::InternalError(kiv::String(L"a size needs a sector size above 0: ") + text);
        }
        uint64_t product = 0;
        if (__builtin_mul_overflow(static_cast<uint64_t>(unitBytes(unit)), value, &product)) {
            throw InvalidRange(kiv::String(L"the size does not fit 64 bits: ") + text);
        }
        // Signed on purpose: a size from 2^63 bytes on shows up as negative and is caught below.
        const int64_t bytes = static_cast<int64_t>(product);
        value = static_cast<uint64_t>(bytes / static_cast<int64_t>(bytesPerSector));
    }

    uint64_t base = 0;
    if (!anchor.isEmpty()) {
        base = anchor == L"MAX" ? totalSectors : 0;
        log(kiv::LogPriority::Detail,
            kiv::String(L"303 ") + L" End Sector is  " + kiv::String::fromNumber(totalSectors));
    }

    uint64_t result = 0;
    if (sign.isEmpty()) {
        result = anchor.isEmpty() ? value : base;
    } else if (sign == L"+") {
        if (__builtin_add_overflow(base, value, &result)) {
            throw InvalidRange(kiv::String(L"the sum does not fit 64 bits: ") + text);
        }
    } else {
        result = base - value;
    }

    if (result > totalSectors || static_cast<int64_t>(result) < 0) {
        log(kiv::LogPriority::Warning,
            kiv::String(L"319 Calculated Sector value is greater than the end sector or less "
                        L"than start sector qwValue: ") +
                kiv::String::fromSignedNumber(static_cast<int64_t>(result)));
        // The end is pulled back to the capacity; a start is left for the caller to reject.
        if (type == RANGE_END) {
            result = totalSectors;
        }
    }
    log(kiv::LogPriority::Detail, kiv::String(L"322 ") + L" Calculated sector value is " +
                                      kiv::String::fromSignedNumber(static_cast<int64_t>(result)) +
                                      L" the input string is " + text);
    return result;
}

}  // namespace kivrlibdrive
