// The executable OWBFilter: "1500,True" as its line. Its handle and its end are told as the
// family's programs tell theirs.
#include "app/SettingsShellTalk.h"
#include "app/modInitialize.h"
#include "siblings/frmFilter.h"
#include "siblings/programs/sibling_program.h"

int main(int argc, char** argv) {
    using namespace owb;
    return runSibling(
        argc, argv, "OWBFilter", [](Session&) {},
        [](Session& session, FrontEnd& frontEnd) {
            SettingsShellTalk shell(session.settings, session.exeName);
            ReadLaunchSettings(session);  // an extended session has a filter table of its own
            SetHostNames(session);
            shell.screenOpened("frmFilter");
            frmFilter(session, frontEnd).showModal();
            shell.screenClosed();
            shell.programEnded();
        });
}
