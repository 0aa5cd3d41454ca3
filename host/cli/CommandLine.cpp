#include "cli/CommandLine.h"

#include <sstream>

#include "cli/ExitCodes.h"
#include "optical/OpticalOptions.h"

namespace host {
namespace {

struct Cursor {
    const std::vector<std::string>& args;
    std::size_t next = 0;

    bool done() const { return next >= args.size(); }
    const std::string& take() { return args[next++]; }
};

struct CommandName {
    const char* name;
    Command command;
};

constexpr CommandName kCommands[] = {
    {"run", Command::Run},         {"tests", Command::Tests},
    {"list", Command::List},       {"make-checksum-file", Command::MakeChecksumFile},
    {"restore", Command::Restore}, {"help", Command::Help},
};

std::optional<Command> commandNamed(const std::string& name) {
    for (const CommandName& entry : kCommands) {
        if (name == entry.name) return entry.command;
    }
    return std::nullopt;
}

// "run, tests, ..., help", or without help when `withHelp` is false.
std::string commandNames(bool withHelp) {
    std::string names;
    for (const CommandName& entry : kCommands) {
        if (!withHelp && entry.command == Command::Help) continue;
        names += (names.empty() ? "" : ", ") + std::string(entry.name);
    }
    return names;
}

class Parser {
public:
    Parser(const std::vector<std::string>& args, std::string* error)
        : cursor_{args}, error_(error) {}

    std::optional<CommandLine> parse() {
        while (!cursor_.done()) {
            const std::string argument = cursor_.take();
            if (argument.size() > 1 && argument[0] == '-') {
                if (!option(argument)) return std::nullopt;
            } else if (!positional(argument)) {
                return std::nullopt;
            }
        }
        if (line_.command == Command::Run && line_.test.empty() && !line_.help)
            return fail("run needs the name of a test (see drivediag tests)");
        if (line_.command == Command::MakeChecksumFile && line_.files.size() != 2 && !line_.help)
            return fail("make-checksum-file needs a data file and an output file");
        if (line_.command == Command::Restore && line_.files.empty() && !line_.help)
            return fail("restore needs the undo journal to put back");
        if (yes_ && no_) return fail("--yes and --no exclude each other");
        line_.answer = yes_ ? PromptAnswer::Yes : no_ ? PromptAnswer::No : PromptAnswer::Cancel;
        return line_;
    }

private:
    std::nullopt_t fail(const std::string& reason) {
        if (error_) *error_ = reason;
        return std::nullopt;
    }

    bool positional(const std::string& argument) {
        if (!sawCommand_) {
            const auto command = commandNamed(argument);
            if (!command) {
                fail("unknown command \"" + argument + "\" (commands: " + commandNames(true) + ")");
                return false;
            }
            line_.command = *command;
            sawCommand_ = true;
            return true;
        }
        if (line_.command == Command::Help && !line_.help) {
            // `help run` shows what `run --help` shows.
            const auto topic = commandNamed(argument);
            if (!topic) {
                fail("no help on \"" + argument + "\" (commands: " + commandNames(false) + ")");
                return false;
            }
            line_.command = *topic;
            line_.help = true;
            return true;
        }
        if (line_.command == Command::Run && line_.test.empty()) {
            line_.test = argument;
            return true;
        }
        if (line_.command == Command::MakeChecksumFile && line_.files.size() < 2) {
            line_.files.push_back(argument);
            return true;
        }
        if (line_.command == Command::Restore && line_.files.empty()) {
            line_.files.push_back(argument);
            return true;
        }
        fail("unexpected argument \"" + argument + "\"");
        return false;
    }

    // The value of an option: after '=' in the same argument, else the next argument.
    std::optional<std::string> value(const std::string& name,
                                     const std::optional<std::string>& inline_) {
        if (inline_) return inline_;
        if (cursor_.done()) {
            fail(name + " needs a value");
            return std::nullopt;
        }
        return cursor_.take();
    }

    bool option(const std::string& argument) {
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const std::optional<std::string> inline_ =
            equals == std::string::npos ? std::nullopt
                                        : std::optional<std::string>(argument.substr(equals + 1));
        bool opticalTakesValue = false;
        const bool optical = isOpticalOption(name, &opticalTakesValue);
        const bool takesValue = name == "--device" || name == "--set" || name == "--log" ||
                                name == "--undo" || name == "--log-level" ||
                                name == "--bad-blocks" || name == "--metrics" || name == "--map" ||
                                mediumOptionKey(name) != nullptr || opticalTakesValue;
        if (!takesValue && inline_) {
            fail(name + " takes no value");
            return false;
        }
        if (name == "--help" || name == "-h") {
            line_.help = true;
            return true;
        }
        if (name == "--version") return flag(line_.version, name);
        if (name == "--json") return flag(line_.json, name);
        if (name == "--yes") return flag(yes_, name);
        if (name == "--no") return flag(no_, name);
        if (name == "--destructive") return runOnly(name) && flag(line_.destructive, name);
        if (optical && !opticalTakesValue) {
            if (!runOnly(name)) return false;
            line_.opticalOptions.emplace_back(name, "");
            return true;
        }
        if (name == "--fail-if-not-found") {
            if (!runOnly(name)) return false;
            line_.sets.emplace_back("FailIfNotFound", "true");
            return true;
        }
        if (!takesValue) {
            fail("unknown option " + name);
            return false;
        }
        if (!(name == "--device" && line_.command == Command::Restore) && !runOnly(name))
            return false;
        const auto text = value(name, inline_);
        if (!text) return false;
        if (name == "--device") return device(*text);
        if (name == "--set") return set(*text);
        if (name == "--map") return map(*text);
        if (optical) {
            line_.opticalOptions.emplace_back(name, *text);
            return true;
        }
        if (const char* key = mediumOptionKey(name)) {
            line_.sets.emplace_back(key, *text);
            return true;
        }
        if (name == "--log") return fileOption(line_.logFile, name, *text);
        if (name == "--undo") return fileOption(line_.undoFile, name, *text);
        if (name == "--bad-blocks") return fileOption(line_.badBlocksFile, name, *text);
        if (name == "--metrics") return fileOption(line_.metricsFile, name, *text);
        return logLevel(*text);
    }

