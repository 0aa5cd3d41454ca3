// Locking an image file that a loop device shows as a disk: refused while that loop device (or a
// partition of it) is mounted, is swap or is held exclusively, whatever path names the file;
// allowed while the loop device sits unused, and for a copy of the file. Needs root, losetup,
// mkfs.ext2 and mount; each case skips on its own when its tool is refused.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "os/Utf8.h"
#include "storage/DeviceLockingManager.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

namespace {

namespace fs = std::filesystem;
using libStorage::DeviceLockingManager;
using testsupport::LoopDevice;
using testsupport::MountedFilesystem;
using testsupport::succeeds;
using testsupport::TempImage;

constexpr uintmax_t kImageBytes = 16 << 20;

// One MBR partition from sector 2048 to the end of the image.
void writePartitionTable(const std::string& image) {
    std::array<unsigned char, 512> sector{};
    unsigned char* entry = sector.data() + 446;
    entry[4] = 0x83;
    const uint32_t first = 2048;
    const uint32_t count = static_cast<uint32_t>(kImageBytes / 512) - first;
    for (int i = 0; i < 4; ++i) {
        entry[8 + i] = static_cast<unsigned char>(first >> (8 * i));
        entry[12 + i] = static_cast<unsigned char>(count >> (8 * i));
    }
    sector[510] = 0x55;
    sector[511] = 0xAA;
    std::fstream(image, std::ios::binary | std::ios::in | std::ios::out)
        .write(reinterpret_cast<const char*>(sector.data()), sector.size());
}

// What a case did to the loop device, undone at its end: its own steps in reverse order, then
// the mount, then the loop device.
class Scenario {
public:
    Scenario() = default;
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;
    ~Scenario() {
        for (auto undo = undos_.rbegin(); undo != undos_.rend(); ++undo) (*undo)();
    }
    // Runs `command`; on success `undo` runs at the end. False when it failed.
    bool step(const std::string& command, const std::string& undo) {
        if (!succeeds(command)) return false;
        undos_.push_back([undo] { succeeds(undo); });
        return true;
    }
    void atEnd(std::function<void()> undo) { undos_.push_back(std::move(undo)); }

    // Attaches `image` with further losetup `options`; false when no loop device was had.
    bool attach(const std::string& image, const std::string& options = "") {
        loopDevice_ = std::make_unique<LoopDevice>(image, options);
        loop = loopDevice_->path();
        return !loop.empty();
    }
    // Mounts `device`'s filesystem; false when mount refused.
    bool mount(const std::string& device) {
        mounted_ = std::make_unique<MountedFilesystem>(device);
        mountPoint = mounted_->directory();
        return mounted_->mounted();
    }

