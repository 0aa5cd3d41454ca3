#include <gtest/gtest.h>

#include "cli/CommandLine.h"

namespace {

using host::Command;
using host::CommandLine;
using host::PromptAnswer;
using Args = std::vector<std::string>;

TEST(CommandLineTest, ValidCommandLines) {
    const auto run = [](std::string test) {
        CommandLine line;
        line.command = Command::Run;
        line.test = std::move(test);
        return line;
    };
    struct Case {
        Args args;
        CommandLine expected;
    };
    std::vector<Case> cases;
    cases.push_back({{}, CommandLine{}});
    cases.push_back({{"tests"}, [] {
                         CommandLine l;
                         l.command = Command::Tests;
                         return l;
                     }()});
    cases.push_back({{"list", "--json"}, [] {
                         CommandLine l;
                         l.command = Command::List;
                         l.json = true;
                         return l;
                     }()});
    cases.push_back({{"run", "linear-seek"}, run("linear-seek")});
    cases.push_back({{"run", "--help"}, [] {
                         CommandLine l;
                         l.command = Command::Run;
                         l.help = true;
                         return l;
                     }()});
    {
        CommandLine l = run("linear-seek");
        l.device = "sim:1MiB";
        l.sets = {{"MaxErrors", "3"}, {"StartRange", "MIN+10%"}, {"MaxErrors", ""}};
        l.json = true;
        l.logFile = "out.log";
        l.logLevel = 1;
        l.answer = PromptAnswer::Yes;
        cases.push_back({{"run", "--device", "sim:1MiB", "--set", "MaxErrors=3", "linear-seek",
                          "--set=StartRange=MIN+10%", "--json", "--log", "out.log", "--log-level=1",
                          "--yes", "--set", "MaxErrors="},
                         l});
    }
    {
        CommandLine l = run("t");
        l.device = "a=b";
        l.answer = PromptAnswer::No;
        cases.push_back({{"run", "t", "--device=a=b", "--no"}, l});
    }
    {
        CommandLine l = run("pattern");
        l.destructive = true;
        l.undoFile = "j.journal";
        cases.push_back({{"run", "pattern", "--undo", "j.journal", "--destructive"}, l});
    }
    {
        CommandLine l;
        l.command = Command::Restore;
        l.files = {"j.journal"};
        l.device = "/dev/loop3";
        cases.push_back({{"restore", "--device", "/dev/loop3", "j.journal"}, l});
    }
    for (const Case& c : cases) {
        std::string joined;
        for (const auto& a : c.args) joined += a + " ";
        SCOPED_TRACE(joined);
        std::string error;
        const auto parsed = host::parseCommandLine(c.args, &error);
        ASSERT_TRUE(parsed.has_value()) << error;
        EXPECT_EQ(parsed->command, c.expected.command);
        EXPECT_EQ(parsed->help, c.expected.help);
        EXPECT_EQ(parsed->test, c.expected.test);
        EXPECT_EQ(parsed->device, c.expected.device);
        EXPECT_EQ(parsed->sets, c.expected.sets);
        EXPECT_EQ(parsed->json, c.expected.json);
        EXPECT_EQ(parsed->logFile, c.expected.logFile);
        EXPECT_EQ(parsed->logLevel, c.expected.logLevel);
        EXPECT_EQ(parsed->answer, c.expected.answer);
        EXPECT_EQ(parsed->destructive, c.expected.destructive);
        EXPECT_EQ(parsed->undoFile, c.expected.undoFile);
        EXPECT_EQ(parsed->files, c.expected.files);
    }
}

TEST(CommandLineTest, InvalidCommandLinesSayWhy) {
    const struct {
        Args args;
        const char* errorMentions;
    } cases[] = {
        {{"frobnicate"}, "unknown command \"frobnicate\""},
        {{"run"}, "run needs the name of a test"},
        {{"run", "a", "b"}, "unexpected argument \"b\""},
        {{"tests", "extra"}, "unexpected argument \"extra\""},
        {{"run", "t", "--device"}, "--device needs a value"},
        {{"run", "t", "--device", "x", "--device", "y"}, "--device is given twice"},
        {{"run", "t", "--set", "novalue"}, "expected KEY=VALUE"},
        {{"run", "t", "--set", "=5"}, "expected KEY=VALUE"},
        {{"run", "t", "--set"}, "--set needs a value"},
        {{"run", "t", "--log-level", "0"}, "priority from 1"},
        {{"run", "t", "--log-level", "6"}, "priority from 1"},
        {{"run", "t", "--log-level", "12"}, "priority from 1"},
        {{"run", "t", "--log="}, "--log needs a file name"},
        {{"run", "t", "--yes", "--no"}, "exclude each other"},
        {{"run", "t", "--json", "--json"}, "--json is given twice"},
        {{"run", "t", "--json=1"}, "--json takes no value"},
        {{"run", "t", "--verbose"}, "unknown option --verbose"},
        {{"list", "--device", "x"}, "belongs to the run command"},
        {{"tests", "--set", "A=1"}, "belongs to the run command"},
        {{"restore"}, "restore needs the undo journal"},
        {{"restore", "a", "b"}, "unexpected argument \"b\""},
        {{"restore", "a", "--undo", "b"}, "belongs to the run command"},
        {{"run", "t", "--undo="}, "--undo needs a file name"},
        {{"run", "t", "--undo", "a", "--undo", "b"}, "--undo is given twice"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.errorMentions);
        std::string error;
        EXPECT_FALSE(host::parseCommandLine(c.args, &error).has_value());
        EXPECT_NE(error.find(c.errorMentions), std::string::npos) << error;
    }
}

TEST(CommandLineTest, HelpListsEveryExitCode) {
    const std::string help = host::usageText(Command::Run);
    for (const char* expected : {" 0  PASS", " 1  FAIL", " 2  WARN", " 4  USERABORTED",
                                 "12  NOMEDIA", "64  usage error", "66  the device"}) {
        EXPECT_NE(help.find(expected), std::string::npos) << expected;
    }
    EXPECT_NE(help.find("--device DEV"), std::string::npos);
    EXPECT_NE(host::usageText(Command::Help).find("run TEST"), std::string::npos);
}

}  // namespace
