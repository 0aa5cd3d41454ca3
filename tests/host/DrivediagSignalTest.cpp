// A real drivediag process asked to stop by a signal: SIGTERM, SIGHUP, SIGQUIT and SIGINT all
// end the run with USERABORTED; on a loop device over random data (root only) the device is
// given back unchanged. SIGKILL at random moments cannot be caught: the undo journal and
// `drivediag restore` must then give every byte back.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

extern char** environ;

namespace {

using Args = std::vector<std::string>;
using namespace std::chrono_literals;

constexpr std::size_t kImageBytes = 32 * 1024 * 1024;

std::string temporary(const std::string& name) {
    return (std::filesystem::temp_directory_path() /
            ("drivediag-signal-" + std::to_string(getpid()) + "-" + name))
        .string();
}

// drivediag started with `args`, its standard output and error in one file.
class Process {
public:
    Process(const Args& args, const std::string& output) {
        std::vector<char*> argv;
        std::string program = DRIVEDIAG_PROGRAM;
        argv.push_back(program.data());
        std::vector<std::string> copies = args;
        for (std::string& arg : copies) argv.push_back(arg.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
        if (posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), environ) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
    }
    ~Process() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool started() const { return pid_ > 0; }
    void signal(int number) const { kill(pid_, number); }
    // The exit code, or 128 + the signal that ended it.
    int wait() {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t pid_ = -1;
};

// Waits up to 60 s for `ready` to become true.
template <typename Ready>
bool waitFor(Ready ready) {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (!ready()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

TEST(DrivediagSignal, EveryTerminationSignalStopsTheTestOnASimulatedDrive) {
    for (int number : {SIGTERM, SIGHUP, SIGQUIT, SIGINT}) {
        SCOPED_TRACE(strsignal(number));
        const std::string output = temporary("sim.jsonl");
        Process run({"run", "linear-seek", "--device", "sim:64MiB,cost=2", "--json", "--set",
                     "NumberOfSeeks=100000"},
                    output);
        ASSERT_TRUE(run.started());
        ASSERT_TRUE(waitFor([&] {
            return testsupport::fileContents(output).find("\"type\":\"percent\"") !=
                   std::string::npos;
        }));
        run.signal(number);
        EXPECT_EQ(run.wait(), host::exitCodeFor(quel5::TestResult::USERABORTED))
            << testsupport::fileContents(output);
        EXPECT_NE(testsupport::fileContents(output).find("\"result\":\"USERABORTED\""),
                  std::string::npos);
        std::filesystem::remove(output);
    }
}

class DrivediagSignalLoop : public testing::Test {
protected:
    void SetUp() override {
        if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
            GTEST_SKIP() << why;
        ASSERT_FALSE(loop_.path().empty());
        std::filesystem::remove(journal_);
    }
    void TearDown() override {
        std::filesystem::remove(journal_);
        std::filesystem::remove(output_);
    }
    Args destructive(const std::string& test) const {
        Args args{"run",    test,     "--destructive", "--device", loop_.path(),
                  "--json", "--undo", journal_,        "--set",    "PreserveData=true"};
        if (test == "pattern") {
            args.insert(args.end(), {"--set", "NumberOfSeeks=100000"});
        } else {
            args.insert(args.end(), {"--set", "MaxErrors=100000"});
        }
        return args;
    }
    // Starts `test` and sends `number` once the device has completed `writes` more writes.
    int signalAfterWrites(const std::string& test, int number, unsigned long long writes) {
        const unsigned long long target = loop_.writesDone() + writes;
        Process run(destructive(test), output_);
        EXPECT_TRUE(run.started());
        EXPECT_TRUE(waitFor([&] { return loop_.writesDone() >= target; }));
        run.signal(number);
        return run.wait();
    }

    testsupport::LoopImage loop_{"signal", kImageBytes, testsupport::ImageFill::RandomWords};
    std::string journal_ = temporary("undo.journal");
    std::string output_ = temporary("loop.jsonl");
};

TEST_F(DrivediagSignalLoop, TermAndHangUpGiveTheDeviceBackUnchanged) {
    struct Case {
        std::string test;
        int signal;
        unsigned long long writes;
    };
    const Case cases[] = {
        {"pattern", SIGTERM, 40},
        {"cache", SIGHUP, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.test + " " + strsignal(c.signal));
        const std::string before = loop_.image().contents();
        EXPECT_EQ(signalAfterWrites(c.test, c.signal, c.writes),
                  host::exitCodeFor(quel5::TestResult::USERABORTED))
            << testsupport::fileContents(output_);
        EXPECT_TRUE(loop_.image().contents() == before);
        // A run that gave every byte back leaves no journal behind.
        EXPECT_FALSE(std::filesystem::exists(journal_));
    }
}

TEST_F(DrivediagSignalLoop, KilledAtRandomMomentsRestoreGivesEveryByteBack) {
    const std::string original = loop_.image().contents();
    std::mt19937 random(20240612);
    for (int round = 0; round < 6; ++round) {
        const std::string test = round % 2 == 0 ? "pattern" : "cache";
        const auto writes =
            static_cast<unsigned long long>(std::uniform_int_distribution<int>(1, 200)(random));
        SCOPED_TRACE(test + " killed after " + std::to_string(writes) + " writes");
        EXPECT_EQ(signalAfterWrites(test, SIGKILL, writes), 128 + SIGKILL);
        ASSERT_TRUE(std::filesystem::exists(journal_));
        Process restore({"restore", journal_}, output_);
        EXPECT_EQ(restore.wait(), host::exitCodeFor(quel5::TestResult::PASS))
            << testsupport::fileContents(output_);
        EXPECT_TRUE(loop_.image().contents() == original);
        EXPECT_FALSE(std::filesystem::exists(journal_));
    }
}

}  // namespace
