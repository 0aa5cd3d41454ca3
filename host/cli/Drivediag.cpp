#include "cli/Drivediag.h"

#include <memory>
#include <optional>

#include "checksum/ChecksumFileMaker.h"
#include "checksum/ChecksumSetup.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleHost.h"
#include "cli/DriveList.h"
#include "cli/DriveOpening.h"
#include "cli/ExitCodes.h"
#include "cli/GuardedRun.h"
#include "cli/Json.h"
#include "cli/LibraryRegistration.h"
#include "cli/LogSession.h"
#include "cli/ParameterSetup.h"
#include "cli/PngMap.h"
#include "cli/ReportFiles.h"
#include "cli/RunChecks.h"
#include "cli/RunReport.h"
#include "cli/RunScope.h"
#include "cli/SizeText.h"
#include "cli/StopRequest.h"
#include "cli/SurfaceMap.h"
#include "cli/SurfaceMapLayout.h"
#include "cli/SvgWriter.h"
#include "cli/TestTable.h"
#include "cli/UndoLocation.h"
#include "cli/UndoRestore.h"
#include "cli/UndoRun.h"
#include "drives/BlockDeviceDrive.h"
#include "drives/RecordingDrive.h"
#include "libDrive/LibDrive.h"
#include "optical/OpticalRun.h"
#include "os/Clock.h"
#include "quel5/Host.h"
#include "quel5/Registry.h"

