#include "cli/RunChecks.h"

#include "kiv/Exception.h"
#include "libDrive/Exceptions.h"
#include "libDrive/Range.h"
#include "quel5/Host.h"
#include "quel5/Registry.h"

namespace host {
namespace {

// The cache test writes its blocks over the last this many sectors of its range.
constexpr uint64_t kCacheTestSectors = 32768;

constexpr const char* kRangeSyntax =
    "A range text is a sector number (100000), a size in KB, MB or GB (2GB), or a percentage "
    "of the drive (10%), optionally after MIN+ or MAX- (MIN+1GB, MAX-10%); StartRange may also "
    "be MIN and EndRange MAX.";

const char* const kRangeKeys[] = {"StartRange", "EndRange", "LargeDriveStartRange",
                                  "LargeDriveEndRange"};

const quel5::Parameter* parameter(const char* key) {
    return quel5::Registry::instance().findParameter(QuelString(key));
}

std::string textOf(const char* key) {
    const quel5::Parameter* found = parameter(key);
    return found != nullptr && found->isset() ? found->toString().trim().toUtf8() : "";
}

// Keeps the name of the parameter the range complains about; drops everything else it reports.
class RangeComplaints : public quel5::Host {
public:
    RangeComplaints() : previous_(quel5::installedHost()) { quel5::installHost(this); }
    ~RangeComplaints() override { quel5::installHost(previous_); }
    RangeComplaints(const RangeComplaints&) = delete;
    RangeComplaints& operator=(const RangeComplaints&) = delete;

    void eventRaised(quel5::Severity, const quel5::Event& event, const QuelString&, int) override {
        for (const auto& [name, value] : event.variables()) {
            if (name.toUtf8() == "PARAMETER_NAME") parameterName = value.toString().toUtf8();
        }
    }
    void libraryRegistered(const QuelString&) override {}
    void progress(const quel5::LocalizedString&, double) override {}
    void percentDone(unsigned int) override {}
    void resetPercentDone() override {}
    void estimatedTimeLeft(unsigned int) override {}
    bool stopRequested() override { return false; }
    bool showMessageBox(const quel5::MessageBox2&, int*) override { return false; }
    void messageBoxCancelled(const quel5::MessageBox2&) override {}
    QuelString localize(const QuelString& key, const quel5::Variables&) override { return key; }

    std::string parameterName;

private:
    quel5::Host* previous_;
};

std::string refusal(const std::string& key) {
    return "the " + key + " text \"" + textOf(key.c_str()) + "\" is not a range. " + kRangeSyntax;
}

// The range texts read on a drive of `sectors` 512-byte sectors.
std::string probe(uint64_t sectors) {
    RangeComplaints complaints;
    try {
        // Neither amount parameter: only the texts are read.
        const kivrlibdrive::CRange range(sectors, 512, false, false);
    } catch (const kivrlibdrive::CannotRun&) {
        return refusal(complaints.parameterName);
    } catch (const kivrlibdrive::InvalidRange&) {
        // Texts that read, but do not fit this stand-in drive: the real one decides.
    } catch (const kiv::InternalError& error) {
        // A text the range could not evaluate; its message ends with the text.
        const std::string message = error.getMessage().toUtf8();
        for (const char* key : kRangeKeys) {
            const std::string text = textOf(key);
            if (!text.empty() && message.size() >= text.size() &&
                message.compare(message.size() - text.size(), text.size(), text) == 0)
                return refusal(key);
        }
        return "the range parameters cannot be read (" + message + "). " + kRangeSyntax;
    }
    return "";
}

}  // namespace

std::string rangeTextProblem() {
    // A small drive reads StartRange and EndRange; one past any LargeDriveSize also reads the
    // large-drive texts, which the library only looks at when AdjustForLargeDrives is on.
    if (std::string problem = probe(uint64_t{1} << 21); !problem.empty()) return problem;
    const quel5::Parameter* adjust = parameter("AdjustForLargeDrives");
    if (adjust != nullptr && adjust->isset() && adjust->value().valueBool())
        return probe(uint64_t{1} << 56);
    return "";
}

std::string amountProblem(const TestDefinition& test) {
    for (const ParameterDefault& entry : test.defaults) {
        const bool seeks = entry.key == "NumberOfSeeks";
        if (!seeks && entry.key != "SectorPercentToTest") continue;
        const quel5::Parameter* own = parameter(entry.key.c_str());
        const quel5::Parameter* other = parameter(seeks ? "SectorPercentToTest" : "NumberOfSeeks");
        const bool ownSet = own != nullptr && own->isset();
        const bool zero = ownSet && (seeks ? own->value().valueUint32() == 0
                                           : own->value().valuePercent() <= 0.0);
        // Without its own amount a test may still count by the other one.
        const bool none = !ownSet && (other == nullptr || !other->isset());
        if (!zero && !none) return "";
        return test.name + " tests as many " +
               (seeks ? std::string("positions as NumberOfSeeks says")
                      : std::string("sectors as SectorPercentToTest says")) +
               "; set it to 1 or more (the default is " + entry.value + ")";
    }
    return "";
}

std::string deviceProblem(const TestDefinition& test, kivrlibdrive::Drive& drive,
                          const std::string& deviceText) {
    if (test.name != "cache") return "";
    const uint64_t sectors = drive.GetTotalSectors();
    if (sectors >= kCacheTestSectors) return "";
    return "the cache test works on the last " + std::to_string(kCacheTestSectors) +
           " sectors of its range, and " + deviceText + " has only " + std::to_string(sectors) +
           "; it was not started";
}

}  // namespace host
