#include "libDrive/LinearSeekTest.h"

#include <memory>
#include <new>

#include "kiv/Log.h"
#include "libDrive/ClassLog.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/PassRules.h"
#include "libDrive/PassTiming.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/LinearSeekTest";

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.LinearSeekTest");
}

}  // namespace

CLinearSeekTest::CLinearSeekTest(Drive& drive) : DriveTest(drive) {}

quel5::TestResult CLinearSeekTest::Run() {
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    const quel5::TestResult checked = DriveTest::Run();
    if (checked != quel5::TestResult::PASS) {
        return checked;
    }
    return RunOfferingRerun(
        drive, [this] { return DoTesting(); }, kSource, __LINE__);
}

quel5::TestResult CLinearSeekTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CLinearSeekTest::DoTesting", kSource, __LINE__);
    TrayHold tray(drive);
    if (drive.NeedsMediaCheck()) {
        const quel5::TestResult media = drive.CheckMedia(false);
        if (media != quel5::TestResult::PASS) {
            tray.Release();
            return media;
        }
    }
    quel5::TestResult result = Initialize();
    if (result != quel5::TestResult::PASS) {
        tray.Release();
        return result;
    }
    if (startSector == endSector) {
        tray.Release();
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                                   __LINE__);
        return quel5::TestResult::BADPARAMS;
    }
    const uint32_t size = drive.GetBytesPerSector();
    if (size == 0) {
        tray.Release();
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventInvalidBufferSize, kSource,
                                   __LINE__);
        return quel5::TestResult::INTERNALERROR;
    }
    std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[size]);
    if (buffer == nullptr) {
        tray.Release();
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventMemoryAllocationError, kSource,
                                   __LINE__);
        return quel5::TestResult::INTERNALERROR;
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    const uint64_t span = endSector - startSector;
    const uint64_t plannedReads = span / jumpCount;
    uint32_t errors = 0;
    uint64_t current = startSector;
    while (current < endSector) {
        drive.PrepareRead();
        result = drive.ReadSectors(current, 1, buffer.get(), size);
        if (result != quel5::TestResult::PASS) {
            if (result == quel5::TestResult::INTERNALERROR) {
                buffer.reset();
                tray.Release();
                return quel5::TestResult::INTERNALERROR;
            }
            ++errors;
            if (MaxErrorsReached(*this, errors, static_cast<double>(plannedReads))) {
                DisplayExitErrorEvent(errors, static_cast<double>(plannedReads));
                break;
            }
        }
        // Reporting, and so the stop poll, happens at most about once a second.
        if (timing.IsReportDue()) {
            quel5::DiagModule::percentDone(
                static_cast<unsigned int>((current - startSector) * 100 / span));
            LibDriveStrings::g_ReadSector->setVariable(L"ReadSector", quel5::Value(current));
            LibDriveStrings::g_ReadSector->setVariable(L"EndSector", quel5::Value(endSector));
            quel5::DiagModule::progress(LibDriveStrings::g_ReadSector);
            timing.MarkReported();
            const uint32_t secondsLeft = timing.SecondsLeft((endSector - current) / jumpCount);
            logger()->log(static_cast<int>(kiv::LogPriority::Detail),
                          kiv::String(L"231 ") + L" Estimated Time Left " +
                              kiv::String::fromNumber(secondsLeft));
            if (drive.provideEstimatedTime()) {
                quel5::DiagModule::estimatedTimeLeft(secondsLeft);
            }
            if (quel5::DiagModule::checkForStop()) {
                result = quel5::TestResult::USERABORTED;
                break;
            }
        }
        current += jumpCount;
        timing.EndStep();
    }
    quel5::DiagModule::percentDone(100);
    tray.Release();
    buffer.reset();
    return PassResult(*this, result, errors, static_cast<double>(plannedReads));
}

}  // namespace kivrlibdrive
