// Range texts through CRange: the first byte chooses the drive, the sector size, the amount
// mode and whether the large-drive texts apply; the rest is up to four texts, one per line, for
// StartRange, EndRange, LargeDriveStartRange and LargeDriveEndRange (an empty line leaves the
// parameter unset). Every outcome but a crash, a hang or a wrong exception type is fine.
#include <array>
#include <cstdint>
#include <limits>

#include "FuzzInput.h"
#include "kiv/Exception.h"
#include "libDrive/Exceptions.h"
#include "libDrive/Range.h"
#include "quel5/Registry.h"

namespace {

void set(const wchar_t* key, const std::string& text) {
    if (text.empty()) return;
    quel5::Registry::instance().setParameter(key, kiv::String::fromUtf8(text), nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    constexpr std::array<uint64_t, 8> kDrives = {1,
                                                 1000,
                                                 8388608,
                                                 4194304,
                                                 uint64_t{1} << 40,
                                                 uint64_t{1} << 62,
                                                 std::numeric_limits<uint64_t>::max() / 2,
                                                 std::numeric_limits<uint64_t>::max()};
    const uint8_t choice = data[0];
    const uint64_t totalSectors = kDrives[choice & 7];
    const unsigned int bytesPerSector = (choice & 8) ? 4096 : 512;
    const bool allowPercent = (choice & 16) != 0;
    const bool allowSeeks = (choice & 32) != 0;

    quel5::Registry& registry = quel5::Registry::instance();
    registry.clearAllParameters();
    registry.setParameter(L"NumberOfSeeks", L"10", nullptr);
    registry.setParameter(L"SectorPercentToTest", L"50", nullptr);
    if (choice & 64) {
        registry.setParameter(L"AdjustForLargeDrives", L"true", nullptr);
        registry.setParameter(L"LargeDriveSize", L"1", nullptr);
    }
    const auto texts = fuzzinput::split(fuzzinput::textOf(data + 1, size - 1), '\n');
    const wchar_t* const keys[] = {L"StartRange", L"EndRange", L"LargeDriveStartRange",
                                   L"LargeDriveEndRange"};
    for (std::size_t i = 0; i < texts.size() && i < 4; ++i) set(keys[i], texts[i]);
    try {
        const kivrlibdrive::CRange range(totalSectors, bytesPerSector, allowPercent, allowSeeks);
        if (range.GetEndRange() > totalSectors || range.GetStartRange() >= range.GetEndRange() ||
            range.GetJumpCount() == 0) {
            __builtin_trap();
        }
    } catch (const kivrlibdrive::InvalidRange&) {
    } catch (const kivrlibdrive::CannotRun&) {
    } catch (const kiv::InternalError&) {
    }
    return 0;
}
