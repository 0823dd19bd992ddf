// Rows of a small payroll, put into a test's company in a line each. Dates are "yyyy-MM-dd", ""
// none; months are keys (year * 12 + month).
#pragma once

#include <string>

#include "support/company.h"

namespace owb::test {

struct Head {
    int id = 1;
    int type = 2;   // 1 register, 2 daily, 3 hourly, 4 monthly
    int basis = 2;  // NODFORCALC
    bool tight = true;
};

class Payroll : public Company {
  public:
    // Months from key to key are calendar months; LVSTARTMNYEAR is the first.
    Payroll(int32_t from, int32_t to);

    void head(const Head& head);
    void setHead(int id, const std::string& assignments);       // "NODFORCALC = 4, OT1YN = 1"
    void setOptions(int head, const std::string& assignments);  // of ATT_OPTSETTINGS
    // An employee with one version from the joining date on.
    void employee(int id, const std::string& joined, int head = 1, const std::string& left = "",
                  int branch = 1);
    // Ends the version in force the day before and starts the next one.
    void version(int id, int det, const std::string& from, int head, int branch = 1);
    // Salary rows of a version for months, which bring its month rows into being.
    void salary(int id, int det, int32_t from, int32_t to);
    void leaveKind(int id, const std::string& shortName, bool affectsSalary, bool leave = true);
    // halves: "FS" a full day, "F", "S", or a figure such as "2.5" for the month.
    void leave(int id, int det, int leaveId, const std::string& date, const std::string& halves);
    // The halves off in each of the five weeks of a month: "FS -- F- -S FS".
    void weekly(int head, int weekday, const std::string& weeks, int32_t since = 0);
    void weeklyOfBranch(int branch, int weekday, const std::string& weeks, int32_t since = 0);
    void rotating(int head, int employee, const std::string& date, const std::string& halves);
    void holiday(int id, const std::string& date, int head = 0, int branch = 0);
    void exceptHead(int holiday, int head);

    // Hours of one day in the register row of a version and month.
    void hours(int id, int det, int32_t month, int day, const std::string& value);
    std::string monthDet(int id, int det, int32_t month);  // "NODCALC,NOD,NDP,OT1,OT2,ADJHRS"

    // The steps of the configuration pass that make the month rows, and the two passes.
    void reconcile();
    void recalculate();

  private:
    void weeklyRow(const std::string& table, const std::string& owner, int weekday,
                   const std::string& weeks, int32_t since);
};

}  // namespace owb::test
