// Planted faults: a sense answer on the Nth command of a kind or at an LBA, for a number of
// times or for good, and a device that disappears.
#include <vector>

#include "WriterFixture.h"
#include "os/Device.h"
#include "scsi/Opcodes.h"

namespace mmctest {
namespace {

using sim::mmc::SenseFault;
using sim::mmc::senseOf;

enum class Op { Write, Read, UnitReady };

struct Call {
    Op op;
    uint32_t lba;
    uint16_t count;
    Status expected;
};

struct FaultRow {
    const char* name;
    SenseFault fault;
    std::vector<Call> calls;
};

const FaultRow kRows[] = {
    {"CRC error on the second write",
     {kivscsi::opcode::kWrite10, std::nullopt, 1, 1, senseOf(0x0803)},
     {{Op::Write, 0, 1, 0}, {Op::Write, 1, 1, 0x0803}, {Op::Write, 1, 1, 0}}},
    {"long write in progress for good",
     {kivscsi::opcode::kWrite10, std::nullopt, 0, 0, senseOf(0x0408)},
     {{Op::Write, 0, 1, 0x0408},
      {Op::Write, 0, 1, 0x0408},
      {Op::Write, 0, 1, 0x0408},
      {Op::Read, 0, 1, 0}}},
    {"no table of contents, twice",
     {kivscsi::opcode::kWrite10, std::nullopt, 0, 2, senseOf(0x5700)},
     {{Op::Write, 0, 1, 0x5700}, {Op::Write, 0, 1, 0x5700}, {Op::Write, 0, 1, 0}}},
    {"read error at one LBA",
     {std::nullopt, 5u, 0, 0, senseOf(0x1100)},
     {{Op::Read, 4, 1, 0},
      {Op::Read, 6, 1, 0},
      {Op::Read, 5, 1, 0x1100},
      {Op::Read, 2, 3, 0},
      {Op::Read, 2, 4, 0x1100},
      {Op::Write, 5, 1, 0x1100},
      {Op::UnitReady, 0, 0, 0}}},
    {"no medium on the third command of any kind",
     {std::nullopt, std::nullopt, 2, 1, senseOf(0x3A00)},
     {{Op::UnitReady, 0, 0, 0},
      {Op::Read, 0, 1, 0},
      {Op::UnitReady, 0, 0, 0x3A00},
      {Op::UnitReady, 0, 0, 0}}},
};

TEST_F(WriterTest, PlantedSensesHitTheChosenCommandsOnly) {
    for (const FaultRow& row : kRows) {
        SCOPED_TRACE(row.name);
        writer->clearFaults();
        loadWritable(MediaKind::DvdPlusRw);
        writer->injectSense(row.fault);
        int index = 0;
        for (const Call& call : row.calls) {
            SCOPED_TRACE(index++);
            Bytes data;
            switch (call.op) {
                case Op::Write:
                    EXPECT_EQ(write(call.lba, call.count, 9), call.expected);
                    break;
                case Op::Read:
                    EXPECT_EQ(read(call.lba, call.count, false, data), call.expected);
                    break;
                case Op::UnitReady:
                    EXPECT_EQ(testUnitReady(), call.expected);
                    break;
            }
        }
    }
}

TEST_F(WriterTest, AFaultedWriteLeavesTheDiscUntouched) {
    loadWritable(MediaKind::CdR);
    writer->injectSense({kivscsi::opcode::kWrite10, std::nullopt, 0, 1, senseOf(0x0803)});
    EXPECT_EQ(write(0, 4, 1), 0x0803u);
    EXPECT_EQ(writer->snapshot().nextWritable, 0u);
    EXPECT_EQ(write(0, 4, 1), 0u);
    EXPECT_EQ(writer->snapshot().nextWritable, 4u);
}

TEST_F(WriterTest, ADeviceThatDisappearsAnswersNothingUntilItReturns) {
    loadWritable(MediaKind::DvdPlusR);
    writer->disappear();
    EXPECT_EQ(testUnitReady(), kivscsi::kStatusDeviceGone);
    Bytes data;
    EXPECT_EQ(read(0, 1, true, data), kivscsi::kStatusDeviceGone);
    EXPECT_FALSE(os::openDevice(std::string(kDevice), os::kRead).error.ok());
    const auto history = writer->history();
    ASSERT_FALSE(history.empty());
    EXPECT_TRUE(history.back().deviceGone);

    writer->reappear();
    EXPECT_EQ(testUnitReady(), 0u);
    EXPECT_TRUE(os::openDevice(std::string(kDevice), os::kRead).error.ok());
}

TEST_F(WriterTest, UnknownCommandsAreRejectedAndRecorded) {
    auto opened = kivscsi::openTransport(kDevice);
    ASSERT_TRUE(opened.transport);
    kivscsi::ScsiCommand command;
    command.cdb[0] = 0xEE;
    command.cdbLength = 10;
    command.timeoutMs = 1000;
    writer->clearHistory();
    EXPECT_EQ(kivscsi::statusFromResponse(opened.transport->send(command)), 0x2000u);
    const auto history = writer->history();
    ASSERT_EQ(history.size(), 1u);
    EXPECT_EQ(history[0].cdb.size(), 10u);
    EXPECT_EQ(history[0].sense.code, 0x2000);
}

}  // namespace
}  // namespace mmctest
