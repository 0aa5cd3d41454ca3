// The disc side of the read/write test: closing by media kind, erasing after and before the
// test, qualification in its three modes with its cache, the usage count read from sector 0,
// and the media check with its prompts.
#include <functional>

#include "ScriptedOptical.h"
#include "kiv/Exception.h"
#include "libDrive/Exceptions.h"

namespace rwtest {
namespace {

using R = quel5::TestResult;
using Calls = std::vector<std::string>;

class MediaTest : public ReadWriteFixture {};

TEST_F(MediaTest, TheDiscIsClosedAsItsKindNeeds) {
    const struct {
        std::set<std::string> media;
        bool blankOnly;
        std::function<void()> fault;
        Calls calls;
        std::vector<int> lines;  // logged at priority 1
        const char* failure;     // TestFailedException's message, or nullptr
    } cases[] = {
        {{"DvdplusrwDisc"}, false, nullptr, {}, {976, 977}, nullptr},
        {{"BdreDisc"}, true, nullptr, {}, {976, 977}, nullptr},
        {{"DvdplusrDLDisc"}, false, nullptr, {}, {976, 977}, nullptr},
        {{"DvdplusrDisc"}, false, nullptr, {}, {988, 989}, nullptr},
        {{}, false, nullptr, {"closeTrack(7)"}, {988, 989, 991}, nullptr},
        {{},
         false,
         [] { throw FailedClosingSession(0x7300u); },
         {"closeTrack(7)"},
         {988, 989, 991, 999},
         "Failed closing the session"},
        {{"CDRDisc"}, false, nullptr, {"closeTrack(0)"}, {1007, 1008}, nullptr},
        {{"CDRDisc"},
         false,
         [] { throw FailedClosingTrack(0x7300u); },
         {"closeTrack(0)"},
         {1007, 1008, 1012},
         ""},
        {{"DvdminusrwDisc"},
         false,
         [] { throw FailedClosingTrack(0x7300u); },
         {"closeTrack(0)"},
         {1007, 1008},
         nullptr},
        {{"DvdplusrDisc"},
         true,
         nullptr,
         {"closeTrack(0)", "closeSession"},
         {1007, 1008, 1021, 1022},
         nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.lines));
        drive.calls.clear();
        drive.mediaIs = c.media;
        drive.faults.clear();
        if (c.fault) drive.faults["closeTrack"] = c.fault;
        host.clear();
        parameters.blankOnly = c.blankOnly;
        OpenTest test(drive, parameters, strings);
        test.startSector = 7;
        const std::size_t before = logged(1).size();
        try {
            test.closeDisc();
            EXPECT_EQ(c.failure, nullptr);
        } catch (const TestFailedException& failed) {
            ASSERT_NE(c.failure, nullptr);
            EXPECT_EQ(failed.getMessage().toUtf8(), c.failure);
            EXPECT_EQ(host.eventKeys(), Calls{"ERROR_CLOSING_MEDIA"});
        }
        EXPECT_EQ(drive.calls, c.calls);
        std::vector<int> lines;
        const auto all = logged(1);
        for (std::size_t i = before; i < all.size(); ++i) lines.push_back(std::stoi(all[i]));
        EXPECT_EQ(lines, c.lines);
    }
}

TEST_F(MediaTest, TheDiscIsErasedAfterTheTestByItsKind) {
    const struct {
        std::set<std::string> media;
        bool eraseAfter;
        bool fails;
        Calls calls;
        Calls events;
    } cases[] = {
        {{"CDRWDisc"}, true, false, {"blankDisc(30,60,100)"}, {}},
        {{"DvdminusrwDisc"}, true, false, {"blankDisc(120,60,100)"}, {}},
        {{"DvdplusrwDisc"}, true, false, {"formatDisc(30,60,100)"}, {}},
        {{"BdreDisc"}, true, false, {"formatDisc(30,60,100)"}, {}},
        {{"CDRDisc"}, true, false, {}, {}},
        {{"CDRWDisc"}, false, false, {}, {}},
        {{"CDRWDisc"}, true, true, {"blankDisc(30,60,100)"}, {"ERROR_ERASING_MEDIA"}},
        {{"BdreDisc"}, true, true, {"formatDisc(30,60,100)"}, {"ERROR_FORMATTING_MEDIA"}},
    };
    for (const auto& c : cases) {
        drive.calls.clear();
        drive.mediaIs = c.media;
        drive.faults.clear();
        if (c.fails) {
            fail("blankDisc", TestFailedException(0x3100u));
            fail("formatDisc", TestFailedException(0x3100u));
        }
        host.clear();
        parameters.eraseAfter = c.eraseAfter;
        OpenTest test(drive, parameters, strings);
        EXPECT_NO_THROW(test.eraseAfterTestComplition());
        EXPECT_EQ(drive.calls, c.calls);
        EXPECT_EQ(host.eventKeys(), c.events);
    }
}

TEST_F(MediaTest, ApprovedMediaAreFoundByIdsPatternsOrLeadTimes) {
    const struct {
        const char* name;
        bool regex;
        std::set<std::string> media;
        std::vector<kiv::String> approved;
        kiv::Array<unsigned int> leadOut;
        bool qualified;
        Calls reads;  // identification calls
    } cases[] = {
        {"second pair",
         false,
         {},
         {L"AB1", L"MAKER01", L" XY2 ", L"MAKER02"},
         {},
         true,
         {"getDiscManufacturerID", "getDiscID"}},
        {"crossed pair", false, {}, {L"AB1", L"MAKER02", L"XY2", L"MAKER01"}, {}, false, {}},
        {"odd entry", false, {}, {L"XY2"}, {}, false, {}},
        {"patterns", true, {}, {L"^X.*", L".*02$"}, {}, true, {}},
        {"patterns miss", true, {}, {L"^A.*", L".*02$"}, {}, false, {}},
        {"blu-ray",
         false,
         {"BdreDisc"},
         {L"XY2", L"MAKER02"},
         {},
         true,
         {"getBDMaker", "getBLUERAYDiscID"}},
        {"CD times",
         false,
         {"CDRWDisc"},
         {L"97:26:66", L"79:59:74"},
         {79, 59, 74},
         true,
         {"getLeadInTime", "getLeadOutTime"}},
        {"CD lead-out off by a frame",
         false,
         {"CDRDisc"},
         {L"97:26:66", L"79:59:74"},
         {79, 59, 73},
         false,
         {}},
    };
    drive.discId = L"XY2";
    drive.makerId = L"MAKER02";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        drive.calls.clear();
        drive.mediaIs = c.media;
        drive.leadOut = c.leadOut;
        parameters.regex = c.regex;
        parameters.approved = c.approved;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.mediaQualified(), c.qualified);
        if (!c.reads.empty()) {
            EXPECT_EQ(drive.calls, c.reads);
        }
        // Remembered: the drive is not asked again.
        const std::size_t calls = drive.calls.size();
        EXPECT_EQ(test.mediaQualified(), c.qualified);
        EXPECT_EQ(drive.calls.size(), calls);
    }
    drive.mediaIs.clear();
    parameters.regex = true;
    parameters.approved = {L"(", L".*"};
    OpenTest invalid(drive, parameters, strings);
    EXPECT_THROW(invalid.mediaQualified(), kiv::InternalError);
    EXPECT_TRUE(wasLogged(4, "1154 Disc ID has an invalid regex pattern\n"));
}

