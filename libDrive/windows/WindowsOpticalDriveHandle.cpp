// The optical drive's identity, device handles, exclusive access, tray and readiness.
#include <cstdio>
#include <cstring>
#include <type_traits>

#include "OpticalDriveLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "os/Clock.h"
#include "os/Device.h"
#include "quel5/DiagModule.h"
#include "scsi/UnitCommands.h"
#include "storage/LookupManager.h"

namespace kivrlibdrive {
namespace {

using optical::isNoMedium;
using optical::millisecondsSince;

constexpr uint32_t kBecomingReady = 0x0401;
constexpr uint32_t kReadyWindowMs = 75000;
constexpr uint32_t kNoMediumWindowMs = 3000;
constexpr uint32_t kReadyPollMs = 1000;
constexpr int kEjectAttempts = 5;
constexpr uint32_t kEjectPauseMs = 2000;

// Read and write, shared with everybody, and openable with the tray empty.
constexpr uint32_t kDriveAccess = os::kReadWrite | os::kNoMediumNeeded;

os::NativeHandle openDrive(const char* deviceName) {
    os::OpenResult opened = os::openDevice(std::string(deviceName), kDriveAccess);
    return opened.handle.release();
}

void closeIfOpen(os::NativeHandle& handle) {
    if (handle != os::invalidNativeHandle()) {
        os::closeNativeHandle(handle);
        handle = os::invalidNativeHandle();
    }
}

template <typename Native>
void* asPointer(Native handle) {
    if constexpr (std::is_pointer_v<Native>) {
        return handle;
    } else {
        // A descriptor widened so that -1 gives the all-ones value of an invalid handle.
        return reinterpret_cast<void*>(static_cast<intptr_t>(handle));
    }
}

}  // namespace

WindowsOpticalDrive::WindowsOpticalDrive(const quel5::DiagDevice& diagDevice)
    : device(&diagDevice),
      osLocator(),
      driveName(),
      scsiPath(),
      deviceName(),
      writePageCode(5),
      wroteFlag(false),
      readFlag(false),
      geometryValid(false),
      totalSectors(0),
      speedsReported(false),
      handle(os::invalidNativeHandle()),
      exclusiveHandle(os::invalidNativeHandle()),
      geometry(),
      exclusiveAccess(),
      requiredProfiles(),
      requiredMediaFound(true) {
    readDeviceProperties();
}

WindowsOpticalDrive::WindowsOpticalDrive(const WindowsOpticalDrive& other)
    : device(other.device),
      osLocator(other.osLocator),
      driveName(other.driveName),
      scsiPath(other.scsiPath),
      deviceName(),
      writePageCode(other.writePageCode),
      wroteFlag(other.wroteFlag),
      readFlag(other.readFlag),
      geometryValid(other.geometryValid),
      totalSectors(other.totalSectors),
      speedsReported(other.speedsReported),
      // Two owners of one handle would close it twice.
      handle(os::invalidNativeHandle()),
      exclusiveHandle(os::invalidNativeHandle()),
      geometry(other.geometry),
      exclusiveAccess(other.exclusiveAccess),
      requiredProfiles(other.requiredProfiles),
      requiredMediaFound(other.requiredMediaFound) {
    std::memcpy(deviceName, other.deviceName, sizeof(deviceName));
}

WindowsOpticalDrive::~WindowsOpticalDrive() {
    kivscsi::AllowMediumRemoval(scsiPath, deviceName);
    // A copy never entered a handle of its own and must not take the original's entry away.
    if (libStorage::LookupManager::get(deviceName) == &handle) {
        libStorage::LookupManager::remove(deviceName);
    }
    exclusiveAccess.releaseExclusiveAccess();
    closeIfOpen(exclusiveHandle);
    closeIfOpen(handle);
}

void WindowsOpticalDrive::readDeviceProperties() {
    driveName = kiv::String();
    if (const quel5::DeviceProperty* driver = device->property(L"DriverName")) {
        driveName = driver->value().valueString().kivString();
    } else if (const quel5::DeviceProperty* letter = device->property(L"DriveLetter")) {
        driveName = kiv::String(L"\\\\.\\") + letter->value().valueString().kivString() + L":";
    }
    if (const quel5::DeviceProperty* address = device->property(L"SCSIPath")) {
        const quel5::Value& numbers = address->value();
        uint8_t* const parts[] = {&scsiPath.port, &scsiPath.path, &scsiPath.target, &scsiPath.lun};
        const uint32_t present = numbers.Uint32ArraySize();
        for (uint32_t i = 0; i < 4 && i < present; ++i) {
            *parts[i] = static_cast<uint8_t>(numbers.getUint32InArray(i));
        }
    }
    osLocator = device->osLocator().kivString();
    std::snprintf(deviceName, sizeof(deviceName), "%s", osLocator.toUtf8().c_str());
}

void WindowsOpticalDrive::resetVariableForSecondRun() {
    exclusiveAccess.releaseExclusiveAccess();
    if (libStorage::LookupManager::contains(deviceName)) {
        libStorage::LookupManager::remove(deviceName);
    }
    closeIfOpen(exclusiveHandle);
    closeIfOpen(handle);
    wroteFlag = false;
    readFlag = false;
    geometryValid = false;
    speedsReported = false;
    readDeviceProperties();
}

void WindowsOpticalDrive::releaseExclusiveAccess() {
    exclusiveAccess.releaseExclusiveAccess();
    if (libStorage::LookupManager::contains(deviceName)) {
        libStorage::LookupManager::remove(deviceName);
    }
    closeHandle();
}

void WindowsOpticalDrive::lockTray() { kivscsi::PreventMediumRemoval(scsiPath, deviceName); }

void WindowsOpticalDrive::unlockTray() { kivscsi::AllowMediumRemoval(scsiPath, deviceName); }

void WindowsOpticalDrive::getExclusiveDriveAccess() {
    if (!openHandle()) {
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventInvalidDriveHandle, optical::kSource,
                                   947);
        throw InvalidHandle(L"Failed to get the drive handle");
    }
    exclusiveAccess.setHandle(handle);
    if (exclusiveAccess.getExclusiveAccess()) {
        optical::log(2, 954, L"Got Exclusive Access to the drive");
    }
    // From here on every command reaches the drive through this handle. On Linux that also
    // keeps /dev/srN open, without which a tray lock would end with the command's own close.
    libStorage::LookupManager::insert(deviceName, &handle);
    exclusiveHandle = openDrive(deviceName);
}

