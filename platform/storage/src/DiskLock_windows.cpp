#include <windows.h>
#include <winioctl.h>

#include <cwctype>
#include <optional>
#include <vector>

#include "Hold.h"
#include "LockedVolume_windows.h"
#include "VolumeLocking.h"
#include "os/DeviceControl.h"
#include "os/Utf8.h"

namespace libStorage::detail {
namespace {

static_assert(kErrorInvalidFunction == ERROR_INVALID_FUNCTION);
static_assert(kErrorNoMoreFiles == ERROR_NO_MORE_FILES);
static_assert(kErrorNotReady == ERROR_NOT_READY);
static_assert(kErrorNotSupported == ERROR_NOT_SUPPORTED);
static_assert(kErrorMoreData == ERROR_MORE_DATA);
static_assert(kErrorNoMediaInDrive == ERROR_NO_MEDIA_IN_DRIVE);

std::wstring systemText(DWORD code) { return os::fromUtf8(os::describeError(code)); }

uint32_t control(HANDLE handle, DWORD code) {
    return os::controlDevice(handle, code, nullptr, 0, nullptr, 0).error;
}

// The disk number N of "\\.\PhysicalDriveN" (any case), or nothing for other names.
std::optional<DWORD> physicalDriveNumber(const std::wstring& path) {
    const std::wstring prefix = L"\\\\.\\physicaldrive";
    if (path.size() <= prefix.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (std::towlower(path[i]) != prefix[i]) {
            return std::nullopt;
        }
    }
    DWORD number = 0;
    for (size_t i = prefix.size(); i < path.size(); ++i) {
        if (path[i] < L'0' || path[i] > L'9') {
            return std::nullopt;
        }
        number = number * 10 + static_cast<DWORD>(path[i] - L'0');
    }
    return number;
}

bool namesDevice(const std::wstring& path) { return path.rfind(L"\\\\.\\", 0) == 0; }

class WindowsVolumeCalls final : public VolumeCalls {
public:
    WindowsVolumeCalls(std::wstring disk, HANDLE driveHandle)
        : disk_(std::move(disk)), driveHandle_(driveHandle) {}

