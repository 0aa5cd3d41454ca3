// Kernel block devices for tests on Linux: loop devices over image files, and filesystems
// mounted from them, each undone at the end of the test. They need root, /dev/loop-control and
// losetup (mount and mkfs for filesystems); a test asks loopDevicesUnavailable() first and skips
// with its answer:
//     if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
//         GTEST_SKIP() << why;
#pragma once

#include <cstdint>
#include <string>

#include "support/TempFile.h"

namespace testsupport {

// The first line `command` prints on standard output, without its newline; "" when the command
// fails. Its standard error is discarded.
std::string firstLineOf(const std::string& command);
// Whether `command` exits with 0; its output is discarded.
bool succeeds(const std::string& command);

// Why loop devices cannot be attached here ("needs root and losetup"), or "" when they can.
std::string loopDevicesUnavailable();

// A loop device over an image file, detached when the object ends.
class LoopDevice {
public:
    // Attaches `image` with further losetup `options` ("--read-only", "--sector-size 4096");
    // path() is "" when that failed.
    explicit LoopDevice(const std::string& image, const std::string& options = "");
    ~LoopDevice();
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;

    // "/dev/loopN", or "" when nothing is attached.
    const std::string& path() const { return path_; }
    // "loopN".
    std::string name() const;
    // Write requests the device has completed since it was created (counted by the kernel
    // across attachments of the same device number).
    unsigned long long writesDone() const;

private:
    std::string path_;
};

// A loop device over a new temporary image, both removed when the object ends. The device
// writes through the image's page cache, so image() shows every write it has completed.
class LoopImage {
public:
    LoopImage(const std::string& hint, uint64_t bytes, ImageFill fill)
        : image_(hint, bytes, fill), loop_(image_.text()) {}

    // "/dev/loopN", or "" when attaching failed.
    const std::string& path() const { return loop_.path(); }
    const TempImage& image() const { return image_; }
    unsigned long long writesDone() const { return loop_.writesDone(); }

private:
    TempImage image_;
    LoopDevice loop_;
};

// `device`'s filesystem mounted on a new directory in the temporary directory; unmounted and the
// directory removed when the object ends.
class MountedFilesystem {
public:
    explicit MountedFilesystem(const std::string& device);
    ~MountedFilesystem();
    MountedFilesystem(const MountedFilesystem&) = delete;
    MountedFilesystem& operator=(const MountedFilesystem&) = delete;

    // Whether the mount succeeded and still stands.
    bool mounted() const { return mounted_; }
    const std::string& directory() const { return directory_; }
    // Unmounts now; true when nothing is mounted afterwards.
    bool unmount();

private:
    std::string directory_;
    bool mounted_ = false;
};

}  // namespace testsupport
