// drivediag's command line: the command and its options, parsed without side effects.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

// How message boxes are answered: --yes, --no, or (neither) the cancel-like answer.
enum class PromptAnswer { Cancel, Yes, No };

enum class Command { Help, Run, Tests, List, MakeChecksumFile, Restore };

struct CommandLine {
    Command command = Command::Help;
    bool help = false;     // --help given to a command, or `help COMMAND`
    bool version = false;  // --version
    std::string test;      // run: the test's name
    std::optional<std::string> device;
    std::vector<std::pair<std::string, std::string>> sets;  // --set KEY=VALUE, in order
    bool json = false;
    std::optional<std::string> logFile;
    std::optional<std::string> undoFile;        // --undo FILE: the destructive run's undo journal
    std::optional<std::string> badBlocksFile;   // --bad-blocks FILE: failed sectors, as badblocks
    std::optional<std::string> metricsFile;     // --metrics FILE: the summary for Prometheus
    std::optional<std::string> surfaceMapFile;  // --map FILE: an SVG map of the surface
    std::optional<int> logLevel;                // 1..5
    PromptAnswer answer = PromptAnswer::Cancel;
    bool destructive = false;  // --destructive: tests that write may run
    std::vector<std::pair<std::string, std::string>> maps;  // --map LETTER=DIRECTORY, in order
    std::vector<std::string> files;  // make-checksum-file: DATA and OUT; restore: the journal
    // The read-write test's options (optical/OpticalOptions.h): name and value ("" for a flag),
    // in order, read when the test runs.
    std::vector<std::pair<std::string, std::string>> opticalOptions;
};

// The command line of `args` (the arguments after the program name), or nullopt with a reason
// for a person in *error. Options take their value as the next argument or after '='
// (--device=sim:1MiB).
std::optional<CommandLine> parseCommandLine(const std::vector<std::string>& args,
                                            std::string* error);

// The text --help shows for `command`.
std::string usageText(Command command);

}  // namespace host
