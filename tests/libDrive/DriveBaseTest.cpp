// The Drive base: identity from the device's properties, locking through the storage library,
// and the seek it does not support.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "kiv/Log.h"
#include "libDrive/Drive.h"
#include "support/RecordingHost.h"

namespace {

using quel5::TestResult;

// Only what Drive leaves pure, so that every inherited default is Drive's own.
class BareDrive : public kivrlibdrive::Drive {
public:
    using Drive::Drive;
    TestResult ReadSectors(const uint64_t&, unsigned, void*, unsigned) override { return fail(); }
    TestResult WriteSectors(const uint64_t&, unsigned, const void*, unsigned) override {
        return fail();
    }
    TestResult VerifySectors(const uint64_t&, unsigned) override { return fail(); }
    TestResult FlushCache() override { return fail(); }
    uint32_t GetSectorsPerTrack() override { return 0; }
    uint32_t GetBytesPerSector() override { return 0; }
    uint64_t GetTotalSectors() override { return 0; }
    TestResult PrepareRead() override { return fail(); }
    TestResult OpenDevice() override { return fail(); }
    TestResult CloseDevice() override { return fail(); }
    bool IsWriteProtected() override { return true; }
    void* GetHandle() override { return kivrlibdrive::invalidDriveHandle(); }
    bool NeedsMediaCheck() override { return false; }
    TestResult CheckMedia(bool) override { return fail(); }
    bool IsRerunAllowed() override { return false; }
    bool ConfirmRerun() override { return false; }

    const kiv::String& locator() const { return osLocator; }
    const _SCSI_PATH& address() const { return scsiPath; }

private:
    static TestResult fail() { return TestResult::FAIL; }
};

struct DeviceShape {
    const char* name;
    std::optional<std::string> driverName;
    std::optional<std::string> driveLetter;
    std::optional<std::vector<uint32_t>> scsiPath;
    std::string expectedPath;
    _SCSI_PATH expectedAddress;
};

TEST(DriveBase, IdentityComesFromTheDeviceProperties) {
    const DeviceShape shapes[] = {
        {"nothing", {}, {}, {}, "", {0, 0, 0, 0}},
        {"driver name wins", "X", "C", {}, "X", {0, 0, 0, 0}},
        {"letter only", {}, "C", {}, "\\\\.\\C:", {0, 0, 0, 0}},
        {"empty letter", {}, "", {}, "\\\\.\\:", {0, 0, 0, 0}},
        {"full address", {}, {}, std::vector<uint32_t>{1, 2, 3, 4}, "", {1, 2, 3, 4}},
        {"two numbers fill port and path", {}, {}, std::vector<uint32_t>{5, 6}, "", {5, 6, 0, 0}},
        {"numbers cut to 8 bits",
         {},
         {},
         std::vector<uint32_t>{0x1FF, 256, 0xAB12, 7},
         "",
         {0xFF, 0, 0x12, 7}},
        {"extra numbers ignored",
         "\\\\.\\PhysicalDrive1",
         {},
         std::vector<uint32_t>{9, 8, 7, 6, 5},
         "\\\\.\\PhysicalDrive1",
         {9, 8, 7, 6}},
        {"empty array", {}, {}, std::vector<uint32_t>{}, "", {0, 0, 0, 0}},
    };
    for (const DeviceShape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        quel5::DiagDevice device(L"sim:shape");
        if (shape.driverName)
            device.setText(L"DriverName", kiv::String::fromUtf8(*shape.driverName));
        if (shape.driveLetter) {
            device.setText(L"DriveLetter", kiv::String::fromUtf8(*shape.driveLetter));
        }
        if (shape.scsiPath) device.setUint32Array(L"SCSIPath", *shape.scsiPath);

        const BareDrive drive(device);

        EXPECT_EQ(drive.GetDriveLetter().toUtf8(), shape.expectedPath);
        EXPECT_EQ(drive.locator().toUtf8(), "sim:shape");
        const _SCSI_PATH& a = drive.address();
        const _SCSI_PATH& e = shape.expectedAddress;
        EXPECT_EQ((std::vector<int>{a.port, a.path, a.target, a.lun}),
                  (std::vector<int>{e.port, e.path, e.target, e.lun}));
    }
}

TEST(DriveBase, VolumeLocksAreExclusiveUntilUnlocked) {
    const auto image = std::filesystem::temp_directory_path() / "libdrive_drive_lock.img";
    std::ofstream(image, std::ios::binary) << std::string(4096, '\0');
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    const quel5::DiagDevice device(kiv::String(image.wstring()));
    BareDrive first(device);
    BareDrive second(device);

    if (first.lock() != TestResult::PASS) {
        std::filesystem::remove(image);
        GTEST_SKIP() << "image files cannot be locked here";
    }
    EXPECT_EQ(second.lock(), TestResult::DEVICEBUSY);
    EXPECT_EQ(host.eventSummaries(), std::vector<std::string>{"ERROR DeviceBusy@libDrive/Drive"});
    EXPECT_GT(host.events()[0].line, 0);
    EXPECT_EQ(first.unLock(), TestResult::PASS);
    EXPECT_EQ(second.lock(), TestResult::PASS);
    EXPECT_EQ(second.unLock(), TestResult::PASS);
    EXPECT_EQ(host.events().size(), 1u) << "no more refusals";
    std::filesystem::remove(image);
}

TEST(DriveBase, SeekToSectorIsNotSupportedAndSaysSoInTheLog) {
    kiv::MemorySink sink;
    kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(sink));
    const quel5::DiagDevice device(L"sim:seek");
    BareDrive drive(device);

    for (uint64_t sector : {uint64_t{0}, uint64_t{1} << 40}) {
        EXPECT_EQ(drive.SeekToSector(sector), TestResult::NOTSUPPORTED);
    }
    kiv::LogFactory::removeAllSinks();

    std::vector<kiv::LogRecord> notices;
    for (const kiv::LogRecord& record : sink.records()) {
        if (record.logger.toUtf8() == "libDrive.Drive") notices.push_back(record);
    }
    ASSERT_EQ(notices.size(), 2u);
    const std::regex expected(R"(^[1-9][0-9]* SeekToSector\(\) has not been implemented\.$)");
    for (const kiv::LogRecord& record : notices) {
        EXPECT_EQ(record.priority, 5);
        EXPECT_TRUE(std::regex_match(record.message.toUtf8(), expected)) << record.message.toUtf8();
    }
}

}  // namespace
