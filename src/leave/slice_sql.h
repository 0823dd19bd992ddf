// SQL expressions for what happened in the slice of a ledger row, which the queries of balances and
// the bulk pass share. `row` is the alias of the row (EMPID, LEVID, ATTHEADID, EMPDETID, ALLOTFROM,
// ALLOTTO), `month` an expression for its month key.
#pragma once

#include <string>

namespace owb::slice_sql {

// Days of rows of LEV_DETAILS, alias LD: a month's figure, or the halves.
inline const std::string kDays =
    "SUM(CASE WHEN LD.LEVMONTHLY = 0 OR LD.LEVMONTHLY IS NULL THEN (ISNULL(LD.FIRSTHALFYN, 0) + "
    "ISNULL(LD.SECONDHALFYN, 0)) / 2.0 ELSE LD.LEVMONTHLY END)";

// Joins to a ledger row LA the row PV of the same employee and leave that ends the day before.
// Where versions overlap it is that of the last version.
inline const std::string kRowBefore =
    " LEFT JOIN LEV_ALLOTMENT PV ON PV.ALLOTID = (SELECT TOP 1 ALLOTID FROM LEV_ALLOTMENT P WHERE "
    "P.EMPID = LA.EMPID AND P.LEVID = LA.LEVID AND P.ALLOTTO = LA.ALLOTFROM - 1 ORDER BY "
    "P.EMPDETID DESC, P.ALLOTID DESC) ";

// What LEV_ADJUSTMENT credits less what it debits.
inline std::string adjusted(const std::string& row, const std::string& month) {
    return "ISNULL((SELECT SUM(ISNULL(AJ.ALLOT, 0) - ISNULL(AJ.TAKEN, 0)) FROM LEV_ADJUSTMENT AJ "
           "WHERE AJ.EMPID = " +
           row + ".EMPID AND AJ.ATTHEADID = " + row + ".ATTHEADID AND AJ.EMPDETID = " + row +
           ".EMPDETID AND AJ.LEVID = " + row + ".LEVID AND AJ.MONTHYEAR = " + month + "), 0)";
}

// Days encashed up to a date of the slice.
inline std::string encashed(const std::string& row) {
    return "ISNULL((SELECT SUM(AE.NOOFDAYS) FROM ATT_ENCASH AE, LEV_ALLOTMENT LE WHERE AE.ALLOTID "
           "= LE.ALLOTID AND AE.EMPID = " +
           row + ".EMPID AND LE.EMPID = " + row + ".EMPID AND LE.LEVID = " + row +
           ".LEVID AND AE.UPTODATE BETWEEN " + row + ".ALLOTFROM AND " + row + ".ALLOTTO), 0)";
}

// Days taken in the slice under the row's head; `further` is a condition on LD.
inline std::string availed(const std::string& row, const std::string& further = "") {
    return "ISNULL((SELECT " + kDays +
           " FROM LEV_DETAILS LD, MAS_EMPLOYEEDET ME WHERE LD.EMPID = " + row +
           ".EMPID AND LD.LEVID = " + row +
           ".LEVID AND ME.EMPID = LD.EMPID AND ME.EMPDETID = LD.EMPDETID AND ME.ATTHEADID = " +
           row + ".ATTHEADID AND LD.LEAVEDATE BETWEEN " + row + ".ALLOTFROM AND " + row +
           ".ALLOTTO" + further + "), 0)";
}

// Credit of a compensatory off row (LEVID 2): the compensatory work of its version and dates.
inline std::string compensatoryWork(const std::string& row) {
    return "ISNULL((SELECT " + kDays +
           " FROM LEV_DETAILS LD WHERE LD.LEVID = 3 AND LD.EMPID = " + row +
           ".EMPID AND LD.EMPDETID = " + row + ".EMPDETID AND LD.LEAVEDATE BETWEEN " + row +
           ".ALLOTFROM AND " + row + ".ALLOTTO), 0)";
}

// What a row without predecessor opens with: three sums for its alias, since a date text.
inline std::string openingTaken(const std::string& row, const std::string& since) {
    return "ISNULL((SELECT SUM(AJ.TAKEN) FROM LEV_ADJUSTMENT AJ WHERE AJ.EMPID = " + row +
           ".EMPID AND AJ.LEVID = " + row + ".LEVID AND AJ.ATTHEADID = " + row +
           ".ATTHEADID AND AJ.ASONDATE >= " + since + " AND AJ.ASONDATE <= " + row +
           ".ALLOTFROM - 1), 0)";
}
inline std::string openingAvailed(const std::string& row, const std::string& since) {
    return "ISNULL((SELECT " + kDays + " FROM LEV_DETAILS LD WHERE LD.EMPID = " + row +
           ".EMPID AND LD.LEVID = " + row + ".LEVID AND LD.EMPDETID = " + row +
           ".EMPDETID AND LD.LEAVEDATE BETWEEN " + since + " AND " + row + ".ALLOTFROM - 1), 0)";
}
inline std::string openingBalance(const std::string& row) {
    return "ISNULL((SELECT SUM(OB.OPBAL) FROM ATT_OPBAL OB WHERE OB.EMPID = " + row +
           ".EMPID AND OB.LEVID = " + row + ".LEVID), 0)";
}

}  // namespace owb::slice_sql
