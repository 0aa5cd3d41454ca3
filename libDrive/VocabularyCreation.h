// The three steps that create the library's framework handles. Vocabulary.cpp runs them once at
// load time, in this order; nothing else may call them.
#pragma once

namespace kivrlibdrive::detail {

void createParameters();
void createEvents();
void createLocalizedStrings();

}  // namespace kivrlibdrive::detail
