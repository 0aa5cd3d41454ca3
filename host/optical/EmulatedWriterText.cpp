#include "optical/EmulatedWriterText.h"

#include <algorithm>

#include "cli/TextParts.h"
#include "optical/OpticalMedia.h"
#include "scsi/Opcodes.h"
#include "sim/mmc/MediaKind.h"

namespace host {
namespace {

constexpr std::string_view kPrefix = "emu:";
constexpr std::size_t kMaxOptions = 64;

struct OperationName {
    std::string_view name;
    std::optional<uint8_t> opcode;  // none: every command
};

// The verify pass reads with READ(10), and again with READ(12) and forced unit access, from the
// medium, when what it read differs; writes are WRITE(10).
constexpr OperationName kOperations[] = {
    {"read", kivscsi::opcode::kRead10},
    {"fua-read", kivscsi::opcode::kRead12},
    {"write", kivscsi::opcode::kWrite10},
    {"flush", kivscsi::opcode::kSynchronizeCache},
    {"close", kivscsi::opcode::kCloseTrackSession},
    {"blank", kivscsi::opcode::kBlank},
    {"format", kivscsi::opcode::kFormatUnit},
    {"ready", kivscsi::opcode::kTestUnitReady},
    {"speed", kivscsi::opcode::kSetCdSpeed},
    {"any", std::nullopt},
};

std::optional<sim::mmc::MediaKind> kindNamed(std::string_view name) {
    const OpticalMedium* medium = mediumNamed(name);
    if (medium == nullptr) return std::nullopt;
    for (sim::mmc::MediaKind kind : sim::mmc::allMediaKinds()) {
        if (std::string_view(sim::mmc::traitsOf(kind).name) == medium->name) return kind;
    }
    return std::nullopt;
}

std::optional<sim::mmc::Msf> msfOf(std::string_view text) {
    if (text.size() != 8 || text[2] != ':' || text[5] != ':') return std::nullopt;
    const auto minutes = wholeNumber<uint8_t>(text.substr(0, 2));
    const auto seconds = wholeNumber<uint8_t>(text.substr(3, 2));
    const auto frames = wholeNumber<uint8_t>(text.substr(6, 2));
    if (!minutes || !seconds || !frames || *seconds > 59 || *frames > 74) return std::nullopt;
    return sim::mmc::Msf{*minutes, *seconds, *frames};
}

class Parser {
public:
    explicit Parser(std::string* error) : error_(error) {}

    std::optional<EmulatedWriterSetup> parse(std::string_view text) {
        const std::vector<std::string_view> parts = partsOf(text, ',');
        if (parts.size() > kMaxOptions + 1) {
            fail("more than 64 options");
            return std::nullopt;
        }
        if (!kind(parts[0])) return std::nullopt;
        for (std::size_t i = 1; i < parts.size(); ++i) {
            if (!option(parts[i])) return std::nullopt;
        }
        return setup_;
    }

private:
    bool fail(const std::string& reason) {
        *error_ = "emu:" + text_ + ": " + reason;
        return false;
    }

    bool kind(std::string_view name) {
        text_ = std::string(name);
        if (name == "none") return true;
        const auto kind = kindNamed(name);
        if (!kind) {
            return fail("unknown kind of disc (none, " + mediumOptions(false) + ")");
        }
        setup_.disc = sim::mmc::discOf(*kind);
        return true;
    }

    bool needsDisc(std::string_view option) {
        if (setup_.disc) return true;
        return fail(std::string(option) + " needs a disc in the tray");
    }

    bool option(std::string_view option) {
        const std::size_t equals = option.find('=');
        const std::string_view name = option.substr(0, equals);
        const std::string_view value =
            equals == std::string_view::npos ? std::string_view() : option.substr(equals + 1);
        if (option == "instant") {
            setup_.config.timed = false;
            setup_.config.spinUpMilliseconds = 0;
            return true;
        }
        if (option == "used" || option == "closed" || option == "full") return state(option);
        if (equals == std::string_view::npos || value.empty()) {
            return fail("unknown option \"" + std::string(option) + "\"");
        }
        if (name == "uses") return uses(value);
        if (name == "maker" || name == "disc-id") return identifier(name, value);
        if (name == "lead-in" || name == "lead-out") return atip(name, value);
        if (name == "fault") return fault(value);
        if (name == "speeds") return speeds(value);
        if (name == "stale" || name == "lose" || name == "vanish") return address(name, value);
        return fail("unknown option \"" + std::string(option) + "\"");
    }

    bool state(std::string_view option) {
        if (!needsDisc(option)) return false;
        sim::mmc::DiscModel& disc = *setup_.disc;
        if (sim::mmc::traitsOf(disc.kind).recording == sim::mmc::Recording::ReadOnly) {
            return fail(std::string(option) + ": a pressed disc is always closed");
        }
        const uint32_t someData = disc.capacitySectors / 16;
        if (option == "full") {
            disc.status = sim::mmc::DiscStatus::Appendable;
            disc.recordedSectors = disc.capacitySectors;
        } else {
            disc.status = option == "closed" ? sim::mmc::DiscStatus::Complete
                                             : sim::mmc::DiscStatus::Appendable;
            if (disc.recordedSectors == 0) disc.recordedSectors = someData;
        }
        return true;
    }

