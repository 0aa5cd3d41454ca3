#include "storage/DeviceLockingManager.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "os/EmulatedDevice.h"
#include "os/Utf8.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

namespace {

using libStorage::DeviceLockingManager;
using testsupport::TempImage;

TEST(DeviceLockingManager, SecondManagerOfALockedImageFileFails) {
    TempImage image("lock", 1 << 20);
    DeviceLockingManager first(image.widePath());
    DeviceLockingManager second(image.widePath());

    ASSERT_TRUE(first.lockVolumes()) << os::toUtf8(first.lastFailure());
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
    TempImage image("lock", 4096);
    {
        DeviceLockingManager holder(image.widePath());
        ASSERT_TRUE(holder.lockVolumes());
    }
    DeviceLockingManager next(image.widePath());
    EXPECT_TRUE(next.lockVolumes()) << os::toUtf8(next.lastFailure());
}

TEST(DeviceLockingManager, UnusableLocatorsFailWithAReason) {
    TempImage image("lock", 4096);
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
    std::string device = testsupport::firstLineOf("findmnt -n -o SOURCE /");
    device = device.substr(0, device.find('['));  // a btrfs subvolume follows in brackets
    if (device.rfind("/dev/", 0) != 0 || !std::filesystem::exists(device)) {
        GTEST_SKIP() << "the root filesystem has no block device here";
    }
    DeviceLockingManager manager(os::fromUtf8(device));
    EXPECT_FALSE(manager.lockVolumes());
    EXPECT_FALSE(manager.lastFailure().empty());
}

TEST(DeviceLockingManager, LoopDeviceIsRefusedWhileMountedAndLockedOtherwise) {
    if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
        GTEST_SKIP() << why;
    const testsupport::TempImage image("loop", 16 << 20);
    const testsupport::LoopDevice loop(image.text());
    ASSERT_FALSE(loop.path().empty());
    const std::wstring locator = os::fromUtf8(loop.path());
    ASSERT_TRUE(testsupport::succeeds("mkfs.ext2 -q " + loop.path()));
    testsupport::MountedFilesystem mounted(loop.path());
    if (!mounted.mounted()) GTEST_SKIP() << "mounting is not allowed here";
    {
        DeviceLockingManager manager(locator);
        EXPECT_FALSE(manager.lockVolumes());
        EXPECT_NE(manager.lastFailure().find(L"mounted on " + os::fromUtf8(mounted.directory())),
                  std::wstring::npos)
            << os::toUtf8(manager.lastFailure());
    }
    ASSERT_TRUE(mounted.unmount());

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
