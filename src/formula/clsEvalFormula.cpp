#include "formula/clsEvalFormula.h"

#include "base/number_text.h"
#include "calendar/clsNODNDP.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "formula/clsEvalFormula_task.h"
#include "session/queries.h"

namespace owb {

clsEvalFormula::clsEvalFormula(Session& session)
    : session_(session), exprEval_([&session] { return session.now(); }) {}

clsEvalFormula& FnEvalFormula(Session& session) {
    if (!session.gEvalFormula) session.gEvalFormula = std::make_shared<clsEvalFormula>(session);
    return *session.gEvalFormula;
}

Value clsEvalFormula::FirstValue(const std::string& sql, const Value& defaultValue) {
    return FnVarValueOrThrow(session_, sql, defaultValue);
}

bool clsEvalFormula::AdvancedLeave(int32_t lngMonthYear) const {
    return session_.gFeature.ADVLEAVEYN && session_.gFeature.LVSTARTMNYEAR <= lngMonthYear;
}

double clsEvalFormula::FnDblEvalFormula(int32_t lngFormulaId, int64_t lngEmpId, int32_t lngEmpDetId,
                                        int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                                        bool blnArrears, const std::string& strGrossSource,
                                        FormulaTrace* trace) {
    FormulaTrace own;
    FormulaTrace& told = trace ? *trace : own;
    told = {};
    try {
        Task task{
            FirstValue(
                Sql() << "Select FORMULA From MAS_FORMULA Where FORMULAID = " << lngFormulaId, "0")
                .toText(),
            "",
            lngEmpId,
            lngEmpDetId,
            lngMonthYear,
            dteFrom,
            dteTo,
            blnArrears,
            strGrossSource};
        task.strCapitals = upperCase(task.strFormula);
        return Evaluate(task, told);
    } catch (const DbError& error) {
        told.failure = error.what();
        session_.boxes.show({error.what()});
        return 0;
    }
}

double clsEvalFormula::FnDblEvalSalFormula(int32_t lngFormulaId, int64_t lngEmpId,
                                           int32_t lngMonthYear, FormulaTrace* trace) {
    DateTime dteFrom, dteTo;
    clsNODNDP(session_).SetMonthCalcDates(lngMonthYear, dteFrom, dteTo);
    const int64_t lngEmpDetId =
        FirstValue(Sql() << "Select MAX(EmpDetID) From SLC_SALARYCALC_E Where EMPID = " << lngEmpId
                         << " And MONTHYEAR = " << lngMonthYear,
                   0)
            .toInt();
    if (lngEmpDetId <= 0) return 0;
    return FnDblEvalFormula(lngFormulaId, lngEmpId, static_cast<int32_t>(lngEmpDetId), lngMonthYear,
                            dteFrom, dteTo, false, "", trace);
}

double clsEvalFormula::Evaluate(Task& task, FormulaTrace& trace) {
    trace.strFormula = task.strFormula;
    const bool otherData = task.uses("Days{") || task.uses("Leave{") || task.uses("ReimAllot{");
    int32_t lngAttHeadId = 0;
    if (otherData)
        lngAttHeadId = static_cast<int32_t>(
            FirstValue(Sql() << "Select ATTHEADID From MAS_EMPLOYEEDET Where EMPID = "
                             << task.lngEmpId << " And EMPDETID = " << task.lngEmpDetId,
                       0)
                .toInt());
    std::string strPTGroup;
    if (task.uses("(PTGroup)"))
        strPTGroup =
            FirstValue(Sql() << "Select PTGRPNAME From MAS_PTGRP PTG, MAS_BRANCH B Where  "
                                "PTG.PTGRPID = B.PTGROUPID And B.BRANCHID In (Select BRANCHID From "
                                "MAS_EMPLOYEEDET Where EMPID = "
                             << task.lngEmpId << " And EMPDETID = " << task.lngEmpDetId << ")",
                       "")
                .toText();
    if (otherData) {
        double dblSalCalDays = 0, dblNOD = 0, dblNDP = 0;
        ReadDays(task, lngAttHeadId, dblSalCalDays, dblNOD, dblNDP);
        FillOtherData(trace.vOther, task.lngEmpId, lngAttHeadId, task.lngEmpDetId,
                      task.lngMonthYear, task.dteFrom, task.dteTo, dblSalCalDays, dblNOD, dblNDP,
                      false);
    }
    trace.vSalary.push_back({"(PTGroup)", quotedText(strPTGroup)});
    trace.vSalary.push_back({"(SalaryMonth)", task.month()});
    FillSalary(task, trace.vSalary);

    if (task.uses("EmpDet{")) FillClassifications(task, trace.vOther);
    if (task.uses("EmpCustDet{")) FillCustomColumns(task, trace.vOther);
    if (task.uses("CustQry{")) FillCustomQueries(task, trace.vOther);
    if (task.uses("Emp{")) FillEmployee(task, trace.vOther);
    FillFlagsAndUnits(task, trace.vOther);

    trace.result = exprEval_.EvaluateExpression(task.strFormula, &trace.vOther, &trace.vSalary);
    const std::string text = trace.result.display();
    return text.compare(0, 6, "ERROR:") == 0 ? 0 : textToNumber(text);
}

void clsEvalFormula::ReadDays(const Task& task, int32_t lngAttHeadId, double& dblSalCalDays,
                              double& dblNOD, double& dblNDP) {
    const int64_t tight =
        FirstValue(
            Sql() << "SELECT ATTNTIGHTYN FROM MAS_ATTHEAD WHERE ATTHEADID = " << lngAttHeadId, 0)
            .toInt();
    if (tight == 1) {
        bool workingDaysOnly = false, prorateAlt = false, prorate = true;
        int basis = 0;
        if (AdvancedLeave(task.lngMonthYear))
            FnNodNdp(session_).SetNODNDP(dblSalCalDays, dblNOD, dblNDP, task.lngEmpId,
                                         task.lngEmpDetId, task.lngMonthYear, lngAttHeadId,
                                         task.dteFrom, task.dteTo, workingDaysOnly, prorateAlt,
                                         prorate, basis);
        else
            clsNODNDP(session_).SetNODNDP(dblSalCalDays, dblNOD, dblNDP, task.lngEmpId,
                                          task.lngEmpDetId, task.lngMonthYear, lngAttHeadId,
                                          task.dteFrom, task.dteTo, workingDaysOnly, prorate);
        return;
    }
    const auto stored = [&](const char* column) {
        return FirstNumber(Sql() << "SELECT " << column << " FROM SLC_SALARYCALC_E WHERE EMPID = "
                                 << task.lngEmpId << " AND EMPDETID = " << task.lngEmpDetId
                                 << " AND MONTHYEAR = " << task.lngMonthYear);
    };
    dblSalCalDays = stored("SALCALDAYS");
    dblNOD = stored("NOD");
    dblNDP = stored("NDP");
}

std::string clsEvalFormula::FnStrMonthEndDate(int32_t lngMonthYear) {
    if (session_.gFeature.CALCINMIDYN)
        return fieldText(FirstValue(
            Sql() << "SELECT CALCENDDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = " << lngMonthYear,
            ""));
    const int year = (lngMonthYear - 1) / 12, month = (lngMonthYear - 1) % 12 + 1;
    return FnStrSqlDate(DateTime::fromCivil(year, month, daysInMonth(year, month)));
}

}  // namespace owb
