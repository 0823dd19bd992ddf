#include "exchange/screens/frmProgress.h"

namespace owb {

namespace {

constexpr size_t kDoneAtOnce = 500;  // rows; fewer are done before a window stands

}  // namespace

frmProgress::frmProgress(FrontEnd& frontEnd, const std::string& title, Job job)
    : Screen(frontEnd, "frmProgress", title), job_(std::move(job)) {}

Layout frmProgress::layout() {
    return column({item(lblStatus), item(barProgress), row({space(), item(cmdCancel)})});
}

void frmProgress::onActivate() {
    guard([this] { job_(*this); });
    close();
}

void frmProgress::step(size_t done, size_t total) {
    barProgress.step(done, total);
    frontEnd().refresh(*this);
}

void RunShown(FrontEnd& frontEnd, const std::string& title, size_t rows,
              const frmProgress::Job& job) {
    if (rows > kDoneAtOnce) return frmProgress(frontEnd, title, job).showModal();
    NoProgress unseen;
    job(unseen);
}

}  // namespace owb
