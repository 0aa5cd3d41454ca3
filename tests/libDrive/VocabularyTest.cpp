// The library's vocabulary as the framework sees it after the library is loaded, checked against
// the one table it is built from.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
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

// FNV-1a over the keys in order, each followed by a NUL, so that a changed spelling, a moved row
// or a key moved to another kind all change the result.
std::uint64_t fingerprint(const std::vector<std::string>& keys) {
    std::uint64_t hash = 14695981039346656037ull;
    for (const std::string& key : keys) {
        for (const char c : key + '\0') {
            hash ^= static_cast<unsigned char>(c);
            hash *= 1099511628211ull;
        }
    }
    return hash;
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

// Hosts and their catalogues know the keys by spelling and the framework by position, so the
// table may only change on purpose. After such a change, update the counts and fingerprints.
TEST(Vocabulary, TheTableIsThePublishedOne) {
    const struct {
        const char* kind;
        std::vector<std::string> keys;
        std::size_t count;
        std::uint64_t fingerprint;
    } cases[] = {
        {"parameters", tableKeys(kParameters), 12, 0x2bf0aa99fac5b94eull},
        {"events", tableKeys(kEvents), 74, 0x948b7caf8453b307ull},
        {"localized strings", tableKeys(kStrings), 82, 0x3da6dc1a8d2cfb2cull},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        EXPECT_EQ(c.keys.size(), c.count);
        EXPECT_EQ(fingerprint(c.keys), c.fingerprint);
    }
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
        EXPECT_FALSE(created->isset());
        if (row.published != nullptr) {
            EXPECT_EQ(*row.published, created);
        }
    }
}

TEST(Vocabulary, OnlySectorPercentToTestHasARangeAndOnlyThePreservationPairHasFlagB) {
    std::vector<std::string> ranged;
    std::vector<std::string> flaggedB;
    for (const ParameterRow& row : kParameters) {
        const quel5::Parameter* created = Registry::instance().findParameter(row.key);
        ASSERT_NE(created, nullptr) << row.key;
        if (!created->range().toUtf8().empty()) ranged.push_back(row.key);
        if (created->flagB()) flaggedB.push_back(row.key);
    }
    EXPECT_EQ(ranged, std::vector<std::string>{"SectorPercentToTest"});
    EXPECT_EQ(flaggedB, (std::vector<std::string>{"PreserveData", "NumberOfPatterns"}));
    EXPECT_EQ(Registry::instance().findParameter("SectorPercentToTest")->range().toUtf8(),
              "[1,100]");
}

TEST(Vocabulary, EachGlobalHoldsTheHandleOfItsOwnKey) {
    for (const auto& row : kEvents) {
        SCOPED_TRACE(row.key);
        ASSERT_NE(*row.global, nullptr);
        EXPECT_EQ(*row.global, Registry::instance().findEvent(row.key));
    }
    for (const auto& row : kStrings) {
        SCOPED_TRACE(row.key);
        ASSERT_NE(*row.global, nullptr);
        EXPECT_EQ(*row.global, Registry::instance().findLocalizedString(row.key));
    }
}

TEST(Vocabulary, KeysSharedByAnEventAndAStringAreDistinctHandles) {
    for (const char* key : {"INCORRECT_MEDIA_INSERTED", "NO_MEDIA_PRESENT", "ERROR_NO_MEDIA"}) {
        SCOPED_TRACE(key);
        EXPECT_NE(Registry::instance().findEvent(key), nullptr);
        EXPECT_NE(Registry::instance().findLocalizedString(key), nullptr);
    }
}

TEST(Vocabulary, InitLibDriveRegistersTheLibraryOnEveryCall) {
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    const std::size_t before = Registry::instance().libraries().size();
    const std::size_t parameters = Registry::instance().parameters().size();

    kivrlibdrive::initLibDrive();
    kivrlibdrive::initLibDrive();

    EXPECT_EQ(host.libraries(), (std::vector<std::string>{"libDrive", "libDrive"}));
    ASSERT_EQ(Registry::instance().libraries().size(), before + 2);
    EXPECT_EQ(Registry::instance().libraries().back().toUtf8(), "libDrive");
    EXPECT_EQ(Registry::instance().parameters().size(), parameters);
    EXPECT_TRUE(host.events().empty());
}

}  // namespace
