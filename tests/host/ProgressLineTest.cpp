#include <gtest/gtest.h>

#include "cli/ConsoleHost.h"
#include "cli/ExitCodes.h"
#include "cli/ProgressLine.h"
#include "quel5/MessageBox2.h"

namespace {

TEST(ProgressLineTest, DurationsAtTheirBoundaries) {
    const struct {
        unsigned int seconds;
        const char* expected;
    } cases[] = {
        {0, "0:00"},       {59, "0:59"},      {60, "1:00"},        {3599, "59:59"},
        {3600, "1:00:00"}, {3661, "1:01:01"}, {86399, "23:59:59"}, {4294967295u, "1193046:28:15"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.seconds);
        EXPECT_EQ(host::formatDuration(c.seconds), c.expected);
    }
}

TEST(ProgressLineTest, BarPercentTextAndTimeLeft) {
    const struct {
        unsigned int percent;
        std::string text;
        std::optional<unsigned int> secondsLeft;
        std::string expected;
    } cases[] = {
        {0, "", std::nullopt, "[....................]   0%"},
        {4, "", std::nullopt, "[....................]   4%"},
        {5, "", std::nullopt, "[#...................]   5%"},
        {99, "x", std::nullopt, "[###################.]  99%  x"},
        {100, "Reading sector 9 of 10", 0u,
         "[####################] 100%  Reading sector 9 of 10  0:00 left"},
        {250, "", 61u, "[####################] 100%  1:01 left"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(host::progressLine(c.percent, c.text, c.secondsLeft), c.expected);
    }
}

TEST(ProgressLineTest, LongLinesAreCutWithoutSplittingACharacter) {
    const std::string text = std::string(70, 'a') + "\xc3\xa9" + std::string(40, 'b');
    const std::string line = host::progressLine(50, text, std::nullopt, 100);
    // 27 characters of bar and figure, two blanks, then 70 'a': the 'é' would straddle the cut.
    EXPECT_EQ(line.size(), 99u);
    EXPECT_EQ(line.back(), 'a');
    EXPECT_EQ(host::progressLine(50, "short", std::nullopt, 10), "[#########");
}

TEST(ExitCodesTest, EveryResultHasItsOwnDocumentedCode) {
    using R = quel5::TestResult;
    const struct {
        R result;
        int code;
    } cases[] = {
        {R::PASS, 0},        {R::FAIL, 1},          {R::WARN, 2},      {R::BADPARAMS, 3},
        {R::USERABORTED, 4}, {R::INTERNALERROR, 5}, {R::NODEVICE, 6},  {R::NOTSUPPORTED, 7},
        {R::DEVICEBUSY, 8},  {R::CANNOTRUN, 9},     {R::TIMEDOUT, 10}, {R::INCORRECTMEDIA, 11},
        {R::NOMEDIA, 12},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.result.name());
        EXPECT_EQ(host::exitCodeFor(c.result), c.code);
        // The help table names the result beside its code.
        bool documented = false;
        for (const host::ExitCodeRow& row : host::exitCodeTable()) {
            if (row.code == c.code) documented = row.meaning.starts_with(c.result.name());
        }
        EXPECT_TRUE(documented);
    }
}

TEST(MessageBoxAnswerTest, AnswersFollowTheChoiceAndTheButtons) {
    using host::PromptAnswer;
    const struct {
        PromptAnswer answer;
        unsigned int buttons;
        int expected;
        const char* name;
    } cases[] = {
        {PromptAnswer::Cancel, 0, quel5::MB2_CANCEL, "CANCEL"},
        {PromptAnswer::Cancel, 3, quel5::MB2_CANCEL, "CANCEL"},
        {PromptAnswer::Yes, 0, quel5::MB2_OK, "OK"},
        {PromptAnswer::Yes, 1, quel5::MB2_OK, "OK"},
        {PromptAnswer::No, 1, quel5::MB2_CANCEL, "CANCEL"},
        {PromptAnswer::Yes, 2, quel5::MB2_RETRY, "RETRY"},
        {PromptAnswer::No, 2, quel5::MB2_ABORT, "ABORT"},
        {PromptAnswer::Yes, 4, quel5::MB2_YES, "YES"},
        {PromptAnswer::No, 5, quel5::MB2_CANCEL, "CANCEL"},
        {PromptAnswer::Yes, 3, quel5::MB2_YES, "YES"},
        {PromptAnswer::No, 0, quel5::MB2_CANCEL, "CANCEL"},
        {PromptAnswer::No, 3, quel5::MB2_NO, "NO"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const int answer = host::messageBoxAnswer(c.answer, c.buttons);
        EXPECT_EQ(answer, c.expected);
        EXPECT_EQ(host::answerName(answer), c.name);
    }
}

}  // namespace
