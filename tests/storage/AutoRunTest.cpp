#include "storage/AutoRun.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace {

using libStorage::AutoRun;

TEST(AutoRun, SuppressedWhileAnyObjectDisablesIt) {
    enum Op { kDisableA, kEnableA, kDisableB, kEnableB, kDestroyA, kCopyAIntoC, kDestroyC };
    struct Case {
        std::vector<Op> ops;
        bool suppressed;
    };
    const Case cases[] = {
        {{}, false},
        {{kDisableA}, true},
        {{kDisableA, kEnableA}, false},
        {{kDisableA, kDisableA, kEnableA}, false},  // repeating counts once
        {{kDisableA, kDisableB, kEnableA}, true},
        {{kDisableA, kDisableB, kEnableA, kEnableB}, false},
        {{kDisableA, kDestroyA}, false},
        {{kDisableA, kCopyAIntoC, kEnableA}, true},
        {{kDisableA, kCopyAIntoC, kEnableA, kDestroyC}, false},
        {{kCopyAIntoC}, false},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        {
            auto a = std::make_unique<AutoRun>();
            AutoRun b;
            std::optional<AutoRun> c;
            for (Op op : cases[i].ops) {
                switch (op) {
                    case kDisableA:
                        a->Disable(true);
                        break;
                    case kEnableA:
                        a->Disable(false);
                        break;
                    case kDisableB:
                        b.Disable(true);
                        break;
                    case kEnableB:
                        b.Disable(false);
                        break;
                    case kDestroyA:
                        a.reset();
                        break;
                    case kCopyAIntoC:
                        c.emplace(*a);
                        break;
                    case kDestroyC:
                        c.reset();
                        break;
                }
            }
            EXPECT_EQ(AutoRun::autoPlaySuppressed(), cases[i].suppressed) << "case " << i;
        }
        EXPECT_FALSE(AutoRun::autoPlaySuppressed()) << "objects of case " << i << " left it off";
    }
}

TEST(AutoRun, AssignmentFollowsTheSource) {
    AutoRun disabled;
    disabled.Disable(true);
    AutoRun target;
    target = disabled;
    EXPECT_TRUE(target.isDisabled());
    disabled.Disable(false);
    EXPECT_TRUE(AutoRun::autoPlaySuppressed()) << "the assigned object disables on its own";
    target = AutoRun();
    EXPECT_FALSE(target.isDisabled());
    EXPECT_FALSE(AutoRun::autoPlaySuppressed());
}

}  // namespace