TEST_F(MediaTest, TheUsageCountIsReadFromSectorZero) {
    const struct {
        bool empty;
        std::vector<unsigned char> sector0;
        bool readFails;
        unsigned short uses;
    } cases[] = {
        {false, {0x00, 0x05, 0x00, 0x05, 0xBD, 0xBD}, false, 5},
        {false, {0x01, 0x02, 0x01, 0x02, 0xBD, 0xBD}, false, 258},
        {false, {0xBD, 0xBD, 0xBD, 0xBD, 0xBD, 0xBD}, false, 0},
        {false, {0x00, 0x05, 0x00, 0x06, 0xBD, 0xBD}, false, 0},
        {false, {0x00, 0x05, 0x00, 0x05, 0xBD, 0x00}, false, 0},
        {false, {0x00, 0x05, 0x00, 0x05, 0xBD, 0xBD}, true, 0},
        {true, {0x00, 0x05, 0x00, 0x05, 0xBD, 0xBD}, false, 0},
    };
    for (const auto& c : cases) {
        drive.calls.clear();
        drive.faults.clear();
        drive.empty = c.empty;
        drive.disc[0] = c.sector0;
        drive.disc[0].resize(2048, 0xBD);
        if (c.readFails) fail("readSectors", ReadFailedException(0, 0x1100));
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.numberOfTimesMediaUsedForTesting(), c.uses);
        EXPECT_EQ(callCount("readSectors"), c.empty ? 0u : 1u);
    }
    EXPECT_TRUE(wasLogged(4, "1254 CHECKING FOR USAGE LIMIT: Read Failed Exception"));
}

