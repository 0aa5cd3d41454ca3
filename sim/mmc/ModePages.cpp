#include "ModePages.h"

#include <algorithm>

#include "Bytes.h"

namespace sim::mmc {
namespace {

constexpr size_t kCapabilitiesFixedLength = 32;
constexpr uint8_t kMaxWriteType = 4;  // packet, TAO, SAO, raw, layer jump

}  // namespace

std::array<uint8_t, kWriteParametersPageLength> defaultWriteParameters() {
    std::array<uint8_t, kWriteParametersPageLength> page{};
    page[0] = kWriteParametersPage;
    page[1] = kWriteParametersPageLength - 2;
    // Set up for packet writing of mode 2 sectors, as many drives come up: right for DVD-R,
    // wrong for CD, so a host that never selects its page is caught writing a CD.
    page[2] = 0x40;           // BUFE, packet / incremental
    page[3] = 0x05;           // data track, recorded incrementally
    page[4] = 0x0A;           // mode 2 form 1, 2048 bytes
    putBe16(&page[14], 150);  // audio pause length
    return page;
}

std::vector<uint8_t> writeParametersPage(const ModeState& mode, PageControl control) {
    std::vector<uint8_t> page;
    switch (control) {
        case PageControl::Changeable:
            page.assign(kWriteParametersPageLength, 0xFF);
            break;
        case PageControl::Default: {
            const auto defaults = defaultWriteParameters();
            page.assign(defaults.begin(), defaults.end());
            break;
        }
        default:
            page.assign(mode.writeParameters.begin(), mode.writeParameters.end());
    }
    page[0] = kWriteParametersPage;
    page[1] = kWriteParametersPageLength - 2;
    return page;
}

std::vector<uint8_t> capabilitiesPage(const WriterState& state, const Disc* disc,
                                      PageControl control) {
    const std::span<const uint16_t> speeds =
        disc ? disc->writeSpeeds() : std::span<const uint16_t>{};
    std::vector<uint8_t> page(kCapabilitiesFixedLength + 4 * speeds.size(), 0);
    page[0] = kCapabilitiesPage;
    page[1] = static_cast<uint8_t>(page.size() - 2);
    if (control == PageControl::Changeable) return page;

    const uint16_t readSpeed = disc ? effectiveReadSpeed(state.mode.requestedReadSpeed, *disc) : 0;
    const uint16_t writeSpeed = effectiveWriteSpeed(state.mode.requestedWriteSpeed, disc);
    page[2] = 0x3F;  // reads CD-R, CD-RW, method 2, DVD-ROM, DVD-R, DVD-RAM
    page[3] = 0x37;  // writes CD-R, CD-RW, DVD-R, DVD-RAM; test write
    page[4] = 0x70;
    page[6] = static_cast<uint8_t>(0x29 | (state.tray.prevented() ? 0x02 : 0));
    putBe16(&page[8], disc ? disc->traits().readSpeed : 0);
    putBe16(&page[10], 0x0100);
    putBe16(&page[12], static_cast<uint16_t>(std::min<uint32_t>(
                           state.config.cacheSectors * kSectorBytes / 1024, 0xFFFF)));
    putBe16(&page[14], readSpeed);
    putBe16(&page[18], speeds.empty() ? 0 : speeds.front());
    putBe16(&page[20], writeSpeed);
    putBe16(&page[22], 0x0001);
    putBe16(&page[28], writeSpeed);
    putBe16(&page[30], static_cast<uint16_t>(speeds.size()));
    for (size_t i = 0; i < speeds.size(); ++i) {
        putBe16(&page[kCapabilitiesFixedLength + 4 * i + 2], speeds[i]);
    }
    return page;
}

Sense applyModeSelect(ModeState& mode, std::span<const uint8_t> list) {
    if (list.size() < 8) return senseOf(code::kParameterListLengthError);
    size_t at = 8 + be16(&list[6]);
    while (at < list.size()) {
        if (at + 2 > list.size() || at + 2 + list[at + 1] > list.size()) {
            return senseOf(code::kParameterListLengthError);
        }
        const uint8_t pageCode = list[at] & 0x3F;
        const size_t pageLength = list[at + 1];
        if (pageCode != kWriteParametersPage || pageLength < 14 ||
            (list[at + 2] & 0x0F) > kMaxWriteType) {
            return senseOf(code::kInvalidFieldInParameterList);
        }
        const size_t bytes = std::min(pageLength + 2, kWriteParametersPageLength);
        std::copy_n(list.begin() + static_cast<std::ptrdiff_t>(at + 2), bytes - 2,
                    mode.writeParameters.begin() + 2);
        at += 2 + pageLength;
    }
    return {};
}

bool multiSessionRequested(const ModeState& mode) { return (mode.writeParameters[3] >> 6) != 0; }

uint16_t effectiveWriteSpeed(uint16_t requested, const Disc* disc) {
    if (disc == nullptr) return 0;
    const std::span<const uint16_t> speeds = disc->writeSpeeds();
    if (speeds.empty()) return 0;
    for (const uint16_t speed : speeds) {
        if (speed <= requested) return speed;
    }
    return speeds.back();
}

uint16_t effectiveReadSpeed(uint16_t requested, const Disc& disc) {
    return std::min(requested, disc.traits().readSpeed);
}

}  // namespace sim::mmc
