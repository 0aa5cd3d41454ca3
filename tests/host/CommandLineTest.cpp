#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "cli/CommandLine.h"

namespace {

using host::Command;
using host::CommandLine;
using host::PromptAnswer;
using Args = std::vector<std::string>;

// The fields a command line sets, for comparing two of them.
auto fieldsOf(const CommandLine& line) {
    return std::make_tuple(line.command, line.help, line.test, line.device, line.sets, line.json,
                           line.logFile, line.logLevel, line.answer, line.destructive,
                           line.undoFile, line.files);
}

TEST(CommandLineTest, ValidCommandLines) {
    using L = CommandLine;
    const struct {
        Args args;
        std::function<void(L&)> expected;  // what differs from a default command line
    } cases[] = {
        {{}, [](L&) {}},
        {{"tests"}, [](L& l) { l.command = Command::Tests; }},
        {{"list", "--json"}, [](L& l) { l.command = Command::List, l.json = true; }},
        {{"run", "linear-seek"}, [](L& l) { l.command = Command::Run, l.test = "linear-seek"; }},
        {{"run", "--help"}, [](L& l) { l.command = Command::Run, l.help = true; }},
        {{"run", "--device", "sim:1MiB", "--set", "MaxErrors=3", "linear-seek",
          "--set=StartRange=MIN+10%", "--json", "--log", "out.log", "--log-level=1", "--yes",
          "--set", "MaxErrors="},
         [](L& l) {
             l.command = Command::Run, l.test = "linear-seek", l.device = "sim:1MiB";
             l.sets = {{"MaxErrors", "3"}, {"StartRange", "MIN+10%"}, {"MaxErrors", ""}};
             l.json = true, l.logFile = "out.log", l.logLevel = 1, l.answer = PromptAnswer::Yes;
         }},
        {{"run", "t", "--device=a=b", "--no"},
         [](L& l) {
             l.command = Command::Run, l.test = "t", l.device = "a=b", l.answer = PromptAnswer::No;
         }},
        {{"run", "pattern", "--undo", "j.journal", "--destructive"},
         [](L& l) {
             l.command = Command::Run, l.test = "pattern", l.undoFile = "j.journal";
             l.destructive = true;
         }},
        {{"restore", "--device", "/dev/loop3", "j.journal"},
         [](L& l) {
             l.command = Command::Restore, l.device = "/dev/loop3", l.files = {"j.journal"};
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        std::string error;
        const auto parsed = host::parseCommandLine(c.args, &error);
        ASSERT_TRUE(parsed.has_value()) << error;
        CommandLine expected;
        c.expected(expected);
        EXPECT_EQ(fieldsOf(*parsed), fieldsOf(expected));
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
