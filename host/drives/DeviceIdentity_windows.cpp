#include <windows.h>
#include <winioctl.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "drives/DeviceIdentity.h"
#include "os/DeviceControl.h"

namespace host {
namespace {

// A text the storage driver placed at `offset` in its descriptor, blanks trimmed.
std::string textAt(const std::vector<unsigned char>& answer, std::size_t answered, DWORD offset) {
    if (offset == 0 || offset >= answered) return "";
    std::string text;
    for (std::size_t at = offset; at < answered && answer[at] != 0; ++at)
        text += static_cast<char>(answer[at]);
    const std::size_t first = text.find_first_not_of(' ');
    const std::size_t last = text.find_last_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

}  // namespace

DeviceIdentity identifyDisk(const std::string&, os::NativeHandle handle) {
    DeviceIdentity identity;
    STORAGE_PROPERTY_QUERY query{};
    query.PropertyId = StorageDeviceProperty;
    query.QueryType = PropertyStandardQuery;
    std::vector<unsigned char> answer(1024);
    const os::ControlResult device =
        os::controlDevice(handle, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, answer.data(),
                          static_cast<uint32_t>(answer.size()));
    if (device.ok() && device.bytes >= sizeof(STORAGE_DEVICE_DESCRIPTOR)) {
        STORAGE_DEVICE_DESCRIPTOR descriptor;
        std::memcpy(&descriptor, answer.data(), sizeof descriptor);
        const std::string vendor = textAt(answer, device.bytes, descriptor.VendorIdOffset);
        const std::string product = textAt(answer, device.bytes, descriptor.ProductIdOffset);
        identity.model = vendor.empty() ? product : vendor + " " + product;
        identity.serial = textAt(answer, device.bytes, descriptor.SerialNumberOffset);
    }
    query.PropertyId = StorageAccessAlignmentProperty;
    STORAGE_ACCESS_ALIGNMENT_DESCRIPTOR alignment{};
    const os::ControlResult aligned = os::controlDevice(
        handle, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, &alignment, sizeof alignment);
    if (aligned.ok() &&
        aligned.bytes >= offsetof(STORAGE_ACCESS_ALIGNMENT_DESCRIPTOR, BytesPerPhysicalSector) +
                             sizeof alignment.BytesPerPhysicalSector)
        identity.physicalSectorBytes = alignment.BytesPerPhysicalSector;
    return identity;
}

// Windows says what holds a disk through the volume lock's failure itself.
std::string holdersOf(const std::string&) { return ""; }

}  // namespace host