bool WindowsOpticalDrive::openHandle() {
    if (handle != os::invalidNativeHandle()) {
        return true;
    }
    handle = openDrive(deviceName);
    return handle != os::invalidNativeHandle();
}

void WindowsOpticalDrive::closeHandle() {
    closeIfOpen(exclusiveHandle);
    closeIfOpen(handle);
}

void* WindowsOpticalDrive::getHandle() { return asPointer(handle); }

long WindowsOpticalDrive::TestUnitReady() {
    return static_cast<long>(kivscsi::TestUnitReady(scsiPath, deviceName));
}

void WindowsOpticalDrive::startDrive() { kivscsi::StartUnit(scsiPath, deviceName); }

unsigned long WindowsOpticalDrive::makeSureUnitIsReady() {
    ScopedTrace trace(optical::logger(), L"Make Sure Unit Is Ready", optical::kSource, __LINE__);
    auto status = static_cast<uint32_t>(TestUnitReady());
    // A drive already becoming ready is spinning up by itself; a START would only disturb it.
    bool needStart = status != kBecomingReady;

    const uint32_t start = os::tickCount();
    while (millisecondsSince(start) < kReadyWindowMs) {
        if (status == 0) {
            break;
        }
        if (needStart) {
            status = kivscsi::StartUnit(scsiPath, deviceName);
            needStart = false;
        } else {
            status = static_cast<uint32_t>(TestUnitReady());
        }
        if (quel5::DiagModule::checkForStop()) {
            throw UserAborted(L"Test Cancelled by the user");
        }
        if (isNoMedium(status) && millisecondsSince(start) > kNoMediumWindowMs) {
            break;
        }
        if (status != 0) {
            os::sleepMilliseconds(kReadyPollMs);
        }
    }
    if (status != 0) {
        return status;
    }

    const uint32_t capacityStart = os::tickCount();
    status = 0xFFFFFFFFu;
    for (;;) {
        if (status == 0 || isNoMedium(status)) {
            return status;
        }
        status = kivscsi::ReadCapacity(scsiPath, deviceName);
        if (quel5::DiagModule::checkForStop()) {
            throw UserAborted(L"Test Cancelled by the user");
        }
        if (status != 0 && !isNoMedium(status)) {
            os::sleepMilliseconds(kReadyPollMs);
        }
        if (millisecondsSince(capacityStart) > kReadyWindowMs) {
            return status;
        }
    }
}

void WindowsOpticalDrive::ejectDisc() {
    ScopedTrace trace(optical::logger(), L"EjectDisc", optical::kSource, __LINE__);
    uint32_t status = 0;
    for (int attempt = 0; attempt < kEjectAttempts; ++attempt) {
        kivscsi::StopUnit(scsiPath, deviceName);
        os::sleepMilliseconds(kEjectPauseMs);
        status = kivscsi::EjectMedia(scsiPath, deviceName);
        if (status == 0) {
            os::sleepMilliseconds(kEjectPauseMs);
            status = static_cast<uint32_t>(TestUnitReady());
            if (isNoMedium(status)) {
                break;
            }
            os::sleepMilliseconds(kEjectPauseMs);
        }
    }
    if (status != 0 && !isNoMedium(status)) {
        throw EjectError(status);
    }
}

void WindowsOpticalDrive::loadDisc() {
    makeSureUnitIsReady();
    try {
        kivscsi::Load(scsiPath, deviceName);
    } catch (...) {
        // Closing the tray is a courtesy; the readiness checks that follow judge the result.
    }
}

}  // namespace kivrlibdrive
