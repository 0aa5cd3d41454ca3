// The disc side of the read/write test: closing by media kind, erasing after and before the
// test, qualification in its three modes with its cache, and the media check with its prompts.
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
    const std::function<void()> track = [] { throw FailedClosingTrack(0x7300u); };
    const std::function<void()> session = [] { throw FailedClosingSession(0x7300u); };
    const struct {
        const char* media;
        bool blankOnly;
        std::function<void()> fault;
        std::string calls;
        std::string lines;    // numbers of the lines logged at priority 1
        const char* failure;  // TestFailedException's message, or nullptr
    } cases[] = {
        {"DvdplusrwDisc", false, nullptr, "", "976 977", nullptr},
        {"BdreDisc", true, nullptr, "", "976 977", nullptr},
        {"DvdplusrDLDisc", false, nullptr, "", "976 977", nullptr},
        {"DvdplusrDisc", false, nullptr, "", "988 989", nullptr},
        {"", false, nullptr, "closeTrack(7)", "988 989 991", nullptr},
        {"", false, session, "closeTrack(7)", "988 989 991 999", "Failed closing the session"},
        {"CDRDisc", false, nullptr, "closeTrack(0)", "1007 1008", nullptr},
        {"CDRDisc", false, track, "closeTrack(0)", "1007 1008 1012", ""},
        {"DvdminusrwDisc", false, track, "closeTrack(0)", "1007 1008", nullptr},
        {"DvdplusrDisc", true, nullptr, "closeTrack(0) closeSession", "1007 1008 1021 1022",
         nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines);
        drive.calls.clear(), drive.faults.clear(), host.clear();
        drive.mediaIs = {c.media};
        if (c.fault) drive.faults["closeTrack"] = c.fault;
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
            EXPECT_EQ(eventKeys(), "ERROR_CLOSING_MEDIA");
        }
        EXPECT_EQ(lastCalls(), c.calls);
        std::string lines;
        const auto all = logged(1);
        for (std::size_t i = before; i < all.size(); ++i) {
            lines += (i == before ? "" : " ") + all[i].substr(0, all[i].find(' '));
        }
        EXPECT_EQ(lines, c.lines);
    }
}

TEST_F(MediaTest, TheDiscIsErasedAfterTheTestByItsKind) {
    const struct {
        const char* media;
        bool eraseAfter, fails;
        std::string calls, events;
    } cases[] = {
        {"CDRWDisc", true, false, "blankDisc(30,60,100)", ""},
        {"DvdminusrwDisc", true, false, "blankDisc(120,60,100)", ""},
        {"DvdplusrwDisc", true, false, "formatDisc(30,60,100)", ""},
        {"BdreDisc", true, false, "formatDisc(30,60,100)", ""},
        {"CDRDisc", true, false, "", ""},
        {"CDRWDisc", false, false, "", ""},
        {"CDRWDisc", true, true, "blankDisc(30,60,100)", "ERROR_ERASING_MEDIA"},
        {"BdreDisc", true, true, "formatDisc(30,60,100)", "ERROR_FORMATTING_MEDIA"},
    };
    for (const auto& c : cases) {
        drive.calls.clear(), drive.faults.clear(), host.clear();
        drive.mediaIs = {c.media};
        if (c.fails) {
            fail("blankDisc", TestFailedException(0x3100u));
            fail("formatDisc", TestFailedException(0x3100u));
        }
        parameters.eraseAfter = c.eraseAfter;
        OpenTest test(drive, parameters, strings);
        EXPECT_NO_THROW(test.eraseAfterTestComplition());
        EXPECT_EQ(lastCalls(), c.calls);
        EXPECT_EQ(eventKeys(), c.events);
    }
}

TEST_F(MediaTest, ApprovedMediaAreFoundByIdsPatternsOrLeadTimes) {
    const std::vector<kiv::String> times = {L"97:26:66", L"79:59:74"};
    const std::vector<kiv::String> idsInPairs = {L"AB1", L"MAKER01", L" XY2 ", L"MAKER02"};
    const struct {
        bool regex;
        const char* media;
        std::vector<kiv::String> approved;
        unsigned int leadOutFrame;
        bool qualified;
        std::string reads;  // identification calls
    } cases[] = {
        {false, "", idsInPairs, 0, true, "getDiscManufacturerID getDiscID"},
        {false, "", {L"AB1", L"MAKER02", L"XY2", L"MAKER01"}, 0, false, ""},
        {false, "", {L"XY2"}, 0, false, ""},
        {true, "", {L"^X.*", L".*02$"}, 0, true, ""},
        {true, "", {L"^A.*", L".*02$"}, 0, false, ""},
        {false, "BdreDisc", {L"XY2", L"MAKER02"}, 0, true, "getBDMaker getBLUERAYDiscID"},
        {false, "CDRWDisc", times, 74, true, "getLeadInTime getLeadOutTime"},
        {false, "CDRDisc", times, 73, false, ""},
    };
    drive.discId = L"XY2";
    drive.makerId = L"MAKER02";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.approved[0].toUtf8());
        drive.calls.clear();
        drive.mediaIs = {c.media};
        drive.leadOut = {79, 59, c.leadOutFrame};
        parameters.regex = c.regex;
        parameters.approved = c.approved;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.mediaQualified(), c.qualified);
        EXPECT_TRUE(c.reads.empty() || lastCalls() == c.reads) << lastCalls();
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

