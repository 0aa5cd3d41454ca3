// The English texts drivediag shows for every event and localized-string key the library
// creates. Texts name the variables they show as {Name} placeholders; Placeholders.h fills them.
//
// Events and localized strings are looked up separately: a few keys exist as both, with
// different variables set on each.
#pragma once

#include <span>
#include <string_view>

namespace host {

struct CatalogueEntry {
    std::string_view key;
    std::string_view text;  // UTF-8, with {Name} placeholders
};

// Every entry, in no particular order. Views into static storage.
std::span<const CatalogueEntry> eventCatalogue();
std::span<const CatalogueEntry> stringCatalogue();

// The text of `key`, or an empty view when the catalogue has none.
std::string_view eventText(std::string_view key);
std::string_view stringText(std::string_view key);

}  // namespace host
