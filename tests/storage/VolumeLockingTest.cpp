// The physical-disk lock's decisions, driven through a fake of the system calls it makes: every
// volume of the disk locked or the whole lock refused with the volume named, a blank disk
// claimed, volume lists that end early reported, and nothing left held on any path.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "VolumeLocking.h"
#include "os/Utf8.h"

namespace {

using namespace libStorage::detail;

constexpr uint32_t kAccessDenied = 5;
constexpr uint32_t kGeneralFailure = 31;
constexpr uint32_t kSharingViolation = 32;

struct FakeVolume {
    std::wstring name;
    std::vector<uint32_t> disks;  // one extent per entry
    uint32_t probeError = 0;      // opening with access 0
    uint32_t extentsError = 0;    // instead of an answer
    uint32_t openError = 0;       // opening for locking
    uint32_t lockError = 0;
    uint32_t dismountError = 0;
};

class FakeCalls final : public VolumeCalls {
public:
    std::vector<FakeVolume> volumes;
    uint32_t firstError = 0;                // 0: the first volume, if any
    uint32_t endError = kErrorNoMoreFiles;  // what follows the last volume
    uint32_t claimError = 0;

    std::set<uintptr_t> open;    // handles not yet closed
    std::set<uintptr_t> locked;  // handles locked and not unlocked
    std::vector<std::wstring> lockedNames;
    std::vector<size_t> extentBufferSizes;
    int searchesEnded = 0;
    bool diskClaimed = false;
    int claims = 0;

