#include "cli/SimDeviceText.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "cli/TextParts.h"

namespace host {
namespace {

constexpr std::string_view kPrefix = "sim:";
constexpr uint64_t kMaxSpan = 1000000;
constexpr uint32_t kMaxCostMs = 60000;
// bad=, flaky= and internal= entries together; each costs the drive one stored span.
constexpr std::size_t kMaxFaultEntries = 1024;

std::string lower(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

struct Size {
    uint64_t amount = 0;
    bool inSectors = false;
};

std::optional<Size> parseSize(std::string_view text) {
    const std::size_t digits = text.find_first_not_of("0123456789");
    const auto number = wholeNumber<uint64_t>(text.substr(0, digits));
    if (!number) return std::nullopt;
    const std::string unit = digits == std::string_view::npos ? "" : lower(text.substr(digits));
    if (unit == "s") return Size{*number, true};
    int shift = 0;
    if (unit.empty() || unit == "b") {
        shift = 0;
    } else if (unit == "k" || unit == "kb" || unit == "kib") {
        shift = 10;
    } else if (unit == "m" || unit == "mb" || unit == "mib") {
        shift = 20;
    } else if (unit == "g" || unit == "gb" || unit == "gib") {
        shift = 30;
    } else if (unit == "t" || unit == "tb" || unit == "tib") {
        shift = 40;
    } else {
        return std::nullopt;
    }
    if (*number > (std::numeric_limits<uint64_t>::max() >> shift)) return std::nullopt;
    return Size{*number << shift, false};
}

bool fail(std::string* error, std::string reason) {
    if (error) *error = std::move(reason);
    return false;
}

class Parser {
public:
    explicit Parser(std::string* error) : error_(error) {}

    bool option(std::string_view name, std::string_view value) {
        if (name == "sector") return sectorSize(value);
        if (name == "cost") return cost(value);
        const bool fault = name == "bad" || name == "flaky" || name == "internal" || name == "slow";
        if (fault && ++faultEntries_ > kMaxFaultEntries)
            return fail(error_, "too many faults: at most " + std::to_string(kMaxFaultEntries) +
                                    " bad=, flaky=, internal= and slow= entries together");
        if (name == "bad") return badSpan(value);
        if (name == "slow") return slowSpan(value);
        if (name == "flaky") return single(value, "flaky", drive_.flaky);
        if (name == "internal") return single(value, "internal", drive_.internal);
        return fail(error_, "unknown option \"" + std::string(name) +
                                "\" (known: sector, bad, flaky, internal, slow, cost)");
    }

    bool finish(const Size& size) {
        drive_.totalSectors = size.inSectors ? size.amount : size.amount / drive_.bytesPerSector;
        if (drive_.totalSectors == 0)
            return fail(error_, "the drive must hold at least one sector");
        for (const SectorSpan& span : drive_.bad) {
            if (span.first >= drive_.totalSectors) return beyondDrive("bad", span.first);
            if (span.count > drive_.totalSectors - span.first)
                return beyondDrive("bad", span.first + span.count - 1);
        }
        for (const sim::SlowSpan& span : drive_.slow) {
            if (span.first >= drive_.totalSectors) return beyondDrive("slow", span.first);
            if (span.count > drive_.totalSectors - span.first)
                return beyondDrive("slow", span.first + span.count - 1);
        }
        for (uint64_t sector : drive_.flaky) {
            if (sector >= drive_.totalSectors) return beyondDrive("flaky", sector);
        }
        for (uint64_t sector : drive_.internal) {
            if (sector >= drive_.totalSectors) return beyondDrive("internal", sector);
        }
        return true;
    }

    const SimDeviceDescription& described() const { return drive_; }

private:
    bool sectorSize(std::string_view value) {
        if (sawSector_) return fail(error_, "sector= is given twice");
        sawSector_ = true;
        const auto size = wholeNumber<uint64_t>(value);
        if (!size || *size < 512 || *size > 65536 || (*size & (*size - 1)) != 0)
            return fail(error_, "sector=" + std::string(value) +
                                    ": the sector size must be a power of two from 512 to 65536");
        drive_.bytesPerSector = static_cast<uint32_t>(*size);
        return true;
    }

    bool cost(std::string_view value) {
        if (sawCost_) return fail(error_, "cost= is given twice");
        sawCost_ = true;
        const auto ms = wholeNumber<uint64_t>(value);
        if (!ms || *ms > kMaxCostMs)
            return fail(error_, "cost=" + std::string(value) +
                                    ": the cost must be a number of milliseconds up to 60000");
        drive_.costMs = static_cast<uint32_t>(*ms);
        return true;
    }

    bool badSpan(std::string_view value) {
        const std::size_t plus = value.find('+');
        const auto first = wholeNumber<uint64_t>(value.substr(0, plus));
        const auto count = plus == std::string_view::npos
                               ? std::optional<uint64_t>(1)
                               : wholeNumber<uint64_t>(value.substr(plus + 1));
        if (!first || !count)
            return fail(error_, "bad=" + std::string(value) + ": expected LBA or LBA+COUNT");
        if (*count == 0 || *count > kMaxSpan)
            return fail(error_, "bad=" + std::string(value) + ": COUNT must be from 1 to 1000000");
        drive_.bad.push_back({*first, *count});
        return true;
    }

    bool slowSpan(std::string_view value) {
        const std::size_t plus = value.find('+');
        const std::size_t colon = value.find(':');
        if (plus >= colon || colon == std::string_view::npos)
            return fail(error_, "slow=" + std::string(value) + ": expected LBA+COUNT:MS");
        const auto first = wholeNumber<uint64_t>(value.substr(0, plus));
        const auto count = wholeNumber<uint64_t>(value.substr(plus + 1, colon - plus - 1));
        const auto ms = wholeNumber<uint64_t>(value.substr(colon + 1));
        if (!first || !count || !ms)
            return fail(error_, "slow=" + std::string(value) + ": expected LBA+COUNT:MS");
        if (*count == 0 || *ms == 0 || *ms > kMaxCostMs)
            return fail(error_, "slow=" + std::string(value) +
                                    ": COUNT must be at least 1 and MS from 1 to 60000");
        drive_.slow.push_back({*first, *count, static_cast<uint32_t>(*ms)});
        return true;
    }

    bool single(std::string_view value, const char* name, std::vector<uint64_t>& into) {
        const auto sector = wholeNumber<uint64_t>(value);
        if (!sector)
            return fail(error_, std::string(name) + "=" + std::string(value) +
                                    ": expected a sector number");
        into.push_back(*sector);
        return true;
    }

    bool beyondDrive(const char* name, uint64_t sector) {
        return fail(error_, std::string(name) + "=: sector " + std::to_string(sector) +
                                " lies beyond the drive's " + std::to_string(drive_.totalSectors) +
                                " sectors");
    }

    std::string* error_;
    SimDeviceDescription drive_;
    bool sawSector_ = false;
    bool sawCost_ = false;
    std::size_t faultEntries_ = 0;
};

}  // namespace

bool isSimDeviceText(std::string_view text) { return text.substr(0, kPrefix.size()) == kPrefix; }

std::optional<SimDeviceDescription> parseSimDeviceText(std::string_view text, std::string* error) {
    if (!isSimDeviceText(text)) {
        fail(error, "a simulated drive is written sim:SIZE[,option=value]...");
        return std::nullopt;
    }
    const std::vector<std::string_view> parts = partsOf(text.substr(kPrefix.size()), ',');
    const auto size = parseSize(parts[0]);
    if (!size) {
        fail(error, "\"" + std::string(parts[0]) +
                        "\" is not a size (examples: 1GiB, 512MB, 4096s, 1048576)");
        return std::nullopt;
    }
    Parser parser(error);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::string_view item = parts[i];
        const std::size_t equals = item.find('=');
        if (equals == std::string_view::npos) {
            fail(error, "\"" + std::string(item) + "\" is not an option=value pair");
            return std::nullopt;
        }
        if (!parser.option(item.substr(0, equals), item.substr(equals + 1))) return std::nullopt;
    }
    if (!parser.finish(*size)) return std::nullopt;
    return parser.described();
}

}  // namespace host
