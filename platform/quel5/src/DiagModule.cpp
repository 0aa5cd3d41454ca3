#include "quel5/DiagModule.h"

#include "HostAccess.h"
#include "quel5/Registry.h"

namespace quel5 {

namespace {

void raise(Severity severity, const Event* event, const QuelString& source, int line) {
    if (!event) return;
    detail::withHost([&](Host& host) { host.eventRaised(severity, *event, source, line); });
}

void reportProgress(const LocalizedString* text, double intervalMs) {
    if (!text) return;
    detail::withHost([&](Host& host) { host.progress(*text, intervalMs); });
}

}  // namespace

Parameter* DiagModule::createParameter(const QuelString& name, const DataType& type,
                                       const QuelString& range, bool flagA, bool flagB) {
    return Registry::instance().addParameter(name, type, range, flagA, flagB);
}

Event* DiagModule::createEvent(const QuelString& key) { return Registry::instance().addEvent(key); }

LocalizedString* DiagModule::createLocalizedString(const QuelString& key) {
    return Registry::instance().addLocalizedString(key);
}

void DiagModule::registerLibrary(const QuelString& name) {
    Registry::instance().addLibrary(name);
    detail::withHost([&](Host& host) { host.libraryRegistered(name); });
}

void DiagModule::warning(Event* event, const QuelString& source, int line) {
    raise(Severity::WARNING, event, source, line);
}

void DiagModule::informative(Event* event, const QuelString& source, int line) {
    raise(Severity::INFORMATIVE, event, source, line);
}

void DiagModule::error(Event* event, const QuelString& source, int line) {
    raise(Severity::ERROR, event, source, line);
}

bool DiagModule::checkForStop() {
    bool stop = false;
    detail::withHost([&](Host& host) { stop = host.stopRequested(); });
    return stop;
}

void DiagModule::percentDone(unsigned int percent) {
    detail::withHost([&](Host& host) { host.percentDone(percent); });
}

void DiagModule::resetPercentDone() {
    detail::withHost([](Host& host) { host.resetPercentDone(); });
}

void DiagModule::progress(LocalizedString* text) { reportProgress(text, 0.0); }

void DiagModule::progressTimed(double intervalMs, LocalizedString* text) {
    reportProgress(text, intervalMs);
}

void DiagModule::estimatedTimeLeft(unsigned int seconds) {
    detail::withHost([&](Host& host) { host.estimatedTimeLeft(seconds); });
}

MessageBox2* DiagModule::createMessageBox2(const QuelString& message, const QuelString& title,
                                           int type, const MessageBox2_Options& options, int look,
                                           bool modal) {
    if (!installedHost()) return nullptr;
    return new MessageBox2(message, title, type, options, look, modal);
}

}  // namespace quel5
