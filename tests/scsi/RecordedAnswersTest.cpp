// What an independent device model (QEMU's emulated SCSI CD, through a real kernel) answered
// to every command the library sends, read back by the library's decoders and, through the
// replay devices, by its command functions: a complete CD and DVD, and an empty drive.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "os/Device.h"
#include "os/EmulatedDevice.h"
#include "scsi/Scsi.h"
#include "sim/recorded/ReplayDevice.h"
#include "support/ScopedVirtualClock.h"

namespace {

using Bytes = std::vector<uint8_t>;
using kivscsi::Status;
using sim::recorded::RecordedAnswer;

constexpr size_t kNoData = SIZE_MAX;

const RecordedAnswer& recorded(const std::string& device, const std::string& label) {
    static const auto devices =
        sim::recorded::parseRecordedAnswers(sim::recorded::qemuScsiCdAnswers());
    for (const auto& d : devices) {
        if (d.name != device) continue;
        for (const auto& answer : d.answers) {
            if (answer.label == label) return answer;
        }
    }
    ADD_FAILURE() << device << ": nothing recorded as " << label;
    static const RecordedAnswer none;
    return none;
}

TEST(RecordedAnswers, EveryDeviceAndCommandOfTheRecordingIsRead) {
    std::vector<std::string> names;
    size_t answers = 0;
    for (const auto& device :
         sim::recorded::parseRecordedAnswers(sim::recorded::qemuScsiCdAnswers())) {
        names.push_back(device.name);
        answers += device.answers.size();
    }
    EXPECT_EQ(names, (std::vector<std::string>{"sr0", "sr1", "sr2", "sg0", "sg1", "sg2"}));
    EXPECT_EQ(answers, 360u);
}

TEST(RecordedAnswers, ProfilesOfTheCdTheDvdAndTheEmptyDrive) {
    const struct {
        const char* device;
        uint16_t currentProfile;
        bool cdCurrent;
        bool dvdCurrent;
    } rows[] = {
        {"sr0", 0x0008, true, false},
        {"sr1", 0x0010, false, true},
        {"sr2", 0x0000, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.device);
        const Bytes& data = recorded(row.device, "GetConfiguration RT0 f0 a64").data;
        const auto header = kivscsi::decodeFeatureHeader(data.data(), data.size());
        ASSERT_TRUE(header.has_value());
        EXPECT_EQ(header->dataLength, 0x24u);
        EXPECT_EQ(header->currentProfile, row.currentProfile);
        const auto profiles = kivscsi::decodeProfileList(data.data(), data.size());
        ASSERT_EQ(profiles.size(), 2u);
        EXPECT_EQ(profiles[0].profile, 0x0010);
        EXPECT_EQ(profiles[0].current, row.dvdCurrent);
        EXPECT_EQ(profiles[1].profile, 0x0008);
        EXPECT_EQ(profiles[1].current, row.cdCurrent);
        EXPECT_FALSE(kivscsi::findFeature(data.data(), data.size(), 0x0107).has_value());
        const auto removable = kivscsi::findFeature(data.data(), data.size(), 0x0003);
        ASSERT_TRUE(removable.has_value());
        EXPECT_TRUE(removable->current);
    }
}

TEST(RecordedAnswers, DiscStatusCapacityEventsAndPages) {
    const RecordedAnswer& cdInformation = recorded("sr0", "ReadDiscInformation t0 a34");
    const auto info =
        kivscsi::decodeDiscInformation(cdInformation.data.data(), cdInformation.data.size());
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->discStatus, 2);  // complete
    EXPECT_EQ(info->lastSessionState, 3);
    EXPECT_FALSE(info->erasable);
    EXPECT_EQ(info->sessions, 1);
    EXPECT_EQ(info->backgroundFormatStatus, 0);

