// drivediag run read-write from command line to exit code, on emulated writers and on the
// virtual clock: whole runs per kind of disc, the media checks and the writer's faults.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "DrivediagRun.h"
#include "cli/StopRequest.h"
#include "os/EmulatedDevice.h"
#include "scsi/Opcodes.h"
#include "sim/mmc/DiscModel.h"
#include "sim/mmc/EmulatedWriter.h"
#include "support/ScopedVirtualClock.h"

namespace {

using hosttest::runDrivediag;
using hosttest::RunOutput;
using Args = std::vector<std::string>;
using sim::mmc::DiscStatus;
using sim::mmc::MediaKind;

constexpr const char* kWriterName = "\\\\.\\SimCdRom5";

// A writer registered under kWriterName, reached by drivediag as a real writer would be, so
// the test can look at the disc afterwards. `onCommand` sees each command block first.
class RegisteredWriter final : public os::EmulatedDevice, public kivscsi::ScsiTarget {
public:
    explicit RegisteredWriter(const sim::mmc::DiscModel& disc)
        : writer(std::make_shared<sim::mmc::EmulatedWriter>()) {
        writer->insertDisc(disc);
    }
    os::Error open(uint32_t access) override { return writer->open(access); }
    os::GeometryResult geometry() override { return writer->geometry(); }
    void execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) override {
        if (onCommand) onCommand(command.cdb[0]);
        writer->execute(command, response);
    }

    std::shared_ptr<sim::mmc::EmulatedWriter> writer;
    std::function<void(uint8_t opcode)> onCommand;
};

class OpticalRunTest : public ::testing::Test {
protected:
    std::shared_ptr<RegisteredWriter> registerWriter(const sim::mmc::DiscModel& disc) {
        auto target = std::make_shared<RegisteredWriter>(disc);
        os::registerEmulatedDevice(kWriterName, target);
        return target;
    }
    void TearDown() override { os::unregisterEmulatedDevice(kWriterName); }

    static RunOutput run(Args extra) {
        Args args = {"run", "read-write", "--sectors", "64"};
        args.insert(args.end(), extra.begin(), extra.end());
        return runDrivediag(args);
    }

    testsupport::ScopedVirtualClock clock_;
};

TEST_F(OpticalRunTest, AWholeRunOnEachWritableKindLeavesTheDiscAsItsKindNeeds) {
    // 64 sectors at each of the kind's write speeds: a sequential disc goes on after them all.
    const struct {
        MediaKind kind;
        DiscStatus after;       // the disc's status once drivediag is done
        uint32_t nextWritable;  // where a sequential disc goes on; 0 for overwritable ones
    } cases[] = {
        {MediaKind::CdR, DiscStatus::Appendable, 5 * 64},
        {MediaKind::CdRw, DiscStatus::Appendable, 4 * 64},
        {MediaKind::DvdMinusR, DiscStatus::Appendable, 4 * 64},
        {MediaKind::DvdMinusRw, DiscStatus::Appendable, 4 * 64},
        {MediaKind::DvdMinusRDualLayer, DiscStatus::Appendable, 3 * 64},
        {MediaKind::DvdPlusR, DiscStatus::Appendable, 4 * 64},
        {MediaKind::DvdPlusRw, DiscStatus::Complete, 0},
        {MediaKind::DvdPlusRDualLayer, DiscStatus::Appendable, 3 * 64},
        {MediaKind::DvdRam, DiscStatus::Complete, 0},
        {MediaKind::BdR, DiscStatus::Appendable, 4 * 64},
        {MediaKind::BdRe, DiscStatus::Complete, 0},
    };
    for (const auto& c : cases) {
        const sim::mmc::DiscModel disc = sim::mmc::discOf(c.kind);
        SCOPED_TRACE(sim::mmc::traitsOf(c.kind).name);
        const auto target = registerWriter(disc);
        const RunOutput output =
            run({"--device", kWriterName, "--destructive", "--usage-limit", "3"});
        EXPECT_EQ(output.exitCode, 0) << output.out << output.err;
        const sim::mmc::WriterSnapshot after = target->writer->snapshot();
        EXPECT_EQ(after.status, c.after);
        // The usage marker of the first use: the count twice, then the fill byte.
        const auto first = target->writer->mediumSector(0);
        ASSERT_TRUE(first.has_value());
        EXPECT_EQ(std::vector<uint8_t>(first->begin(), first->begin() + 7),
                  (std::vector<uint8_t>{0x00, 0x01, 0x00, 0x01, 0xBD, 0xBD, 0xBD}));
        EXPECT_FALSE(after.removalPrevented);
        EXPECT_EQ(after.nextWritable, c.nextWritable);
        // Every speed the disc allows, fastest first, each with its pass written and read.
        std::string speeds;
        for (uint16_t speed : sim::mmc::traitsOf(c.kind).writeSpeeds)
            speeds += (speeds.empty() ? "" : ", ") + std::to_string(speed) + " kB/s";
        EXPECT_EQ(output.lineWith({"Speeds set:"}), "  Speeds set:      " + speeds);
        const std::string sectors =
            std::to_string(64 * sim::mmc::traitsOf(c.kind).writeSpeeds.size()) + " sectors;";
        EXPECT_NE(output.lineWith({"Writes:", sectors, "none failed"}), "");
        EXPECT_NE(output.lineWith({"Reads:", sectors, "none failed"}), "");
    }
}

