#include "quel5/MessageBox2.h"

#include "HostAccess.h"

namespace quel5 {

MessageBox2::MessageBox2(QuelString message, QuelString title, int type,
                         MessageBox2_Options options, int look, bool modal)
    : message_(std::move(message)),
      title_(std::move(title)),
      type_(type),
      options_(options),
      look_(look),
      modal_(modal) {}

bool MessageBox2::display() {
    int answer = MB2_NONE;
    bool shown = false;
    detail::withHost([&](Host& host) { shown = host.showMessageBox(*this, &answer); });
    if (shown) {
        displayed_ = true;
        answer_ = answer;
    }
    return shown;
}

void MessageBox2::wait(unsigned int /*timeoutSeconds*/) {
    // The host hands the answer back from showMessageBox, so it is already here.
}

void MessageBox2::cancel() {
    if (!displayed_) return;
    displayed_ = false;
    answer_ = MB2_CANCEL;
    detail::withHost([&](Host& host) { host.messageBoxCancelled(*this); });
}

}  // namespace quel5