TEST_F(MediaTest, TheMediaCheckRefusesOrAsksForAnotherDisc) {
    const struct {
        const char* name;
        std::function<void()> setup;
        R result;
        Calls events;
        std::vector<std::string> boxes;  // message of each box shown
        Calls erase;                     // blank and format calls
    } cases[] = {
        {"no disc", [&] { drive.readyStatus = 0x3A00; }, R::NOMEDIA, {"ERROR_NO_MEDIA"}, {}, {}},
        {"drive error",
         [&] { drive.readyStatus = 0x4400; },
         R::FAIL,
         {"DRIVE_ERROR_STARTING_OPTICAL_DRIVE"},
         {},
         {}},
        {"incompatible disc",
         [&] { drive.readyStatus = 0x3000; },
         R::INCORRECTMEDIA,
         {"INCORRECT_MEDIA_INSERTED"},
         {},
         {}},
        {"pressed disc", [&] { drive.mediaType = MEDIA_DVDROM; }, R::INCORRECTMEDIA, {}, {}, {}},
        {"closed disc",
         [&] { drive.empty = false, drive.complete = true; },
         R::INCORRECTMEDIA,
         {"MEDIA_CLOSED_EVENT"},
         {},
         {}},
        {"disc not blank",
         [&] { drive.empty = false, parameters.blankOnly = true; },
         R::INCORRECTMEDIA,
         {"ERROR_DISC_NOT_EMPTY"},
         {},
         {}},
        {"used up",
         [&] { parameters.limitUsage = true, parameters.usageLimit = 0; },
         R::INCORRECTMEDIA,
         {"CHECKING_DISC_MAX_USAGE_LIMIT", "MAX_USAGE_LIMIT_REACHED"},
         {},
         {}},
        {"uses left",
         [&] { parameters.limitUsage = true, parameters.usageLimit = 3; },
         R::PASS,
         {"CHECKING_DISC_MAX_USAGE_LIMIT", "CURRENT_USAGE_VALUE"},
         {},
         {}},
        {"no disc, then one",
         [&] {
             drive.readyStatus = 0x3A00;
             parameters.prompt = true;
             drive.faults["loadDisc"] = [&] { drive.readyStatus = 0; };
         },
         R::PASS,
         {},
         {"INSERT_MEDIA_WITH_DATA{MediaName=DVD+R}", "PRE_TEST_PROMPT{MediaName=DVD+R}"},
         {}},
        {"no disc after two prompts",
         [&] {
             drive.readyStatus = 0x3A00;
             parameters.prompt = true;
             parameters.prompts = 2;
         },
         R::NOMEDIA,
         {"ERROR_NO_MEDIA"},
         {"INSERT_MEDIA_WITH_DATA{MediaName=DVD+R}", "INSERT_MEDIA_WITH_DATA{MediaName=DVD+R}"},
         {}},
        {"rewritable erased on agreement",
         [&] {
             drive.empty = false, drive.mediaIs = {"DvdplusrwDisc"};
             parameters.prompt = parameters.eraseNonBlank = true;
         },
         R::PASS,
         {},
         {"ERASE_DISC_PROMPT{MediaName=DVD+R}", "PRE_TEST_PROMPT{MediaName=DVD+R}"},
         {"formatDisc(30,0,40)"}},
        {"blank-only test erases without asking",
         [&] {
             drive.empty = false, drive.mediaIs = {"CDRWDisc"};
             parameters.blankOnly = parameters.eraseNonBlank = true;
         },
         R::PASS,
         {},
         {},
         {"blankDisc(30,0,40)"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        drive.calls.clear();
        drive.faults.clear();
        drive.mediaIs.clear();
        drive.readyStatus = 0;
        drive.empty = true;
        drive.complete = false;
        drive.mediaType = MEDIA_DVDPLUSR;
        parameters = ScriptedParameters();
        host.clear();
        c.setup();
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), c.result);
        EXPECT_EQ(host.eventKeys(), c.events);
        std::vector<std::string> boxes;
        for (const auto& box : host.messageBoxes()) boxes.push_back(box.message);
        EXPECT_EQ(boxes, c.boxes);
        Calls erase;
        for (const auto& call : drive.calls) {
            if (call.rfind("blankDisc", 0) == 0 || call.rfind("formatDisc", 0) == 0) {
                erase.push_back(call);
            }
        }
        EXPECT_EQ(erase, c.erase);
    }
}

}  // namespace
}  // namespace rwtest