    bool uses(std::string_view value) {
        const auto count = wholeNumber<uint16_t>(value);
        if (!count) return fail("uses=" + std::string(value) + ": expected 0 to 65535");
        if (!needsDisc("uses")) return false;
        setup_.disc->usageCount = *count;
        return true;
    }

    bool identifier(std::string_view name, std::string_view value) {
        if (!needsDisc(name)) return false;
        const std::size_t limit = name == "maker" ? 8 : 3;
        if (value.size() > limit)
            return fail(std::string(name) + " is at most " + std::to_string(limit) + " characters");
        (name == "maker" ? setup_.disc->manufacturerId : setup_.disc->discId) = std::string(value);
        return true;
    }

    bool atip(std::string_view name, std::string_view value) {
        const auto msf = msfOf(value);
        if (!msf) return fail(std::string(name) + ": expected MM:SS:FF");
        if (!needsDisc(name)) return false;
        (name == "lead-in" ? setup_.disc->leadIn : setup_.disc->leadOut) = *msf;
        return true;
    }

    // KBPS[/KBPS]...: kept fastest first, as drives list them.
    bool speeds(std::string_view value) {
        if (!needsDisc("speeds")) return false;
        std::vector<uint16_t> list;
        for (const std::string_view part : partsOf(value, '/')) {
            const auto speed = wholeNumber<uint16_t>(part);
            if (!speed || *speed == 0 || *speed == 0xFFFF)
                return fail("speeds=" + std::string(value) +
                            ": expected write speeds in kB/s from 1 to 65534, separated by /");
            list.push_back(*speed);
        }
        std::sort(list.rbegin(), list.rend());
        setup_.disc->writeSpeeds = list;
        return true;
    }

    bool address(std::string_view name, std::string_view value) {
        const auto at = wholeNumber<uint32_t>(value);
        if (!at || (name == "vanish" && *at == 0))
            return fail(std::string(name) + "=" + std::string(value) +
                        (name == "vanish" ? ": expected a command count from 1"
                                          : ": expected a sector number"));
        if (name == "stale") setup_.staleAfterFlush.push_back(*at);
        if (name == "lose") setup_.lostWrites.push_back(*at);
        if (name == "vanish") setup_.vanishAtCommand = *at;
        return true;
    }

    // OP:CODE[@LBA][#N][*TIMES]
    bool fault(std::string_view value) {
        const std::string shown = "fault=" + std::string(value);
        const std::size_t colon = value.find(':');
        const OperationName* operation = nullptr;
        for (const OperationName& row : kOperations) {
            if (value.substr(0, colon) == row.name) operation = &row;
        }
        if (operation == nullptr || colon == std::string_view::npos)
            return fail(shown +
                        ": expected OP:CODE with OP one of read, fua-read, write, "
                        "flush, close, blank, format, ready, speed, any");
        std::string_view rest = value.substr(colon + 1);
        const std::size_t marks = std::min(rest.find_first_of("@#*"), rest.size());
        const auto code = wholeNumber<uint16_t>(rest.substr(0, marks), 16);
        if (!code || marks != 4 || *code == 0)
            return fail(shown + ": CODE is 4 hex digits, ASC and ASCQ (0C00)");
        sim::mmc::SenseFault planted;
        planted.opcode = operation->opcode;
        planted.sense = sim::mmc::senseOf(*code);
        planted.times = 1;
        rest = rest.substr(marks);
        std::optional<uint32_t> times;
        while (!rest.empty()) {
            const char mark = rest[0];
            const std::size_t next = std::min(rest.find_first_of("@#*", 1), rest.size());
            const auto amount = wholeNumber<uint32_t>(rest.substr(1, next - 1));
            if (!amount || (mark == '#' && *amount == 0))
                return fail(shown + ": @LBA, #N (from 1) and *TIMES take numbers");
            if (mark == '@') {
                planted.lba = *amount;
                planted.times = 0;
            }
            if (mark == '#') planted.skip = *amount - 1;
            if (mark == '*') times = *amount;
            rest = rest.substr(next);
        }
        if (times) planted.times = *times;
        setup_.faults.push_back(planted);
        return true;
    }

    std::string* error_;
    std::string text_;
    EmulatedWriterSetup setup_;
};

}  // namespace

bool isEmulatedWriterText(std::string_view text) {
    return text.substr(0, kPrefix.size()) == kPrefix;
}

std::optional<EmulatedWriterSetup> parseEmulatedWriterText(std::string_view text,
                                                           std::string* error) {
    return Parser(error).parse(text.substr(kPrefix.size()));
}

}  // namespace host
