// Readiness, eject, handles and media events of the optical drive.
#include <functional>
#include <optional>
#include <tuple>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "scsi/Opcodes.h"
#include "storage/LookupManager.h"

namespace optest {
namespace {

namespace op = kivscsi::opcode;

class ReadinessTest;

struct ReadyCase {
    const char* name;
    std::function<void(ReadinessTest&)> setup;
    unsigned long status;
    uint64_t minMs;
    uint64_t maxMs;
    size_t startStopCommands;
};

class ReadinessTest : public OpticalDriveTest {
public:
    void readyDisc() { loadReady(MediaKind::DvdPlusR); }
    void spinningUp() { writer->insertDisc(sim::mmc::discOf(MediaKind::DvdPlusR)); }
    void emptyTrayOpen() { writer->removeDisc(); }
    void slowDisc() {
        loadReady(MediaKind::DvdPlusR);
        writer->keepBecomingReadyFor(5000);
    }
    void brokenUnit() {
        loadReady(MediaKind::DvdPlusR);
        fail(op::kTestUnitReady, 0x4400);
        fail(op::kStartStopUnit, 0x4400);
    }
    void lockedDisc() {
        loadReady(MediaKind::CdR);
        drive->lockTray();
    }
    void capacityUnreadable() {
        loadReady(MediaKind::DvdPlusR);
        fail(op::kReadCapacity, 0x4400);
    }
};

TEST_F(ReadinessTest, WaitsAsLongAsTheDriveDeservesAndStartsItOnlyWhenItIsNotSpinningUp) {
    const ReadyCase cases[] = {
        {"ready disc", &ReadinessTest::readyDisc, 0, 0, 999, 0},
        // No disc: given up once 3 s have passed, not after 75 s; one START on the way.
        {"closed empty tray", [](OpticalDriveTest&) {}, 0x3A01, 3001, 5000, 1},
        {"open tray", &ReadinessTest::emptyTrayOpen, 0x3A02, 3001, 5000, 1},
        // A drive already becoming ready is never sent START.
        {"spinning up", &ReadinessTest::spinningUp, 0, 2000, 3000, 0},
        {"becoming ready for 5 s", &ReadinessTest::slowDisc, 0, 5000, 6999, 0},
        {"unit never ready", &ReadinessTest::brokenUnit, 0x4400, 75000, 76000, 1},
        {"capacity never readable", &ReadinessTest::capacityUnreadable, 0x4400, 75001, 77000, 0},
    };
    for (const ReadyCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        writer->removeDisc();
        writer->pressEjectButton();  // closes the tray again
        c.setup(*this);
        writer->clearHistory();
        const uint64_t start = elapsedMs();
        EXPECT_EQ(drive->makeSureUnitIsReady(), c.status);
        EXPECT_GE(elapsedMs() - start, c.minMs);
        EXPECT_LE(elapsedMs() - start, c.maxMs);
        EXPECT_EQ(commands(op::kStartStopUnit).size(), c.startStopCommands);
    }
}

TEST_F(ReadinessTest, AStopRequestEndsEitherWait) {
    const std::function<void(ReadinessTest&)> setups[] = {
        [](OpticalDriveTest&) {},  // no disc: stopped while waiting for one
        &ReadinessTest::capacityUnreadable,
    };
    for (const auto& setup : setups) {
        writer->clearFaults();
        setup(*this);
        host.stopAfterPolls(0);
        EXPECT_EQ(thrownMessage<kivrlibdrive::UserAborted>([&] { drive->makeSureUnitIsReady(); }),
                  "Test Cancelled by the user");
        EXPECT_EQ(host.stopPolls(), 1u);
        host.neverStop();
        host.clear();
    }
}

struct EjectCase {
    const char* name;
    std::function<void(ReadinessTest&)> setup;
    size_t ejectCommands;
    uint64_t elapsedMs;
    std::optional<unsigned int> error = std::nullopt;  // the EjectError's status, if thrown
};

TEST_F(ReadinessTest, EjectTriesFiveTimesAndFailsOnlyWhenTheTrayStaysShut) {
    const EjectCase cases[] = {
        {"disc ejects", [](ReadinessTest& t) { t.loadReady(MediaKind::CdR); }, 1, 4000},
        {"removal prevented", &ReadinessTest::lockedDisc, 5, 10000, 0x5302},
        {"drive gone", [](ReadinessTest& t) { t.writer->disappear(); }, 5, 10000, 0xAB10},
    };
    for (const EjectCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        drive->unlockTray();
        writer->pressEjectButton();
        c.setup(*this);
        writer->clearHistory();
        const uint64_t start = elapsedMs();
        EXPECT_EQ(thrownStatus<kivrlibdrive::EjectError>([&] { drive->ejectDisc(); }), c.error);
        size_t ejects = 0;
        for (const auto& cdb : commands(op::kStartStopUnit)) ejects += (cdb[4] & 0x03) == 0x02;
        EXPECT_EQ(ejects, c.ejectCommands);
        EXPECT_EQ(elapsedMs() - start, c.elapsedMs);
        if (!c.error) {
            EXPECT_TRUE(writer->snapshot().trayOpen);
        }
    }
}

// Loading, starting the drive and OPC send one command each and ignore how it ends; a failure
// must not escape them.
TEST_F(ReadinessTest, LoadStartAndOpcSendTheirCommandAndIgnoreItsFailure) {
    const struct {
        const char* name;
        uint8_t opcode;
        uint8_t startBits;  // START STOP UNIT's LoEj and Start bits; unused for OPC
        std::function<void(HostDrive&)> call;
    } cases[] = {
        {"load", op::kStartStopUnit, 0x03, [](HostDrive& d) { d.loadDisc(); }},
        {"start", op::kStartStopUnit, 0x01, [](HostDrive& d) { d.startDrive(); }},
        {"OPC", op::kSendOpcInformation, 0, [](HostDrive& d) { d.doOPC(); }},
    };
    for (const bool failing : {false, true}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.name) + (failing ? " failing" : ""));
            writer->clearFaults();
            loadReady(MediaKind::CdR);
            if (c.opcode == op::kStartStopUnit) writer->pressEjectButton();
            if (failing) fail(c.opcode, 0x2000);
            writer->clearHistory();
            EXPECT_NO_THROW(c.call(*drive));
            std::size_t sent = 0;
            for (const auto& cdb : commands(c.opcode))
                sent += c.opcode != op::kStartStopUnit || (cdb[4] & 0x03) == c.startBits;
            EXPECT_EQ(sent, 1u);
            if (c.startBits == 0x03) {
                EXPECT_EQ(writer->snapshot().trayOpen, failing);
            }
        }
    }
}

