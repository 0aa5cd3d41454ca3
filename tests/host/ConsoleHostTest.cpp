// What the text and JSON hosts make of reports, questions and texts, driven through the
// framework as the library drives them.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "cli/ConsoleHost.h"
#include "quel5/DiagModule.h"
#include "quel5/Host.h"
#include "quel5/MessageBox2.h"

namespace {

using host::PromptAnswer;

// Installs a host for one test case.
class Installed {
public:
    explicit Installed(quel5::Host& host) { quel5::installHost(&host); }
    ~Installed() { quel5::installHost(nullptr); }
};

TEST(ConsoleHostTest, QuestionsAreAnsweredAndShownAsOneLine) {
    const struct {
        bool json;
        PromptAnswer answer;
        unsigned int buttons;
        int expectedAnswer;
        std::string expectedLine;
    } cases[] = {
        {false, PromptAnswer::No, 3, quel5::MB2_NO, "PROMPT: Title: Erase it? -> NO"},
        {false, PromptAnswer::Yes, 0, quel5::MB2_OK, "PROMPT: Title: Erase it? -> OK"},
        {true, PromptAnswer::Yes, 3, quel5::MB2_YES,
         "{\"schema\":1,\"type\":\"messageBox\",\"title\":\"Title\",\"message\":\"Erase it?\","
         "\"buttons\":3,\"answer\":\"YES\"}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expectedLine);
        std::ostringstream out;
        std::unique_ptr<host::ConsoleHost> console;
        if (c.json) {
            console = std::make_unique<host::JsonHost>(out, c.answer);
        } else {
            console = std::make_unique<host::TextHost>(out, c.answer, false);
        }
        Installed installed(*console);
        std::unique_ptr<quel5::MessageBox2> box(quel5::DiagModule::createMessageBox2(
            "Erase it?", "Title", 0, quel5::MessageBox2_Options(c.buttons), 0, true));
        ASSERT_NE(box, nullptr);
        EXPECT_TRUE(box->display());
        EXPECT_EQ(box->getReturn(), c.expectedAnswer);
        EXPECT_EQ(out.str(), c.expectedLine + "\n");
    }
}

TEST(ConsoleHostTest, EventsShowTheirFilledTextOrTheirKey) {
    quel5::Event known("DATA_COMPARE_FAILED");
    known.setVariable("TestSector", quel5::Value(4711u));
    quel5::Event unknown("NOT_IN_THE_CATALOGUE");
    quel5::Event unset("MAX_ERRORS_EXCEEDED");
    const struct {
        const quel5::Event* event;
        std::string text;
    } cases[] = {
        {&known, "Sector 4711 did not read back the data expected."},
        {&unknown, "NOT_IN_THE_CATALOGUE"},
        {&unset, "The test stopped after reaching its limit of {MaxError} errors."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(host::eventMessage(*c.event), c.text);
    }
    std::ostringstream out;
    host::TextHost text(out, PromptAnswer::Cancel, false);
    text.eventRaised(quel5::Severity::INFORMATIVE, known, "libDrive/X", 12);
    // For a person the text alone: the key and source are for the JSON lines and the log.
    EXPECT_EQ(out.str(), "INFO: Sector 4711 did not read back the data expected.\n");
}

TEST(ConsoleHostTest, OnATerminalEventLinesPushTheProgressLineDown) {
    std::ostringstream out;
    host::TextHost text(out, PromptAnswer::Cancel, true);
    Installed installed(text);
    quel5::LocalizedString reading("READ_SECTOR");
    reading.setVariable("ReadSector", quel5::Value(5u)).setVariable("EndSector", quel5::Value(10u));
    text.percentDone(50);
    text.progress(reading, 0.0);
    quel5::Event event("RERUN_TEST");
    text.eventRaised(quel5::Severity::INFORMATIVE, event, "libDrive/X", 1);
    host::RunSummary summary;
    summary.result = "USERABORTED";
    summary.exitCode = 4;
    summary.percentReached = text.percentReached();
    text.runFinished(summary);

    const std::string bar50 = "[##########..........]  50%";
    const std::string withText = bar50 + "  Reading sector 5 of 10";
    const std::string expected =
        "\r" + bar50 +                                             // percent
        "\r" + withText +                                          // progress text
        "\r" + std::string(withText.size(), ' ') + "\r" +          // cleared for the event
        "INFO: Running the test once more.\n" + "\r" + withText +  // drawn again below it
        "\r" + withText +  // the position reached, without time left
        "\n" +             // ended before the summary
        "Summary:\n";
    EXPECT_EQ(out.str().substr(0, expected.size()), expected);
    EXPECT_NE(out.str().find("\n  Result:          USERABORTED (exit code 4)\n"),
              std::string::npos);
}

TEST(ConsoleHostTest, LocalizedStringsResolveThroughTheCatalogue) {
    std::ostringstream out;
    host::JsonHost json(out, PromptAnswer::Cancel);
    Installed installed(json);
    quel5::LocalizedString speed("RUNNING_AT_SPEED");
    speed.setVariable("WriteSpeedIndex", quel5::Value(1765u))
        .setVariable("WriteSpeed", quel5::Value(9u));
    EXPECT_EQ(speed.localizedString().toUtf8(), "Writing at 9x (1765 kB/s)");
    EXPECT_EQ(quel5::LocalizedString("NO_SUCH_KEY").localizedString().toUtf8(), "NO_SUCH_KEY");
    json.progress(speed, 2000.0);
    EXPECT_EQ(out.str(),
              "{\"schema\":1,\"type\":\"progress\",\"key\":\"RUNNING_AT_SPEED\",\"text\":\"Writing "
              "at 9x (1765 "
              "kB/s)\",\"variables\":{\"WriteSpeedIndex\":1765,\"WriteSpeed\":9},"
              "\"intervalMs\":2000}\n");
}

}  // namespace
