#include "WriteParameters.h"

namespace sim::mmc {
namespace {

constexpr uint8_t kWriteTypePacket = 0;
constexpr uint8_t kWriteTypeTrackAtOnce = 1;
constexpr uint8_t kWriteTypeSessionAtOnce = 2;  // disc at once on DVD-R
constexpr uint8_t kWriteTypeLayerJump = 4;
constexpr uint8_t kDataBlockMode1 = 8;
// Track mode (control nibble) with the copy bit masked off: data, recorded uninterrupted or
// incrementally.
constexpr uint8_t kTrackModeMask = 0x0D;
constexpr uint8_t kTrackModeUninterrupted = 0x04;
constexpr uint8_t kTrackModeIncremental = 0x05;

bool suitsCd(uint8_t writeType, uint8_t trackMode, uint8_t dataBlockType) {
    if (dataBlockType != kDataBlockMode1) return false;
    switch (writeType) {
        case kWriteTypeTrackAtOnce:
        case kWriteTypeSessionAtOnce:
            return trackMode == kTrackModeUninterrupted;
        case kWriteTypePacket:
            return trackMode == kTrackModeIncremental;
        default:
            return false;
    }
}

bool suitsSequentialDvd(uint8_t writeType, bool dualLayer) {
    return writeType == kWriteTypePacket || writeType == kWriteTypeSessionAtOnce ||
           (dualLayer && writeType == kWriteTypeLayerJump);
}

}  // namespace

Sense checkWriteParameters(const ModeState& mode, const Disc& disc) {
    const uint8_t writeType = mode.writeParameters[2] & 0x0F;
    const uint8_t trackMode = mode.writeParameters[3] & kTrackModeMask;
    const uint8_t dataBlockType = mode.writeParameters[4] & 0x0F;
    bool suits = true;
    switch (disc.model().kind) {
        case MediaKind::CdR:
        case MediaKind::CdRw:
            suits = suitsCd(writeType, trackMode, dataBlockType);
            break;
        case MediaKind::DvdMinusR:
        case MediaKind::DvdMinusRw:
            suits =
                disc.recording() != Recording::Sequential || suitsSequentialDvd(writeType, false);
            break;
        case MediaKind::DvdMinusRDualLayer:
            suits = suitsSequentialDvd(writeType, true);
            break;
        default:
            break;
    }
    return suits ? Sense{} : senseOf(code::kIllegalModeForThisTrack);
}

}  // namespace sim::mmc
