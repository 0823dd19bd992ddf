// The passes with each statement failing in turn, and with others at work between two statements.
#include <gtest/gtest.h>

#include "leave/modLeaveFunctions.h"
#include "support/disturbed_company.h"
#include "support/rehearsal.h"

namespace owb {
namespace {

using test::DisturbedCompany;
using test::Rehearsal;

void recalculate(Session& session) {
    NoProgress progress;
    UpdateDayDetails(session, progress, true, 0);
    UpdateMonthDays(session, progress);
    ProcessAllotmentsOld(session, progress, "");
}

TEST(DisturbedPasses, FailAnywhere) {
    DisturbedCompany company;
    Rehearsal(
        company, [&] { recalculate(company.session); }, 5)
        .failsAnywhere();
}

TEST(DisturbedPasses, AStartFailsAnywhere) {
    DisturbedCompany company;
    Rehearsal rehearsal(
        company, [] {}, 5);
    Rehearsal(
        company, [&] { rehearsal.heal(); }, 5)
        .failsAnywhere();
}

TEST(DisturbedPasses, OthersChangeMastersDuringAStart) {
    for (const char* sql :
         {"UPDATE MAS_EMPLOYEE SET DOL = '2024-06-30' WHERE EMPID = 3",
          "UPDATE MAS_EMPLOYEEDET SET EFFTODATE = '2024-06-10' WHERE EMPID = 3 INSERT INTO "
          "MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, ATTHEADID, BRANCHID) VALUES (3, 2, "
          "'2024-06-11', 12, 1) INSERT INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR, "
          "EDITMODEYN) VALUES (99, 3, 2, 24294, 0)",
          "UPDATE MAS_MONTHYEAR SET TDSPORTYN = 1 WHERE MONTHYEAR = 24294"}) {
        SCOPED_TRACE(sql);
        DisturbedCompany company;
        Rehearsal rehearsal(company, [] {});
        rehearsal.heal();
        company.run("UPDATE SLC_SALARYCALC_E SET MONTHYEAR = 24295 WHERE EMPID = 4");
        Rehearsal(
            company, [&] { rehearsal.heal(); }, 3)
            .othersWorkAnywhere([&](Session& other) { other.gConn.ExecuteAtomic(sql); });
    }
}

TEST(DisturbedPasses, OthersWorkAnywhere) {
    struct Work {
        const char *what, *sql;
    };
    for (const Work& work :
         {Work{"a holiday",
               "INSERT INTO ATT_HOLIDAY (HOLIDAYID, HOLIDAYDATE, GENERALYN) VALUES (9, "
               "'2024-06-12', 1) UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE MONTHYEAR = 24294 "
               "UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE MONTHYEAR = 24294 UPDATE "
               "LEV_ALLOTMENT SET EDITMODEYN = 1"},
          {"a head's rule",
           "UPDATE MAS_ATTHEAD SET NODFORCALC = 4 WHERE ATTHEADID = 12 UPDATE LEV_MONTHDET SET "
           "EDITMODEYN = 1 UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1"},
          {"an option",
           "UPDATE ATT_OPTSETTINGS SET COCWYN = 1 - COCWYN, HOLPRIORITY = 1 UPDATE LEV_MONTHDET "
           "SET EDITMODEYN = 1 UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1"},
          {"a weekly off",
           "UPDATE LEV_WEEKLYHLD SET FH2YN = 1 - FH2YN UPDATE LEV_MONTHDET SET EDITMODEYN = 1 "
           "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1"},
          {"a leave setting",
           "UPDATE LEV_SETTINGS SET ALLOTRNDTYPE = 4, COYN = 1 - COYN WHERE LEVID = 5 UPDATE "
           "LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE LEVID = 5"},
          {"a leave kind",
           "UPDATE ATT_DEFINITION SET LEVSHORT = 'CX', AFFECTSALARYYN = 1 WHERE LEVID = 5 UPDATE "
           "LEV_MONTHDET SET EDITMODEYN = 1 UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 UPDATE "
           "LEV_ALLOTMENT SET EDITMODEYN = 1"},
          {"leave of one day",
           "INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN) "
           "VALUES (1, 1, 5, '2024-06-07', 1, 1) UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE "
           "EMPID = 1 AND MONTHYEAR = 24294 UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE EMPID = "
           "1 AND MONTHYEAR = 24294 UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EMPID = 1"},
          {"hours of one day",
           "UPDATE ATT_OVERTIME SET OTDAY21 = 11.30 WHERE ATTTRANNO = (SELECT ATTTRANNO FROM "
           "ATT_DAYTODAY WHERE EMPID = 1 AND EMPDETID = 2 AND MONTHYEAR = 24294) UPDATE "
           "ATT_DAYTODAY SET EDITMODEYN = 1 WHERE EMPID = 1 UPDATE LEV_MONTHDET SET EDITMODEYN = 1 "
           "WHERE EMPID = 1"},
          {"a lock", "UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = 24294"}}) {
        SCOPED_TRACE(work.what);
        DisturbedCompany company;
        Rehearsal(
            company, [&] { recalculate(company.session); }, 2)
            .othersWorkAnywhere([&](Session& other) { other.gConn.ExecuteAtomic(work.sql); });
    }
}

}  // namespace
}  // namespace owb