    const struct {
        const char* device;
        uint32_t lastLba;
    } capacities[] = {{"sr0", 0x27FF}, {"sr1", 0x63FFF}};
    for (const auto& row : capacities) {
        const Bytes& data = recorded(row.device, "ReadCapacity").data;
        const auto capacity = kivscsi::decodeCapacity(data.data(), data.size());
        ASSERT_TRUE(capacity.has_value());
        EXPECT_EQ(capacity->lastLba, row.lastLba);
        EXPECT_EQ(capacity->blockLength, 2048u);
    }

    const struct {
        const char* device;
        const char* label;
        bool present;
        bool doorOpen;
    } events[] = {
        {"sr0", "GESN polled media a8", true, false},
        {"sr2", "GESN polled media a8", false, false},
        {"sr1", "GESN polled media (tray open)", false, true},
    };
    for (const auto& row : events) {
        SCOPED_TRACE(row.label);
        const Bytes& data = recorded(row.device, row.label).data;
        const auto event = kivscsi::decodeMediaEvent(data.data(), data.size());
        ASSERT_TRUE(event.has_value());
        EXPECT_FALSE(event->noEventAvailable);
        EXPECT_EQ(event->notificationClass, 4);
        EXPECT_EQ(event->mediaPresent, row.present);
        EXPECT_EQ(event->doorOpen, row.doorOpen);
    }

    // QEMU's capabilities page is 20 bytes long: it names no current write speed.
    const Bytes& sensed = recorded("sr0", "ModeSense10 2A a64").data;
    const auto page = kivscsi::findModePage(sensed.data(), sensed.size(), 0x2A);
    ASSERT_TRUE(page.has_value());
    EXPECT_EQ(page->available, 22u);
    EXPECT_FALSE(kivscsi::decodeCurrentWriteSpeed(*page).has_value());
    EXPECT_FALSE(kivscsi::findModePage(sensed.data(), sensed.size(), 0x05).has_value());

    const Bytes& physical = recorded("sr1", "ReadDvdStructure 00 a2052").data;
    EXPECT_EQ(kivscsi::decodeDvdManufacturerId(physical.data(), physical.size()), "");
}

class ReplayTest : public ::testing::Test {
protected:
    ReplayTest() : names_(sim::recorded::registerRecordedDevices()) {}
    ~ReplayTest() override {
        for (const auto& name : names_) os::unregisterEmulatedDevice(name);
    }

    testsupport::ScopedVirtualClock clock_;
    std::vector<std::string> names_;
    _SCSI_PATH path_{};
};

// The calls of the optical drive, with its own allocation lengths, reach the recorded answers.
TEST_F(ReplayTest, TheDrivesCallsGetTheRecordedAnswers) {
    using Call = std::function<Status(const _SCSI_PATH&, const char*, Bytes&)>;
    const Call unitReady = [](const _SCSI_PATH& p, const char* d, Bytes&) {
        return kivscsi::TestUnitReady(p, d);
    };
    const Call profile = [](const _SCSI_PATH& p, const char* d, Bytes& out) {
        return kivscsi::GetConfiguration(p, d, 2, 0, out.data(), 512);
    };
    const Call streaming = [](const _SCSI_PATH& p, const char* d, Bytes& out) {
        return kivscsi::GetConfiguration(p, d, 2, 0x0107, out.data(), 16);
    };
    const Call copyright = [](const _SCSI_PATH& p, const char* d, Bytes& out) {
        return kivscsi::ReadDvdStructure(p, d, 0, 0, 0x01, out.data(), 512, 0);
    };
    const Call adip = [](const _SCSI_PATH& p, const char* d, Bytes& out) {
        return kivscsi::ReadDvdStructure(p, d, 0, 0, 0x11, out.data(), 256, 0);
    };
    const Call atip = [](const _SCSI_PATH& p, const char* d, Bytes& out) {
        return kivscsi::KIVR_ReadATIP(p, d, 0, out.data(), 804);
    };
    const Call speed = [](const _SCSI_PATH& p, const char* d, Bytes&) {
        return kivscsi::KIVR_SetCDSpeed(p, d, 0xFFFF, 0xFFFF);
    };
    const Call write = [](const _SCSI_PATH& p, const char* d, Bytes& out) {
        return kivscsi::WriteBlocksEx(p, d, out.data(), 2048, 16, 1, 300);
    };
    const struct {
        const char* device;
        const char* call;
        Call send;
        Status expected;
        size_t byteAt;  // a byte of the answer to check, when the call returns data
        uint8_t byte;
    } rows[] = {
        {"recorded:sr0", "unit ready", unitReady, 0, kNoData, 0},
        {"recorded:sr2", "unit ready", unitReady, 0x3A00, kNoData, 0},
        {"recorded:sr0", "profile", profile, 0, 7, 0x08},
        {"recorded:sr1", "profile", profile, 0, 7, 0x10},
        {"recorded:sr1", "profile list past the recording", profile, 0, 100, 0x00},
        {"recorded:sr1", "streaming feature", streaming, 0, 11, 0x08},
        {"recorded:sr1", "copyright", copyright, 0, 4, 0x00},
        {"recorded:sr0", "copyright of a CD", copyright, 0x3000, kNoData, 0},
        {"recorded:sr1", "ADIP", adip, 0x2400, kNoData, 0},
        {"recorded:sr0", "ATIP of a pressed CD", atip, 0x2400, kNoData, 0},
        {"recorded:sr0", "speed", speed, 0x2000, kNoData, 0},
        {"recorded:sr1", "write to a DVD-ROM", write, 0x2700, kNoData, 0},
        {"recorded:sr2", "write without a disc", write, 0x3A00, kNoData, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.device) + " " + row.call);
        Bytes answer(2048, 0xEE);
        EXPECT_EQ(row.send(path_, row.device, answer), row.expected);
        if (row.byteAt != kNoData) {
            EXPECT_EQ(answer[row.byteAt], row.byte);
        }
    }
}

