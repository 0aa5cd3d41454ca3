#include "optical/OpticalOptions.h"

#include <limits>

#include "cli/TextParts.h"
#include "optical/OpticalMedia.h"

namespace host {
namespace {

struct OptionRow {
    const char* name;
    bool takesValue;
};

constexpr OptionRow kOptions[] = {
    {"--sectors", true},         {"--blank-only", false},
    {"--erase-after", false},    {"--erase-seconds", true},
    {"--approved", true},        {"--regex", false},
    {"--qualified-only", false}, {"--rerun-unapproved", false},
    {"--usage-limit", true},     {"--fail-on-media-problems", false},
    {"--reruns", true},          {"--media-prompts", true},
    {"--eject", false},          {"--media", true},
    {"--customer", true},        {"--prompt-title", true},
};

// A decimal number from `minimum` to `maximum`.
template <typename Number>
std::optional<Number> numberIn(const std::string& text, Number minimum, Number maximum) {
    const std::optional<Number> value = wholeNumber<Number>(text);
    if (!value || *value < minimum || *value > maximum) return std::nullopt;
    return value;
}

class Reader {
public:
    explicit Reader(std::string* error) : error_(error) {}

    bool take(const std::string& name, const std::string& value) {
        if (name == "--blank-only") return flag(options_.blankOnly);
        if (name == "--erase-after") return flag(options_.eraseAfter);
        if (name == "--regex") return flag(options_.regex);
        if (name == "--qualified-only") return flag(options_.qualifiedOnly);
        if (name == "--rerun-unapproved") return flag(options_.rerunUnapproved);
        if (name == "--fail-on-media-problems") return flag(options_.failOnMediaProblems);
        if (name == "--eject") return flag(options_.eject);
        if (name == "--sectors")
            return number(name, value, options_.sectors, 1LL,
                          static_cast<long long>(std::numeric_limits<uint32_t>::max()),
                          "a number of 2048-byte sectors from 1");
        if (name == "--erase-seconds")
            return number(name, value, options_.eraseSeconds, 1u, 86400u,
                          "seconds from 1 to 86400");
        if (name == "--reruns")
            return number(name, value, options_.reruns, 0u, 65535u,
                          "runs from 1 to 65535, or 0 for until one passes");
        if (name == "--media-prompts")
            return number(name, value, options_.mediaPrompts, 0u, 1000u,
                          "discs to ask for, 0 to 1000");
        if (name == "--usage-limit") {
            unsigned int limit = 0;
            if (!number(name, value, limit, 1u, 65535u, "uses from 1 to 65535")) return false;
            options_.usageLimit = limit;
            return true;
        }
        if (name == "--approved") return approved(value);
        if (name == "--media") {
            const auto profiles = profilesOfList(value, error_);
            if (!profiles) return false;
            options_.media = value;
            options_.profiles = *profiles;
            return true;
        }
        if (name == "--customer") return text(name, value, options_.customer);
        return text(name, value, options_.promptTitle);
    }

    OpticalOptions finish() {
        if (options_.profiles.empty()) options_.profiles = *profilesOfList("", error_);
        return options_;
    }

private:
    static bool flag(bool& into) {
        into = true;
        return true;
    }

    template <typename Number>
    bool number(const std::string& name, const std::string& value, Number& into, Number minimum,
                Number maximum, const char* expected) {
        const auto parsed = numberIn(value, minimum, maximum);
        if (!parsed) return fail(name + " " + value + ": expected " + expected);
        into = *parsed;
        return true;
    }

    bool approved(const std::string& value) {
        const std::vector<std::string_view> parts = partsOf(value, ',');
        if (parts.size() % 2 != 0 || value.empty())
            return fail("--approved " + value +
                        ": expected pairs DISC-ID,MANUFACTURER-ID (for a CD the lead-in and "
                        "lead-out times, MM:SS:FF)");
        options_.approved.assign(parts.begin(), parts.end());
        return true;
    }

    bool text(const std::string& name, const std::string& value, std::string& into) {
        if (value.empty()) return fail(name + " needs a text");
        into = value;
        return true;
    }

    bool fail(const std::string& reason) {
        *error_ = reason;
        return false;
    }

    std::string* error_;
    OpticalOptions options_;
};

}  // namespace

bool isOpticalOption(const std::string& name, bool* takesValue) {
    for (const OptionRow& row : kOptions) {
        if (name == row.name) {
            *takesValue = row.takesValue;
            return true;
        }
    }
    return false;
}

std::optional<OpticalOptions> opticalOptionsOf(
    const std::vector<std::pair<std::string, std::string>>& given, std::string* error) {
    Reader reader(error);
    for (const auto& [name, value] : given) {
        if (!reader.take(name, value)) return std::nullopt;
    }
    return reader.finish();
}

std::vector<std::pair<std::string, std::string>> opticalDefaults() {
    const OpticalOptions defaults;
    return {{"--sectors", std::to_string(defaults.sectors)},
            {"--erase-seconds", std::to_string(defaults.eraseSeconds)},
            {"--reruns", std::to_string(defaults.reruns)},
            {"--media-prompts", std::to_string(defaults.mediaPrompts)},
            {"--media", "every writable kind"}};
}

const char* opticalOptionsUsage() {
    return "The read-write test writes to a disc in an optical writer and reads it back:\n"
           "  --device DEV       /dev/sr0 (Linux), \\\\.\\CdRom0 or E: (Windows), or an\n"
           "                       emulated writer emu:KIND[,OPTION]... (default\n"
           "                       emu:dvd+rw; see host/README.md for KIND and OPTIONs)\n"
           "  --media LIST       the kinds of disc to accept, e.g. dvd+rw,bd-re\n"
           "                       (default: every writable kind)\n"
           "  --sectors N        2048-byte sectors written and verified at each speed\n"
           "                       (default 8192, 16 MiB)\n"
           "  --blank-only       test only blank discs (a rewritable one is erased first)\n"
           "  --erase-after      erase a rewritable disc after the test, also when stopped\n"
           "  --erase-seconds N  how long an erase is expected to take (default 120)\n"
           "  --approved ID,ID,...\n"
           "                     approved discs: pairs of disc ID and manufacturer ID (CD:\n"
           "                       lead-in and lead-out times MM:SS:FF); --regex makes them\n"
           "                       patterns, --qualified-only refuses other discs\n"
           "  --rerun-unapproved a failure on an unapproved disc may run again\n"
           "  --usage-limit N    runs a disc may take part in (counted on the disc)\n"
           "  --fail-on-media-problems\n"
           "                     a wrong, closed or missing disc fails the run (exit 1)\n"
           "  --reruns N         runs allowed after failures (0: until one passes)\n"
           "  --media-prompts N  discs to ask for when one does not fit (default 0)\n"
           "  --eject            eject the disc at the end\n"
           "  --customer NAME, --prompt-title TEXT\n"
           "                     names the test's messages show\n"
           "On a real writer it runs only with --destructive: it overwrites the disc.\n";
}

}  // namespace host
