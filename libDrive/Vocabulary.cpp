// The vocabulary's handles and the one load-time initialiser that creates them. Everything here
// is expanded from Vocabulary.inc, so the handles are created in the table's order.
#include "InternalParameters.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

#define LIBDRIVE_PUBLISHED_PARAMETER(key, global, type, range, flagA, flagB) \
    quel5::Parameter* global = nullptr;
#define LIBDRIVE_INTERNAL_PARAMETER LIBDRIVE_PUBLISHED_PARAMETER
#include "libDrive/Vocabulary.inc"

}  // namespace kivrlibdrive

#define LIBDRIVE_EVENT(key, member) quel5::Event* LibDriveStrings::member = nullptr;
#define LIBDRIVE_LOCALIZED_STRING(key, member) \
    quel5::LocalizedString* LibDriveStrings::member = nullptr;
#include "libDrive/Vocabulary.inc"

namespace kivrlibdrive {
namespace {

// One initialiser for the whole table: C++ leaves the order of initialisation across files open,
// and hosts expect parameters, then events, then localized strings.
const bool vocabularyCreated = [] {
    using quel5::DataType;
    using quel5::DiagModule;
#define LIBDRIVE_PUBLISHED_PARAMETER(key, global, type, range, flagA, flagB) \
    global = DiagModule::createParameter(key, DataType::type, range, flagA, flagB);
#define LIBDRIVE_INTERNAL_PARAMETER LIBDRIVE_PUBLISHED_PARAMETER
#define LIBDRIVE_EVENT(key, member) LibDriveStrings::member = DiagModule::createEvent(key);
#define LIBDRIVE_LOCALIZED_STRING(key, member) \
    LibDriveStrings::member = DiagModule::createLocalizedString(key);
#include "libDrive/Vocabulary.inc"
    return true;
}();

}  // namespace
}  // namespace kivrlibdrive
