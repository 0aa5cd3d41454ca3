// What drivediag hands the read/write test: its settings from the command line and the texts
// that are the host's to give (the media's name, the customer, the prompts' title); every other
// text comes from the library through the host's English catalogue.
#pragma once

#include "libDrive/windows/WindowsOpticalDriveStrings.h"
#include "optical/HostOpticalDrive.h"
#include "optical/OpticalOptions.h"

namespace host {

class OpticalParameters : public kivrlibdrive::WindowsOpticalDriveParameters {
public:
    // `options` is not owned and must outlive the object.
    explicit OpticalParameters(const OpticalOptions& options) : options_(options) {}

    bool useRegex() override { return options_.regex; }
    bool reRunNonQualMediaFailure() override { return options_.rerunUnapproved; }
    bool checkRequiredMedia() override { return true; }
    bool blankMediaOnly() override { return options_.blankOnly; }
    bool promptUserForMedia() override { return options_.mediaPrompts > 0; }
    // The test writes over the disc anyway; erasing first makes a used rewritable one testable.
    bool eraseNonBlankMedia() override { return true; }
    unsigned int eraseTimeSeconds() override { return options_.eraseSeconds; }
    bool eraseMediaAfterTest() override { return options_.eraseAfter; }
    bool notifyEraseOnAbort() override { return options_.eraseAfter; }
    long long totalSectorsToTest() override { return options_.sectors; }
    quel5::Value approvedMediaIds() override;
    bool qualifiedMediaRerunAllowed() override { return true; }
    bool checkForqualifiedMedia() override { return options_.qualifiedOnly; }
    unsigned int maxMediaPrompts() override { return options_.mediaPrompts; }
    bool ejectMediaAtEnd() override { return options_.eject; }
    bool checkWritableMedia() override { return true; }
    bool failOnMediaProblems() override { return options_.failOnMediaProblems; }
    bool limitMediaUsage() override { return options_.usageLimit.has_value(); }
    unsigned int mediaUsageLimitNumber() override;

private:
    const OpticalOptions& options_;
};

class OpticalStrings : public kivrlibdrive::WindowsOpticalDriveStrings {
public:
    // Neither is owned; both must outlive the object.
    OpticalStrings(const OpticalOptions& options, HostOpticalDrive& drive)
        : options_(options), drive_(drive) {}

    // The media the test needs, as the library asks: the kind of the disc in the drive when it is
    // one of them ("DVD+RW"), else the kinds asked for ("DVD+RW or BD-RE", "writable disc").
    QuelString mediaName() override;
    QuelString promptTitle() override;
    QuelString customerName() override;

private:
    const OpticalOptions& options_;
    HostOpticalDrive& drive_;
};

}  // namespace host
