#include <string>

#include "Bytes.h"
#include "Commands.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr uint8_t kMediaTypeDvd = 0;  // DVD and HD DVD
constexpr uint8_t kMediaTypeBd = 1;
constexpr uint8_t kFormatPhysical = 0x00;  // DVD physical format / BD disc information
constexpr uint8_t kFormatCopyright = 0x01;
constexpr uint8_t kFormatAdip = 0x11;

constexpr size_t kHeader = 4;
constexpr size_t kPhysicalLength = 2048;
constexpr size_t kAdipLength = 256;
constexpr size_t kBdDiscInformationUnit = 112;

// Where the media-specific identification sits in DVD physical format and ADIP data.
constexpr size_t kDvdManufacturerAt = 19;
constexpr size_t kDvdManufacturerBytes = 8;
constexpr size_t kDvdDiscIdAt = 27;
// ... and in a BD disc information unit.
constexpr size_t kBdManufacturerAt = 100;
constexpr size_t kBdManufacturerBytes = 6;
constexpr size_t kBdDiscIdAt = 106;
constexpr size_t kDiscIdBytes = 3;

constexpr uint32_t kDvdFirstPhysicalSector = 0x030000;

void putId(std::vector<uint8_t>& out, size_t at, size_t width, const std::string& id) {
    for (size_t i = 0; i < width && i < id.size(); ++i) out[at + i] = static_cast<uint8_t>(id[i]);
}

std::vector<uint8_t> withHeader(size_t structureLength) {
    std::vector<uint8_t> data(kHeader + structureLength, 0);
    putBe16(&data[0], static_cast<uint16_t>(data.size() - 2));
    return data;
}

bool dualLayer(MediaKind kind) {
    return kind == MediaKind::DvdMinusRDualLayer || kind == MediaKind::DvdPlusRDualLayer;
}

uint8_t layerType(const Disc& disc) {
    if (disc.traits().recording == Recording::ReadOnly) return 0x01;
    return disc.erasable() ? 0x04 : 0x02;
}

// Physical format information and ADIP share their first bytes and the identification fields.
std::vector<uint8_t> dvdIdentified(const Disc& disc, size_t structureLength) {
    std::vector<uint8_t> data = withHeader(structureLength);
    uint8_t* s = &data[kHeader];
    s[0] = static_cast<uint8_t>(disc.traits().bookType << 4 | 0x01);
    s[1] = 0x02;  // 120 mm, 10.08 Mbit/s
    s[2] = static_cast<uint8_t>((dualLayer(disc.model().kind) ? 0x20 : 0) | layerType(disc));
    s[3] = 0x10;
    putBe32(&s[4], kDvdFirstPhysicalSector);
    putBe32(&s[8], kDvdFirstPhysicalSector + disc.capacity() - 1);
    putId(data, kHeader + kDvdManufacturerAt, kDvdManufacturerBytes, disc.model().manufacturerId);
    putId(data, kHeader + kDvdDiscIdAt, kDiscIdBytes, disc.model().discId);
    s[kDvdDiscIdAt + kDiscIdBytes] = 0x01;  // product revision
    return data;
}

bool hasAdip(MediaKind kind) {
    return kind == MediaKind::DvdPlusR || kind == MediaKind::DvdPlusRw ||
           kind == MediaKind::DvdPlusRDualLayer;
}

Reply dvdStructure(const Disc& disc, uint8_t format, size_t allocation) {
    switch (format) {
        case kFormatPhysical:
            return answer(dvdIdentified(disc, kPhysicalLength), allocation);
        case kFormatAdip:
            if (!hasAdip(disc.model().kind)) return failure(code::kInvalidFieldInCdb);
            return answer(dvdIdentified(disc, kAdipLength), allocation);
        case kFormatCopyright: {
            std::vector<uint8_t> data = withHeader(4);
            data[kHeader] = disc.model().copyProtection;
            return answer(std::move(data), allocation);
        }
        default:
            return failure(code::kInvalidFieldInCdb);
    }
}

const char* bdDiscType(const Disc& disc) {
    switch (disc.model().kind) {
        case MediaKind::BdR:
            return "BDR";
        case MediaKind::BdRe:
            return "BDW";
        default:
            return "BDO";
    }
}

Reply bdStructure(const Disc& disc, uint8_t format, size_t allocation) {
    if (format != kFormatPhysical) return failure(code::kInvalidFieldInCdb);
    std::vector<uint8_t> data = withHeader(kBdDiscInformationUnit);
    uint8_t* unit = &data[kHeader];
    unit[0] = 'D';
    unit[1] = 'I';
    unit[2] = 0x01;
    unit[3] = 0x01;
    putId(data, kHeader + 8, 3, bdDiscType(disc));
    unit[12] = 0x11;  // one layer
    putId(data, kHeader + kBdManufacturerAt, kBdManufacturerBytes, disc.model().manufacturerId);
    putId(data, kHeader + kBdDiscIdAt, kDiscIdBytes, disc.model().discId);
    unit[kBdDiscInformationUnit - 1] = 0x01;  // product revision
    return answer(std::move(data), allocation);
}

Reply readDiscStructure(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const Disc& disc = *state.tray.disc();
    const MediaFamily family = disc.traits().family;
    const uint8_t mediaType = command.cdb[1] & 0x0F;
    const uint8_t format = command.cdb[7];
    const size_t allocation = be16(&command.cdb[8]);
    if (mediaType == kMediaTypeDvd) {
        if (family != MediaFamily::Dvd && family != MediaFamily::HdDvd) {
            return failure(code::kCannotReadIncompatibleFormat);
        }
        return dvdStructure(disc, format, allocation);
    }
    if (mediaType == kMediaTypeBd) {
        if (family != MediaFamily::Bd) return failure(code::kCannotReadIncompatibleFormat);
        return bdStructure(disc, format, allocation);
    }
    return failure(code::kInvalidFieldInCdb);
}

}  // namespace

void addDiscStructureCommands(HandlerTable& table) {
    table[kivscsi::opcode::kReadDiscStructure] = readDiscStructure;
}

}  // namespace sim::mmc
