#include "os/EmulatedDevice.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

// A small in-memory disk that remembers how it was opened.
class MemoryDisk : public os::EmulatedDevice {
public:
    explicit MemoryDisk(size_t bytes) : data_(bytes, 0) {}

    os::Error open(uint32_t access) override {
        lastAccess = access;
        ++opens;
        return refuseWith;
    }
    os::GeometryResult geometry() override {
        os::DiskGeometry g;
        g.cylinders = 1;
        g.tracksPerCylinder = 1;
        g.sectorsPerTrack = static_cast<uint32_t>(data_.size() / 2048);
        g.bytesPerSector = 2048;
        g.totalBytes = data_.size();
        return os::GeometryResult{g, {}};
    }
    os::IoResult readAt(uint64_t offset, void* buffer, size_t size) override {
        const size_t n = offset >= data_.size() ? 0 : std::min(size, data_.size() - offset);
        std::memcpy(buffer, data_.data() + offset, n);
        return os::IoResult{n, {}};
    }
    os::IoResult writeAt(uint64_t offset, const void* buffer, size_t size) override {
        const size_t n = offset >= data_.size() ? 0 : std::min(size, data_.size() - offset);
        std::memcpy(data_.data() + offset, buffer, n);
        return os::IoResult{n, {}};
    }

    uint32_t lastAccess = 0;
    int opens = 0;
    os::Error refuseWith;

private:
    std::vector<char> data_;
};

class EmulatedDeviceTest : public ::testing::Test {
protected:
    void SetUp() override { os::registerEmulatedDevice(kName, disk_); }
    void TearDown() override { os::unregisterEmulatedDevice(kName); }

    static constexpr const char* kName = "\\\\.\\SimCdRom0";
    std::shared_ptr<MemoryDisk> disk_ = std::make_shared<MemoryDisk>(8 * 2048);
};

TEST_F(EmulatedDeviceTest, OpenFindsTheRegisteredDeviceByNameOnly) {
    struct Case {
        std::string name;
        bool emulated;
    };
    const Case cases[] = {
        {kName, true},
        {"\\\\.\\SimCdRom1", false},
        {"\\\\.\\simcdrom0", false},  // names are exact
        {"sim:none", false},
    };
    for (const Case& c : cases) {
        os::OpenResult opened = os::openDevice(c.name, os::kReadWrite);
        EXPECT_EQ(opened.error.ok(), c.emulated) << c.name;
        EXPECT_EQ(os::emulatedDeviceFor(opened.handle.native()) == disk_, c.emulated) << c.name;
    }
    EXPECT_EQ(disk_->opens, 1);
    EXPECT_EQ(disk_->lastAccess, os::kReadWrite);
    EXPECT_EQ(os::openDevice(std::wstring(L"\\\\.\\SimCdRom0"), os::kRead).error.ok(), true);
}

TEST_F(EmulatedDeviceTest, GeometryAndIoGoToTheDevice) {
    os::OpenResult opened = os::openDevice(kName, os::kReadWrite);
    ASSERT_TRUE(opened.error.ok());
    const os::GeometryResult g = os::queryDiskGeometry(opened.handle);
    EXPECT_EQ(g.geometry.bytesPerSector, 2048u);
    EXPECT_EQ(g.geometry.totalBytes, 8u * 2048);

    const char text[] = "written through os";
    EXPECT_EQ(os::writeAt(opened.handle.native(), 4096, text, sizeof text).bytes, sizeof text);
    char back[sizeof text] = {};
    EXPECT_EQ(os::readAt(opened.handle.native(), 4096, back, sizeof back).bytes, sizeof back);
    EXPECT_STREQ(back, text);
}

TEST_F(EmulatedDeviceTest, ExclusiveHandlesExcludeEachOtherOnly) {
    struct Case {
        uint32_t first;
        uint32_t second;
        bool secondOpens;
    };
    const Case cases[] = {
        {os::kRead, os::kRead, true},
        {os::kRead, os::kRead | os::kExclusive, true},
        {os::kRead | os::kExclusive, os::kReadWrite, true},
        {os::kRead | os::kExclusive, os::kRead | os::kExclusive, false},
    };
    for (const Case& c : cases) {
        os::OpenResult first = os::openDevice(kName, c.first);
        ASSERT_TRUE(first.error.ok());
        os::OpenResult second = os::openDevice(kName, c.second);
        EXPECT_EQ(second.error.ok(), c.secondOpens) << c.first << " then " << c.second;
        if (!c.secondOpens) {
            EXPECT_EQ(second.error.code, os::errorCodeBusy());
        }
    }
    // All handles of the cases are closed: the exclusive claim is free again.
    EXPECT_TRUE(os::openDevice(kName, os::kRead | os::kExclusive).error.ok());
}

