#include "libDrive/Drive.h"

#include <optional>

#include "kiv/Log.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/Drive";

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    if (slot == nullptr) {
        kiv::LogFactory::createLogger(L"libDrive.Drive", &slot);
    }
    return slot;
}

// Messages carry the source line they were written from as their first word.
void log(int priority, int line, const wchar_t* text) {
    logger()->log(priority, kiv::String::fromNumber(static_cast<uint64_t>(line)) + L" " + text);
}

}  // namespace

Drive::Drive(const quel5::DiagDevice& diagDevice)
    : osLocator(),
      driveLetter(),
      scsiPath(),
      device(diagDevice),
      lockingManager(diagDevice.osLocator().kivString().str()) {
    if (const quel5::DeviceProperty* driverName = device.property(L"DriverName")) {
        driveLetter = driverName->value().valueString().kivString();
    } else if (const quel5::DeviceProperty* letter = device.property(L"DriveLetter")) {
        driveLetter = kiv::String(L"\\\\.\\") + letter->value().valueString().kivString() + L":";
    }
    osLocator = device.osLocator().kivString();
    GetScsiPath();
}

Drive::~Drive() = default;

void Drive::GetScsiPath() {
    std::optional<kiv::TraceLogger> trace;
    if (kiv::LogFactory::getPriority() < 2) {
        trace.emplace(logger(), L"Drive::GetScsiPath", kSource, __LINE__);
    }
    const quel5::DeviceProperty* property = device.property(L"SCSIPath");
    if (property == nullptr) {
        return;
    }
    const quel5::Value& numbers = property->value();
    uint8_t* const components[] = {&scsiPath.port, &scsiPath.path, &scsiPath.target, &scsiPath.lun};
    const uint32_t present = numbers.Uint32ArraySize();
    for (uint32_t i = 0; i < 4 && i < present; ++i) {
        *components[i] = static_cast<uint8_t>(numbers.getUint32InArray(i));
    }
}

uint32_t Drive::GetOptimalReadAmount() const { return 0; }

quel5::TestResult Drive::lock() {
    bool locked = false;
    try {
        locked = lockingManager.lockVolumes();
    } catch (...) {
        // Whatever stops the volumes from being taken, the caller only learns the disk is busy.
        locked = false;
    }
    return locked ? quel5::TestResult::PASS : ReportDeviceBusy();
}

quel5::TestResult Drive::ReportDeviceBusy() {
    quel5::DiagModule::error(LibDriveStrings::Event_DeviceBusy, kSource, __LINE__);
    return quel5::TestResult::DEVICEBUSY;
}

quel5::TestResult Drive::unLock() {
    lockingManager.unlockVolumes();
    return quel5::TestResult::PASS;
}

bool Drive::CheckForQualifiedMedia() { return false; }

bool Drive::MediaQualified() { return true; }

quel5::TestResult Drive::PromptUserOnUnqualifiedMedia() {
    return quel5::TestResult::INCORRECTMEDIA;
}

quel5::TestResult Drive::GetPASSResult() { return quel5::TestResult::PASS; }

void Drive::LockTray() {}

void Drive::UnlockTray() {}

bool Drive::provideEstimatedTime() { return false; }

quel5::TestResult Drive::SeekToSector(uint64_t /*sector*/) {
    log(static_cast<int>(kiv::LogPriority::Notice), __LINE__,
        L"SeekToSector() has not been implemented.");
    return quel5::TestResult::NOTSUPPORTED;
}

quel5::TestResult Drive::CheckSumOpenFile() { return quel5::TestResult::INTERNALERROR; }

quel5::TestResult Drive::CheckSumCloseFile() { return quel5::TestResult::INTERNALERROR; }

quel5::TestResult Drive::ComputeCheckSum(const uint64_t& /*fileSize*/) {
    return quel5::TestResult::INTERNALERROR;
}

quel5::TestResult Drive::GetCheckSumFileSize(unsigned int& /*fileSize*/) {
    return quel5::TestResult::INTERNALERROR;
}

uint32_t Drive::CheckSumReadBytes(kiv::Array<unsigned char> /*buffer*/,
                                  const unsigned int& /*count*/) {
    return 0;
}

}  // namespace kivrlibdrive
