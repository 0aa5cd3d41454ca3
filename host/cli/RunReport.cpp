#include "cli/RunReport.h"

#include "drives/BlockDeviceDrive.h"
#include "drives/DeviceIdentity.h"
#include "drives/RecordingDrive.h"

namespace host {

DeviceHeader describeDevice(kivrlibdrive::Drive& drive, const std::string& deviceText) {
    DeviceHeader header;
    header.device = deviceText;
    if (dynamic_cast<RecordsOperations*>(&drive) == nullptr) {
        // The checksum test's medium is a folder of files, not sectors.
        header.kind = "test medium";
        return header;
    }
    header.totalSectors = drive.GetTotalSectors();
    header.sectorBytes = drive.GetBytesPerSector();
    if (auto* disk = dynamic_cast<BlockDeviceDrive*>(&drive)) {
        header.directIo = disk->usesDirectIo();
        if (disk->isImageFile()) {
            header.kind = "image file";
            header.physicalSectorBytes = header.sectorBytes;
        } else {
            header.kind = "block device";
            const DeviceIdentity identity =
                identifyDisk(disk->path(), blockdevice::fromDriveHandle(disk->GetHandle()));
            header.model = identity.model;
            header.serial = identity.serial;
            header.physicalSectorBytes = identity.physicalSectorBytes;
        }
    } else {
        header.kind = "simulated drive";
        header.physicalSectorBytes = header.sectorBytes;
    }
    return header;
}

double RunSummary::bytesPerSecond() const {
    if (!operations || elapsedMs == 0) return 0.0;
    const uint64_t sectors = operations->reads().sectors + operations->writes().sectors;
    return static_cast<double>(sectors) * sectorBytes * 1000.0 / static_cast<double>(elapsedMs);
}

uint64_t RunSummary::failedOperations() const {
    if (!operations) return 0;
    return operations->reads().failedOperations + operations->writes().failedOperations;
}

bool RunSummary::passedWithFailures() const {
    return result == "PASS" && (failedOperations() > 0 || compareErrors > 0);
}

}  // namespace host
