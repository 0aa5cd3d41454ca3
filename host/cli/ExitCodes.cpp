#include "cli/ExitCodes.h"

namespace host {
namespace {

using Code = quel5::TestResult::Code;

struct ResultCode {
    Code result;
    int code;
};

constexpr ResultCode kResultCodes[] = {
    {Code::PASS, 0},      {Code::FAIL, 1},         {Code::WARN, 2},
    {Code::BADPARAMS, 3}, {Code::USERABORTED, 4},  {Code::INTERNALERROR, 5},
    {Code::NODEVICE, 6},  {Code::NOTSUPPORTED, 7}, {Code::DEVICEBUSY, 8},
    {Code::CANNOTRUN, 9}, {Code::TIMEDOUT, 10},    {Code::INCORRECTMEDIA, 11},
    {Code::NOMEDIA, 12},
};

constexpr ExitCodeRow kTable[] = {
    {0, "PASS: the test passed"},
    {1, "FAIL: the test found errors"},
    {2, "WARN: the test ended with a warning"},
    {3, "BADPARAMS: the test parameters do not fit the drive"},
    {4,
     "USERABORTED: stopped by Ctrl-C or another termination signal, or a question was answered no "
     "(--no) or cancel"},
    {5, "INTERNALERROR: the drive or the test failed internally"},
    {6, "NODEVICE: the drive has no usable handle"},
    {7, "NOTSUPPORTED: the drive does not support the test"},
    {8, "DEVICEBUSY: the device is in use"},
    {9, "CANNOTRUN: the test cannot run on this drive"},
    {10, "TIMEDOUT: the drive did not answer in time"},
    {11, "INCORRECTMEDIA: the media is not the one the test needs"},
    {12, "NOMEDIA: no media in the drive"},
    {kExitUsage, "usage error: bad command, option, test name, parameter or device text"},
    {kExitUndoJournal,
     "undo journal: one from an earlier run is in the way, or (restore) the file is not a journal "
     "or was written for a device of another size or sector size"},
    {kExitNoDevice, "the device could not be opened"},
    {kExitSoftware, "the test ended with an unexpected exception"},
    {kExitReadOnly, "the device is read-only: a test that writes to it was not started"},
    {kExitReportFile,
     "the test ran, but its --bad-blocks, --metrics or --map file could not be written"},
    {kExitRestoreFailed, "restore: some sectors could not be written back or read back different"},
};

}  // namespace

std::span<const ExitCodeRow> exitCodeTable() { return kTable; }

int exitCodeFor(const quel5::TestResult& result) {
    for (const ResultCode& row : kResultCodes) {
        if (row.result == result.code()) return row.code;
    }
    return kExitSoftware;
}

}  // namespace host