    bool runOnly(const std::string& name) {
        if (line_.command == Command::Run) return true;
        fail(name + " belongs to the run command");
        return false;
    }

    bool flag(bool& into, const std::string& name) {
        if (into) {
            fail(name + " is given twice");
            return false;
        }
        into = true;
        return true;
    }

    bool device(const std::string& text) {
        if (line_.device) {
            fail("--device is given twice");
            return false;
        }
        line_.device = text;
        return true;
    }

    bool set(const std::string& text) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) {
            fail("--set " + text + ": expected KEY=VALUE");
            return false;
        }
        line_.sets.emplace_back(text.substr(0, equals), text.substr(equals + 1));
        return true;
    }

    bool map(const std::string& text) {
        const std::size_t equals = text.find('=');
        // A drive letter and a folder map the checksum test's medium; anything else names the
        // file of a surface map.
        if (equals != 1) return fileOption(line_.surfaceMapFile, "--map", text);
        line_.maps.emplace_back(text.substr(0, equals), text.substr(equals + 1));
        return true;
    }

    // The checksum test's options stand for --set keys.
    static const char* mediumOptionKey(const std::string& name) {
        static const std::pair<const char*, const char*> options[] = {
            {"--checksum-file", "ChecksumFile"}, {"--fallback-file", "FallbackFile"},
            {"--expected", "ExpectedChecksum"},  {"--prompts", "MaxMediaPrompts"},
            {"--media-name", "MediaName"},       {"--drive-letter", "DriveLetter"},
        };
        for (const auto& [option, key] : options) {
            if (name == option) return key;
        }
        return nullptr;
    }

    bool fileOption(std::optional<std::string>& into, const std::string& name,
                    const std::string& text) {
        if (into || text.empty()) {
            fail(name + (text.empty() ? " needs a file name" : " is given twice"));
            return false;
        }
        into = text;
        return true;
    }

    bool logLevel(const std::string& text) {
        if (text.size() != 1 || text[0] < '1' || text[0] > '5') {
            fail("--log-level " + text + ": expected a priority from 1 (everything) to 5");
            return false;
        }
        line_.logLevel = text[0] - '0';
        return true;
    }

    Cursor cursor_;
    std::string* error_;
    CommandLine line_;
    bool sawCommand_ = false;
    bool yes_ = false;
    bool no_ = false;
};

const char* kGeneralUsage =
    "usage: drivediag COMMAND [options]\n"
    "\n"
    "Commands:\n"
    "  run TEST [options]   run one test on one drive (drivediag run --help)\n"
    "  tests                list the tests with their default parameters\n"
    "  list                 list the drives this machine shows\n"
    "  make-checksum-file DATA OUT\n"
    "                       write DATA followed by its MD5 digest to OUT, the file the\n"
    "                       checksum test looks for on a test medium\n"
    "  restore JOURNAL [--device DEV]\n"
    "                       put back the data a destructive run that did not end\n"
    "                       cleanly left in its undo journal (drivediag restore --help)\n"
    "  help [COMMAND]       show this text, or COMMAND's own (as COMMAND --help)\n"
    "\n"
    "--version shows drivediag's version.\n"
    "\n"
    "--json makes any command write one JSON object per line.\n";

