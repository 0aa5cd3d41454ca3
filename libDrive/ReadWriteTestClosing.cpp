// Closing the written area by the disc's kind, and erasing the disc after the test.
#include "ReadWriteTestLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/ReadWriteTest.h"

namespace kivrlibdrive {

using readwrite::log;
using readwrite::number;

void ReadWriteTest::closeDisc() {
    const bool blankOnly = parameters.blankMediaOnly();
    // Dual-layer write-once discs are asked about even on the library's own drive class, which
    // recognises them.
    const bool dualLayer = !blankOnly && (drive.DvdminusrDLDisc() || drive.DvdplusrDLDisc());
    if (driveSays(&WindowsOpticalDrive::DvdplusrwDisc) ||
        driveSays(&WindowsOpticalDrive::BdreDisc) || dualLayer) {
        log(1, 976, L"ReadWriteTest::closeDisc() is returning without any action for DVD+RW, BDRE");
        log(1, 977,
            L"ReadWriteTest::closeDisc() is returning without any action for DVD+R DL and DVD-R "
            L"DL when blankMediaOnly is false");
        return;
    }
    if (!driveSays(&WindowsOpticalDrive::CDRWDisc) && !driveSays(&WindowsOpticalDrive::CDRDisc) &&
        !parameters.blankMediaOnly() && !driveSays(&WindowsOpticalDrive::DvdminusrwDisc)) {
        log(1, 988,
            L"Debug::ReadWriteTest::closeDisc() m_Drive.CDRWDisc() || m_Drive.CDRDisc() || "
            L"m_TestParameters.blankMediaOnly() is false");
        log(1, 989,
            L"Debug::ReadWriteTest::closeDisc() calling closeTrack(..) with starting sector: " +
                number(startSector));
        if (driveSays(&WindowsOpticalDrive::DvdplusrDisc) ||
            driveSays(&WindowsOpticalDrive::DvdminusrDisc)) {
            return;
        }
        log(1, 991,
            L"Debug::ReadWriteTest::closeDisc() calling  closeTrack(..) when "
            L"m_Drive.DvdplusrDisc() || m_Drive.DvdminusrDisc() is false");
        strings.closingMediaMessage();
        // A failed track close is left to Run's last handler; only the session failure is ours.
        try {
            drive.closeTrack(startSector);
        } catch (const FailedClosingSession& failed) {
            log(1, 999,
                L"Debug::ReadWriteTest::closeDisc()::closeTrack(..) exception caught with "
                L"starting sector: " +
                    number(startSector));
            strings.failedClosingDiscEvent(failed.getStatus());
            throw TestFailedException(L"Failed closing the session");
        }
        return;
    }
    strings.closingMediaMessage();
    log(1, 1007,
        L"Debug::ReadWriteTest::closeDisc() m_Drive.CDRWDisc() || m_Drive.CDRDisc() || "
        L"m_TestParameters.blankMediaOnly() and m_Drive.DvdminusrwDisc() is true");
    log(1, 1008, L"Debug::ReadWriteTest::closeDisc() calling closeTrack()");
    try {
        drive.closeTrack(0);
    } catch (const FailedClosingTrack& failed) {
        // A DVD-RW closes its track itself when the write ends.
        if (!driveSays(&WindowsOpticalDrive::DvdminusrwDisc)) {
            log(1, 1012, L"Debug::ReadWriteTest::closeDisc()::closeTrack() exception caught");
            strings.failedClosingDiscEvent(failed.getStatus());
            throw TestFailedException(L"");
        }
    }
    if (parameters.blankMediaOnly() && (driveSays(&WindowsOpticalDrive::DvdplusrDisc) ||
                                        driveSays(&WindowsOpticalDrive::DvdminusrDisc))) {
        log(1, 1021,
            L"Debug::ReadWriteTest() when m_Drive.DvdplusrDisc() || m_Drive.DvdminusrDisc() is "
            L"true");
        log(1, 1022, L"Debug::ReadWriteTest::closeDisc() calling closeSession()");
        try {
            drive.closeSession();
        } catch (const FailedClosingSession& failed) {
            log(1, 1025, L"Debug::ReadWriteTest::closeDisc()::closeSession() exception caught");
            strings.failedClosingDiscEvent(failed.getStatus());
            throw TestFailedException(L"");
        }
    }
}

void ReadWriteTest::eraseAfterTestComplition() {
    if (!parameters.eraseMediaAfterTest()) return;
    const unsigned int seconds = parameters.eraseTimeSeconds();
    // The erase fills the bar from 60 % on; a failure never changes the test's result.
    const bool cdrw = driveSays(&WindowsOpticalDrive::CDRWDisc);
    if (cdrw || driveSays(&WindowsOpticalDrive::DvdminusrwDisc)) {
        strings.blankingDiscMessage();
        try {
            // A DVD-RW takes four times as long to blank.
            drive.blankDisc(cdrw ? seconds : seconds * 4, 60, 100);
        } catch (const TestFailedException& failed) {
            strings.failedBlankingDiscEvent(failed.getStatus());
        }
    } else if (driveSays(&WindowsOpticalDrive::DvdplusrwDisc) ||
               driveSays(&WindowsOpticalDrive::BdreDisc)) {
        strings.formattingDiscMessage();
        try {
            drive.formatDisc(seconds, 60, 100);
        } catch (const TestFailedException& failed) {
            strings.failedFormattingDiscEvent(failed.getStatus());
        }
    }
}

}  // namespace kivrlibdrive
