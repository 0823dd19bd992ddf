#include "leave/screens/frmConfiguring.h"

#include "leave/ConfigurationPass.h"
#include "session/Session.h"

namespace owb {

frmConfiguring::frmConfiguring(Session& session, FrontEnd& frontEnd)
    : Screen(frontEnd, "frmConfiguring", "Initializing Advanced Leave Management"),
      session_(session) {
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
}

Layout frmConfiguring::layout() {
    return column({item(lblProgress), item(barProgress), row({space(), item(cmdCancel)})});
}

void frmConfiguring::cmdCancel_Click() {
    cancelled_ = true;
}

void frmConfiguring::onActivate() {
    ConfigurationPass pass(session_, *this);
    guard([&] { pass.Run(); });
    mayGoOn_ = pass.OptionsLoaded() && !cancelled_;
    close();
}

void frmConfiguring::status(const std::string& text) {
    lblProgress.caption = text;
    frontEnd().refresh(*this);
}

void frmConfiguring::step(size_t done, size_t total) {
    barProgress.step(done, total);
}

}  // namespace owb