TEST_F(EmulatedDeviceTest, EveryWayOfClosingGivesTheClaimBack) {
    using Close = void (*)(os::DeviceHandle&);
    const std::pair<const char*, Close> cases[] = {
        {"close()", [](os::DeviceHandle& h) { h.close(); }},
        {"destructor", [](os::DeviceHandle& h) { os::DeviceHandle gone(std::move(h)); }},
        {"move-assign over it", [](os::DeviceHandle& h) { h = os::DeviceHandle(); }},
        {"release + closeNativeHandle",
         [](os::DeviceHandle& h) { os::closeNativeHandle(h.release()); }},
    };
    for (const auto& [how, close] : cases) {
        os::OpenResult opened = os::openDevice(kName, os::kRead | os::kExclusive);
        ASSERT_TRUE(opened.error.ok()) << how;
        const os::NativeHandle native = opened.handle.native();
        close(opened.handle);
        EXPECT_FALSE(opened.handle.valid()) << how;
        EXPECT_EQ(os::emulatedDeviceFor(native), nullptr) << how;
        EXPECT_TRUE(os::openDevice(kName, os::kRead | os::kExclusive).error.ok()) << how;
    }
}

TEST_F(EmulatedDeviceTest, ReopenExclusiveClaimsTheDeviceBehindAHandle) {
    os::OpenResult shared = os::openDevice(kName, os::kRead);
    ASSERT_TRUE(shared.error.ok());
    os::OpenResult claim = os::reopenExclusive(shared.handle.native());
    ASSERT_TRUE(claim.error.ok());
    EXPECT_EQ(os::emulatedDeviceFor(claim.handle.native()), disk_);
    EXPECT_FALSE(os::reopenExclusive(shared.handle.native()).error.ok());
    EXPECT_FALSE(os::openDevice(kName, os::kRead | os::kExclusive).error.ok());
    claim.handle.close();
    EXPECT_TRUE(os::reopenExclusive(shared.handle.native()).error.ok());
}

TEST_F(EmulatedDeviceTest, DeviceMayRefuseAnOpen) {
    disk_->refuseWith = os::Error{os::errorCodeBusy(), "tray open"};
    os::OpenResult opened = os::openDevice(kName, os::kRead);
    EXPECT_FALSE(opened.handle.valid());
    EXPECT_EQ(opened.error.message, "tray open");
}

TEST_F(EmulatedDeviceTest, OpenHandlesKeepAnUnregisteredDeviceAlive) {
    os::OpenResult opened = os::openDevice(kName, os::kRead);
    std::weak_ptr<MemoryDisk> watch = disk_;
    EXPECT_TRUE(os::unregisterEmulatedDevice(kName));
    EXPECT_FALSE(os::unregisterEmulatedDevice(kName));
    disk_.reset();
    EXPECT_FALSE(watch.expired());
    EXPECT_EQ(os::findEmulatedDevice(kName), nullptr);
    EXPECT_FALSE(os::openDevice(kName, os::kRead).error.ok());
    opened.handle.close();
    EXPECT_TRUE(watch.expired());
}

TEST(EmulatedDeviceDefaults, AnswerNotSupported) {
    auto bare = std::make_shared<os::EmulatedDevice>();
    os::registerEmulatedDevice("sim:bare", bare);
    os::OpenResult opened = os::openDevice("sim:bare", os::kRead);
    ASSERT_TRUE(opened.error.ok());
    char byte = 0;
    EXPECT_EQ(os::queryDiskGeometry(opened.handle).error.code, os::errorCodeNotSupported());
    EXPECT_EQ(os::readAt(opened.handle.native(), 0, &byte, 1).error.code,
              os::errorCodeNotSupported());
    EXPECT_EQ(os::writeAt(opened.handle.native(), 0, &byte, 1).error.code,
              os::errorCodeNotSupported());
    os::unregisterEmulatedDevice("sim:bare");
}

}  // namespace