    std::string loop;        // the loop device over the image
    std::string mountPoint;  // where a case mounted something
    std::string lockedPath;  // the path handed to the locking manager
    std::string why;         // "" when the case could be set up

private:
    std::unique_ptr<LoopDevice> loopDevice_;  // before the mount, so detached after it
    std::unique_ptr<MountedFilesystem> mounted_;
    std::vector<std::function<void()>> undos_;
};

// An ext2 filesystem made on `image`, attached and mounted; `why` set when a step was refused.
void mountFilesystemOf(Scenario& s, const std::string& image) {
    if (!succeeds("mkfs.ext2 -q -F " + image))
        s.why = "no mkfs.ext2";
    else if (!s.attach(image))
        s.why = "no loop device";
    else if (!s.mount(s.loop))
        s.why = "mount refused";
}

class LoopBackedImageLockTest : public testing::Test {
protected:
    void SetUp() override {
        if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
            GTEST_SKIP() << why;
    }
};

TEST_F(LoopBackedImageLockTest, ImageIsRefusedWhileItsLoopDeviceIsInUse) {
    struct Case {
        std::string name;
        // Sets the case up; leaves `why` set when it cannot be done here.
        std::function<void(Scenario&, const std::string& image)> setUp;
        // What the failure must say, with {loop} and {mnt} filled in; "" when the lock is taken.
        std::function<std::string(const Scenario&)> refusal;
    };
    const auto backing = [](const Scenario& s) {
        return s.lockedPath + " is the backing file of " + s.loop + ", which ";
    };
    const Case cases[] = {
        {"attached, unused",
         [](Scenario& s, const std::string& image) {
             if (!s.attach(image)) s.why = "no loop device";
         },
         [](const Scenario&) { return std::string(); }},
        {"its filesystem mounted",
         [](Scenario& s, const std::string& image) { mountFilesystemOf(s, image); },
         [&](const Scenario& s) { return backing(s) + "is mounted on " + s.mountPoint; }},
        {"a filesystem on its partition mounted",
         [](Scenario& s, const std::string& image) {
             writePartitionTable(image);
             if (!s.attach(image, "--partscan"))
                 s.why = "no loop device";
             else if (!succeeds("mkfs.ext2 -q -F " + s.loop + "p1"))
                 s.why = "no partition";
             else if (!s.mount(s.loop + "p1"))
                 s.why = "mount refused";
         },
         [&](const Scenario& s) { return backing(s) + "is mounted on " + s.mountPoint; }},
        {"used as swap",
         [](Scenario& s, const std::string& image) {
             if (!succeeds("mkswap " + image))
                 s.why = "no mkswap";
             else if (!s.attach(image))
                 s.why = "no loop device";
             else if (!s.step("swapon " + s.loop, "swapoff " + s.loop))
                 s.why = "swapon refused";
         },
         [&](const Scenario& s) { return backing(s) + "is in use as swap (" + s.loop + ")"; }},
        {"held exclusively by another opener",
         [](Scenario& s, const std::string& image) {
             if (!s.attach(image)) {
                 s.why = "no loop device";
                 return;
             }
             const int fd = ::open(s.loop.c_str(), O_RDONLY | O_EXCL | O_CLOEXEC);
             if (fd < 0)
                 s.why = "no exclusive open";
             else
                 s.atEnd([fd] { ::close(fd); });
         },
         [&](const Scenario& s) {
             return backing(s) + "is held open exclusively by another program";
         }},
        {"mounted, the image named by a hard link",
         [](Scenario& s, const std::string& image) {
             const std::string link = image + ".link";
             fs::create_hard_link(image, link);
             s.atEnd([link] { fs::remove(link); });
             s.lockedPath = link;
             mountFilesystemOf(s, image);
         },
         [&](const Scenario& s) { return backing(s) + "is mounted on " + s.mountPoint; }},
        {"mounted, a copy of the image locked",
         [](Scenario& s, const std::string& image) {
             mountFilesystemOf(s, image);
             const std::string copy = image + ".copy";
             fs::copy_file(image, copy);
             s.atEnd([copy] { fs::remove(copy); });
             s.lockedPath = copy;
         },
         [](const Scenario&) { return std::string(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempImage image("backing", kImageBytes);
        Scenario scenario;
        scenario.lockedPath = image.text();
        c.setUp(scenario, image.text());
        if (!scenario.why.empty()) {
            std::printf("[ SKIPPED  ] %s: %s\n", c.name.c_str(), scenario.why.c_str());
            continue;
        }
        DeviceLockingManager manager(os::fromUtf8(scenario.lockedPath));
        const std::string refusal = c.refusal(scenario);
        EXPECT_EQ(manager.lockVolumes(), refusal.empty()) << os::toUtf8(manager.lastFailure());
        EXPECT_EQ(os::toUtf8(manager.lastFailure()), refusal);
        if (refusal.empty()) {
            // The advisory lock still keeps a second locker of the same file out.
            DeviceLockingManager rival(os::fromUtf8(scenario.lockedPath));
            EXPECT_FALSE(rival.lockVolumes());
        }
    }
}

}  // namespace
