#include "os/Device.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cwctype>
#include <vector>

#include "support/TempFile.h"

namespace {

using testsupport::TempImage;

TEST(Device, RegularFilesAnswerWith512ByteSectorsAndTheirSize) {
    struct Case {
        uint64_t size;
        uint64_t cylinders;
    };
    constexpr uint64_t kCylinder = 255ULL * 63 * 512;
    const Case cases[] = {
        {0, 0}, {512, 0}, {kCylinder - 512, 0}, {kCylinder, 1}, {3 * kCylinder + 100, 3},
    };
    for (const Case& c : cases) {
        TempImage file("device", c.size);
        os::OpenResult opened = os::openDevice(file.widePath(), os::kRead);
        ASSERT_TRUE(opened.error.ok()) << opened.error.message;
        const os::GeometryResult answer = os::queryDiskGeometry(opened.handle);
        ASSERT_TRUE(answer.error.ok()) << answer.error.message;
        EXPECT_EQ(answer.geometry.bytesPerSector, 512u) << c.size;
        EXPECT_EQ(answer.geometry.totalBytes, c.size);
        EXPECT_EQ(answer.geometry.tracksPerCylinder, 255u);
        EXPECT_EQ(answer.geometry.sectorsPerTrack, 63u);
        EXPECT_EQ(answer.geometry.cylinders, c.cylinders) << c.size;
    }
}

TEST(Device, ReadsAndWritesAtOffsetsUpToTheEnd) {
    TempImage file("device", 1000);
    os::OpenResult opened = os::openDevice(file.widePath(), os::kReadWrite);
    ASSERT_TRUE(opened.error.ok()) << opened.error.message;
    const os::NativeHandle fd = opened.handle.native();

    std::vector<char> pattern(100);
    for (size_t i = 0; i < pattern.size(); ++i) {
        pattern[i] = static_cast<char>(i + 1);
    }
    ASSERT_EQ(os::writeAt(fd, 900, pattern.data(), pattern.size()).bytes, 100u);

    struct Case {
        uint64_t offset;
        size_t size;
        size_t bytes;
        char first;  // the first byte read, when any
    };
    const Case cases[] = {
        {0, 10, 10, 0},   {899, 2, 2, 0},   {900, 100, 100, 1}, {950, 100, 50, 51},
        {999, 1, 1, 100}, {1000, 10, 0, 0}, {5000, 10, 0, 0},
    };
    for (const Case& c : cases) {
        std::vector<char> buffer(c.size, 'x');
        const os::IoResult got = os::readAt(fd, c.offset, buffer.data(), buffer.size());
        EXPECT_TRUE(got.error.ok()) << got.error.message;
        EXPECT_EQ(got.bytes, c.bytes) << "at " << c.offset;
        if (c.bytes > 0) {
            EXPECT_EQ(buffer[0], c.first) << "at " << c.offset;
            EXPECT_EQ(buffer[c.bytes - 1],
                      c.offset + c.bytes <= 900 ? 0 : static_cast<char>(c.offset + c.bytes - 900))
                << "at " << c.offset;
        }
        if (c.bytes < c.size) {
            EXPECT_EQ(buffer[c.bytes], 'x') << "wrote past what was read at " << c.offset;
        }
    }
}

TEST(Device, OpenFailuresSayWhy) {
    struct Case {
        std::string path;
        uint32_t access;
        uint32_t code;
    };
    TempImage file("device", 512);
    const Case cases[] = {
        {file.text() + ".missing", os::kRead, os::errorCodeNotFound()},
        {file.text(), 0, os::errorCodeInvalid()},
        {file.text(), os::kDirect | os::kExclusive, os::errorCodeInvalid()},
    };
    for (const Case& c : cases) {
        os::OpenResult opened = os::openDevice(c.path, c.access);
        EXPECT_FALSE(opened.handle.valid()) << c.path;
        EXPECT_EQ(opened.error.code, c.code) << c.path;
        EXPECT_NE(opened.error.message.find(c.path), std::string::npos) << opened.error.message;
    }
}

TEST(Device, ExclusiveOpenOfAnImageFileShutsOutOtherExclusiveOpens) {
    struct Case {
        uint32_t first;
        uint32_t second;
        bool secondOpens;
    };
    const Case cases[] = {
        {os::kRead, os::kRead, true},
        {os::kReadWrite, os::kRead, true},
        {os::kRead | os::kExclusive, os::kRead | os::kExclusive, false},
        {os::kReadWrite | os::kExclusive, os::kRead | os::kExclusive, false},
    };
    for (const Case& c : cases) {
        TempImage file("device", 4096);
        os::OpenResult first = os::openDevice(file.widePath(), c.first);
        ASSERT_TRUE(first.error.ok()) << first.error.message;
        os::OpenResult second = os::openDevice(file.widePath(), c.second);
        EXPECT_EQ(second.error.ok(), c.secondOpens) << c.first << " then " << c.second;
        EXPECT_EQ(second.handle.valid(), c.secondOpens);
        if (!c.secondOpens) {
            EXPECT_EQ(second.error.code, os::errorCodeBusy()) << second.error.message;
            first.handle.close();
            EXPECT_TRUE(os::openDevice(file.widePath(), c.second).error.ok())
                << "still refused after the exclusive handle was closed";
        }
    }
}

TEST(Device, SystemDirectoryNamesSystem32) {
    std::wstring directory = os::systemDirectory();
    ASSERT_GE(directory.size(), 8u);
    for (wchar_t& ch : directory) {
        ch = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(ch)));
    }
    EXPECT_EQ(directory.substr(directory.size() - 8), L"system32");
    EXPECT_EQ(directory.substr(1, 2), L":\\");
}

#if !defined(_WIN32)
TEST(Device, HostChoosesTheSystemDirectoryOffWindows) {
    setenv("LIBDRIVE_SYSTEM_DIRECTORY", "D:\\WinNT\\System32", 1);
    EXPECT_EQ(os::systemDirectory(), L"D:\\WinNT\\System32");
    unsetenv("LIBDRIVE_SYSTEM_DIRECTORY");
    EXPECT_EQ(os::systemDirectory(), L"C:\\Windows\\system32");
}
#endif

}  // namespace
