// A payroll with leave rules in a line each, its ledger made and worked out either way.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "leave/ledger_checks.h"
#include "leave/modLeaveFunctions.h"
#include "support/payroll.h"

namespace owb::test {

enum class Way { Bulk, RowByRow };

class LedgerCompany : public Payroll {
  public:
    LedgerCompany(int32_t from, int32_t to) : Payroll(from, to) {}

    // A leave with settings for a head from a month on: zeros, then "ALLOTTYPE = 1, ALLOTON = 3".
    void rule(int leave, int head, int32_t since, const std::string& assignments) {
        const std::string key = " WHERE LEVID = " + text(leave) + " AND ATTHEADID = " + text(head) +
                                " AND MONTHYEAR = " + text(since);
        if (value("SELECT COUNT(*) FROM ATT_DEFINITION WHERE LEVID = " + text(leave)) == "0")
            leaveKind(leave, "L" + text(leave), false);
        run("INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, AUTOALLOTYN, ALLOTTYPE, "
            "ALLOTON, ALLOTASPER, ALLOTFOR, ALLOTRNDTYPE, MINLEVDAYS, COYN, RNDTYPE, MINDATETYPE, "
            "MINMONTH, MINDAYS, LAPSEMONTH, LAPSELIMIT, LAPSENEGATIVE) VALUES (" +
            text(leave) + ", " + text(head) + ", " + text(since) +
            ", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)");
        if (!assignments.empty()) run("UPDATE LEV_SETTINGS SET " + assignments + key);
    }
    // The number of leaves of the settings' type; effFrom a month key, or a year (yearly).
    void figure(int leave, int head, int32_t effFrom, const std::string& nol,
                const std::string& period = "30") {
        run("INSERT INTO LEV_ALLOTCONFIG (EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, ALLOTON, PERIOD, "
            "NOL, FID, QUERYYN) SELECT TOP 1 " +
            text(effFrom) +
            ", LEVID, ATTHEADID, ALLOTTYPE, CASE WHEN ALLOTTYPE IN (2, 4) THEN "
            "ALLOTON ELSE 0 END, " +
            period + ", " + nol + ", 0, 0 FROM LEV_SETTINGS WHERE LEVID = " + text(leave) +
            " AND ATTHEADID = " + text(head) + " ORDER BY MONTHYEAR DESC");
    }
    // Steps of the configuration pass that make the ledger's rows.
    void ledgerRows() {
        DeleteUnallottedLeaves(session);
        InsertOpeningBalances(session);
        InsertAllotFromDate(session);
        UpdateAllotFromDate(session);
        InsertAvailFromDate(session);
        UpdateAvailFromDate(session);
        ReconcileLedgerRows(session, [](const char*) {});
        DeleteOrphanedEncashments(session);
    }
    void process(Way way) {
        NoProgress progress;
        if (way == Way::Bulk) ProcessAllotments(session, progress);
        ProcessAllotmentsOld(session, progress, way == Way::Bulk ? "" : " ");
        for (const LedgerCheck& check : FnLedgerChecks())
            EXPECT_EQ(value(check.count), "0") << check.what;
    }
    // Everything marked and every figure wrong.
    void spoil() {
        run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1, ALLOTLEV = CASE WHEN EXISTS (SELECT * FROM "
            "LEV_SETTINGS LS WHERE LS.LEVID = LEV_ALLOTMENT.LEVID AND (LS.AUTOALLOTYN = 1 OR "
            "LS.LEVID = 2)) THEN 7.77 ELSE ALLOTLEV END, COLEV = 8.88, LAPSE = 9.99");
    }
    std::string ledger() {
        return rows(
            "SELECT EMPID, LEVID, ALLOTFROM, ALLOTTO, EMPDETID, ATTHEADID, ACTALLOTLEV, "
            "ALLOTLEV, COLEV, LAPSE, EDITMODEYN FROM LEV_ALLOTMENT ORDER BY EMPID, LEVID, "
            "ALLOTFROM");
    }
    // A column of an employee's rows of one leave, in order: "1.00 0.50".
    std::string column(const std::string& expression, int employee, int leave,
                       const std::string& condition = "") {
        return rows("SELECT " + expression + " FROM LEV_ALLOTMENT WHERE EMPID = " + text(employee) +
                    " AND LEVID = " + text(leave) + condition + " ORDER BY ALLOTFROM");
    }

    static std::string text(int64_t n) { return std::to_string(n); }
};

}  // namespace owb::test
