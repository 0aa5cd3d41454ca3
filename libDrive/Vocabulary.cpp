// Creates the whole vocabulary when the library is loaded. The handles live in three files, but
// C++ leaves the order of initialisation across files open, so one initialiser here runs the
// three creation steps in the order hosts expect: parameters, events, localized strings.
#include "libDrive/VocabularyCreation.h"

namespace kivrlibdrive::detail {
namespace {

const bool vocabularyCreated = [] {
    createParameters();
    createEvents();
    createLocalizedStrings();
    return true;
}();

}  // namespace
}  // namespace kivrlibdrive::detail