    uint32_t firstVolume(std::wstring& name) override {
        wchar_t buffer[MAX_PATH] = {};
        search_ = FindFirstVolumeW(buffer, MAX_PATH);
        if (search_ == INVALID_HANDLE_VALUE) return GetLastError();
        name = buffer;
        return 0;
    }
    uint32_t nextVolume(std::wstring& name) override {
        wchar_t buffer[MAX_PATH] = {};
        if (!FindNextVolumeW(search_, buffer, MAX_PATH)) return GetLastError();
        name = buffer;
        return 0;
    }
    void endVolumeSearch() override {
        if (search_ != INVALID_HANDLE_VALUE) FindVolumeClose(search_);
        search_ = INVALID_HANDLE_VALUE;
    }
    uint32_t openVolume(const std::wstring& path, bool forLocking, VolumeHandle& volume) override {
        const DWORD access = forLocking ? GENERIC_READ | GENERIC_WRITE : 0;
        HANDLE handle = CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE) return GetLastError();
        volume = handle;
        return 0;
    }
    uint32_t volumeDiskExtents(VolumeHandle volume, std::vector<unsigned char>& answer,
                               uint32_t& returned) override {
        const os::ControlResult result =
            os::controlDevice(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0,
                              answer.data(), static_cast<uint32_t>(answer.size()));
        returned = result.bytes;
        return result.error;
    }
    uint32_t lockVolume(VolumeHandle volume) override { return control(volume, FSCTL_LOCK_VOLUME); }
    uint32_t dismountVolume(VolumeHandle volume) override {
        return control(volume, FSCTL_DISMOUNT_VOLUME);
    }
    void unlockVolume(VolumeHandle volume) override { control(volume, FSCTL_UNLOCK_VOLUME); }
    void closeVolume(VolumeHandle volume) override { CloseHandle(volume); }
    uint32_t claimDisk() override {
        if (driveHandle_ != INVALID_HANDLE_VALUE) {
            // The drive's handle is open on the disk, so an open that shares nothing would be
            // refused; the raw disk's own volume lock is taken through that handle instead.
            const uint32_t error = control(driveHandle_, FSCTL_LOCK_VOLUME);
            if (error == 0) lockedDrive_ = true;
            return error;
        }
        claim_ = CreateFileW(disk_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        return claim_ == INVALID_HANDLE_VALUE ? GetLastError() : 0;
    }
    void releaseDisk() override {
        if (lockedDrive_) control(driveHandle_, FSCTL_UNLOCK_VOLUME);
        if (claim_ != INVALID_HANDLE_VALUE) CloseHandle(claim_);
        lockedDrive_ = false;
        claim_ = INVALID_HANDLE_VALUE;
    }
    std::wstring describe(uint32_t error) override { return systemText(error); }

private:
    std::wstring disk_;
    HANDLE driveHandle_;
    HANDLE search_ = INVALID_HANDLE_VALUE;
    HANDLE claim_ = INVALID_HANDLE_VALUE;
    bool lockedDrive_ = false;
};

// A byte-range lock far past any data of an image file: it keeps no reader or writer out, but
// every other locker asks for the same range and is refused while this one holds it.
constexpr DWORD kImageLockOffsetHigh = 0x40000000;  // byte 2^62

class LockedImage final : public Hold {
public:
    explicit LockedImage(HANDLE duplicate) : file_(duplicate) {}
    ~LockedImage() override {
        OVERLAPPED where{};
        where.OffsetHigh = kImageLockOffsetHigh;
        UnlockFileEx(file_, 0, 1, 0, &where);
        CloseHandle(file_);
    }

private:
    HANDLE file_;  // a duplicate of the drive's handle: the same file object, kept open
};

std::unique_ptr<Hold> lockImage(const std::wstring& image, HANDLE driveHandle,
                                std::wstring& failure) {
    // The lock belongs to the file object, which the duplicate keeps alive even if the drive
    // reopens its own handle; the drive's reads and writes are not affected by it.
    HANDLE duplicate = nullptr;
    if (!DuplicateHandle(GetCurrentProcess(), driveHandle, GetCurrentProcess(), &duplicate, 0,
                         FALSE, DUPLICATE_SAME_ACCESS)) {
        failure = image + L" cannot be locked: " + systemText(GetLastError());
        return nullptr;
    }
    OVERLAPPED where{};
    where.OffsetHigh = kImageLockOffsetHigh;
    where.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    BOOL locked =
        LockFileEx(duplicate, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &where);
    DWORD error = locked ? ERROR_SUCCESS : GetLastError();
    if (!locked && error == ERROR_IO_PENDING) {
        DWORD ignored = 0;
        locked = GetOverlappedResult(duplicate, &where, &ignored, TRUE);
        error = locked ? ERROR_SUCCESS : GetLastError();
    }
    if (where.hEvent != nullptr) CloseHandle(where.hEvent);
    if (!locked) {
        CloseHandle(duplicate);
        failure = image + L" is in use: " + systemText(error);
        return nullptr;
    }
    return std::make_unique<LockedImage>(duplicate);
}

// A single volume (\\.\E:) locked and dismounted through the drive's handle on it.
std::unique_ptr<Hold> lockVolumeThrough(const std::wstring& volume, HANDLE driveHandle,
                                        std::wstring& failure) {
    uint32_t error = control(driveHandle, FSCTL_LOCK_VOLUME);
    if (error != 0) {
        failure = volume + L" is in use: " + systemText(error);
        return nullptr;
    }
    error = control(driveHandle, FSCTL_DISMOUNT_VOLUME);
    if (error != 0) {
        control(driveHandle, FSCTL_UNLOCK_VOLUME);
        failure = volume + L" cannot be dismounted: " + systemText(error);
        return nullptr;
    }
    return std::make_unique<LockedVolume>(driveHandle);
}

}  // namespace

std::unique_ptr<Hold> lockDisk(const std::string& path, os::NativeHandle driveHandle,
                               std::wstring& failure) {
    const std::wstring disk = os::fromUtf8(path);
    const HANDLE drive = static_cast<HANDLE>(driveHandle);
    if (auto number = physicalDriveNumber(disk)) {
        return lockDiskVolumes(std::make_shared<WindowsVolumeCalls>(disk, drive), disk, *number,
                               failure);
    }
    if (drive != INVALID_HANDLE_VALUE) {
        return namesDevice(disk) ? lockVolumeThrough(disk, drive, failure)
                                 : lockImage(disk, drive, failure);
    }
    // Nobody holds it open yet: an open that shares nothing keeps everybody else out.
    os::OpenResult opened = os::openDevice(path, os::kRead | os::kExclusive);
    if (!opened.error.ok()) {
        failure = disk + L" cannot be opened exclusively: " + os::fromUtf8(opened.error.message);
        return nullptr;
    }
    return std::make_unique<HandleHold>(std::move(opened.handle));
}

}  // namespace libStorage::detail
