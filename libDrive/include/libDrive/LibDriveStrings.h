// LibDriveStrings: the handles of every event and localized string the library reports with.
// Their keys and order are in Vocabulary.inc.
//
// The handles are created when the library is loaded, before any exported function can run, and
// are owned by the framework for the life of the process; never delete them. Set variables on a
// handle, then raise it (events) or read its text (strings). Sharing a handle is not
// synchronised: tests run one at a time on the host's thread.
#pragma once

#include "libDrive/Export.h"
#include "quel5/Event.h"

class LIBDRIVE_API LibDriveStrings {
public:
#define LIBDRIVE_EVENT(key, member) static quel5::Event* member;
#define LIBDRIVE_LOCALIZED_STRING(key, member) static quel5::LocalizedString* member;
#include "libDrive/Vocabulary.inc"
};
