#include "storage/DeviceLockingManager.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "os/EmulatedDevice.h"
#include "os/TempFile.h"
#include "os/Utf8.h"

namespace {

using libStorage::DeviceLockingManager;
using testing_support::TempFile;

TEST(DeviceLockingManager, SecondManagerOfALockedImageFileFails) {
    TempFile image(1 << 20);
    DeviceLockingManager first(image.widePath());
    DeviceLockingManager second(image.widePath());

    ASSERT_TRUE(first.lockVolumes()) << os::toUtf8(first.lastFailure());
    EXPECT_TRUE(first.lastFailure().empty());
    EXPECT_TRUE(first.lockVolumes());  // already held: still true, nothing taken twice
    EXPECT_FALSE(second.lockVolumes());
    EXPECT_FALSE(second.isLocked());
    EXPECT_FALSE(second.lastFailure().empty());

    EXPECT_TRUE(first.unlockVolumes());
    EXPECT_FALSE(first.unlockVolumes());  // nothing left to release
    EXPECT_FALSE(first.isLocked());
    EXPECT_TRUE(second.lockVolumes()) << os::toUtf8(second.lastFailure());
    EXPECT_TRUE(second.lastFailure().empty()) << "a success clears the last failure";
}

TEST(DeviceLockingManager, DestroyingAManagerReleasesItsLock) {
    TempFile image(4096);
    {
        DeviceLockingManager holder(image.widePath());
        ASSERT_TRUE(holder.lockVolumes());
    }
    DeviceLockingManager next(image.widePath());
    EXPECT_TRUE(next.lockVolumes()) << os::toUtf8(next.lastFailure());
}

TEST(DeviceLockingManager, UnusableLocatorsFailWithAReason) {
    TempFile image(4096);
    struct Case {
        std::wstring locator;
        std::wstring mentioned;
    };
    const std::wstring missing = image.widePath() + L".gone";
    const Case cases[] = {
        {L"", L""},
        {missing, missing},
    };
    for (const Case& c : cases) {
        DeviceLockingManager manager(c.locator);
        EXPECT_FALSE(manager.lockVolumes()) << os::toUtf8(c.locator);
        EXPECT_FALSE(manager.isLocked());
        ASSERT_FALSE(manager.lastFailure().empty());
        EXPECT_NE(manager.lastFailure().find(c.mentioned), std::wstring::npos)
            << os::toUtf8(manager.lastFailure());
    }
}

TEST(DeviceLockingManager, EmulatedDiskIsLockedThroughItsExclusiveHandle) {
    os::registerEmulatedDevice("sim:disk0", std::make_shared<os::EmulatedDevice>());
    DeviceLockingManager first(L"sim:disk0");
    DeviceLockingManager second(L"sim:disk0");
    ASSERT_TRUE(first.lockVolumes()) << os::toUtf8(first.lastFailure());
    EXPECT_FALSE(second.lockVolumes());
    EXPECT_FALSE(os::openDevice("sim:disk0", os::kRead | os::kExclusive).error.ok());
    first.unlockVolumes();
    EXPECT_TRUE(second.lockVolumes());
    os::unregisterEmulatedDevice("sim:disk0");
}

#if !defined(_WIN32)

TEST(DeviceLockingManager, DirectoriesAreNeitherDisksNorImages) {
    DeviceLockingManager manager(std::filesystem::temp_directory_path().wstring());
    EXPECT_FALSE(manager.lockVolumes());
    EXPECT_NE(manager.lastFailure().find(L"neither a disk nor an image file"), std::wstring::npos);
}

TEST(DeviceLockingManager, RootFilesystemDiskIsRefused) {
    // The device the root filesystem lives on, when it has a node we can name.
    FILE* pipe = popen("findmnt -n -o SOURCE / 2>/dev/null", "r");
    char source[256] = {};
    const bool read = pipe != nullptr && std::fgets(source, sizeof source, pipe) != nullptr;
    if (pipe != nullptr) {
        pclose(pipe);
    }
    std::string device = read ? std::string(source, std::strcspn(source, "\n[")) : "";
    if (device.rfind("/dev/", 0) != 0 || !std::filesystem::exists(device)) {
        GTEST_SKIP() << "the root filesystem has no block device here";
    }
    DeviceLockingManager manager(os::fromUtf8(device));
    EXPECT_FALSE(manager.lockVolumes());
    EXPECT_FALSE(manager.lastFailure().empty());
}

// A loop device over an image file, detached again at the end. Needs root and loop support.
class LoopDevice {
public:
    explicit LoopDevice(const std::string& image) {
        if (!run("losetup -f --show " + image + " 2>/dev/null", device_)) {
            device_.clear();
        }
    }
    ~LoopDevice() {
        if (!device_.empty()) {
            std::system(("losetup -d " + device_ + " 2>/dev/null").c_str());
        }
    }
    const std::string& device() const { return device_; }

    static bool run(const std::string& command, std::string& firstLine) {
        FILE* pipe = popen(command.c_str(), "r");
        if (pipe == nullptr) {
            return false;
        }
        char line[256] = {};
        const bool got = std::fgets(line, sizeof line, pipe) != nullptr;
        const int status = pclose(pipe);
        firstLine = std::string(line, std::strcspn(line, "\n"));
        return got && status == 0;
    }

private:
    std::string device_;
};

TEST(DeviceLockingManager, LoopDeviceIsRefusedWhileMountedAndLockedOtherwise) {
    TempFile image(16 << 20, "libdrive-loop");
    LoopDevice loop(image.path());
    if (loop.device().empty()) {
        GTEST_SKIP() << "no loop device (needs root and loop support)";
    }
    const std::wstring locator = os::fromUtf8(loop.device());
    ASSERT_EQ(std::system(("mkfs.ext2 -q " + loop.device() + " 2>/dev/null").c_str()), 0);

    const std::filesystem::path mountPoint =
        std::filesystem::temp_directory_path() / ("libdrive-mnt-" + loop.device().substr(5));
    std::filesystem::create_directories(mountPoint);
    const std::string mountCommand = "mount " + loop.device() + " " + mountPoint.string();
    if (std::system((mountCommand + " 2>/dev/null").c_str()) != 0) {
        std::filesystem::remove(mountPoint);
        GTEST_SKIP() << "mounting is not allowed here";
    }
    {
        DeviceLockingManager manager(locator);
        EXPECT_FALSE(manager.lockVolumes());
        EXPECT_NE(manager.lastFailure().find(L"mounted on " + mountPoint.wstring()),
                  std::wstring::npos)
            << os::toUtf8(manager.lastFailure());
    }
    ASSERT_EQ(std::system(("umount " + mountPoint.string()).c_str()), 0);
    std::filesystem::remove(mountPoint);

    DeviceLockingManager manager(locator);
    ASSERT_TRUE(manager.lockVolumes()) << os::toUtf8(manager.lastFailure());
    DeviceLockingManager rival(locator);
    EXPECT_FALSE(rival.lockVolumes()) << "the exclusive open must keep a second locker out";
    EXPECT_NE(rival.lastFailure().find(L"cannot be opened exclusively"), std::wstring::npos);
    EXPECT_TRUE(manager.unlockVolumes());
    EXPECT_TRUE(rival.lockVolumes()) << os::toUtf8(rival.lastFailure());
}

#endif

}  // namespace