TEST_F(ReplayTest, TheTrayFollowsEjectLoadAndTheLock) {
    using Step = std::function<Status(const _SCSI_PATH&, const char*)>;
    const Step unitReady = kivscsi::TestUnitReady;
    const Step prevent = kivscsi::PreventMediumRemoval;
    const Step allow = kivscsi::AllowMediumRemoval;
    const Step eject = kivscsi::EjectMedia;
    const Step load = kivscsi::Load;
    const struct {
        const char* step;
        Step send;
        Status expected;
    } steps[] = {
        {"locked", prevent, 0},
        {"eject refused", eject, 0x5302},
        {"still ready", unitReady, 0},
        {"unlocked", allow, 0},
        {"ejected", eject, 0},
        {"tray open", unitReady, 0x3A00},
        {"loaded", load, 0},
        {"ready again", unitReady, 0},
        {"and stays so", unitReady, 0},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.step);
        EXPECT_EQ(step.send(path_, "recorded:sg0"), step.expected);
    }
}

TEST_F(ReplayTest, WhatWasNeverRecordedIsRefusedAndNoted) {
    auto device = std::dynamic_pointer_cast<sim::recorded::ReplayDevice>(
        os::findEmulatedDevice("recorded:sr0"));
    ASSERT_NE(device, nullptr);
    Bytes sector(2048);
    EXPECT_EQ(kivscsi::ReadBlocksTimedEx(path_, "recorded:sr0", sector.data(), 2048, 17, 1, 10),
              0x2400u);
    EXPECT_EQ(kivscsi::ReadBlocksTimedEx(path_, "recorded:sr0", sector.data(), 2048, 16, 1, 10),
              0u);
    EXPECT_EQ(sector[0], 'L');
    ASSERT_EQ(device->unrecorded().size(), 1u);
    EXPECT_EQ(device->unrecorded()[0][5], 17);

    auto opened = os::openDevice(std::string("recorded:sr1"), os::kRead);
    ASSERT_TRUE(opened.error.ok());
    const auto geometry = os::queryDiskGeometry(opened.handle.native());
    ASSERT_TRUE(geometry.error.ok());
    EXPECT_EQ(geometry.geometry.bytesPerSector, 2048u);
    EXPECT_EQ(geometry.geometry.totalBytes, 0x64000ull * 2048);
}

}  // namespace