const char* kRunUsage =
    "usage: drivediag run TEST [--device DEV] [--set KEY=VALUE]... [--json]\n"
    "                          [--log FILE] [--log-level N] [--yes | --no]\n"
    "                          [--destructive [--undo FILE]]\n"
    "                          [--bad-blocks FILE] [--metrics FILE] [--map FILE]\n"
    "\n"
    "  --device DEV       the drive to test (default: a built-in simulated drive):\n"
    "                       a block device (/dev/sdb, /dev/loop0, \\\\.\\PhysicalDrive1),\n"
    "                       a disk image file, or a simulated drive\n"
    "                       sim:SIZE[,sector=N][,bad=LBA[+COUNT]]...[,flaky=LBA]...\n"
    "                           [,internal=LBA]...[,cost=MS][,slow=LBA+COUNT:MS]...\n"
    "                       e.g. sim:1GiB,bad=1000+5 (SIZE in bytes with K/M/G/T units,\n"
    "                       binary, or in sectors with the unit s)\n"
    "  --set KEY=VALUE    set a test parameter (MaxErrors=20, SectorPercentToTest=5,\n"
    "                       StartRange=MIN+10%); an empty VALUE unsets it. Overrides the\n"
    "                       test's defaults shown by drivediag tests.\n"
    "  --json             one JSON object per line instead of text for a person\n"
    "  --log FILE         append the library's log to FILE\n"
    "  --log-level N      log messages of priority N (1: every detail .. 5: notices) and\n"
    "                       above; without --log they go to standard error (default 4)\n"
    "  --yes, --no        how to answer the test's questions (default: cancel)\n"
    "  --bad-blocks FILE  write the sectors of failed reads and writes to FILE, one per\n"
    "                       line as badblocks -o does (empty when none failed)\n"
    "  --metrics FILE     write the run's summary to FILE as Prometheus metrics, for\n"
    "                       node_exporter's textfile collector\n"
    "  --map FILE         draw the tested range to FILE as an SVG map, or a PNG one when\n"
    "                       FILE ends in .png: blocks in rows, coloured by how long\n"
    "                       their reads took, failed ones black\n"
    "  --destructive      allow the tests that write to the drive (pattern, cache); they\n"
    "                       write the data back, and with PreserveData=true first save\n"
    "                       what they overwrite in an undo journal, so that even after a\n"
    "                       crash or power cut drivediag restore puts it back\n"
    "  --undo FILE        the undo journal (default: beside --log FILE, else in\n"
    "                       $XDG_STATE_HOME/drivediag, ~/.local/state/drivediag or\n"
    "                       %LOCALAPPDATA%\\drivediag); removed when the run gave every\n"
    "                       byte back\n"
    "\n"
    "The checksum test reads a file on a test medium instead of a --device:\n"
    "  --drive-letter E   the medium's drive letter (--set DriveLetter=E)\n"
    "  --map E=DIR        where drive E's medium is mounted (needed except on Windows)\n"
    "  --checksum-file F, --fallback-file F, --expected MD5, --prompts N,\n"
    "  --media-name TEXT, --fail-if-not-found\n"
    "                     (--set ChecksumFile=, FallbackFile=, ExpectedChecksum=,\n"
    "                       MaxMediaPrompts=, MediaName=, FailIfNotFound=); see README\n"
    "\n";

// After the read-write test's options.
const char* kRunStopUsage =
    "\n"
    "Ctrl-C, SIGTERM, SIGHUP and SIGQUIT (Windows: Ctrl-C, Ctrl-Break, closing the\n"
    "console, logoff, shutdown) ask the test to stop at its next check; it writes its\n"
    "data back first. A second signal of the same kind ends drivediag at once.\n";

const char* kRestoreUsage =
    "usage: drivediag restore JOURNAL [--device DEV] [--json]\n"
    "\n"
    "Writes back every record of the undo journal JOURNAL that its run did not write back\n"
    "itself, newest first, on the device the journal names (or DEV), then reads each back\n"
    "and compares. Refused when the device has another size or sector size than the\n"
    "journal says, or is in use. The journal is removed once everything reads back as\n"
    "journaled.\n";

const char* kTestsUsage =
    "usage: drivediag tests [--json]\n"
    "\n"
    "Lists the tests drivediag runs, what each does and the parameter values a plain run\n"
    "uses (drivediag run TEST --set KEY=VALUE changes them).\n";

const char* kListUsage =
    "usage: drivediag list [--json]\n"
    "\n"
    "Lists the drives this machine shows, with size, sector size and model: on Linux the\n"
    "whole disks of /sys/block, on Windows \\\\.\\PhysicalDriveN. Give one to run --device.\n";

const char* kMakeChecksumFileUsage =
    "usage: drivediag make-checksum-file DATA OUT [--json]\n"
    "\n"
    "Writes DATA followed by its MD5 digest to OUT: the file the checksum test looks for on\n"
    "a test medium (see drivediag run --help).\n";

const char* usageOf(Command command) {
    switch (command) {
        case Command::Run:
            return kRunUsage;
        case Command::Restore:
            return kRestoreUsage;
        case Command::Tests:
            return kTestsUsage;
        case Command::List:
            return kListUsage;
        case Command::MakeChecksumFile:
            return kMakeChecksumFileUsage;
        case Command::Help:
            break;
    }
    return kGeneralUsage;
}

}  // namespace

std::optional<CommandLine> parseCommandLine(const std::vector<std::string>& args,
                                            std::string* error) {
    return Parser(args, error).parse();
}

std::string usageText(Command command) {
    std::ostringstream text;
    text << usageOf(command);
    if (command == Command::Run) text << opticalOptionsUsage() << kRunStopUsage;
    text << "\nExit codes:\n";
    for (const ExitCodeRow& row : exitCodeTable()) {
        text << "  " << (row.code < 10 ? " " : "") << row.code << "  " << row.meaning << "\n";
    }
    return text.str();
}

}  // namespace host
