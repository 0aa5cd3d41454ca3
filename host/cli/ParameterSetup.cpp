#include "cli/ParameterSetup.h"

#include <algorithm>
#include <optional>

#include "quel5/Registry.h"

namespace host {
namespace {

std::string knownParameters() {
    std::string names;
    for (const quel5::Parameter* parameter : quel5::Registry::instance().parameters()) {
        if (!names.empty()) names += ", ";
        names += parameter->name().toUtf8();
    }
    return names;
}

bool fail(std::string* error, std::string reason) {
    if (error) *error = std::move(reason);
    return false;
}

// The registered name `typed` means, matched without regard to case (maxerrors is
// MaxErrors); nothing when no parameter has that name.
std::optional<std::string> parameterNamed(const std::string& typed) {
    const kiv::String wanted = kiv::String::fromUtf8(typed).toLower();
    for (const quel5::Parameter* parameter : quel5::Registry::instance().parameters()) {
        std::string name = parameter->name().toUtf8();
        if (kiv::String::fromUtf8(name).toLower() == wanted) return name;
    }
    return std::nullopt;
}

bool applyOne(const std::string& typedKey, const std::string& value, ParameterValues& applied,
              std::string* error) {
    quel5::Registry& registry = quel5::Registry::instance();
    const std::optional<std::string> canonical = parameterNamed(typedKey);
    if (!canonical)
        return fail(error, "unknown parameter \"" + typedKey +
                               "\" (parameters: " + knownParameters() + ")");
    const std::string& key = *canonical;
    const QuelString name(key.c_str());
    const auto same = [&](const auto& entry) { return entry.first == key; };
    if (value.empty()) {
        registry.clearParameter(name);
        applied.erase(std::remove_if(applied.begin(), applied.end(), same), applied.end());
        return true;
    }
    kiv::String reason;
    if (!registry.setParameter(name, kiv::String::fromUtf8(value), &reason))
        return fail(error, "bad value \"" + value + "\" for " + key + ": " + reason.toUtf8());
    const auto found = std::find_if(applied.begin(), applied.end(), same);
    if (found != applied.end()) {
        found->second = value;
    } else {
        applied.emplace_back(key, value);
    }
    return true;
}

}  // namespace

bool applyParameters(const TestDefinition& test, const ParameterValues& overrides,
                     ParameterValues* applied, std::string* error) {
    quel5::Registry::instance().clearAllParameters();
    ParameterValues values;
    for (const ParameterDefault& entry : test.defaults) {
        if (!applyOne(entry.key, entry.value, values, error)) return false;
    }
    for (const auto& [key, value] : overrides) {
        if (!applyOne(key, value, values, error)) return false;
    }
    if (applied) *applied = std::move(values);
    return true;
}

}  // namespace host
