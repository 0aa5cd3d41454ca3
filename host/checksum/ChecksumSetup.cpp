#include "checksum/ChecksumSetup.h"

#include <algorithm>
#include <cctype>
#include <map>

#include "checksum/MediumDrive.h"

namespace host {
namespace {

const char* const kKeys[] = {"ChecksumFile",    "FallbackFile", "ExpectedChecksum",
                             "MaxMediaPrompts", "MediaName",    "FailIfNotFound",
                             "DriveLetter"};

std::nullopt_t fail(std::string* error, const std::string& reason) {
    if (error) *error = reason;
    return std::nullopt;
}

std::optional<bool> parseBool(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (text == "true" || text == "yes" || text == "1") return true;
    if (text == "false" || text == "no" || text == "0") return false;
    return std::nullopt;
}

std::optional<uint32_t> parseCount(const std::string& text) {
    if (text.empty() || text.size() > 10 ||
        !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
        return std::nullopt;
    const unsigned long long value = std::stoull(text);
    if (value > 0xFFFFFFFFull) return std::nullopt;
    return static_cast<uint32_t>(value);
}

// The digest in lower case, or nullopt when it is not 32 hexadecimal digits.
std::optional<std::string> parseDigest(std::string text) {
    if (text.size() != 32 ||
        !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); }))
        return std::nullopt;
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::optional<char> parseLetter(const std::string& text) {
    std::string letter = text;
    if (letter.size() == 2 && letter[1] == ':') letter.pop_back();
    if (letter.size() != 1 || !std::isalpha(static_cast<unsigned char>(letter[0])))
        return std::nullopt;
    return static_cast<char>(std::toupper(static_cast<unsigned char>(letter[0])));
}

// Applies one key's value; false with a reason when the value does not fit.
bool apply(const std::string& key, const std::string& value, MediumSettings& settings,
           std::string* error) {
    auto& p = settings.parameters;
    const auto bad = [&](const char* expected) {
        fail(error, "--set " + key + "=" + value + ": expected " + expected);
        return false;
    };
    if (key == "ChecksumFile") {
        p.checksumFileName = kiv::String::fromUtf8(value);
    } else if (key == "FallbackFile") {
        p.fallbackFileName = kiv::String::fromUtf8(value);
    } else if (key == "ExpectedChecksum") {
        const auto digest = parseDigest(value);
        if (!digest) return bad("an MD5 digest of 32 hexadecimal digits");
        p.expectedChecksum = kiv::Array<unsigned char>();
        for (const char c : *digest) p.expectedChecksum.add(static_cast<unsigned char>(c));
    } else if (key == "MaxMediaPrompts") {
        const auto count = parseCount(value);
        if (!count) return bad("a count from 0 (no limit) to 4294967295");
        p.maxMediaPrompts = *count;
    } else if (key == "MediaName") {
        p.mediaName = QuelString(value.c_str());
    } else if (key == "FailIfNotFound") {
        const auto flag = parseBool(value);
        if (!flag) return bad("true or false");
        p.failIfNotFound = *flag;
    } else {
        const auto letter = parseLetter(value);
        if (!letter) return bad("a drive letter (E or E:)");
        settings.driveLetter = *letter;
    }
    return true;
}

}  // namespace

bool isMediumKey(const std::string& key) {
    return std::find(std::begin(kKeys), std::end(kKeys), key) != std::end(kKeys);
}

std::optional<MediumSettings> takeMediumSettings(ParameterValues& sets, const DriveMaps& maps,
                                                 bool answersYes, std::string* error) {
    MediumSettings settings;
    settings.parameters.checksumFileName = L"CHECKSUM.BIN";
    settings.parameters.fallbackFileName = L"FALLBACK.BIN";
    settings.parameters.maxMediaPrompts = 3;
    settings.parameters.mediaName = QuelString("test medium");
    for (const auto& [key, value] : sets) {
        if (isMediumKey(key) && !apply(key, value, settings, error)) return std::nullopt;
    }
    std::erase_if(sets, [](const auto& entry) { return isMediumKey(entry.first); });

    if (settings.driveLetter == 0)
        return fail(error, "checksum needs the medium's drive letter: --set DriveLetter=E");
    std::map<char, std::string> directories;
    for (const auto& [letterText, directory] : maps) {
        const auto letter = parseLetter(letterText);
        if (!letter || directory.empty())
            return fail(error, "--map " + letterText + "=" + directory +
                                   ": expected LETTER=DIRECTORY (E=/media/usb)");
        if (!directories.emplace(*letter, directory).second)
            return fail(error, "--map gives drive " + letterText + " twice");
    }
    const auto mapped = directories.find(settings.driveLetter);
    if (mapped != directories.end()) {
        settings.directory = mapped->second;
    } else if (!driveLettersAreRoots()) {
        return fail(error,
                    std::string("drive letters are not paths here: say where the medium of ") +
                        settings.driveLetter + ": is mounted with --map " + settings.driveLetter +
                        "=/media/usb");
    }
    if (settings.parameters.maxMediaPrompts == 0 && answersYes)
        return fail(error,
                    "MaxMediaPrompts=0 asks without limit, and --yes would answer OK forever");
    return settings;
}

OpenResult openMedium(const MediumSettings& settings) {
    const std::string letter(1, settings.driveLetter);
    OpenResult result;
    result.opened.device =
        std::make_unique<quel5::DiagDevice>(QuelString(("medium:" + letter).c_str()));
    std::string location = "drive " + letter + ":";
    if (settings.directory.empty()) {
        result.opened.device->setText(L"DriveLetter", kiv::String::fromUtf8(letter));
    } else {
        // The test takes the medium's root from the device path after its "\\.\" prefix.
        result.opened.device->setText(
            L"DriverName", kiv::String(L"\\\\.\\") + kiv::String::fromUtf8(settings.directory));
        location += " at " + settings.directory;
    }
    result.opened.drive =
        std::make_unique<MediumDrive>(*result.opened.device, settings.parameters, location);
    return result;
}

}  // namespace host
