// A small company in which every pass has something to do: heads of every type; versions that
// change in mid-month; defaults to fill; rows to repair, to make and to take away.
#pragma once

#include <string>

#include "support/payroll.h"

namespace owb::test {

class DisturbedCompany : public Payroll {
  public:
    static constexpr int32_t kJune = 2024 * 12 + 6, kJuly = kJune + 1;

    DisturbedCompany() : Payroll(kJune, kJuly) {
        for (int type : {1, 2, 3, 4}) head({10 + type, type, type + 2});
        setHead(12, "OT1YN = 1");
        setHead(13, "OT1YN = 1, OT2YN = 1, FULLDAYOTYN = 1, FULLATTSALAFFYN = 1");
        setOptions(12, "LOADDEFYN = 1, DEFVAL = 1");
        setOptions(13, "LOADDEFYN = 1, DEFVAL = 0, SPLOTYN = 1, WHOT2YN = 1");
        weekly(12, 1, "FS FS FS FS FS");
        weekly(13, 7, "FS -S FS F- --");
        holiday(1, "2024-06-17");
        leaveKind(5, "CL", false);
        for (int h : {11, 12, 13, 14})
            run("INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, AUTOALLOTYN, ALLOTTYPE, "
                "ALLOTON, COYN, LAPSEMONTH, MINDAYS) VALUES (5, " +
                std::to_string(h) +
                ", 24294, 1, 1, 1, 1, 6, 3) INSERT INTO LEV_ALLOTCONFIG "
                "(EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, PERIOD, NOL) VALUES (24294, 5, " +
                std::to_string(h) + ", 1, 30, 2)");
        employee(1, "2020-01-01", 12);
        version(1, 2, "2024-06-16", 13);
        employee(2, "2024-06-25", 13, "2024-07-05");
        employee(3, "2020-01-01", 14);
        employee(4, "2020-01-01", 11);
        salary(1, 1, kJune, kJune);
        salary(1, 2, kJune, kJuly);
        salary(2, 1, kJune, kJuly);
        salary(3, 1, kJune, kJune);
        salary(4, 1, kJuly, kJuly);
        reconcile();
        hours(1, 1, kJune, 4, "2.5");
        hours(1, 2, kJune, 20, "9.30");
        leave(1, 0, 5, "2024-06-05", "F");
        leave(3, 1, 1, "2024-06-30", "1.5");
        run("DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 4");
        salary(4, 1, kJune, kJune);
        run("UPDATE ATT_DAYTODAY SET DAY18 = 'H'");
        run("INSERT INTO RMB_MASTER (RMBID, EDITMODEYN) VALUES (1, 0)");
    }
};

}  // namespace owb::test