TEST_F(OpticalRunTest, DiscsTheTestRefusesAndWriterFaultsEndWithTheirExitCodeAndEvent) {
    const struct {
        const char* device;
        Args extra;
        const char* result;
        int exitCode;
        const char* event;  // the key and first variables of an event the run raises
    } cases[] = {
        {"emu:dvd-rom",
         {},
         "INCORRECTMEDIA",
         11,
         "\"key\":\"INCORRECT_MEDIA_INSERTED\",\"text\":\"The media in the drive is not the one "
         "needed: insert writable disc (writable disc).\""},
        {"emu:dvd+r",
         {"--media", "dvd+rw,bd-re"},
         "INCORRECTMEDIA",
         11,
         "\"text\":\"The media in the drive is not the one needed: insert DVD+RW or BD-RE (DVD+RW "
         "or BD-RE).\""},
        {"emu:none", {}, "NOMEDIA", 12, "\"key\":\"ERROR_NO_MEDIA\""},
        {"emu:dvd+r,closed",
         {},
         "INCORRECTMEDIA",
         11,
         "\"key\":\"MEDIA_CLOSED_EVENT\",\"text\":\"The DVD+R is closed and cannot be written.\""},
        {"emu:dvd+r,full", {}, "PASS", 0, "\"key\":\"MEDIA_FULL_EVENT\""},
        {"emu:dvd+r,used,uses=5",
         {"--usage-limit", "5"},
         "INCORRECTMEDIA",
         11,
         "\"key\":\"MAX_USAGE_LIMIT_REACHED\",\"text\":\"This DVD+R has reached its limit of 5 "
         "uses; use a new disc.\""},
        // A failed run on a disc that is not approved ends once it is run again; an approved disc
        // gets its second run, which writes past the bad spot.
        {"emu:dvd+r,disc-id=R01,maker=OTHER,fault=write:0C00@40",
         {"--qualified-only", "--rerun-unapproved", "--approved", "R01,MAKER", "--media-prompts",
          "1", "--reruns", "2"},
         "INCORRECTMEDIA",
         11,
         "\"key\":\"TestFailedOnNonQualMedia\",\"text\":\"The test failed on a disc that "
         "drivediag has not qualified.\""},
        {"emu:dvd+r,disc-id=R01,maker=MAKER,fault=write:0C00@40",
         {"--qualified-only", "--rerun-unapproved", "--approved", "R01,MAKER", "--media-prompts",
          "1", "--reruns", "2"},
         "PASS",
         0,
         "\"key\":\"DRIVE_SCSI_WRITE_FAILURE\""},
        {"emu:dvd+rw,fault=read:0803@20", {}, "FAIL", 1, "\"key\":\"COMMUNICATION_CRC_ERROR\""},
        {"emu:dvd+rw,fault=write:0408*0",
         {},
         "TIMEDOUT",
         10,
         "\"key\":\"LONG_WRITE_IN_PROGRESS_ERROR\",\"text\":\"The write to sector 0 took too "
         "long.\""},
        // More sectors than the writer's cache holds, so the verify reads reach the medium.
        {"emu:dvd+rw,lose=20", {"--sectors", "2048"}, "FAIL", 1, nullptr},
        {"emu:dvd+rw,vanish=60", {"--sectors", "2048"}, "FAIL", 1, "\"ScsiError1\":\"AB10\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.device);
        Args extra = {"--device", c.device, "--json"};
        extra.insert(extra.end(), c.extra.begin(), c.extra.end());
        const RunOutput output = run(extra);
        EXPECT_EQ(output.exitCode, c.exitCode) << output.out << output.err;
        EXPECT_NE(output.lineWith(
                      {"\"type\":\"summary\"", std::string("\"result\":\"") + c.result + "\""}),
                  "")
            << output.out;
        if (c.event != nullptr) {
            EXPECT_NE(output.lineWith({"\"type\":\"event\"", c.event}), "") << output.out;
        }
    }
}

TEST_F(OpticalRunTest, CtrlCStopsTheRunAndErasesTheDiscWhenAskedTo) {
    for (const bool eraseAfter : {false, true}) {
        SCOPED_TRACE(eraseAfter ? "erasing after" : "keeping the disc");
        const auto target = registerWriter(sim::mmc::discOf(MediaKind::CdRw));
        int writes = 0;
        target->onCommand = [&writes](uint8_t opcode) {
            if (opcode == kivscsi::opcode::kWrite10 && ++writes == 3) host::requestStop();
        };
        Args extra = {"--device", kWriterName, "--destructive"};
        if (eraseAfter) extra.push_back("--erase-after");
        const RunOutput output = run(extra);
        EXPECT_EQ(output.exitCode, 4) << output.out << output.err;
        EXPECT_EQ(output.result(), "USERABORTED (exit code 4)");
        EXPECT_EQ(output.lines.front(), std::string("Running read-write on ") + kWriterName +
                                            " with --sectors=64" +
                                            (eraseAfter ? " --erase-after" : ""));
        // The stop is seen before the next write.
        EXPECT_EQ(writes, 3);
        bool blanked = false;
        for (const sim::mmc::CommandRecord& command : target->writer->history())
            blanked = blanked || command.cdb[0] == kivscsi::opcode::kBlank;
        EXPECT_EQ(blanked, eraseAfter);
        EXPECT_EQ(output.lineWith({"PROMPT:", "Erase the disc"}).empty(), !eraseAfter)
            << output.out;
        EXPECT_EQ(target->writer->snapshot().status,
                  eraseAfter ? DiscStatus::Blank : DiscStatus::Appendable);
        host::clearStopRequest();
    }
}

}  // namespace
