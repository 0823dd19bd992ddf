// The employee filter, driven by script.
#include <gtest/gtest.h>

#include <sstream>

#include "script/script_front_end.h"
#include "session/modEmployeeViews.h"
#include "siblings/frmFilter.h"
#include "support/payroll.h"

namespace owb {
namespace {

constexpr int32_t kJune = 2024 * 12 + 6;

TEST(EmployeeFilter, KeepsWhoIsListedAndTicked) {
    test::Payroll payroll(kJune, kJune);
    payroll.head({10, 2});
    payroll.head({20, 2});
    for (int id = 1; id <= 12; ++id) payroll.employee(id, "2020-01-01", id % 2 ? 10 : 20);
    payroll.run("UPDATE MAS_EMPLOYEE SET EMPNAME = 'O''Brien' WHERE EMPID = 4");
    Session& session = payroll.session;
    SetHostNames(session);
    CreateFilterObjects(session);
    const std::string evens =
        payroll.value("SELECT ATTHEADNAME FROM MAS_ATTHEAD WHERE ATTHEADID = 20");
    struct Case {
        const char* what;
        std::string script, said, kept, filter;
    };
    for (const Case& c : {
             Case{"all of them: no filter in force", "click cmdApply", "",
                  "1 2 3 4 5 6 7 8 9 10 11 12", "0"},
             {"by head, one unticked",
              "set cmbAttHead " + evens +
                  "\nshow lblListedCount\ncheck fpgEmployee 2 Show "
                  "No\nclick cmdApply",
              "lblListedCount: Listed : 6 | Listed : 6 | Yes | Yes\n", "2 6 8 10 12", "1"},
             {"by name, in any letter case",
              "click cmdSelectAll\nset txtSearch o'B\nclick cmdApply", "", "4", "1"},
             {"nobody: refused, the filter stays", "click cmdClear\nclick cmdApply",
              "box: information|Orvane Wagebook|Select atleast one Employee|OK|OK\n", "4", "1"},
         }) {
        std::istringstream in(c.script + "\n");
        std::ostringstream out;
        ScriptFrontEnd frontEnd(in, out, out);
        frmFilter(session, frontEnd).showModal();
        EXPECT_EQ(out.str(),
                  "open: frmFilter|OrvaneWagebook - Filter\n" + c.said + "close: frmFilter\n")
            << c.what;
        EXPECT_EQ(payroll.rows("SELECT EMPID FROM " + session.gFilterTable +
                               " WHERE FILTERYN1 = 1 ORDER BY EMPID"),
                  c.kept)
            << c.what;
        EXPECT_EQ(session.settings.GetSetting("Settings", "Filter"), c.filter) << c.what;
    }
}

}  // namespace
}  // namespace owb
