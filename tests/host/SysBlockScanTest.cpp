#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "cli/DriveList.h"
#include "support/TempFile.h"

namespace {

namespace fs = std::filesystem;

// A /sys/block-shaped tree in a temporary directory, removed at the end.
class FakeSysBlock {
public:
    void write(const std::string& relative, const std::string& content) {
        const fs::path file = root_.path() / relative;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << content;
    }
    const fs::path& root() const { return root_.path(); }

private:
    testsupport::TempDirectory root_{"sysblock"};
};

TEST(SysBlockScanTest, ListsWholeDisksAndSkipsWhatCannotBeTested) {
    FakeSysBlock sys;
    sys.write("sda/size", "1953525168\n");
    sys.write("sda/queue/logical_block_size", "512\n");
    sys.write("sda/device/model", "Some Disk 1TB   \n");
    sys.write("nvme0n1/size", "8\n");
    sys.write("nvme0n1/queue/logical_block_size", "4096\n");
    sys.write("loop0/size", "2097152\n");
    sys.write("loop0/loop/backing_file", "/tmp/disk.img\n");
    sys.write("loop1/size", "0\n");     // no backing file
    sys.write("loop2/size", "2048\n");  // size but no backing file
    sys.write("ram0/size", "8192\n");
    sys.write("zram0/size", "8192\n");
    sys.write("sr0/size", "0\n");  // an empty optical drive: listed all the same
    sys.write("sr0/queue/logical_block_size", "2048\n");
    sys.write("sr0/device/model", "DVD Writer\n");
    sys.write("sdb/size", "garbage\n");
    sys.write("sdc/size", "1\n");  // no sector size file: 512 assumed

    const std::vector<host::DriveInfo> drives = host::scanSysBlock(sys.root(), "/dev");
    const struct {
        const char* path;
        const char* model;
        uint64_t sizeBytes;
        uint32_t bytesPerSector;
        bool optical;
    } expected[] = {
        {"/dev/loop0", "loop: /tmp/disk.img", 1073741824ull, 512, false},
        {"/dev/nvme0n1", "", 4096, 4096, false},
        {"/dev/sda", "Some Disk 1TB", 1000204886016ull, 512, false},
        {"/dev/sdc", "", 512, 512, false},
        {"/dev/sr0", "DVD Writer", 0, 2048, true},
    };
    ASSERT_EQ(drives.size(), std::size(expected));
    for (std::size_t i = 0; i < drives.size(); ++i) {
        SCOPED_TRACE(expected[i].path);
        EXPECT_EQ(drives[i].path, expected[i].path);
        EXPECT_EQ(drives[i].model, expected[i].model);
        EXPECT_EQ(drives[i].sizeBytes, expected[i].sizeBytes);
        EXPECT_EQ(drives[i].bytesPerSector, expected[i].bytesPerSector);
        EXPECT_EQ(drives[i].optical, expected[i].optical);
    }
}

TEST(SysBlockScanTest, AMissingTreeListsNothing) {
    EXPECT_TRUE(host::scanSysBlock("/nonexistent/sys/block", "/dev").empty());
}

}  // namespace
