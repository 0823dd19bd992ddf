// The employee in formulas: classifications, custom columns and queries, dates, and the statutory
// flags as they take effect in the month (provident fund, state insurance, professional tax).
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "formula/CustomQuery.h"
#include "formula/clsEvalFormula_task.h"
#include "session/modOWBSetting.h"

namespace owb {

namespace {

std::string replaced(std::string text, std::string_view what, const std::string& with) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

// A flag that is kept in three places: rows with an effective month win, then a changed value that
// has taken effect, then the employee's own.
std::string flagQuery(const char* column, const std::string& effective, const char* overrides,
                      const char* overrideMonth) {
    std::string sql =
        "SELECT CASE WHEN EmpPF = 1 THEN 'Y' ELSE 'N' END AS PFYN FROM (SELECT CASE WHEN EMPPF = "
        "-2 THEN CASE WHEN EXT = -1 THEN PFM ELSE EXT END ELSE EmpPF END EMPPF FROM (SELECT "
        "EMPID,<col> PFM,CASE WHEN EXISTS (SELECT <col> FROM MAS_EMPLOYEEEXT WHERE EMPID = "
        "EMP.EMPID AND <col> <> EMP.<col> AND <eff> <= <M> )THEN (SELECT <col> FROM "
        "MAS_EMPLOYEEEXT WHERE EMPID = EMP.EMPID AND <col> <> EMP.<col> AND <eff> <= <M>) ELSE -1 "
        "END EXT,CASE WHEN EXISTS (SELECT TOP 1 <col> FROM <over> WHERE EMPID = EMP.EMPID AND "
        "<from> <= <M> ORDER BY <from> DESC) THEN (SELECT TOP 1 <col> FROM <over> WHERE EMPID = "
        "EMP.EMPID AND <from> <= <M> ORDER BY <from> DESC) ELSE -2 END EMPPF FROM MAS_EMPLOYEE "
        "EMP WHERE EMPID = <EMPID>) TMP) TMP";
    sql = replaced(sql, "<col>", column);
    sql = replaced(sql, "<eff>", effective);
    sql = replaced(sql, "<over>", overrides);
    return replaced(sql, "<from>", overrideMonth);
}

}  // namespace

void clsEvalFormula::FillClassifications(const Task& task, KeywordTable& vOther) {
    const EmployeeDisplay shown = LoadEmployeeDisplay(session_, task.lngEmpId, task.lngEmpDetId);
    const auto put = [&](const std::string& caption, const std::string& text) {
        vOther.push_back({"EmpDet{" + caption + "}", quotedText(text)});
    };
    const std::string* texts[] = {&shown.DESIGNATION, &shown.OCCUPATION, &shown.DEPARTMENT,
                                  &shown.DIVISION, &shown.GRADE};
    for (size_t i = 0; i < std::size(texts); ++i)
        if (!session_.gExtCaptionUsed[i]) put(session_.gClassCaption[i], *texts[i]);
    put(session_.gClassCaption[5], shown.BRANCHNAME);
    put(session_.gClassCaption[6], shown.ATTHEADNAME);
    put(session_.gOptSet.SALSTRUCTCAP, shown.STRUCTDESC);
    FillExtendedClassifications(task, vOther);
}

void clsEvalFormula::FillExtendedClassifications(const Task& task, KeywordTable& vOther) {
    Recordset captions(session_.gConn,
                       "Select CAPTION,MASTERID From MAS_EXTCAPTION  WHERE EXPEDITORYN = 1 Order "
                       "By MASTERID ");
    if (captions.IsEOF()) return;
    const DateTime versionEnd =
        FirstValue(Sql() << "SELECT EFFTODATE FROM MAS_EMPLOYEEDET WHERE EMPID = " << task.lngEmpId
                         << " AND EMPDETID = " << task.lngEmpDetId,
                   DateTime::fromCivil(2099, 12, 31))
            .toDate();
    const auto monthEnd = parseDate(FnStrMonthEndDate(task.lngMonthYear));
    Recordset rs(session_.gConn,
                 Sql() << "Select * From MAS_EMPLOYEEEXTDET EX WHERE EX.EMPID = " << task.lngEmpId
                       << " AND EX.EFFFROMDATE<= '"
                       << FnStrSqlDate(monthEnd ? std::min(versionEnd, *monthEnd) : versionEnd)
                       << "' ORDER BY EMPEXTID desc ");
    for (; !captions.IsEOF(); captions.MoveNext()) {
        const std::string number = captions.Fields("MASTERID").toText();
        vOther.push_back(
            {"EmpDet{" + captions.Fields("CAPTION").toText() + "}",
             quotedText(rs.Fields("EXTCLASS" + std::string(number.size() < 2 ? "0" : "") + number)
                            .toText())});
    }
}

void clsEvalFormula::FillCustomColumns(const Task& task, KeywordTable& vOther) {
    Recordset rs(session_.gConn,
                 Sql() << "Select * From MAS_EMPLOYEECUSTOM EX WHERE EMPID = " << task.lngEmpId);
    for (Recordset captions(session_.gConn,
                            "SELECT COLNAME,COLID FROM MAS_EMPCUSCAPTION WHERE expryn=1   Order "
                            "By COLID ");
         !captions.IsEOF(); captions.MoveNext())
        vOther.push_back(
            {"EmpCustDet{" + captions.Fields("COLNAME").toText() + "}",
             quotedText(
                 rs.IsEOF()
                     ? ""
                     : fieldText(rs.Fields("FIEld" + captions.Fields("COLID").toText()).value()))});
}

void clsEvalFormula::FillCustomQueries(const Task& task, KeywordTable& vOther) {
    for (Recordset rs(session_.gConn, "Select * From MAS_FORMULACUSTOM  EX WHERE MODULEID = 1");
         !rs.IsEOF(); rs.MoveNext()) {
        std::string query = rs.Fields("FQUERY").toText();
        query = replaced(query, "$EMPID$", task.employee());
        query = replaced(query, "$EMPDETID$", task.version());
        query = replaced(query, "$MONTHYEAR$", task.month());
        query = replaced(query, "$HOSTNAME$", session_.gHostPrefix);
        vOther.push_back({"CustQry{" + rs.Fields("FNAME").toText() + "}",
                          quotedText(fieldText(FnVarCustomQuery(session_, query, 0)))});
    }
}

void clsEvalFormula::FillEmployee(const Task& task, KeywordTable& vOther) {
    const EmployeeDates dates = LoadEmployeeDates(session_, task.lngEmpId);
    // A date that is not set lies far ahead.
    const auto orFar = [](const std::string& date) {
        return dateCall(date.empty() ? "31/DEC/2099" : date);
    };
    vOther.push_back({"Emp{DOJ}", dateCall(dates.DOJ)});
    vOther.push_back({"Emp{DOL}", orFar(dates.DOL)});
    vOther.push_back({"Emp{DORes}", orFar(dates.RESIGNATIONDATE)});
    vOther.push_back({"Emp{DOConf}", orFar(dates.CONFIRMATIONDATE)});
    vOther.push_back({"Emp{DOB}", dates.DOB.empty() ? quotedText("") : dateCall(dates.DOB)});
    vOther.push_back({"Emp{SALCALCFROM}", dateCall(dates.SALCALCFROM)});
    vOther.push_back(
        {"Emp{SEX}",
         quotedText(
             FirstValue(Sql() << "SELECT SEX FROM MAS_EMPLOYEE WHERE EMPID = " << task.lngEmpId, "")
                 .toText())});
}

void clsEvalFormula::FillFlagsAndUnits(const Task& task, KeywordTable& vOther) {
    const auto put = [&](const char* keyword, const std::string& value) {
        vOther.push_back({keyword, quotedText(value)});
    };
    const auto flag = [&](const char* column, const std::string& effective, const char* overrides,
                          const char* overrideMonth) {
        const std::string sql = flagQuery(column, effective, overrides, overrideMonth);
        return FirstValue(replaced(replaced(sql, "<M>", task.month()), "<EMPID>", task.employee()),
                          "N")
            .toText();
    };
    if (task.uses("(PFYN)") || task.uses("(RESPFYN)") || task.uses("(ESIYN)")) {
        put("(PFYN)", flag("PFYN", "YEAR(PFEFFFROM) * 12+ MONTH(PFEFFFROM)", "MAS_PFEFFFROMEXT",
                           "PFEFFFROM"));
        put("(RESPFYN)", flag("PFRESTRICTYN", "PFRESTRICTEFFFROM", "MAS_PFRESTRICTEFFFROMEXT",
                              "PFRESTRICTEFFFROM"));
        // Bare, unlike the others: formulas write (ESIYN), and the parentheses stay.
        put("ESIYN", flag("ESIYN", "ESIEFFFROM", "MAS_ESIEFFFROMEXT", "ESIEFFFROM"));
    }
    if (task.uses("OT1UNIT") || task.uses("OT2UNIT") || task.uses("UNIT{")) FillUnits(task, vOther);
    if (task.uses("(ZEROPENSIONYN)"))
        put("(ZEROPENSIONYN)",
            flag("PFZEROYN", "PFZEROEFFFROM", "MAS_PFZEROEFFFROMEXT", "PFZEROEFFFROM"));
    if (task.uses("(ZEROPTYN)")) put("(ZEROPTYN)", ZeroPtFlag(task));
    if (task.uses("(RESEMPRPFYN)")) put("(RESEMPRPFYN)", EmployerRestrictFlag(task));
    if (task.uses("(ARREAREARNING)")) put("(ARREAREARNING)", ArrearEarning(task));
}

std::string clsEvalFormula::ZeroPtFlag(const Task& task) {
    return FirstValue(Sql() << "SELECT CASE WHEN PTZEROYN = 1 THEN 'Y' ELSE 'N' END AS PTZEROYN "
                               "FROM (SELECT CASE WHEN ISNULL((SELECT ISNULL(PTZEROEFFFROM, 0) "
                               "FROM MAS_EMPLOYEEEXT WHERE EMPID = EMP.EMPID AND PTZEROEFFFROM <= "
                            << task.lngMonthYear
                            << "), 0) > 0 THEN (SELECT  ISNULL(PTZEROYN, 0) FROM MAS_EMPLOYEEEXT "
                               "WHERE EMPID = EMP.EMPID) ELSE ISNULL(EMP.PTZEROYN, 0) END AS "
                               "PTZEROYN FROM MAS_EMPLOYEE EMP WHERE EMPID = "
                            << task.lngEmpId << ") AS TMP",
                      "N")
        .toText();
}

// The employer's share on restricted wages: an employee's own row where the company allows one,
// else the company's rate row.
std::string clsEvalFormula::EmployerRestrictFlag(const Task& task) {
    if (session_.gOptSet.PFCMPRESTEMPYN) {
        const Value own = FirstValue(Sql() << "SELECT TOP 1 ISNULL(PFRESTRICTCMPYN, 0) FROM "
                                              "MAS_PFRESTRICTCMPEFFFROM WHERE EMPID = "
                                           << task.lngEmpId
                                           << " AND PFRESTRICTCMPEFFFROM <= " << task.lngMonthYear
                                           << " ORDER BY PFRESTRICTCMPEFFFROM DESC",
                                     Value());
        if (!own.isNull()) return own.toInt() == 1 ? "Y" : "N";
    }
    return FirstNumber(
               Sql() << "SELECT TOP 1 PFCMPRESTRICTYN FROM MAS_PFESIRATE WHERE MONTHYEAR <= "
                     << task.lngMonthYear << " ORDER BY MONTHYEAR DESC") == 1
               ? "Y"
               : "N";
}

}  // namespace owb
