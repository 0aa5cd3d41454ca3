#include "cli/UndoRestore.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "cli/ExitCodes.h"
#include "cli/Json.h"
#include "cli/LibraryRegistration.h"
#include "drives/BlockDeviceDrive.h"
#include "drives/UndoJournalFormat.h"
#include "drives/Utf8Path.h"

namespace host {
namespace {

using quel5::TestResult;

struct Outcome {
    uint64_t sectors = 0;
    std::size_t unwritten = 0;  // records the device refused
    std::size_t different = 0;  // records that read back otherwise than journaled
};

std::string geometry(uint64_t sectors, uint32_t sectorSize) {
    return std::to_string(sectors) + " sectors of " + std::to_string(sectorSize) + " bytes";
}

// Newest first: should records ever overlap, the oldest, the data found before the run, ends on
// the device.
Outcome putBack(BlockDeviceDrive& drive, const std::vector<undo::Record>& records) {
    Outcome outcome;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        outcome.sectors += record->sectorCount;
        if (drive.WriteSectors(record->firstSector, record->sectorCount, record->data.data(),
                               static_cast<unsigned int>(record->data.size())) != TestResult::PASS)
            ++outcome.unwritten;
    }
    drive.FlushCache();
    std::vector<unsigned char> readBack;
    for (const undo::Record& record : records) {
        readBack.resize(record.data.size());
        const bool same =
            drive.ReadSectors(record.firstSector, record.sectorCount, readBack.data(),
                              static_cast<unsigned int>(readBack.size())) == TestResult::PASS &&
            std::memcmp(readBack.data(), record.data.data(), readBack.size()) == 0;
        if (!same) ++outcome.different;
    }
    return outcome;
}

}  // namespace

int restoreCommand(const CommandLine& line, const Console& console) {
    const std::string& file = line.files.front();
    std::ifstream in(pathFromUtf8(file), std::ios::binary);
    if (!in) {
        console.err << "drivediag: cannot open the undo journal " << file << "\n";
        return kExitNoDevice;
    }
    std::string error;
    const auto journal = undo::readJournal(in, &error);
    in.close();
    if (!journal) {
        console.err << "drivediag: " << file << ": " << error << "\n";
        return kExitUndoJournal;
    }
    const std::string devicePath = line.device.value_or(journal->header.devicePath);
    registerLibraryOnce();
    const quel5::DiagDevice device{QuelString(devicePath.c_str())};
    BlockDeviceDrive drive(device);
    if (drive.OpenDevice() != TestResult::PASS) {
        console.err << "drivediag: cannot open " << devicePath << ": " << drive.lastError() << "\n";
        return kExitNoDevice;
    }
    if (drive.GetTotalSectors() != journal->header.totalSectors ||
        drive.GetBytesPerSector() != journal->header.sectorSize) {
        console.err << "drivediag: refused: " << file << " was written for "
                    << journal->header.devicePath << " with "
                    << geometry(journal->header.totalSectors, journal->header.sectorSize)
                    << ", but " << devicePath << " has "
                    << geometry(drive.GetTotalSectors(), drive.GetBytesPerSector())
                    << "; nothing was written\n";
        return kExitUndoJournal;
    }
    if (drive.lock() != TestResult::PASS) {
        const std::string why = drive.lockFailure().empty()
                                    ? devicePath + " is in use (mounted or open elsewhere)"
                                    : drive.lockFailure();
        console.err << "drivediag: " << why << "; nothing was written\n";
        return exitCodeFor(TestResult::DEVICEBUSY);
    }
    const Outcome outcome = putBack(drive, journal->pending);
    drive.unLock();
    const bool restored = outcome.unwritten == 0 && outcome.different == 0;
    if (line.json) {
        console.out << JsonObject::record("restore")
                           .text("journal", file)
                           .text("device", devicePath)
                           .number("records", journal->pending.size())
                           .number("sectors", outcome.sectors)
                           .number("alreadyDone", journal->doneRecords)
                           .number("ignoredBytes", journal->ignoredBytes)
                           .number("unwritten", outcome.unwritten)
                           .number("different", outcome.different)
                           .str()
                    << "\n";
    } else {
        console.out << "Put back " << journal->pending.size() << " record(s), " << outcome.sectors
                    << " sector(s), on " << devicePath << " from " << file << " ("
                    << journal->doneRecords << " already written back by the run)\n";
        if (journal->ignoredBytes != 0)
            console.out << "Ignored the last " << journal->ignoredBytes
                        << " bytes of the journal: an entry cut off or damaged (a record cut "
                           "off by a crash protected a write that never happened)\n";
        if (restored)
            console.out << "Every sector reads back as journaled.\n";
        else
            console.out << outcome.unwritten << " record(s) could not be written and "
                        << outcome.different << " read back different; the journal is kept\n";
    }
    if (!restored) return kExitRestoreFailed;
    std::error_code ignored;
    std::filesystem::remove(pathFromUtf8(file), ignored);
    return 0;
}

}  // namespace host