// A rerun starts from a drive as new: handles closed and released, speeds offered again.
TEST_F(ReadinessTest, ResetForASecondRunStartsAfresh) {
    loadReady(MediaKind::CdR);
    drive->getExclusiveDriveAccess();
    EXPECT_EQ(drive->getSupportedWriteSpeeds().size(), 1u);
    EXPECT_EQ(drive->getSupportedWriteSpeeds().size(), 0u) << "offered once per run";
    drive->resetVariableForSecondRun();
    EXPECT_FALSE(libStorage::LookupManager::contains(kDevice));
    EXPECT_EQ(drive->getHandle(), reinterpret_cast<void*>(~uintptr_t{0}));
    EXPECT_FALSE(drive->readFlag);
    EXPECT_FALSE(drive->wroteFlag);
    EXPECT_EQ(drive->getSupportedWriteSpeeds(), (kiv::Array<unsigned int>{0xFFFF}));
}

TEST_F(ReadinessTest, ExclusiveAccessKeepsTheHandleEnteredUntilReleasedOrDestroyed) {
    loadReady(MediaKind::CdR);
    drive->getExclusiveDriveAccess();
    EXPECT_TRUE(libStorage::LookupManager::contains(kDevice));
    EXPECT_EQ(logged(2), (std::vector<std::string>{"954 Got Exclusive Access to the drive"}));
    drive->releaseExclusiveAccess();
    EXPECT_FALSE(libStorage::LookupManager::contains(kDevice));
    EXPECT_EQ(drive->getHandle(), reinterpret_cast<void*>(~uintptr_t{0}));

    drive->getExclusiveDriveAccess();
    drive->lockTray();
    EXPECT_TRUE(writer->snapshot().removalPrevented);
    drive.reset();
    EXPECT_FALSE(writer->snapshot().removalPrevented);
    EXPECT_FALSE(libStorage::LookupManager::contains(kDevice));
    EXPECT_TRUE(host.events().empty());
}

TEST_F(ReadinessTest, AnUnopenableDeviceRaisesInvalidDriveHandle) {
    quel5::DiagDevice missing(QuelString(L"\\\\.\\NoSuchOpticalDrive"));
    kivrlibdrive::WindowsOpticalDrive nowhere(missing);
    EXPECT_EQ(
        thrownMessage<kivrlibdrive::InvalidHandle>([&] { nowhere.getExclusiveDriveAccess(); }),
        "Invalid Handle : Failed to get the drive handle");
    const auto events = host.events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].key, "INVALID_DRIVE_HANDLE");
    EXPECT_EQ(events[0].severity, quel5::Severity::WARNING);
    EXPECT_EQ(events[0].source, kSource);
    EXPECT_EQ(events[0].line, 947);
}

TEST_F(ReadinessTest, MediaEventsTellDiscAndTray) {
    using Setup = std::function<void(ReadinessTest&)>;
    // Setup, answered, then the two out arguments (left true when not answered).
    const std::tuple<Setup, bool, bool, bool> cases[] = {
        {&ReadinessTest::readyDisc, true, true, true},
        {&ReadinessTest::emptyTrayOpen, true, false, false},
        {[](ReadinessTest&) {}, true, false, true},  // closed and empty
        {[](ReadinessTest& t) { t.fail(op::kGetEventStatusNotification, 0x2400); }, false, true,
         true},
    };
    for (const auto& [setup, answered, present, closed] : cases) {
        writer->removeDisc();
        writer->pressEjectButton();
        setup(*this);
        bool isPresent = true;
        bool isClosed = true;
        EXPECT_EQ(drive->isMediaPresentGESN(isPresent), answered);
        EXPECT_EQ(drive->isTrayClosedOrNoTrayGESN(isClosed), answered);
        EXPECT_EQ(isPresent, present);
        EXPECT_EQ(isClosed, closed);
    }
}

}  // namespace
}  // namespace optest