TEST_F(MediaTest, TheMediaCheckRefusesOrAsksForAnotherDisc) {
    ScriptedDrive& d = drive;
    ScriptedParameters& p = parameters;
    const struct {
        const char* name;
        std::function<void()> setup;
        R result;
        std::string seen;  // events, then "?" and the key of each box shown, then erase calls
    } cases[] = {
        {"no disc", [&] { d.readyStatus = 0x3A00; }, R::NOMEDIA, "ERROR_NO_MEDIA"},
        {"drive error", [&] { d.readyStatus = 0x4400; }, R::FAIL,
         "DRIVE_ERROR_STARTING_OPTICAL_DRIVE"},
        {"incompatible", [&] { d.readyStatus = 0x3000; }, R::INCORRECTMEDIA,
         "INCORRECT_MEDIA_INSERTED"},
        {"pressed", [&] { d.mediaType = MEDIA_DVDROM; }, R::INCORRECTMEDIA, ""},
        {"closed", [&] { d.empty = false, d.complete = true; }, R::INCORRECTMEDIA,
         "MEDIA_CLOSED_EVENT"},
        {"not blank", [&] { d.empty = false, p.blankOnly = true; }, R::INCORRECTMEDIA,
         "ERROR_DISC_NOT_EMPTY"},
        {"used up", [&] { p.limitUsage = true, p.usageLimit = 0; }, R::INCORRECTMEDIA,
         "CHECKING_DISC_MAX_USAGE_LIMIT MAX_USAGE_LIMIT_REACHED"},
        {"uses left", [&] { p.limitUsage = true, p.usageLimit = 3; }, R::PASS,
         "CHECKING_DISC_MAX_USAGE_LIMIT CURRENT_USAGE_VALUE"},
        {"no disc, then one",
         [&] {
             d.readyStatus = 0x3A00, p.prompt = true;
             d.faults["loadDisc"] = [&] { d.readyStatus = 0; };
         },
         R::PASS, "?INSERT_MEDIA_WITH_DATA ?PRE_TEST_PROMPT"},
        {"no disc after two prompts",
         [&] { d.readyStatus = 0x3A00, p.prompt = true, p.prompts = 2; }, R::NOMEDIA,
         "ERROR_NO_MEDIA ?INSERT_MEDIA_WITH_DATA ?INSERT_MEDIA_WITH_DATA"},
        {"erased when agreed",
         [&] { d.empty = false, d.mediaIs = {"DvdplusrwDisc"}, p.prompt = p.eraseNonBlank = true; },
         R::PASS, "?ERASE_DISC_PROMPT ?PRE_TEST_PROMPT formatDisc(30,0,40)"},
        {"erased for a blank-only test",
         [&] { d.empty = false, d.mediaIs = {"CDRWDisc"}, p.blankOnly = p.eraseNonBlank = true; },
         R::PASS, "blankDisc(30,0,40)"},
        {"an erase that fails",
         [&] {
             d.empty = false, d.mediaIs = {"CDRWDisc"}, p.blankOnly = p.eraseNonBlank = true;
             d.faults["blankDisc"] = [] { throw TestFailedException(0x2C00u); };
         },
         R::FAIL, "ERROR_ERASING_MEDIA blankDisc(30,0,40)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        d.calls.clear(), d.faults.clear(), d.mediaIs.clear();
        d.readyStatus = 0, d.empty = true, d.complete = false, d.mediaType = MEDIA_DVDPLUSR;
        p = ScriptedParameters();
        host.clear();
        c.setup();
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), c.result);
        Calls seen = host.eventKeys();
        for (const auto& box : host.messageBoxes()) {
            seen.push_back("?" + box.message.substr(0, box.message.find('{')));
        }
        for (const auto& call : d.calls) {
            if (call.rfind("blankDisc", 0) == 0 || call.rfind("formatDisc", 0) == 0) {
                seen.push_back(call);
            }
        }
        EXPECT_EQ(joined(seen), c.seen);
    }
}

}  // namespace
}  // namespace rwtest
