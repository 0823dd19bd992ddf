// A pass reads what a block of rows rests on, works the rows out and clears their marks. Meanwhile
// others save: a mark that they set again on a row of the block is not to be seen in the row. So
// the pass takes a stamp of everything that the block rests on before it reads, and clears the
// marks in one transaction with finding the same stamp again. When it differs, the block is worked
// out once more.
//
// A stamp is a text of sums over rows; each sum changes with any column of any row that counts.
#pragma once

#include <functional>
#include <string>

namespace owb {

struct Session;

class BlockStamp {
  public:
    // What the rows rest on, beside the rules that hold for all (heads, options, months, holidays,
    // weekly offs, kinds of leave). The employees' own rotating offs count as rules, for their
    // answers are kept like them.
    struct Scope {
        std::string strEmployees;    // condition on EMPID (" AND EMPID = 1"), "" all
        std::string strDays;         // condition on LEAVEDATE, "" all
        std::string strMarked;       // query of one number over the marked rows, "" none
        bool blnHours = false;       // hours of the registers count
        bool blnLeaveRules = false;  // settings and figures of leaves and encashments count
        bool blnOpenings = false;    // opening balances and allot-from dates count
    };

    // `forgetRules` drops what the caller keeps of rules; called before the first work and whenever
    // a rule has changed.
    BlockStamp(Session& session, std::function<void()> forgetRules);

    // Runs the work, which may read and write but clears no mark, and then the statements that
    // clear (one transaction). False when somebody changed the same rows each of several times: the
    // marks stay.
    bool WorkOut(const Scope& scope, const std::function<void()>& work,
                 const std::function<std::string()>& clearSql);

    // The sum over the rows of a table: columns by name; a date ends in "@", a number with two
    // places in "*". For Scope::strMarked and for those who keep sums.
    static std::string SumSql(const std::string& from, const std::string& columns,
                              const std::string& where);

  private:
    std::string RulesSql(const Scope& scope) const;
    std::string DataSql(const Scope& scope) const;

    Session& session_;
    std::function<void()> forgetRules_;
    std::string rules_;  // stamp of the rules that the caller may keep; "" none
};

}  // namespace owb
