// The read-write test's command-line texts: emu: writer texts and the test's own options,
// valid and refused.
#include <gtest/gtest.h>

#include "optical/EmulatedWriterText.h"
#include "optical/OpticalMedia.h"
#include "optical/OpticalOptions.h"

namespace {

using host::EmulatedWriterSetup;
using sim::mmc::DiscStatus;
using sim::mmc::MediaKind;

TEST(OpticalTextTest, EmulatedWriterTextsSetTheDiscAndTheFaults) {
    std::string error;
    const auto parse = [&error](const char* text) {
        error.clear();
        return host::parseEmulatedWriterText(text, &error);
    };
    const auto none = parse("emu:none");
    ASSERT_TRUE(none) << error;
    EXPECT_FALSE(none->disc);

    const auto full = parse("emu:dvd-r-dl,full");
    ASSERT_TRUE(full) << error;
    EXPECT_EQ(full->disc->kind, MediaKind::DvdMinusRDualLayer);
    EXPECT_EQ(full->disc->status, DiscStatus::Appendable);
    EXPECT_EQ(full->disc->recordedSectors, full->disc->capacitySectors);

    const auto used = parse("emu:cd-r,closed,uses=7,lead-in=97:20:05,lead-out=79:59:74");
    ASSERT_TRUE(used) << error;
    EXPECT_EQ(used->disc->status, DiscStatus::Complete);
    EXPECT_GT(used->disc->recordedSectors, 0u);
    EXPECT_EQ(used->disc->usageCount, 7);
    EXPECT_EQ(used->disc->leadIn, (sim::mmc::Msf{97, 20, 5}));

    const auto faults = parse(
        "emu:bd-re,maker=MAKER01,disc-id=E02,fault=write:0C00@300,fault=read:0803#4*2,"
        "fault=any:0401,stale=9,lose=10,vanish=500,instant,speeds=4495/8990");
    ASSERT_TRUE(faults) << error;
    EXPECT_EQ(faults->disc->manufacturerId, "MAKER01");
    EXPECT_EQ(faults->disc->discId, "E02");
    ASSERT_EQ(faults->faults.size(), 3u);
    // At an address: every write touching it, for good.
    EXPECT_EQ(faults->faults[0].opcode, 0x2A);
    EXPECT_EQ(faults->faults[0].lba, 300u);
    EXPECT_EQ(faults->faults[0].times, 0u);
    EXPECT_EQ(faults->faults[0].sense.code, 0x0C00);
    // The fourth READ(10) and the one after it.
    EXPECT_EQ(faults->faults[1].opcode, 0x28);
    EXPECT_EQ(faults->faults[1].skip, 3u);
    EXPECT_EQ(faults->faults[1].times, 2u);
    EXPECT_FALSE(faults->faults[1].lba);
    // Any command, once.
    EXPECT_FALSE(faults->faults[2].opcode);
    EXPECT_EQ(faults->faults[2].times, 1u);
    EXPECT_EQ(faults->staleAfterFlush, std::vector<uint32_t>{9});
    EXPECT_EQ(faults->lostWrites, std::vector<uint32_t>{10});
    EXPECT_EQ(faults->vanishAtCommand, 500u);
    EXPECT_FALSE(faults->config.timed);
    EXPECT_EQ(faults->disc->writeSpeeds, (std::vector<uint16_t>{8990, 4495}));

    const struct {
        const char* text;
        const char* error;  // a part of the reason given
    } refused[] = {
        {"emu:", "unknown kind of disc"},
        {"emu:dvd+rx", "unknown kind of disc (none, cd-rom, cd-r"},
        {"emu:dvd-rom,used", "a pressed disc is always closed"},
        {"emu:none,closed", "closed needs a disc in the tray"},
        {"emu:dvd+r,uses=70000", "uses=70000: expected 0 to 65535"},
        {"emu:dvd+r,maker=MAKER0123", "maker is at most 8 characters"},
        {"emu:cd-r,lead-in=97:60:00", "lead-in: expected MM:SS:FF"},
        {"emu:dvd+r,fault=erase:0C00", "expected OP:CODE with OP one of read"},
        {"emu:dvd+r,fault=write:C00", "CODE is 4 hex digits"},
        {"emu:dvd+r,fault=write:0C00#0", "#N (from 1)"},
        {"emu:dvd+r,fault=write:0C00@x", "take numbers"},
        {"emu:dvd+r,vanish=0", "a command count from 1"},
        {"emu:dvd+r,speeds=22160/", "expected write speeds in kB/s from 1 to 65534"},
        {"emu:dvd+r,speeds=65535", "expected write speeds"},
        {"emu:dvd+r,spin", "unknown option \"spin\""},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.text);
        EXPECT_FALSE(parse(c.text));
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
    }
}

TEST(OpticalTextTest, TheTestsOptionsAreCheckedBeforeAnythingRuns) {
    std::string error;
    const auto read = host::opticalOptionsOf({{"--sectors", "2048"},
                                              {"--media", "dvd+rw,bd-re"},
                                              {"--usage-limit", "9"},
                                              {"--approved", "A,B,C,D"},
                                              {"--reruns", "0"}},
                                             &error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->sectors, 2048);
    EXPECT_EQ(read->profiles, (std::vector<uint16_t>{0x001A, 0x0043}));
    EXPECT_EQ(read->usageLimit, 9u);
    EXPECT_EQ(read->approved, (std::vector<std::string>{"A", "B", "C", "D"}));
    EXPECT_EQ(read->reruns, 0u);
    // Without --media every writable kind will do, and no pressed one.
    const auto plain = host::opticalOptionsOf({}, &error);
    ASSERT_TRUE(plain);
    for (const host::OpticalMedium& medium : host::opticalMedia()) {
        for (uint16_t profile : medium.profiles) {
            const bool listed = std::find(plain->profiles.begin(), plain->profiles.end(),
                                          profile) != plain->profiles.end();
            EXPECT_EQ(listed, medium.writable) << medium.name;
        }
    }

    const struct {
        const char* option;
        const char* value;
        const char* error;
    } refused[] = {
        {"--sectors", "0", "--sectors 0: expected a number of 2048-byte sectors from 1"},
        {"--sectors", "12x", "--sectors 12x"},
        {"--erase-seconds", "0", "seconds from 1 to 86400"},
        {"--reruns", "65536", "runs from 1 to 65535"},
        {"--usage-limit", "0", "uses from 1 to 65535"},
        {"--approved", "A,B,C", "expected pairs"},
        {"--media", "dvd-rom", "\"dvd-rom\" is not a writable kind of disc"},
        {"--media", "dvd+rw,", "\"\" is not a writable kind of disc"},
        {"--customer", "", "--customer needs a text"},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.option);
        EXPECT_FALSE(host::opticalOptionsOf({{c.option, c.value}}, &error));
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
    }
}

}  // namespace
