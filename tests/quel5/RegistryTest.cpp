#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "quel5/DiagModule.h"
#include "quel5/Registry.h"

namespace {

using quel5::DataType;
using quel5::Registry;

// Made while this program loads, as a library's globals are.
quel5::Event* const g_createdAtLoad = quel5::DiagModule::createEvent("Created_At_Load");

template <typename Handle>
std::vector<std::string> keysEndingIn(const std::vector<Handle*>& handles, const std::string& tag) {
    std::vector<std::string> keys;
    for (const Handle* handle : handles) {
        const std::string key = handle->key().toUtf8();
        if (key.size() > tag.size() && key.compare(key.size() - tag.size(), tag.size(), tag) == 0) {
            keys.push_back(key);
        }
    }
    return keys;
}

TEST(RegistryTest, KeepsCreationOrderAndFindsTheFirstOfAKey) {
    Registry& registry = Registry::instance();
    quel5::Event* first = quel5::DiagModule::createEvent("C_Order");
    quel5::Event* second = quel5::DiagModule::createEvent("A_Order");
    quel5::Event* duplicate = quel5::DiagModule::createEvent("C_Order");
    quel5::Event* third = quel5::DiagModule::createEvent("B_Order");

    EXPECT_EQ(keysEndingIn(registry.events(), "_Order"),
              (std::vector<std::string>{"C_Order", "A_Order", "C_Order", "B_Order"}));
    EXPECT_NE(first, duplicate);  // a second creation is a handle of its own
    EXPECT_EQ(registry.findEvent("C_Order"), first);
    EXPECT_EQ(registry.findEvent("A_Order"), second);
    EXPECT_EQ(registry.findEvent("B_Order"), third);
    EXPECT_EQ(registry.findEvent("D_Order"), nullptr);
}

TEST(RegistryTest, HandlesMadeByStaticInitialisersAreKept) {
    ASSERT_NE(g_createdAtLoad, nullptr);
    EXPECT_EQ(Registry::instance().findEvent("Created_At_Load"), g_createdAtLoad);
}

TEST(RegistryTest, KindsAreKeptApart) {
    Registry& registry = Registry::instance();
    quel5::Parameter* parameter =
        quel5::DiagModule::createParameter("Shared_Key", DataType::STRING, "[0,1]", true, false);
    quel5::Event* event = quel5::DiagModule::createEvent("Shared_Key");
    quel5::LocalizedString* text = quel5::DiagModule::createLocalizedString("Shared_Key");

    EXPECT_EQ(registry.findParameter("Shared_Key"), parameter);
    EXPECT_EQ(registry.findEvent("Shared_Key"), event);
    EXPECT_EQ(registry.findLocalizedString("Shared_Key"), text);
    EXPECT_EQ(registry.parameters().back(), parameter);
    EXPECT_EQ(registry.localizedStrings().back(), text);
}

TEST(RegistryTest, HandlesStayValidWhileManyMoreAreCreated) {
    quel5::LocalizedString* early = quel5::DiagModule::createLocalizedString("Early_Stable");
    early->setVariable("N", 1u);
    for (int i = 0; i < 2000; ++i) quel5::DiagModule::createLocalizedString("Filler_Stable");
    EXPECT_EQ(Registry::instance().findLocalizedString("Early_Stable"), early);
    EXPECT_EQ(early->key(), QuelString("Early_Stable"));
    EXPECT_EQ(early->variables().size(), 1u);
}

TEST(RegistryTest, LibrariesAreListedEachTimeTheyRegister) {
    Registry& registry = Registry::instance();
    const auto countOf = [&](const char* name) {
        return std::count(registry.libraries().begin(), registry.libraries().end(),
                          QuelString(name));
    };
    quel5::DiagModule::registerLibrary("Lib_Twice");
    quel5::DiagModule::registerLibrary("Lib_Twice");
    EXPECT_EQ(countOf("Lib_Twice"), 2);
    EXPECT_EQ(registry.libraries().back(), QuelString("Lib_Twice"));
}

}  // namespace
