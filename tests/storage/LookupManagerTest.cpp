#include "storage/LookupManager.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using libStorage::LookupManager;

TEST(LookupManager, KeepsOneEntryPerDeviceName) {
    os::NativeHandle first = os::invalidNativeHandle();
    os::NativeHandle second = os::invalidNativeHandle();
    enum Op { kInsert, kRemove };
    struct Step {
        Op op;
        const char* name;
        os::NativeHandle* handle;  // for kInsert
        bool removed;              // for kRemove: whether an entry was there
        os::NativeHandle* cdrom0;  // what "\\.\CdRom0" maps to afterwards (null: absent)
        os::NativeHandle* cdrom1;
    };
    const Step steps[] = {
        {kRemove, "\\\\.\\CdRom0", nullptr, false, nullptr, nullptr},
        {kInsert, "\\\\.\\CdRom0", &first, false, &first, nullptr},
        {kInsert, "\\\\.\\CdRom1", &second, false, &first, &second},
        {kInsert, "\\\\.\\CdRom0", &second, false, &second, &second},  // replaces
        {kRemove, "\\\\.\\cdrom1", nullptr, false, &second, &second},  // names are exact
        {kRemove, "\\\\.\\CdRom1", nullptr, true, &second, nullptr},
        {kRemove, "\\\\.\\CdRom0", nullptr, true, nullptr, nullptr},
        {kRemove, "\\\\.\\CdRom0", nullptr, false, nullptr, nullptr},
    };
    int index = 0;
    for (const Step& s : steps) {
        if (s.op == kInsert) {
            LookupManager::insert(s.name, s.handle);
        } else {
            EXPECT_EQ(LookupManager::remove(s.name), s.removed) << "step " << index;
        }
        EXPECT_EQ(LookupManager::get("\\\\.\\CdRom0"), s.cdrom0) << "step " << index;
        EXPECT_EQ(LookupManager::get("\\\\.\\CdRom1"), s.cdrom1) << "step " << index;
        EXPECT_EQ(LookupManager::contains("\\\\.\\CdRom0"), s.cdrom0 != nullptr)
            << "step " << index;
        EXPECT_EQ(LookupManager::contains("\\\\.\\CdRom1"), s.cdrom1 != nullptr)
            << "step " << index;
        ++index;
    }
}

}  // namespace
