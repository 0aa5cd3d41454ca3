#include "VolumeLocking.h"

#include <algorithm>

#include "os/LittleEndian.h"

namespace libStorage::detail {
namespace {

constexpr size_t kExtentsHeaderBytes = 8;
constexpr size_t kExtentBytes = 24;
// A volume spanning more disks than this is not one we could reason about.
constexpr uint32_t kMostExtents = 4096;

uint32_t dwordAt(const std::vector<unsigned char>& bytes, size_t offset) {
    return os::littleEndian32(bytes.data() + offset);
}

// Errors that say a volume is not a disk volume or holds no medium: it cannot lie on the
// disk under test, which is present and readable.
bool passedOver(uint32_t error) {
    return error == kErrorInvalidFunction || error == kErrorNotSupported ||
           error == kErrorNotReady || error == kErrorNoMediaInDrive;
}

// Volumes locked and dismounted, or the disk claimed, for as long as this object lives.
class LockedDisk final : public Hold {
public:
    explicit LockedDisk(std::shared_ptr<VolumeCalls> calls) : calls_(std::move(calls)) {}
    ~LockedDisk() override {
        for (auto volume = volumes_.rbegin(); volume != volumes_.rend(); ++volume) {
            calls_->unlockVolume(*volume);
            calls_->closeVolume(*volume);
        }
        if (diskClaimed_) {
            calls_->releaseDisk();
        }
    }
    void keep(VolumeHandle volume) { volumes_.push_back(volume); }
    void keepDiskClaim() { diskClaimed_ = true; }
    bool empty() const { return volumes_.empty(); }

private:
    std::shared_ptr<VolumeCalls> calls_;
    std::vector<VolumeHandle> volumes_;
    bool diskClaimed_ = false;
};

// Whether `volume` has an extent on `diskNumber`; 0 or the error of the extents query.
uint32_t isOnDisk(VolumeCalls& calls, VolumeHandle volume, uint32_t diskNumber, bool& onDisk) {
    std::vector<unsigned char> answer(extentsAnswerBytes(1));
    uint32_t returned = 0;
    uint32_t error = calls.volumeDiskExtents(volume, answer, returned);
    // A volume over several disks answers how many extents it has; ask again with room for all.
    for (int attempt = 0; error == kErrorMoreData && attempt < 3; ++attempt) {
        const uint32_t extents = announcedExtents(answer, returned);
        if (extents == 0 || extents > kMostExtents) {
            break;
        }
        answer.assign(extentsAnswerBytes(extents), 0);
        returned = 0;
        error = calls.volumeDiskExtents(volume, answer, returned);
    }
    if (error != 0) {
        return error;
    }
    const std::vector<uint32_t> disks = extentDisks(answer, returned);
    onDisk = std::find(disks.begin(), disks.end(), diskNumber) != disks.end();
    return 0;
}

std::wstring deviceOf(const std::wstring& volumeName) {
    std::wstring path = volumeName;
    if (!path.empty() && path.back() == L'\\') {
        path.pop_back();  // the volume device rather than its root directory
    }
    return path;
}

// Locks `path` if it lies on the disk. False, with `failure` set, when the lock must be refused.
bool takeVolume(VolumeCalls& calls, LockedDisk& locked, const std::wstring& path,
                const std::wstring& disk, uint32_t diskNumber, std::wstring& failure) {
    VolumeHandle probe = nullptr;
    uint32_t error = calls.openVolume(path, false, probe);
    if (error != 0) {
        if (passedOver(error)) return true;
        failure = L"volume " + path + L" cannot be opened to see whether it lies on " + disk +
                  L": " + calls.describe(error);
        return false;
    }
    bool onDisk = false;
    error = isOnDisk(calls, probe, diskNumber, onDisk);
    calls.closeVolume(probe);
    if (error != 0) {
        if (passedOver(error)) return true;
        failure = L"volume " + path + L" cannot be checked for extents on " + disk + L": " +
                  calls.describe(error);
        return false;
    }
    if (!onDisk) return true;

    VolumeHandle volume = nullptr;
    error = calls.openVolume(path, true, volume);
    if (error != 0) {
        failure =
            L"volume " + path + L" of " + disk + L" cannot be opened: " + calls.describe(error);
        return false;
    }
    error = calls.lockVolume(volume);
    if (error != 0) {
        failure = L"volume " + path + L" of " + disk + L" is in use: " + calls.describe(error);
        calls.closeVolume(volume);
        return false;
    }
    error = calls.dismountVolume(volume);
    if (error != 0) {
        failure =
            L"volume " + path + L" of " + disk + L" cannot be dismounted: " + calls.describe(error);
        calls.unlockVolume(volume);
        calls.closeVolume(volume);
        return false;
    }
    locked.keep(volume);
    return true;
}

}  // namespace

size_t extentsAnswerBytes(uint32_t extents) {
    return kExtentsHeaderBytes + kExtentBytes * std::max<uint32_t>(1, extents);
}

uint32_t announcedExtents(const std::vector<unsigned char>& answer, uint32_t returned) {
    if (returned < 4 || answer.size() < 4) return 0;
    return dwordAt(answer, 0);
}

std::vector<uint32_t> extentDisks(const std::vector<unsigned char>& answer, uint32_t returned) {
    std::vector<uint32_t> disks;
    const size_t valid = std::min<size_t>(returned, answer.size());
    if (valid < 4) return disks;
    const uint32_t count = dwordAt(answer, 0);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t offset = kExtentsHeaderBytes + kExtentBytes * i;
        if (offset + kExtentBytes > valid) break;
        disks.push_back(dwordAt(answer, offset));
    }
    return disks;
}

std::unique_ptr<Hold> lockDiskVolumes(std::shared_ptr<VolumeCalls> calls, const std::wstring& disk,
                                      uint32_t diskNumber, std::wstring& failure) {
    auto locked = std::make_unique<LockedDisk>(calls);
    std::wstring name;
    uint32_t error = calls->firstVolume(name);
    if (error != 0 && error != kErrorNoMoreFiles) {
        failure = L"the volumes cannot be listed to lock " + disk + L": " + calls->describe(error);
        return nullptr;
    }
    const bool searching = error == 0;
    while (error == 0) {
        if (!takeVolume(*calls, *locked, deviceOf(name), disk, diskNumber, failure)) {
            calls->endVolumeSearch();
            return nullptr;  // `locked` gives back the volumes taken so far
        }
        error = calls->nextVolume(name);
    }
    if (searching) {
        calls->endVolumeSearch();
    }
    if (error != kErrorNoMoreFiles) {
        failure =
            L"the volume list ended early while locking " + disk + L": " + calls->describe(error);
        return nullptr;
    }
    if (locked->empty()) {
        // A blank disk: nothing mounted to lock, so the disk itself is claimed, or two
        // destructive runs could write it at once.
        error = calls->claimDisk();
        if (error != 0) {
            failure = disk + L" is in use: " + calls->describe(error);
            return nullptr;
        }
        locked->keepDiskClaim();
    }
    return locked;
}

}  // namespace libStorage::detail
