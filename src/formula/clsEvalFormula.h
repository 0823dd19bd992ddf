// Turns a stored formula (MAS_FORMULA) into a number for one employee version and month. Keywords
// such as `Component{BASIC}`, `Leave{CL}` or `(SalaryMonth)` stand for values of the database; only
// those that the text uses are fetched, and an expression over them is evaluated by clsExprEval.
// Nothing is written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/date_time.h"
#include "base/value.h"
#include "formula/clsExprEval.h"

namespace owb {

struct Session;
class Recordset;

// What an evaluation went through, for those who write formulas.
struct FormulaTrace {
    std::string strFormula;
    KeywordTable vOther;   // the first table
    KeywordTable vSalary;  // the second table
    ExprValue result;      // what the expression gave; a text "ERROR: ..." when it failed
    std::string failure;   // a query that failed; "" none
};

class clsEvalFormula {
  public:
    explicit clsEvalFormula(Session& session);

    // The formula's number; dteFrom to dteTo is the span of leave and holiday counts. A formula
    // that cannot be evaluated and one that does not exist give 0. A failing query is told in a box
    // and gives 0. blnArrears adds arrears paid for the month to CV{}; strGrossSource, when not
    // empty, takes (GrossSalary) from the calculated salary instead of the rates.
    double FnDblEvalFormula(int32_t lngFormulaId, int64_t lngEmpId, int32_t lngEmpDetId,
                            int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                            bool blnArrears = false, const std::string& strGrossSource = "",
                            FormulaTrace* trace = nullptr);
    // The same over the month's period for the employee's last version that has a salary row in the
    // month; 0 when there is none.
    double FnDblEvalSalFormula(int32_t lngFormulaId, int64_t lngEmpId, int32_t lngMonthYear,
                               FormulaTrace* trace = nullptr);

    // Leave, holidays, reimbursements and day counts, put behind what the table holds. With the
    // verify flag every Leave{} is 1 and nothing is counted for it. Throws DbError.
    void FillOtherData(KeywordTable& vOther, int64_t lngEmpId, int32_t lngAttHeadId,
                       int32_t lngEmpDetId, int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo,
                       double dblSalCalDays, double dblNOD, double dblNDP, bool blnVerify);
    // CV{} (calculated) or Component{} (rates) of a salary row, and (GrossSalary). An empty formula
    // text loads all heads, any other those that it names. Throws DbError.
    void FillSalaryComponents(KeywordTable& vSalary, Recordset& rsSalary, bool blnCalculated,
                              bool blnArrears, const std::string& strFormula);
    // "DD/Mmm/YYYY".
    std::string FnStrMonthEndDate(int32_t lngMonthYear);

  private:
    struct Task;  // one evaluation

    double Evaluate(Task& task, FormulaTrace& trace);
    void ReadDays(const Task& task, int32_t lngAttHeadId, double& dblSalCalDays, double& dblNOD,
                  double& dblNDP);
    bool AdvancedLeave(int32_t lngMonthYear) const;
    double LeaveTaken(int64_t lngEmpId, int32_t lngEmpDetId, int32_t lngAttHeadId, bool blnMonthly,
                      int32_t lngMonthYear, DateTime dteFrom, DateTime dteTo, int lngLevId);
    bool StructureUses(const std::string& word, int64_t lngEmpId, int32_t lngEmpDetId);
    void FillReimbursements(KeywordTable& vOther, int64_t lngEmpId, int32_t lngMonthYear);

    // The groups behind the other data, each when the text needs it.
    void FillSalary(const Task& task, KeywordTable& vSalary);
    void FillClassifications(const Task& task, KeywordTable& vOther);
    void FillExtendedClassifications(const Task& task, KeywordTable& vOther);
    void FillCustomColumns(const Task& task, KeywordTable& vOther);
    void FillCustomQueries(const Task& task, KeywordTable& vOther);
    void FillEmployee(const Task& task, KeywordTable& vOther);
    void FillFlagsAndUnits(const Task& task, KeywordTable& vOther);
    void FillUnits(const Task& task, KeywordTable& vOther);
    std::string ZeroPtFlag(const Task& task);
    std::string EmployerRestrictFlag(const Task& task);
    std::string ArrearEarning(const Task& task);

    Value FirstValue(const std::string& sql, const Value& defaultValue);
    double FirstNumber(const std::string& sql) { return FirstValue(sql, 0).toDouble(); }

    Session& session_;
    clsExprEval exprEval_;
};

// The session's shared instance, made on first use.
clsEvalFormula& FnEvalFormula(Session& session);

}  // namespace owb
