// Salary in formulas: rates, calculated values, units and arrears.
#include "db/numbered_column.h"
#include "db/sql_text.h"
#include "formula/clsEvalFormula_task.h"

namespace owb {

namespace {

// The column of the salary tables that holds a head.
std::string headColumn(bool deduction, int64_t row) {
    if (!deduction && row == 0) return "BASIC";
    if (!deduction && row == 100) return "OT1";
    if (!deduction && row == 101) return "OT2";
    if (!deduction && row == 102) return "GRATUITYPROV";
    return numberedColumn(deduction ? "DCOMP" : "ECOMP", row);
}

std::string arrearsQuery(const std::string& column, bool deduction) {
    if (deduction)
        return "SELECT SUM(ISNULL(" + column +
               ",0)) FROM SLC_ARREARS_D SD INNER JOIN SLC_ARREARS_E SE ON SD.ARREARTRANID = "
               "SE.ARREARTRANID  INNER JOIN MAS_ARREARS MAS ON MAS.ARREARID=SE.ARREARID AND  "
               "ARRCALCTYPE <> 1 WHERE";
    return "SELECT SUM(ISNULL(" + column +
           ",0)) FROM SLC_ARREARS_E ARR, MAS_ARREARS MAS Where MAS.ARREARID=ARR.ARREARID AND  "
           "ARRCALCTYPE <> 1 AND";
}

}  // namespace

void clsEvalFormula::FillSalary(const Task& task, KeywordTable& vSalary) {
    const bool gross = task.uses("(GrossSalary)");
    if ((gross && task.strGrossSource.empty()) || task.uses("Component{")) {
        Recordset rs(session_.gConn,
                     Sql() << "SELECT * FROM SLC_SALARYRATE_E E LEFT JOIN SLC_SALARYRATE_D AS D ON "
                              "D.SalRateID = E.SalRateID WHERE E.EMPID = "
                           << task.lngEmpId << " AND E.EMPDETID = " << task.lngEmpDetId
                           << " And MONTHYEAR = (Select Max(MONTHYEAR) From SLC_SALARYRATE_E Where "
                              "MONTHYEAR <= "
                           << task.lngMonthYear << " And EMPID = " << task.lngEmpId
                           << " AND EMPDETID = " << task.lngEmpDetId << ")");
        if (!rs.IsEOF()) FillSalaryComponents(vSalary, rs, false, false, "");
    }
    if ((gross && !task.strGrossSource.empty()) || task.uses("CV{")) {
        Recordset rs(session_.gConn,
                     Sql() << "Select SE.*,SD.* From SLC_SALARYCALC_E SE, SLC_SALARYCALC_D SD "
                              "Where SE.SALID = SD.SALID And SE.EMPID = "
                           << task.lngEmpId << " And SE.EMPDETID = " << task.lngEmpDetId
                           << " And SE.MONTHYEAR = " << task.lngMonthYear);
        if (!rs.IsEOF()) FillSalaryComponents(vSalary, rs, true, task.blnArrears, task.strFormula);
    }
}

void clsEvalFormula::FillSalaryComponents(KeywordTable& vSalary, Recordset& rsSalary,
                                          bool blnCalculated, bool blnArrears,
                                          const std::string& strFormula) {
    const std::string family = blnCalculated ? "CV" : "Component";
    const std::string heads =
        strFormula.empty() ? "Select * From MAS_SALARYHEAD ORDER BY SALHEADING"
                           : "Select * From MAS_SALARYHEAD WHERE CHARINDEX('{'+SALHEADING+'}'," +
                                 literal(strFormula) + ")>0 ORDER BY SALHEADING ";
    for (Recordset rs(session_.gConn, heads); !rs.IsEOF(); rs.MoveNext()) {
        const bool deduction = rs.Fields("PAYTYPEYN").toInt() != 0;
        const std::string column = headColumn(deduction, rs.Fields("SALHEADROWID").toInt());
        double amount = rsSalary.Fields(column).toDouble();
        if (blnArrears)
            amount +=
                FirstNumber(Sql() << arrearsQuery(column, deduction)
                                  << " EMPID = " << rsSalary.Fields("EMPID").toText()
                                  << " AND EMPDETID = " << rsSalary.Fields("EMPDETID").toText()
                                  << " AND PAIDFOR = " << rsSalary.Fields("MONTHYEAR").toText());
        vSalary.push_back({family + "{" + upperCase(rs.Fields("SALHEADING").toText()) + "}",
                           exprPlainText(amount)});
    }
    vSalary.push_back(
        {"(GrossSalary)",
         exprPlainText(rsSalary.Fields(blnCalculated ? "ETotal" : "TOTALENTERED").toDouble())});
}

void clsEvalFormula::FillUnits(const Task& task, KeywordTable& vOther) {
    vOther.push_back({"OT1UNIT", "0"});
    vOther.push_back({"OT2UNIT", "0"});
    const bool used = !FirstValue(
                           "SELECT STRUCTID FROM  SLC_SALSTRUCTDET DET ,MAS_FORMULA FR WHERE "
                           "FR.FORMULAID=DET.FORMULAID  AND CHARINDEX('UNIT{',FR.FORMULA)>0",
                           Value())
                           .isNull();
    if (!used) return;
    for (Recordset rs(session_.gConn, "SELECT * FROM MAS_SALARYHEAD WHERE CALCFLDTYPE='C'");
         !rs.IsEOF(); rs.MoveNext()) {
        const double units = FirstNumber(
            Sql() << "SELECT UNIT FROM SLC_COMPCALCDET WHERE PAYTYPEYN= "
                  << rs.Fields("PAYTYPEYN").toText()
                  << " AND SALHEADROWID=" << rs.Fields("SALHEADROWID").toText()
                  << " AND STRUCTID=(SELECT structid FROM MAS_EMPLOYEEDET WHERE empid= "
                  << task.lngEmpId << " AND empdetid= " << task.lngEmpDetId
                  << ") AND EMPID= " << task.lngEmpId << " AND MONTHYEAR=" << task.lngMonthYear);
        vOther.push_back({"UNIT{" + rs.Fields("SALHEADING").toText() + "}", exprPlainText(units)});
    }
}

std::string clsEvalFormula::ArrearEarning(const Task& task) {
    return fieldText(FirstValue(Sql()
                                    << "SELECT SUM(ISNULL(NETAMOUNT,0)) FROM MAS_ARREARS "
                                       "M,SLC_ARREARS_E E WHERE M.ARREARID=E.ARREARID AND EMPID = "
                                    << task.lngEmpId << " AND EMPDETID = " << task.lngEmpDetId
                                    << " AND MONTHYEAR = " << task.lngMonthYear,
                                ""));
}

}  // namespace owb
