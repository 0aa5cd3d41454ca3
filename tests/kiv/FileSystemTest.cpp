#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "kiv/FileSystem.h"
#include "kiv/Stream.h"
#include "kiv/System.h"
#include "support/TempFile.h"

namespace {

using kiv::FileSystem;
using kiv::String;

String tempDirectory() { return String(std::filesystem::temp_directory_path().wstring()); }

TEST(FileSystemTest, QuestionsAboutFilesDirectoriesAndMissingPaths) {
    const testsupport::TempFile file("fs", std::string(4097, 'x'));
    const struct {
        String path;
        bool exists;
        bool directory;
        bool hasSize;
        uint64_t size;
    } cases[] = {
        {kiv::String(file.widePath()), true, false, true, 4097},
        {tempDirectory(), true, true, false, 0},
        {kiv::String(file.widePath()) + L".missing", false, false, false, 0},
        {L"", false, false, false, 0},
    };
    for (const auto& c : cases) {
        uint64_t size = 77;
        EXPECT_EQ(FileSystem::exists(c.path), c.exists) << c.path.toUtf8();
        EXPECT_EQ(kiv::System::exists(c.path), c.exists) << c.path.toUtf8();
        EXPECT_EQ(FileSystem::isDirectory(c.path), c.directory) << c.path.toUtf8();
        EXPECT_EQ(FileSystem::getFileSize(c.path, size), c.hasSize) << c.path.toUtf8();
        EXPECT_EQ(size, c.hasSize ? c.size : 77u) << c.path.toUtf8();
    }
    const testsupport::TempFile empty("fsempty", "");
    uint64_t size = 77;
    EXPECT_TRUE(FileSystem::getFileSize(kiv::String(empty.widePath()), size));
    EXPECT_EQ(size, 0u);
}

TEST(FileSystemTest, JoinPathAddsOneSeparatorAtMost) {
    const std::wstring separator = sizeof(wchar_t) == 2 ? L"\\" : L"/";
    const struct {
        const wchar_t* directory;
        const wchar_t* name;
        std::wstring expected;
    } cases[] = {
        {L"E:", L"check.md5", L"E:" + separator + L"check.md5"},
        {L"E:\\", L"check.md5", L"E:\\check.md5"},
        {L"/media/disc/", L"check.md5", L"/media/disc/check.md5"},
        {L"", L"check.md5", L"check.md5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FileSystem::joinPath(c.directory, c.name).str(), c.expected);
    }
}

TEST(FileSystemTest, StreamReadsInChunksUntilTheEnd) {
    std::string bytes;
    for (int i = 0; i < 10000; ++i) bytes += static_cast<char>(i % 251);
    const testsupport::TempFile file("stream", bytes);

    kiv::IFStream stream;
    ASSERT_TRUE(stream.openFile(kiv::String(file.widePath())));
    EXPECT_TRUE(stream.isOpen());
    std::string readBack;
    char chunk[4096];
    std::vector<std::size_t> counts;
    std::size_t count = 0;
    do {
        count = stream.read(chunk, sizeof chunk);
        counts.push_back(count);
        readBack.append(chunk, count);
    } while (count == sizeof chunk);
    EXPECT_EQ(counts, (std::vector<std::size_t>{4096, 4096, 1808}));
    EXPECT_EQ(readBack, bytes);
    EXPECT_FALSE(stream.hasFailed());
    EXPECT_EQ(stream.read(chunk, sizeof chunk), 0u);
    EXPECT_TRUE(stream.close());
    EXPECT_FALSE(stream.isOpen());
    EXPECT_FALSE(stream.close()) << "closing twice";
    EXPECT_EQ(stream.read(chunk, sizeof chunk), 0u) << "reading a closed stream";
}

TEST(FileSystemTest, StreamRefusesMissingFilesAndDirectories) {
    kiv::IFStream stream;
    EXPECT_FALSE(stream.openFile(L"no such file.bin"));
    EXPECT_FALSE(stream.openFile(tempDirectory()));
    EXPECT_FALSE(stream.isOpen());

    // Opening again closes the file opened before.
    const testsupport::TempFile first("first", "1");
    const testsupport::TempFile second("second", "22");
    ASSERT_TRUE(stream.openFile(kiv::String(first.widePath())));
    ASSERT_TRUE(stream.openFile(kiv::String(second.widePath())));
    char chunk[8];
    EXPECT_EQ(stream.read(chunk, sizeof chunk), 2u);
}

// The native form of a path: UTF-16 on Windows, UTF-8 bytes elsewhere, with no locale in
// between.
std::filesystem::path nativePath(const String& path) {
    if constexpr (sizeof(wchar_t) == 2) {
        return std::filesystem::path(path.str());
    } else {
        return std::filesystem::path(path.toUtf8());
    }
}

TEST(FileSystemTest, NonAsciiFileNamesWork) {
    const String name = FileSystem::joinPath(
        tempDirectory(), String::fromUtf8("kiv_caf\xC3\xA9_\xF0\x9F\x92\xBF.bin"));
    {
        std::ofstream out(nativePath(name), std::ios::binary | std::ios::trunc);
        if (!out) GTEST_SKIP() << "the file system takes no such names";
        out << "abc";
    }
    uint64_t size = 0;
    EXPECT_TRUE(FileSystem::getFileSize(name, size));
    EXPECT_EQ(size, 3u);
    kiv::IFStream stream;
    EXPECT_TRUE(stream.openFile(name));
    EXPECT_TRUE(stream.close());
    std::filesystem::remove(nativePath(name));
}

}  // namespace
