// The executable OWBFilter: "1500,True" as its line. Its handle and its end are told as the
// family's programs tell theirs.
#include "app/SettingsShellTalk.h"
#include "app/modInitialize.h"
#include "db/sql_text.h"
#include "session/modEmployeeViews.h"
#include "session/modOWBSetting.h"
#include "session/queries.h"
#include "siblings/frmFilter.h"
#include "siblings/programs/sibling_program.h"

namespace {

constexpr const char* kUsage =
    "Usage: OWBFilter 1500,True\n"
    "\n"
    "The employee filter of the company that the settings name. Screens that list employees start\n"
    "it. Without a display, or with OWB_SCRIPT set, script commands on standard input drive it.\n"
    "\n"
    "  --help     this text\n"
    "  --version  the program's version";

// Where no screen of this host has opened the company yet, there is no filter to set.
void makeFilterObjects(owb::Session& session) {
    using namespace owb;
    if (!FnBlnExistsOrThrow(session, Sql() << "SELECT * FROM SYS.VIEWS WHERE '[' + NAME + ']' = "
                                           << literal(session.gEmployeeView)))
        CreateFilterObjects(session);
}

}  // namespace

int main(int argc, char** argv) {
    using namespace owb;
    return runSibling(argc, argv, "OWBFilter", kUsage, [](Session& session, FrontEnd& frontEnd) {
        OpenSettingsDatabase(session);
        LoadOptSet(session);
        SettingsShellTalk shell(session.settings, session.exeName);
        ReadLaunchSettings(session);  // an extended session has a filter table of its own
        SetHostNames(session);
        makeFilterObjects(session);
        shell.screenOpened("frmFilter");
        frmFilter(session, frontEnd).showModal();
        shell.screenClosed();
        shell.programEnded();
        return 0;
    });
}