namespace host {
namespace {

// The project's version, from the build.
constexpr const char* kVersion = DRIVEDIAG_VERSION;

int usageError(const Console& console, const std::string& reason) {
    console.err << "drivediag: " << reason << "\nTry 'drivediag --help'.\n";
    return kExitUsage;
}

std::string testNames() {
    std::string names;
    for (const TestDefinition& test : testTable()) names += (names.empty() ? "" : ", ") + test.name;
    return names;
}

// True when the run's parameters ask the test to write the data it overwrites back.
bool preservesData() {
    const quel5::Parameter* preserve =
        quel5::Registry::instance().findParameter(QuelString("PreserveData"));
    return preserve != nullptr && preserve->value().valueBool();
}

// The undo journal of a destructive run that preserves data on a real disk or image; none
// otherwise (a simulated drive keeps nothing, and with PreserveData=false the person asked for
// the data to go). False with a reason in *error when the run must not start.
bool startJournal(const CommandLine& line, const TestDefinition& test, kivrlibdrive::Drive& drive,
                  std::unique_ptr<RunJournal>* journal, std::string* error) {
    auto* disk = dynamic_cast<BlockDeviceDrive*>(&drive);
    if (!test.destructive || disk == nullptr || !preservesData()) return true;
    const std::string path = undoJournalPath(line.undoFile, line.logFile, disk->path());
    if (path.empty()) {
        *error = "no folder for the undo journal (HOME is not set); choose a file with --undo";
        return false;
    }
    *journal = RunJournal::start(path, *disk, error);
    return *journal != nullptr;
}

// The map of the range the test settled on (the whole drive when it never did), as PNG when the
// file's name ends in .png, else as SVG.
bool writeSurfaceMap(const std::string& path, const DeviceHeader& header, const RunSummary& summary,
                     std::string* error) {
    const ReadTimes unread(header.totalSectors);
    const ReadTimes& times = summary.readTimes != nullptr ? *summary.readTimes : unread;
    const uint64_t first = summary.range ? summary.range->first : 0;
    const uint64_t end = summary.range ? summary.range->end : header.totalSectors;
    const MapDrawing drawing =
        surfaceMapDrawing(SurfaceMap(times, first, end), times, header, summary);
    if (!namesPngFile(path)) return writeReportFile(path, svgDocument(drawing), error);
    std::string png;
    if (!pngDocument(drawing, &png, error)) {
        *error = "cannot write " + path + ": " + *error;
        return false;
    }
    return writeReportFile(path, png, error);
}

// The --bad-blocks, --metrics and --map files of a finished run. False when one could not be
// written (said on standard error).
bool writeReportFiles(const CommandLine& line, const DeviceHeader& header,
                      const RunSummary& summary, const Console& console) {
    std::string error;
    bool written = true;
    if (line.badBlocksFile && !writeBadBlocksFile(*line.badBlocksFile, summary, &error)) {
        console.err << "drivediag: " << error << "\n";
        written = false;
    }
    if (line.metricsFile &&
        !writeReportFile(*line.metricsFile, metricsText(header, summary), &error)) {
        console.err << "drivediag: " << error << "\n";
        written = false;
    }
    if (line.surfaceMapFile && !writeSurfaceMap(*line.surfaceMapFile, header, summary, &error)) {
        console.err << "drivediag: " << error << "\n";
        written = false;
    }
    return written;
}

int runTest(const CommandLine& line, const Console& console) {
    const TestDefinition* test = findTest(line.test);
    if (!test)
        return usageError(console,
                          "unknown test \"" + line.test + "\" (tests: " + testNames() + ")");
    if (test->optical) {
        const OpticalOutcome outcome = runOpticalTest(line, console);
        if (!outcome.summary) return outcome.exitCode;
        return writeReportFiles(line, *outcome.header, *outcome.summary, console) ? outcome.exitCode
                                                                                  : kExitReportFile;
    }
    if (!line.opticalOptions.empty())
        return usageError(console,
                          line.opticalOptions.front().first + " belongs to the read-write test");
    if (test->destructive && !line.destructive)
        return usageError(console, "the " + test->name +
                                       " test overwrites sectors of the drive (it writes their "
                                       "data back, and keeps an undo journal for a crash or "
                                       "power cut); add --destructive to run it");
    ParameterValues sets = line.sets;
    std::string error;
    std::optional<MediumSettings> medium;
    if (test->onMedium) {
        if (line.device) return usageError(console, test->name + " reads a medium, not --device");
        medium = takeMediumSettings(sets, line.maps, line.answer == PromptAnswer::Yes, &error);
        if (!medium) return usageError(console, error);
    } else if (!line.maps.empty()) {
        return usageError(console, "--map LETTER=DIRECTORY belongs to the checksum test");
    }
    if (test->onMedium && line.surfaceMapFile)
        return usageError(console,
                          "--map FILE draws the sectors a test reads; the checksum test "
                          "reads files");
    if (line.surfaceMapFile && namesPngFile(*line.surfaceMapFile) && !pngMapsAvailable())
        return usageError(console, "--map " + *line.surfaceMapFile +
                                       ": this drivediag was built without libpng and draws "
                                       "maps only as SVG; name the file .svg");
    ParameterValues parameters;
    if (!applyParameters(*test, sets, &parameters, &error)) return usageError(console, error);
    if (!test->onMedium) {
        if (std::string problem = rangeTextProblem(); !problem.empty())
            return usageError(console, problem);
        if (std::string problem = amountProblem(*test); !problem.empty())
            return usageError(console, problem);
    }
    LogSession log;
    if (!log.start(line.logFile, line.logLevel, &error)) return usageError(console, error);
    registerLibraryOnce();
    OpenResult opened =
        medium ? openMedium(*medium) : openDrive(line.device.value_or(kBuiltInDevice));
    const std::string deviceText =
        medium ? opened.opened.device->osLocator().toUtf8() : line.device.value_or(kBuiltInDevice);
    if (opened.failure == OpenFailure::BadText) return usageError(console, opened.error);
    if (opened.failure == OpenFailure::CannotOpen) {
        console.err << "drivediag: cannot open " << opened.error << "\n";
        return kExitNoDevice;
    }
    if (std::string problem = deviceProblem(*test, *opened.opened.drive, deviceText);
        !problem.empty()) {
        console.err << "drivediag: " << problem << "\n";
        return exitCodeFor(quel5::TestResult::CANNOTRUN);
    }
    if (test->destructive && opened.opened.drive->IsWriteProtected()) {
        console.err << "drivediag: " << deviceText << " is read-only (write-protected); the "
                    << test->name << " test writes to it and was not started\n";
        return kExitReadOnly;
    }

    std::unique_ptr<RunJournal> journal;
    if (!startJournal(line, *test, *opened.opened.drive, &journal, &error)) {
        console.err << "drivediag: " << error << "\n";
        return kExitUndoJournal;
    }

    const std::unique_ptr<ConsoleHost> host =
        makeConsoleHost(line.json, console.out, line.answer, console.terminal);
    RunScope scope(*host);
    host->runStarting({test->name, deviceText, parameters});
    const DeviceHeader header = describeDevice(*opened.opened.drive, deviceText);
    host->deviceDescribed(header);
    RunSummary summary;
    summary.test = test->name;
    summary.sectorBytes = header.sectorBytes;
    const RangeObserver observer = [&](const TestedRange& range) {
        summary.range = range;
        host->rangeResolved(range);
    };
    const uint64_t startMs = os::nowMilliseconds();
    const std::optional<quel5::TestResult> result =
        runGuarded(console, [&] { return test->run(*opened.opened.drive, observer); });
    if (!result) return kExitSoftware;
    summary.elapsedMs = os::nowMilliseconds() - startMs;
    if (const std::string refusal = lockRefusalOf(*opened.opened.drive); !refusal.empty())
        console.err << "drivediag: the device was not locked: " << refusal << "\n";
    if (journal) journal->finish(console, line.json);
    if (const auto* recording = dynamic_cast<const RecordsOperations*>(opened.opened.drive.get())) {
        summary.operations = recording->operations();
        summary.readTimes = recording->readTimes();
    }
    summary.compareErrors = host->compareErrors();
    summary.percentReached = host->percentReached();
    summary.result = result->name();
    summary.exitCode = exitCodeFor(*result);
    host->runFinished(summary);
    return writeReportFiles(line, header, summary, console) ? summary.exitCode : kExitReportFile;
}

int listTests(const CommandLine& line, const Console& console) {
    for (const TestDefinition& test : testTable()) {
        if (line.json) {
            JsonObject defaults;
            for (const ParameterDefault& entry : test.defaults)
                defaults.text(entry.key, entry.value);
            console.out << JsonObject::record("test")
                               .text("name", test.name)
                               .text("description", test.description)
                               .raw("defaults", defaults.str())
                               .str()
                        << "\n";
            continue;
        }
        console.out << test.name << "\n    " << test.description << "\n    defaults:";
        for (const ParameterDefault& entry : test.defaults)
            console.out << " " << entry.key << "=" << entry.value;
        console.out << "\n";
    }
    return 0;
}

int listDrivesCommand(const CommandLine& line, const Console& console) {
    const std::vector<DriveInfo> drives = listDrives();
    for (const DriveInfo& drive : drives) {
        if (line.json) {
            console.out << JsonObject::record("drive")
                               .text("path", drive.path)
                               .text("model", drive.model)
                               .number("sizeBytes", drive.sizeBytes)
                               .number("bytesPerSector", drive.bytesPerSector)
                               .boolean("optical", drive.optical)
                               .text("medium", drive.medium)
                               .str()
                        << "\n";
        } else if (drive.optical) {
            console.out << drive.path << "  optical drive, " << drive.medium
                        << (drive.model.empty() ? "" : "  " + drive.model) << "\n";
        } else {
            console.out << drive.path << "  " << binarySizeText(drive.sizeBytes) << "  "
                        << drive.bytesPerSector << "-byte sectors"
                        << (drive.model.empty() ? "" : "  " + drive.model) << "\n";
        }
    }
    if (drives.empty() && !line.json)
        console.out << "No drives found (listing them may need administrator rights).\n";
    return 0;
}

}  // namespace

int runDrivediag(const std::vector<std::string>& args, const Console& console) {
    std::string error;
    const auto line = parseCommandLine(args, &error);
    if (!line) return usageError(console, error);
    if (line->version) {
        if (line->json) {
            console.out << JsonObject::record("version").text("version", kVersion).str() << "\n";
        } else {
            console.out << "drivediag " << kVersion << "\n";
        }
        return 0;
    }
    if (args.empty()) {
        // Nothing asked for: show what can be asked, and say so in the exit code for scripts.
        console.err << usageText(Command::Help);
        return kExitUsage;
    }
    if (line->help || line->command == Command::Help) {
        console.out << usageText(line->command);
        return 0;
    }
    switch (line->command) {
        case Command::Run:
            return runTest(*line, console);
        case Command::Tests:
            return listTests(*line, console);
        case Command::List:
            return listDrivesCommand(*line, console);
        case Command::MakeChecksumFile:
            return makeChecksumFileCommand(*line, console);
        case Command::Restore:
            return restoreCommand(*line, console);
        case Command::Help:
            break;
    }
    return 0;
}

}  // namespace host
