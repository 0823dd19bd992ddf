#include "siblings/frmCompany.h"

#include "family/modCommon.h"
#include "sample/sample.h"

namespace owb {

namespace {

constexpr const char* kCompanyFiles = "Companies (*.owb);;All files (*)";

}  // namespace

frmCompany::frmCompany(Session& session, FrontEnd& frontEnd)
    : Screen(frontEnd, "frmCompany", "Orvane Wagebook - Open Company"),
      session_(session),
      companies_(session) {
    lstRecent.onDoubleClick = [this] { cmdOpen_Click(); };
    lstRecent.onKey = [this](const std::string& key) {
        if (key == "Enter") cmdOpen_Click();
        return key == "Enter";
    };
    cmdOpen.onClick = [this] { cmdOpen_Click(); };
    cmdFile.onClick = [this] { cmdFile_Click(); };
    cmdSample.onClick = [this] { cmdSample_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout frmCompany::layout() {
    return column({item(lblHint), item(lstRecent, 1),
                   row({item(cmdFile), item(cmdSample), space(), item(cmdOpen), item(cmdClose)})});
}

void frmCompany::onLoad() {
    recent_ = companies_.recent();
    for (const std::string& connection : recent_) lstRecent.add(Companies::inWords(connection));
    lstRecent.current = recent_.empty() ? -1 : 0;
    cmdOpen.enabled = lstRecent.visible = !recent_.empty();
    lblHint.caption = recent_.empty()
                          ? "Open the file of a company, or make a sample company to look around."
                          : "Companies that were open before:";
    if (recent_.empty())
        setFocus(cmdFile);
    else
        setFocus(lstRecent);
}

void frmCompany::choose(const std::string& connection) {
    chosen_ = connection;
    close();
}

void frmCompany::cmdOpen_Click() {
    if (lstRecent.current >= 0) choose(recent_[static_cast<size_t>(lstRecent.current)]);
}

void frmCompany::cmdFile_Click() {
    const std::string file =
        frontEnd().askFile({.title = "Open Company", .suggested = "", .kind = kCompanyFiles});
    if (!file.empty()) choose(Companies::connectionOf(file));
}

void frmCompany::cmdSample_Click() {
    std::string file = frontEnd().askFile({.title = "New Sample Company",
                                           .suggested = "sample.owb",
                                           .save = true,
                                           .kind = kCompanyFiles});
    if (file.empty()) return;
    if (file.find('.', file.rfind('/') + 1) == std::string::npos) file += ".owb";
    lblHint.caption = "Making the sample company ...";
    frontEnd().refresh(*this);
    NoProgress quiet;
    const sample::SampleOptions options = sample::optionsUpTo(FnLngMonthYearOfDate(session_.now()));
    sample::makeSampleFile(file, options, quiet);
    choose(Companies::connectionOf(file));
}

}  // namespace owb
