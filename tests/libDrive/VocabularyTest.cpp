// The library's vocabulary as the framework sees it after the library is loaded, checked against
// the one table it is built from.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "libDrive/LibDrive.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/Registry.h"
#include "support/RecordingHost.h"

namespace {

using quel5::DataType;
using quel5::Registry;

struct ParameterRow {
    const char* key;
    quel5::Parameter* const* published;  // nullptr for the unpublished ones
    DataType type;
    const char* range;
    bool flagA;
    bool flagB;
};

const ParameterRow kParameters[] = {
#define LIBDRIVE_PUBLISHED_PARAMETER(key, global, type, range, flagA, flagB) \
    {key, &kivrlibdrive::global, DataType::type, range, flagA, flagB},
#define LIBDRIVE_INTERNAL_PARAMETER(key, global, type, range, flagA, flagB) \
    {key, nullptr, DataType::type, range, flagA, flagB},
#include "libDrive/Vocabulary.inc"
};

template <typename Handle>
struct HandleRow {
    const char* key;
    Handle* const* global;
};

const HandleRow<quel5::Event> kEvents[] = {
#define LIBDRIVE_EVENT(key, member) {key, &LibDriveStrings::member},
#include "libDrive/Vocabulary.inc"
};

const HandleRow<quel5::LocalizedString> kStrings[] = {
#define LIBDRIVE_LOCALIZED_STRING(key, member) {key, &LibDriveStrings::member},
#include "libDrive/Vocabulary.inc"
};

// The handles among `created` whose keys the library owns, in creation order. Other libraries
// in the process may have created handles too; they are left out.
template <typename Handle, typename Row, std::size_t N>
std::vector<std::string> ownKeysInOrder(const std::vector<Handle*>& created, const Row (&rows)[N],
                                        std::string (*keyOf)(const Handle&)) {
    std::vector<std::string> keys;
    for (const Handle* handle : created) {
        const std::string key = keyOf(*handle);
        for (const Row& row : rows) {
            if (key == row.key) keys.push_back(key);
        }
    }
    return keys;
}

template <typename Row, std::size_t N>
std::vector<std::string> tableKeys(const Row (&rows)[N]) {
    std::vector<std::string> keys;
    for (const Row& row : rows) keys.push_back(row.key);
    return keys;
}

std::string parameterKey(const quel5::Parameter& p) { return p.name().toUtf8(); }
std::string eventKey(const quel5::Event& e) { return e.key().toUtf8(); }
std::string stringKey(const quel5::LocalizedString& s) { return s.key().toUtf8(); }

TEST(Vocabulary, EveryKeyIsCreatedOnceInTableOrder) {
    const Registry& registry = Registry::instance();
    EXPECT_EQ(ownKeysInOrder(registry.parameters(), kParameters, parameterKey),
              tableKeys(kParameters));
    EXPECT_EQ(ownKeysInOrder(registry.events(), kEvents, eventKey), tableKeys(kEvents));
    EXPECT_EQ(ownKeysInOrder(registry.localizedStrings(), kStrings, stringKey),
              tableKeys(kStrings));
}

TEST(Vocabulary, ParametersCarryTypeRangeAndFlagsAndPublishedGlobals) {
    for (const ParameterRow& row : kParameters) {
        SCOPED_TRACE(row.key);
        const quel5::Parameter* created = Registry::instance().findParameter(row.key);
        ASSERT_NE(created, nullptr);
        EXPECT_EQ(created->dataType(), row.type);
        EXPECT_EQ(created->range().toUtf8(), row.range);
        EXPECT_EQ(created->flagA(), row.flagA);
        EXPECT_EQ(created->flagB(), row.flagB);
        if (row.published != nullptr) {
            EXPECT_EQ(*row.published, created);
        }
    }
}

TEST(Vocabulary, EachGlobalHoldsTheHandleOfItsOwnKey) {
    for (const auto& row : kEvents) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(*row.global, Registry::instance().findEvent(row.key));
    }
    for (const auto& row : kStrings) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(*row.global, Registry::instance().findLocalizedString(row.key));
    }
}

TEST(Vocabulary, InitLibDriveRegistersTheLibraryOnEveryCall) {
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    const std::size_t parameters = Registry::instance().parameters().size();

    kivrlibdrive::initLibDrive();
    kivrlibdrive::initLibDrive();

    EXPECT_EQ(host.libraries(), (std::vector<std::string>{"libDrive", "libDrive"}));
    EXPECT_EQ(Registry::instance().parameters().size(), parameters);
    EXPECT_TRUE(host.events().empty());
}

}  // namespace
