#include "storage/AutoRun.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace {

using libStorage::AutoRun;

// Steps on objects a (on the heap), b and c: "A"/"a" disable/enable a, "B"/"b" the same for b,
// "x" destroys a, "c" copies a into c, "y" destroys c.
TEST(AutoRun, SuppressedWhileAnyObjectDisablesIt) {
    const struct {
        const char* steps;
        bool suppressed;
    } cases[] = {
        {"", false},     {"A", true},     {"Aa", false}, {"AAa", false},  // repeating counts once
        {"ABa", true},   {"ABab", false}, {"Ax", false}, {"Aca", true},
        {"Acay", false}, {"c", false},
    };
    for (const auto& c : cases) {
        {
            auto a = std::make_unique<AutoRun>();
            AutoRun b;
            std::optional<AutoRun> copy;
            for (const char* step = c.steps; *step != '\0'; ++step) {
                if (*step == 'A' || *step == 'a') a->Disable(*step == 'A');
                if (*step == 'B' || *step == 'b') b.Disable(*step == 'B');
                if (*step == 'x') a.reset();
                if (*step == 'c') copy.emplace(*a);
                if (*step == 'y') copy.reset();
            }
            EXPECT_EQ(AutoRun::autoPlaySuppressed(), c.suppressed) << "steps " << c.steps;
        }
        EXPECT_FALSE(AutoRun::autoPlaySuppressed()) << "objects of " << c.steps << " left it off";
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
