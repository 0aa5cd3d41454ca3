// The tray over virtual time: spin-up after loading, no-medium answers with the tray open or
// closed, prevent and allow, eject and load, and the media events the drive reports.
#include <functional>

#include "WriterFixture.h"
#include "os/Device.h"

namespace mmctest {
namespace {

TEST_F(WriterTest, ReadinessFollowsTheTrayOverTime) {
    const struct {
        const char* step;
        std::function<void(WriterTest&)> act;
        Status expected;
    } rows[] = {
        {"empty drive", [](WriterTest&) {}, 0x3A01},
        {"disc inserted",
         [](WriterTest& t) { t.writer->insertDisc(sim::mmc::discOf(MediaKind::CdR)); }, 0x0401},
        {"1 ms before spun up", [](WriterTest& t) { t.clock.advance(kSpinUpMs - 1); }, 0x0401},
        {"spun up", [](WriterTest& t) { t.clock.advance(1); }, 0},
        {"kept becoming ready", [](WriterTest& t) { t.writer->keepBecomingReadyFor(5000); },
         0x0401},
        {"4999 ms later", [](WriterTest& t) { t.clock.advance(4999); }, 0x0401},
        {"5000 ms later", [](WriterTest& t) { t.clock.advance(1); }, 0},
        {"ejected by button", [](WriterTest& t) { EXPECT_TRUE(t.writer->pressEjectButton()); },
         0x3A02},
        {"closed by button", [](WriterTest& t) { EXPECT_TRUE(t.writer->pressEjectButton()); },
         0x0401},
        {"disc removed", [](WriterTest& t) { t.writer->removeDisc(); }, 0x3A02},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step);
        row.act(*this);
        EXPECT_EQ(testUnitReady(), row.expected);
    }
}

TEST_F(WriterTest, PreventedRemovalKeepsTheTrayShut) {
    loadWritable(MediaKind::DvdPlusR);
    ASSERT_EQ(kivscsi::PreventMediumRemoval(path, kDevice), 0u);
    EXPECT_EQ(kivscsi::EjectMedia(path, kDevice), 0x5302u);
    EXPECT_FALSE(writer->pressEjectButton());
    EXPECT_EQ(testUnitReady(), 0u);
    EXPECT_TRUE(writer->snapshot().removalPrevented);

    ASSERT_EQ(kivscsi::AllowMediumRemoval(path, kDevice), 0u);
    EXPECT_EQ(kivscsi::EjectMedia(path, kDevice), 0u);
    EXPECT_TRUE(writer->snapshot().trayOpen);
    EXPECT_EQ(testUnitReady(), 0x3A02u);
}

TEST_F(WriterTest, LoadClosesTheTrayAndWaitsForTheDisc) {
    loadWritable(MediaKind::BdR);
    ASSERT_EQ(kivscsi::EjectMedia(path, kDevice), 0u);
    const uint64_t before = clock.elapsedMilliseconds();
    EXPECT_EQ(kivscsi::Load(path, kDevice), 0u);
    EXPECT_EQ(clock.elapsedMilliseconds() - before, kSpinUpMs);
    EXPECT_EQ(testUnitReady(), 0u);
}

TEST_F(WriterTest, StartUnitWaitsForSpinUpButCannotConjureADisc) {
    EXPECT_EQ(kivscsi::StartUnit(path, kDevice), 0x3A01u);
    writer->insertDisc(sim::mmc::discOf(MediaKind::DvdPlusR));
    clock.advance(500);
    const uint64_t before = clock.elapsedMilliseconds();
    EXPECT_EQ(kivscsi::StartUnit(path, kDevice), 0u);
    EXPECT_EQ(clock.elapsedMilliseconds() - before, kSpinUpMs - 500);
}

TEST_F(WriterTest, MediaEventsReportEachChangeOnce) {
    const struct {
        const char* step;
        std::function<void(WriterTest&)> act;
        uint8_t eventCode;
        bool present;
        bool doorOpen;
    } rows[] = {
        {"empty and closed", [](WriterTest&) {}, 0, false, false},
        {"disc inserted", [](WriterTest& t) { t.loadWritable(MediaKind::CdR); }, 2, true, false},
        {"nothing new", [](WriterTest&) {}, 0, true, false},
        {"eject request while locked",
         [](WriterTest& t) {
             EXPECT_EQ(kivscsi::PreventMediumRemoval(t.path, kDevice), 0u);
             t.writer->pressEjectButton();
         },
         1, true, false},
        {"ejected",
         [](WriterTest& t) {
             EXPECT_EQ(kivscsi::AllowMediumRemoval(t.path, kDevice), 0u);
             EXPECT_EQ(kivscsi::EjectMedia(t.path, kDevice), 0u);
         },
         3, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step);
        row.act(*this);
        const Answer answer = mediaEvents();
        ASSERT_EQ(answer.status, 0u);
        const auto event = kivscsi::decodeMediaEvent(answer.data(), answer.received);
        ASSERT_TRUE(event);
        EXPECT_FALSE(event->noEventAvailable);
        EXPECT_EQ(event->notificationClass, 4);
        EXPECT_EQ(event->eventCode, row.eventCode);
        EXPECT_EQ(event->mediaPresent, row.present);
        EXPECT_EQ(event->doorOpen, row.doorOpen);
    }
}

TEST_F(WriterTest, GeometryIsThatOfTheReadyDisc) {
    auto opened = os::openDevice(std::string(kDevice), os::kRead);
    ASSERT_TRUE(opened.error.ok());
    EXPECT_FALSE(os::queryDiskGeometry(opened.handle).error.ok());
    loadWritable(MediaKind::DvdPlusR, 4096);
    const auto result = os::queryDiskGeometry(opened.handle);
    ASSERT_TRUE(result.error.ok());
    EXPECT_EQ(result.geometry.bytesPerSector, 2048u);
    EXPECT_EQ(result.geometry.totalBytes, 4096u * 2048u);
}

}  // namespace
}  // namespace mmctest
