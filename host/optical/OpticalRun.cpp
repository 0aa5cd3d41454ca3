#include "optical/OpticalRun.h"

#include <memory>
#include <optional>

#include "cli/ConsoleHost.h"
#include "cli/ExitCodes.h"
#include "cli/GuardedRun.h"
#include "cli/LibraryRegistration.h"
#include "cli/LogSession.h"
#include "cli/RunScope.h"
#include "drives/DeviceIdentity.h"
#include "kiv/Exception.h"
#include "kiv/Resource.h"
#include "libDrive/ReadWriteTest.h"
#include "optical/EmulatedWriterSession.h"
#include "optical/HostOpticalDrive.h"
#include "optical/OpticalMedia.h"
#include "optical/OpticalSettings.h"
#include "os/Clock.h"
#include "os/NativeHandle.h"
#include "sim/mmc/EmulatedWriter.h"

namespace host {
namespace {

constexpr uint32_t kOpticalSectorBytes = 2048;

OpticalOutcome usage(const Console& console, const std::string& reason) {
    console.err << "drivediag: " << reason << "\nTry 'drivediag run --help'.\n";
    return {kExitUsage, std::nullopt, std::nullopt};
}

// Options of the hard-drive tests that mean nothing here.
std::string misplacedOption(const CommandLine& line) {
    if (!line.sets.empty())
        return "--set " + line.sets.front().first +
               ": the read-write test has no library parameters; it takes its own options "
               "(drivediag run --help)";
    if (line.surfaceMapFile) return "--map FILE draws read times of a hard drive's surface";
    if (!line.maps.empty()) return "--map LETTER=DIRECTORY belongs to the checksum test";
    if (line.undoFile) return "--undo belongs to the pattern and cache tests";
    return "";
}

// The name the system knows the writer by: "E:" stands for "\\.\E:".
std::string osLocatorOf(const std::string& device) {
    if (device.size() == 2 && device[1] == ':') return "\\\\.\\" + device;
    return device;
}

DeviceHeader describeWriter(const std::string& deviceText, const std::string& locator,
                            const EmulatedWriterSession* emulated, HostOpticalDrive& drive) {
    DeviceHeader header;
    header.device = deviceText;
    header.sectorBytes = kOpticalSectorBytes;
    header.physicalSectorBytes = kOpticalSectorBytes;
    if (emulated != nullptr) {
        header.kind = "emulated optical writer";
        header.model = emulated->model();
    } else {
        header.kind = "optical writer";
        const DeviceIdentity identity = identifyDisk(locator, os::invalidNativeHandle());
        header.model = identity.model;
        header.serial = identity.serial;
    }
    drive.waitWhileBecomingReady();
    const uint16_t profile = drive.currentProfile();
    header.medium = profileText(profile);
    if (profile != 0) header.totalSectors = drive.getTotalSectorsOnMedia();
    return header;
}

// --eject: the result stands whether or not the tray opens.
void ejectAtEnd(HostOpticalDrive& drive, const Console& console) {
    try {
        drive.ejectDisc();
    } catch (const kiv::Exception& e) {
        console.err << "drivediag: the disc could not be ejected: " << e.getMessage().toUtf8()
                    << "\n";
    }
}

// The --reruns choice reaches the test through the library's setting.
void setRunsAllowed(unsigned int runs) {
    kiv::Resource::set(L"libDrive", L"ReRunTestOnFailureCount.value",
                       kiv::String::fromUtf8(std::to_string(runs)));
}

}  // namespace

OpticalOutcome runOpticalTest(const CommandLine& line, const Console& console) {
    std::string error;
    const std::optional<OpticalOptions> options = opticalOptionsOf(line.opticalOptions, &error);
    if (!options) return usage(console, error);
    if (const std::string problem = misplacedOption(line); !problem.empty())
        return usage(console, problem);
    const std::string deviceText = line.device.value_or(kBuiltInWriter);
    std::optional<EmulatedWriterSetup> setup;
    if (isEmulatedWriterText(deviceText)) {
        setup = parseEmulatedWriterText(deviceText, &error);
        if (!setup) return usage(console, error);
    } else if (!line.destructive) {
        return usage(console, "the read-write test overwrites the disc in " + deviceText +
                                  "; add --destructive to run it");
    }
    LogSession log;
    if (!log.start(line.logFile, line.logLevel, &error)) return usage(console, error);
    registerLibraryOnce();
    setRunsAllowed(options->reruns);

    std::unique_ptr<EmulatedWriterSession> emulated;
    if (setup)
        emulated = std::make_unique<EmulatedWriterSession>(*setup, sim::mmc::kDefaultWriterName);
    const std::string locator = emulated ? emulated->name() : osLocatorOf(deviceText);
    quel5::DiagDevice device(QuelString(kiv::String::fromUtf8(locator)));
    HostOpticalDrive drive(device, options->profiles);
    OpticalParameters parameters(*options);
    OpticalStrings strings(*options, drive);

    const std::unique_ptr<ConsoleHost> host =
        makeConsoleHost(line.json, console.out, line.answer, console.terminal);
    RunScope scope(*host);
    host->runStarting({"read-write", deviceText, line.opticalOptions});
    OpticalOutcome outcome;
    outcome.header = describeWriter(deviceText, locator, emulated.get(), drive);
    host->deviceDescribed(*outcome.header);

    const uint64_t startMs = os::nowMilliseconds();
    const std::optional<quel5::TestResult> result = runGuarded(console, [&] {
        kivrlibdrive::ReadWriteTest test(drive, parameters, strings);
        return test.Run();
    });
    if (!result) {
        outcome.exitCode = kExitSoftware;
        return outcome;
    }
    if (options->eject) ejectAtEnd(drive, console);
    RunSummary summary;
    summary.test = "read-write";
    summary.sectorBytes = kOpticalSectorBytes;
    summary.elapsedMs = os::nowMilliseconds() - startMs;
    summary.operations = drive.operations();
    summary.speeds = drive.speedsSet();
    summary.compareErrors = host->compareErrors();
    // The library's bar counts phases a run may skip; a run that passed went all the way.
    summary.percentReached = *result == quel5::TestResult::PASS ? 100 : host->percentReached();
    summary.result = result->name();
    summary.exitCode = exitCodeFor(*result);
    host->runFinished(summary);
    outcome.exitCode = summary.exitCode;
    outcome.summary = summary;
    return outcome;
}

}  // namespace host
