#include "leave/ledger_checks.h"

#include "leave/slice_sql.h"

namespace owb {

namespace {

// A row opens with what the row before closed less what lapsed on it.
std::string brokenLinks() {
    return "SELECT COUNT(*) FROM (SELECT LA.COLEV, PV.LAPSE, [dbo].FnDblRndOff(PV.ALLOTLEV + "
           "PV.COLEV + " +
           slice_sql::adjusted("PV", "[dbo].FnLngMonthYear(PV.ALLOTFROM, PV.ALLOTTO)") + " - (" +
           slice_sql::encashed("PV") + " + " + slice_sql::availed("PV") +
           "), LS.RNDTYPE) AS CLSBAL FROM LEV_ALLOTMENT LA INNER JOIN LEV_ALLOTMENT PV ON PV.EMPID "
           "= LA.EMPID AND PV.LEVID = LA.LEVID AND PV.ALLOTTO = LA.ALLOTFROM - 1 INNER JOIN "
           "LEV_SETTINGS LS ON LS.LEVID = PV.LEVID AND LS.ATTHEADID = PV.ATTHEADID AND "
           "LS.MONTHYEAR = (SELECT MAX(MONTHYEAR) FROM LEV_SETTINGS WHERE LEVID = PV.LEVID AND "
           "ATTHEADID = PV.ATTHEADID AND MONTHYEAR <= [dbo].FnLngMonthYear(LA.ALLOTFROM, "
           "LA.ALLOTTO)) WHERE LA.EDITMODEYN = 0 AND PV.EDITMODEYN = 0) T WHERE T.COLEV <> "
           "T.CLSBAL - T.LAPSE";
}

// Rows (" FROM ... WHERE ...") counted, and the employees that a column of them names.
LedgerCheck named(const char* what, const std::string& employee, const std::string& rows) {
    return {what, "SELECT COUNT(*)" + rows, "SELECT DISTINCT " + employee + rows + " ORDER BY 1"};
}

}  // namespace

const std::vector<LedgerCheck>& FnLedgerChecks() {
    static const std::vector<LedgerCheck> checks = {
        {"ledger rows that end before they begin",
         "SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE ALLOTTO < ALLOTFROM"},
        {"ledger rows that begin within another of their employee and leave",
         "SELECT COUNT(*) FROM LEV_ALLOTMENT A, LEV_ALLOTMENT B WHERE A.EMPID = B.EMPID AND "
         "A.LEVID = B.LEVID AND B.ALLOTFROM BETWEEN A.ALLOTFROM AND A.ALLOTTO AND A.ALLOTID <> "
         "B.ALLOTID"},
        {"ledger rows without figures",
         "SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 0 AND (ACTALLOTLEV IS NULL OR "
         "ALLOTLEV IS NULL OR COLEV IS NULL OR LAPSE IS NULL)"},
        {"ledger rows that do not open with what the row before closed", brokenLinks()},
        {"ledger rows on which leave lapsed though no row follows",
         "SELECT COUNT(*) FROM LEV_ALLOTMENT LA WHERE LA.EDITMODEYN = 0 AND LA.LAPSE <> 0 AND NOT "
         "EXISTS (SELECT * FROM LEV_ALLOTMENT NX WHERE NX.EMPID = LA.EMPID AND NX.LEVID = "
         "LA.LEVID AND NX.ALLOTFROM = LA.ALLOTTO + 1)"},
        named("encashments that hang on another employee's ledger row", "AE.EMPID",
              " FROM ATT_ENCASH AE, LEV_ALLOTMENT LA WHERE LA.ALLOTID = AE.ALLOTID AND LA.EMPID <> "
              "AE.EMPID"),
        named("encashments that hang on another slice than the one that holds their day",
              "AE.EMPID",
              " FROM ATT_ENCASH AE, LEV_ALLOTMENT LA WHERE LA.ALLOTID = AE.ALLOTID AND LA.EMPID = "
              "AE.EMPID AND AE.UPTODATE NOT BETWEEN LA.ALLOTFROM AND LA.ALLOTTO AND EXISTS (SELECT "
              "* FROM LEV_ALLOTMENT HOLDS WHERE HOLDS.EMPID = LA.EMPID AND HOLDS.LEVID = LA.LEVID "
              "AND AE.UPTODATE BETWEEN HOLDS.ALLOTFROM AND HOLDS.ALLOTTO)"),
    };
    return checks;
}

const std::vector<LedgerCheck>& FnLedgerRemarks() {
    static const std::vector<LedgerCheck> remarks = {
        named("salary rows without a version of their employee, which have no month and no ledger "
              "row",
              "SE.EMPID",
              " FROM SLC_SALARYCALC_E SE WHERE NOT EXISTS (SELECT * FROM MAS_EMPLOYEEDET MD WHERE "
              "MD.EMPID = SE.EMPID AND MD.EMPDETID = SE.EMPDETID)"),
        named(
            "ledger rows that open from the opening balance since the month before has none: what "
            "stood before no longer counts",
            "LA.EMPID",
            " FROM LEV_ALLOTMENT LA WHERE NOT EXISTS (SELECT * FROM LEV_ALLOTMENT PV WHERE "
            "PV.EMPID = LA.EMPID AND PV.LEVID = LA.LEVID AND PV.ALLOTTO = LA.ALLOTFROM - 1) AND "
            "EXISTS (SELECT * FROM LEV_ALLOTMENT PV WHERE PV.EMPID = LA.EMPID AND PV.LEVID = "
            "LA.LEVID AND PV.ALLOTTO < LA.ALLOTFROM)"),
        {"payroll months that begin within their own calendar month, not on its 1st: periods of "
         "leave are not shifted to them",
         "SELECT COUNT(*) FROM MAS_MONTHYEAR WHERE DAY(CALCSTARTDATE) > 1 AND YEAR(CALCSTARTDATE) "
         "* "
         "12 + MONTH(CALCSTARTDATE) = MONTHYEAR"},
    };
    return remarks;
}

}  // namespace owb
