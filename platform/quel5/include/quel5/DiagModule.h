// quel5::DiagModule: the framework's static services as a library calls them.
#pragma once

#include "quel5/DataType.h"
#include "quel5/Event.h"
#include "quel5/Export.h"
#include "quel5/MessageBox2.h"
#include "quel5/Parameter.h"
#include "quel5/QuelString.h"

namespace quel5 {

class QUEL5_API DiagModule {
public:
    // Creation: the handle is owned by the registry and lives until the process ends.
    static Parameter* createParameter(const QuelString& name, const DataType& type,
                                      const QuelString& range, bool flagA, bool flagB);
    static Event* createEvent(const QuelString& key);
    static LocalizedString* createLocalizedString(const QuelString& key);
    static void registerLibrary(const QuelString& name);

    // Reports to the installed host. A null handle is ignored.
    static void warning(Event* event, const QuelString& source, int line);
    static void informative(Event* event, const QuelString& source, int line);
    static void error(Event* event, const QuelString& source, int line);
    static bool checkForStop();
    static void percentDone(unsigned int percent);
    static void resetPercentDone();
    static void progress(LocalizedString* text);
    static void progressTimed(double intervalMs, LocalizedString* text);
    static void estimatedTimeLeft(unsigned int seconds);

    // A new box the caller owns (delete it when done), or nullptr when no host can show one.
    static MessageBox2* createMessageBox2(const QuelString& message, const QuelString& title,
                                          int type, const MessageBox2_Options& options, int look,
                                          bool modal);
};

}  // namespace quel5