    uint32_t firstVolume(std::wstring& name) override {
        if (firstError != 0) return firstError;
        next_ = 0;
        return nextVolume(name);
    }
    uint32_t nextVolume(std::wstring& name) override {
        if (next_ >= volumes.size()) return endError;
        name = volumes[next_++].name + L"\\";
        return 0;
    }
    void endVolumeSearch() override { ++searchesEnded; }
    uint32_t openVolume(const std::wstring& path, bool forLocking, VolumeHandle& volume) override {
        const FakeVolume* found = find(path);
        if (found == nullptr) return kGeneralFailure;
        const uint32_t error = forLocking ? found->openError : found->probeError;
        if (error != 0) return error;
        const uintptr_t id = ++lastHandle_;
        handles_[id] = found;
        open.insert(id);
        volume = reinterpret_cast<VolumeHandle>(id);
        return 0;
    }
    uint32_t volumeDiskExtents(VolumeHandle volume, std::vector<unsigned char>& answer,
                               uint32_t& returned) override {
        const FakeVolume& v = *handles_.at(id(volume));
        extentBufferSizes.push_back(answer.size());
        if (v.extentsError != 0) return v.extentsError;
        const size_t needed = 8 + 24 * v.disks.size();
        put(answer, 0, static_cast<uint32_t>(v.disks.size()));
        if (answer.size() < needed) {
            // As the system does: the count, and as many extents as fit.
            returned = static_cast<uint32_t>(answer.size() >= 32 ? 32 : 4);
            if (returned == 32) put(answer, 8, v.disks[0]);
            return kErrorMoreData;
        }
        for (size_t i = 0; i < v.disks.size(); ++i) put(answer, 8 + 24 * i, v.disks[i]);
        returned = static_cast<uint32_t>(needed);
        return 0;
    }
    uint32_t lockVolume(VolumeHandle volume) override {
        const FakeVolume& v = *handles_.at(id(volume));
        if (v.lockError != 0) return v.lockError;
        locked.insert(id(volume));
        lockedNames.push_back(v.name);
        return 0;
    }
    uint32_t dismountVolume(VolumeHandle volume) override {
        return handles_.at(id(volume))->dismountError;
    }
    void unlockVolume(VolumeHandle volume) override { locked.erase(id(volume)); }
    void closeVolume(VolumeHandle volume) override { open.erase(id(volume)); }
    uint32_t claimDisk() override {
        ++claims;
        if (claimError != 0) return claimError;
        diskClaimed = true;
        return 0;
    }
    void releaseDisk() override { diskClaimed = false; }
    std::wstring describe(uint32_t error) override { return L"error " + std::to_wstring(error); }

private:
    static uintptr_t id(VolumeHandle volume) { return reinterpret_cast<uintptr_t>(volume); }
    static void put(std::vector<unsigned char>& bytes, size_t offset, uint32_t value) {
        for (size_t i = 0; i < 4; ++i)
            bytes[offset + i] = static_cast<unsigned char>(value >> (8 * i));
    }
    const FakeVolume* find(const std::wstring& path) const {
        for (const FakeVolume& v : volumes) {
            if (v.name == path) return &v;
        }
        return nullptr;
    }
    size_t next_ = 0;
    uintptr_t lastHandle_ = 0;
    std::map<uintptr_t, const FakeVolume*> handles_;
};

const std::wstring kDisk = L"\\\\.\\PhysicalDrive1";
constexpr uint32_t kDiskNumber = 1;

std::wstring volume(int n) { return L"\\\\?\\Volume{" + std::to_wstring(n) + L"}"; }

TEST(VolumeLocking, LocksEveryVolumeOfTheDiskOrRefusesNamingTheVolume) {
    struct Case {
        const char* name;
        std::vector<FakeVolume> volumes;
        uint32_t endError = kErrorNoMoreFiles;
        bool locks;
        std::vector<std::wstring> lockedWhileHeld;  // when it locks
        std::wstring named;                         // in the failure, when it refuses
    };
    // clang-format off
    const std::vector<Case> cases = {
        {"both volumes of the disk, not the other disk's",
         {{volume(1), {1}}, {volume(2), {0}}, {volume(3), {1}}}, kErrorNoMoreFiles, true, {volume(1), volume(3)}, L""},
        {"a volume spanning two disks (the answer grows)",
         {{volume(1), {0, 1}}, {volume(2), {2, 3, 0}}}, kErrorNoMoreFiles, true, {volume(1)}, L""},
        {"an optical volume and an empty card reader are passed over",
         {{volume(1), {1}}, {volume(2), {}, 0, kErrorInvalidFunction}, {volume(3), {}, 0, kErrorNotReady}, {volume(4), {}, kErrorNoMediaInDrive}},
         kErrorNoMoreFiles, true, {volume(1)}, L""},
        {"a volume that cannot be opened to check it",
         {{volume(1), {1}}, {volume(2), {1}, kAccessDenied}}, kErrorNoMoreFiles, false, {}, volume(2)},
        {"a volume whose extents cannot be read",
         {{volume(1), {1}}, {volume(2), {}, 0, kGeneralFailure}}, kErrorNoMoreFiles, false, {}, volume(2)},
        {"a mounted volume that is in use",
         {{volume(1), {1}}, {volume(2), {1}, 0, 0, 0, kAccessDenied}}, kErrorNoMoreFiles, false, {}, volume(2)},
        {"a volume of the disk that cannot be opened for locking",
         {{volume(1), {1}, 0, 0, kAccessDenied}}, kErrorNoMoreFiles, false, {}, volume(1)},
        {"a volume that cannot be dismounted",
         {{volume(1), {1}}, {volume(2), {1}, 0, 0, 0, 0, kGeneralFailure}}, kErrorNoMoreFiles, false, {}, volume(2)},
        {"the volume list ends with an error", {{volume(1), {1}}}, kGeneralFailure, false, {}, L"ended early"},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto calls = std::make_shared<FakeCalls>();
        calls->volumes = c.volumes;
        calls->endError = c.endError;
        std::wstring failure;
        std::unique_ptr<Hold> hold = lockDiskVolumes(calls, kDisk, kDiskNumber, failure);
        EXPECT_EQ(hold != nullptr, c.locks) << os::toUtf8(failure);
        EXPECT_EQ(calls->searchesEnded, 1);
        EXPECT_EQ(calls->claims, 0) << "a disk with volumes is held through them";
        if (c.locks) {
            EXPECT_EQ(calls->lockedNames, c.lockedWhileHeld);
            EXPECT_EQ(calls->locked.size(), c.lockedWhileHeld.size());
            EXPECT_EQ(calls->open.size(), c.lockedWhileHeld.size()) << "probes closed";
            hold.reset();
        } else {
            EXPECT_NE(failure.find(c.named), std::wstring::npos) << os::toUtf8(failure);
            EXPECT_NE(failure.find(kDisk), std::wstring::npos) << os::toUtf8(failure);
        }
        EXPECT_TRUE(calls->locked.empty()) << "every lock given back";
        EXPECT_TRUE(calls->open.empty()) << "every handle closed";
    }
}

TEST(VolumeLocking, ExtentsBufferGrowsToTheAnnouncedCount) {
    auto calls = std::make_shared<FakeCalls>();
    calls->volumes = {{volume(1), {0, 0, 0, 0, 0, 1}}};
    std::wstring failure;
    std::unique_ptr<Hold> hold = lockDiskVolumes(calls, kDisk, kDiskNumber, failure);
    ASSERT_NE(hold, nullptr) << os::toUtf8(failure);
    EXPECT_EQ(calls->extentBufferSizes, (std::vector<size_t>{32, 8 + 24 * 6}))
        << "the disk is found only in the sixth extent";
    EXPECT_EQ(calls->lockedNames, std::vector<std::wstring>{volume(1)});
}

TEST(VolumeLocking, ADiskWithoutVolumesIsClaimedItself) {
    struct Case {
        const char* name;
        uint32_t firstError;
        std::vector<FakeVolume> volumes;
        uint32_t claimError;
        bool locks;
        int searchesEnded;
    };
    const Case cases[] = {
        {"no volumes in the system", kErrorNoMoreFiles, {}, 0, true, 0},
        {"only other disks' volumes", 0, {{volume(1), {0}}, {volume(2), {2}}}, 0, true, 1},
        {"the disk is open elsewhere", kErrorNoMoreFiles, {}, kSharingViolation, false, 0},
        {"the volumes cannot be listed", kAccessDenied, {}, 0, false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto calls = std::make_shared<FakeCalls>();
        calls->firstError = c.firstError;
        calls->volumes = c.volumes;
        calls->claimError = c.claimError;
        std::wstring failure;
        std::unique_ptr<Hold> hold = lockDiskVolumes(calls, kDisk, kDiskNumber, failure);
        EXPECT_EQ(hold != nullptr, c.locks) << os::toUtf8(failure);
        EXPECT_EQ(calls->searchesEnded, c.searchesEnded);
        EXPECT_EQ(calls->diskClaimed, c.locks);
        if (!c.locks) {
            EXPECT_NE(failure.find(kDisk), std::wstring::npos) << os::toUtf8(failure);
        }
        hold.reset();
        EXPECT_FALSE(calls->diskClaimed) << "the claim is given back with the hold";
        EXPECT_TRUE(calls->open.empty());
    }
}

TEST(VolumeLocking, ExtentAnswersAreReadOnlyAsFarAsReturned) {
    std::vector<unsigned char> answer(8 + 24 * 3, 0);
    answer[0] = 3;                         // three extents announced
    answer[8] = 7;                         // disk 7
    answer[32] = 0x04, answer[33] = 0x01;  // disk 260
    answer[56] = 9;                        // disk 9
    EXPECT_EQ(extentDisks(answer, 8 + 24 * 3), (std::vector<uint32_t>{7, 260, 9}));
    EXPECT_EQ(extentDisks(answer, 8 + 24 * 2), (std::vector<uint32_t>{7, 260}));
    EXPECT_EQ(extentDisks(answer, 8 + 24 * 3 - 1), (std::vector<uint32_t>{7, 260}));
    EXPECT_EQ(extentDisks(answer, 3), std::vector<uint32_t>{});
    EXPECT_EQ(announcedExtents(answer, 4), 3u);
    EXPECT_EQ(announcedExtents(answer, 3), 0u);
    EXPECT_EQ(extentsAnswerBytes(0), 32u);
    EXPECT_EQ(extentsAnswerBytes(1), 32u);
    EXPECT_EQ(extentsAnswerBytes(5), 128u);
}

}  // namespace
