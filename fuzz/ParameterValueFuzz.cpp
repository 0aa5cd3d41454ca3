// --set values as drivediag applies them: each line of the input is KEY=VALUE (a line without
// "=" is a value for the key its first byte chooses), applied over every test's defaults, and
// the checksum test's own keys taken out of them as that test does.
#include <string>
#include <utility>

#include "FuzzInput.h"
#include "checksum/ChecksumSetup.h"
#include "cli/ParameterSetup.h"
#include "cli/TestTable.h"

namespace {

const char* const kKeys[] = {"MaxErrors",
                             "MinErrorPercentage",
                             "StartRange",
                             "EndRange",
                             "NumberOfSeeks",
                             "SectorPercentToTest",
                             "AdjustForLargeDrives",
                             "LargeDriveSize",
                             "LargeDriveStartRange",
                             "LargeDriveEndRange",
                             "PreserveData",
                             "NumberOfPatterns",
                             "ChecksumFile",
                             "FallbackFile",
                             "ExpectedChecksum",
                             "MaxMediaPrompts",
                             "MediaName",
                             "FailIfNotFound",
                             "DriveLetter"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    host::ParameterValues sets;
    for (const std::string& line : fuzzinput::split(fuzzinput::textOf(data, size), '\n')) {
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos) {
            const unsigned char choice = line.empty() ? 0 : static_cast<unsigned char>(line[0]);
            sets.emplace_back(kKeys[choice % std::size(kKeys)], line);
        } else {
            sets.emplace_back(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    for (const host::TestDefinition& test : host::testTable()) {
        host::ParameterValues libraryKeys;
        for (const auto& set : sets) {
            if (!host::isMediumKey(set.first)) libraryKeys.push_back(set);
        }
        host::ParameterValues applied;
        std::string error;
        host::applyParameters(test, libraryKeys, &applied, &error);
    }
    for (const bool answersYes : {false, true}) {
        host::ParameterValues mediumKeys = sets;
        std::string error;
        host::takeMediumSettings(mediumKeys, {{"E", "/media/usb"}}, answersYes, &error);
    }
    return 0;
}
