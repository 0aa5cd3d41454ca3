#include "storage/ExclusiveAccess.h"

#include <gtest/gtest.h>

#include <memory>

#include "os/EmulatedDevice.h"
#include "support/TempFile.h"

namespace {

using libStorage::ExclusiveAccess;

class ExclusiveAccessTest : public ::testing::Test {
protected:
    void SetUp() override {
        os::registerEmulatedDevice(kDrive, std::make_shared<os::EmulatedDevice>());
    }
    void TearDown() override { os::unregisterEmulatedDevice(kDrive); }

    static os::DeviceHandle open() {
        os::OpenResult opened = os::openDevice(kDrive, os::kReadWrite);
        EXPECT_TRUE(opened.error.ok());
        return std::move(opened.handle);
    }
    static bool othersShutOut() {
        return !os::openDevice(kDrive, os::kRead | os::kExclusive).error.ok();
    }

    static constexpr const char* kDrive = "\\\\.\\SimCdRom7";
};

TEST_F(ExclusiveAccessTest, HoldsTheDeviceUntilReleased) {
    os::DeviceHandle handle = open();
    ExclusiveAccess access;
    EXPECT_FALSE(access.getExclusiveAccess()) << "no handle set yet";
    access.setHandle(handle.native());
    ASSERT_TRUE(access.getExclusiveAccess());
    EXPECT_TRUE(access.getExclusiveAccess());
    EXPECT_TRUE(access.hasExclusiveAccess());
    EXPECT_TRUE(othersShutOut());
    access.releaseExclusiveAccess();
    EXPECT_FALSE(access.hasExclusiveAccess());
    access.releaseExclusiveAccess();  // harmless twice
}

TEST_F(ExclusiveAccessTest, EveryExitGivesTheDeviceBack) {
    os::DeviceHandle handle = open();
    os::DeviceHandle other = open();
    using Exit = void (*)(std::unique_ptr<ExclusiveAccess>&, os::NativeHandle);
    const std::pair<const char*, Exit> cases[] = {
        {"release", [](std::unique_ptr<ExclusiveAccess>& a,
                       os::NativeHandle) { a->releaseExclusiveAccess(); }},
        {"destructor", [](std::unique_ptr<ExclusiveAccess>& a, os::NativeHandle) { a.reset(); }},
        {"another handle",
         [](std::unique_ptr<ExclusiveAccess>& a, os::NativeHandle next) { a->setHandle(next); }},
        {"assigned over",
         [](std::unique_ptr<ExclusiveAccess>& a, os::NativeHandle) { *a = ExclusiveAccess(); }},
    };
    for (const auto& [how, exit] : cases) {
        auto access = std::make_unique<ExclusiveAccess>();
        access->setHandle(handle.native());
        ASSERT_TRUE(access->getExclusiveAccess()) << how;
        exit(access, other.native());
        EXPECT_FALSE(othersShutOut()) << how;
    }
}

TEST_F(ExclusiveAccessTest, SecondHolderIsRefusedAndACopyHoldsNothing) {
    os::DeviceHandle handle = open();
    ExclusiveAccess first;
    first.setHandle(handle.native());
    ASSERT_TRUE(first.getExclusiveAccess());
    ExclusiveAccess copy(first);
    EXPECT_FALSE(copy.hasExclusiveAccess());
    EXPECT_FALSE(copy.getExclusiveAccess()) << "the original still holds the device";
    first.releaseExclusiveAccess();
    EXPECT_TRUE(copy.getExclusiveAccess()) << "the copy kept the handle";
}

#if !defined(_WIN32)
TEST(ExclusiveAccessImageFile, TwoHandlesOfOneFileCannotBothHoldIt) {
    testsupport::TempImage image("exclusive", 4096);
    os::OpenResult a = os::openDevice(image.text(), os::kReadWrite);
    os::OpenResult b = os::openDevice(image.text(), os::kRead);
    ASSERT_TRUE(a.error.ok() && b.error.ok());
    ExclusiveAccess first;
    ExclusiveAccess second;
    first.setHandle(a.handle.native());
    second.setHandle(b.handle.native());
    ASSERT_TRUE(first.getExclusiveAccess());
    EXPECT_FALSE(second.getExclusiveAccess());
    first.releaseExclusiveAccess();
    EXPECT_TRUE(second.getExclusiveAccess());
}
#endif

}  // namespace
