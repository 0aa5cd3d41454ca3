#include <windows.h>
#include <winioctl.h>

#include <cwctype>
#include <optional>
#include <vector>

#include "Hold.h"
#include "os/Utf8.h"

namespace libStorage::detail {
namespace {

std::wstring systemText(DWORD code) { return os::fromUtf8(os::describeError(code)); }

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

// Volumes locked and dismounted for as long as this object lives.
class LockedVolumes final : public Hold {
public:
    ~LockedVolumes() override {
        for (HANDLE volume : volumes_) {
            DWORD returned = 0;
            DeviceIoControl(volume, FSCTL_UNLOCK_VOLUME, nullptr, 0, nullptr, 0, &returned,
                            nullptr);
            CloseHandle(volume);
        }
    }
    void keep(HANDLE volume) { volumes_.push_back(volume); }

private:
    std::vector<HANDLE> volumes_;
};

bool volumeIsOnDisk(HANDLE volume, DWORD diskNumber) {
    // Room for a volume spanning several disks.
    alignas(VOLUME_DISK_EXTENTS) unsigned char
        buffer[sizeof(VOLUME_DISK_EXTENTS) + 15 * sizeof(DISK_EXTENT)] = {};
    DWORD returned = 0;
    if (!DeviceIoControl(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0, buffer,
                         sizeof buffer, &returned, nullptr)) {
        return false;  // not a disk volume (an optical or network volume)
    }
    const auto* extents = reinterpret_cast<const VOLUME_DISK_EXTENTS*>(buffer);
    for (DWORD i = 0; i < extents->NumberOfDiskExtents && i < 16; ++i) {
        if (extents->Extents[i].DiskNumber == diskNumber) {
            return true;
        }
    }
    return false;
}

std::unique_ptr<Hold> lockVolumesOf(const std::wstring& disk, DWORD diskNumber,
                                    std::wstring& failure) {
    HANDLE probe = CreateFileW(disk.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_EXISTING, 0, nullptr);
    if (probe == INVALID_HANDLE_VALUE) {
        failure = disk + L" cannot be opened: " + systemText(GetLastError());
        return nullptr;
    }
    CloseHandle(probe);

    auto locked = std::make_unique<LockedVolumes>();
    wchar_t name[MAX_PATH] = {};
    HANDLE search = FindFirstVolumeW(name, MAX_PATH);
    if (search == INVALID_HANDLE_VALUE) {
        return locked;  // no volumes at all: nothing to take away
    }
    do {
        std::wstring volumePath = name;
        if (!volumePath.empty() && volumePath.back() == L'\\') {
            volumePath.pop_back();  // the volume device rather than its root directory
        }
        HANDLE volume =
            CreateFileW(volumePath.c_str(), GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
        if (volume == INVALID_HANDLE_VALUE) {
            continue;  // no medium, or not a volume we could ever write through
        }
        if (!volumeIsOnDisk(volume, diskNumber)) {
            CloseHandle(volume);
            continue;
        }
        DWORD returned = 0;
        if (!DeviceIoControl(volume, FSCTL_LOCK_VOLUME, nullptr, 0, nullptr, 0, &returned,
                             nullptr) ||
            !DeviceIoControl(volume, FSCTL_DISMOUNT_VOLUME, nullptr, 0, nullptr, 0, &returned,
                             nullptr)) {
            failure = L"volume " + volumePath + L" of " + disk + L" is in use: " +
                      systemText(GetLastError());
            CloseHandle(volume);
            FindVolumeClose(search);
            return nullptr;  // the volumes locked so far are unlocked with `locked`
        }
        locked->keep(volume);
    } while (FindNextVolumeW(search, name, MAX_PATH));
    FindVolumeClose(search);
    return locked;
}

}  // namespace

std::unique_ptr<Hold> lockDisk(const std::string& path, std::wstring& failure) {
    const std::wstring disk = os::fromUtf8(path);
    if (auto number = physicalDriveNumber(disk)) {
        return lockVolumesOf(disk, *number, failure);
    }
    // An image file or a single volume: nobody else may have it open.
    os::OpenResult opened = os::openDevice(path, os::kRead | os::kExclusive);
    if (!opened.error.ok()) {
        failure = disk + L" cannot be opened exclusively: " + os::fromUtf8(opened.error.message);
        return nullptr;
    }
    return std::make_unique<HandleHold>(std::move(opened.handle));
}

}  // namespace libStorage::detail
