// Recalculation of month days against a floor. The floor is a plain loop over prepared statements
// of the file database, on a copy of the same file: for each marked month row it reads the inputs
// that the days depend on (head, options, employee, versions, month, holidays with exceptions,
// weekly offs, rotating rows, leave, adjustments, register row with its hours) and writes the rows
// that the pass writes (overtime of each day, salary mark, month row), one transaction a row. Its
// figures are simple counts: what it measures is the reading and writing alone.
//
//   bench_month_days [EMPLOYEES [MONTHS]]
#include <cstdlib>
#include <vector>

#include "bench.h"
#include "leave/modLeaveFunctions.h"
#include "leave/screens/frmConfiguring.h"
#include "sample/sample.h"
#include "schema/modSQLFunction.h"
#include "session/modOWBSetting.h"
#include "work.h"

namespace {

using namespace owb;
using bench::Prepared;
using bench::seconds;
using bench::Work;

void prepare(const std::string& path, const sample::SampleOptions& options) {
    ctl::makeDatabase(path, [&](Connection& connection) {
        createFamilyDatabase(connection);
        NoProgress quiet;
        sample::makeSample(connection, options, quiet);
    });
    Work work(path);
    frmConfiguring(work.session, work.frontEnd).showModal();
    UpdateDayDetails(work.session, work.progress, true, 0);
}

struct MonthRow {
    int64_t employee, version, month, head, type, from, to;
};

class Floor {
  public:
    explicit Floor(const std::string& path) : db_(path) {}

    size_t run() {
        const std::vector<MonthRow> rows = markedRows();
        for (const MonthRow& row : rows) oneRow(row);
        return rows.size();
    }

  private:
    std::vector<MonthRow> markedRows() {
        Prepared marked(db_,
                        "SELECT LM.EMPID, LM.EMPDETID, LM.MONTHYEAR, MT.ATTHEADID, MA.ATTNTYPE, "
                        "max(MT.EFFFROMDATE, MM.CALCSTARTDATE), "
                        "min(ifnull(MT.EFFTODATE, MM.CALCENDDATE), MM.CALCENDDATE) "
                        "FROM LEV_MONTHDET LM JOIN MAS_EMPLOYEEDET MT ON MT.EMPID = LM.EMPID AND "
                        "MT.EMPDETID = LM.EMPDETID JOIN MAS_ATTHEAD MA ON MA.ATTHEADID = "
                        "MT.ATTHEADID JOIN MAS_MONTHYEAR MM ON MM.MONTHYEAR = LM.MONTHYEAR "
                        "WHERE LM.EDITMODEYN = 1 ORDER BY LM.EMPID");
        std::vector<MonthRow> rows;
        while (marked.next())
            rows.push_back({marked.number(0), marked.number(1), marked.number(2), marked.number(3),
                            marked.number(4), marked.number(5), marked.number(6)});
        return rows;
    }

    void oneRow(const MonthRow& row) {
        db_.run("BEGIN");
        head_.with(row.head).run();
        options_.with(row.head).run();
        month_.with(row.month).run();
        employee_.with(row.employee).run();
        versions_.with(row.employee).run();

        int64_t off = 0;
        for (holidays_.with(row.from, row.to); holidays_.next();) {
            exceptions_.with(holidays_.number(0)).run();
            ++off;
        }
        for (int64_t day = 1; day <= 7; ++day)
            for (weekly_.with(row.head, day, row.month); weekly_.next();) off += weekly_.number(0);
        for (rotating_.with(row.employee, row.from, row.to); rotating_.next();)
            off += rotating_.number(0);

        int64_t taken = 0;
        for (leave_.with(row.employee, row.from, row.to); leave_.next();)
            taken += leave_.number(1) + leave_.number(2);
        for (adjustments_.with(row.employee, row.from, row.to); adjustments_.next();)
            taken += adjustments_.number(0);

        if (row.type != 1) writeOvertime(row);
        int64_t overtime = 0;
        for (sums_.with(row.employee, row.version, row.from, row.to); sums_.next();)
            overtime = sums_.number(0);
        salary_.with(row.employee, row.month).run();
        const int64_t days = row.to - row.from + 1;
        write_
            .with(days * 100, (days - taken) * 100, (days - taken - off) * 100, overtime,
                  row.employee, row.version, row.month)
            .run();
        db_.run("COMMIT");
    }

    void writeOvertime(const MonthRow& row) {
        register_.with(row.employee, row.version, row.month);
        if (!register_.next()) return;
        for (int64_t day = row.from; day <= row.to; ++day) {
            const int64_t hours = register_.number(static_cast<int>(day - row.from));
            there_.with(row.employee, row.version, day);
            if (there_.next())
                updateDay_.with(hours, row.employee, row.version, day).run();
            else
                insertDay_.with(row.employee, row.version, day, hours).run();
        }
    }

    static std::string hours() {
        std::string list;
        for (int day = 1; day <= 31; ++day)
            list += std::string(day > 1 ? ", " : "") + "OTDAY" + (day < 10 ? "0" : "") +
                    std::to_string(day);
        return list;
    }

    bench::PlainDatabase db_;
    Prepared head_{db_, "SELECT * FROM MAS_ATTHEAD WHERE ATTHEADID = ?"};
    Prepared options_{db_, "SELECT * FROM ATT_OPTSETTINGS WHERE ATTHEADID = ?"};
    Prepared month_{db_, "SELECT * FROM MAS_MONTHYEAR WHERE MONTHYEAR = ?"};
    Prepared employee_{db_, "SELECT * FROM MAS_EMPLOYEE WHERE EMPID = ?"};
    Prepared versions_{db_, "SELECT * FROM MAS_EMPLOYEEDET WHERE EMPID = ?"};
    Prepared holidays_{db_, "SELECT * FROM ATT_HOLIDAY WHERE HOLIDAYDATE BETWEEN ? AND ?"};
    Prepared exceptions_{db_, "SELECT * FROM ATT_HOLEX WHERE HOLIDAYID = ?"};
    Prepared weekly_{db_,
                     "SELECT FH1YN, SH1YN, FH2YN, SH2YN, FH3YN, SH3YN, FH4YN, SH4YN, FH5YN, SH5YN "
                     "FROM LEV_WEEKLYHLD WHERE ATTHEADID = ? AND WEEKID = ? AND EFFFROM <= ? "
                     "ORDER BY EFFFROM DESC LIMIT 1"};
    Prepared rotating_{db_,
                       "SELECT FIRSTHALFYN, SECONDHALFYN FROM ATT_WKLYROT WHERE EMPID = ? AND "
                       "WEEKDATE BETWEEN ? AND ?"};
    Prepared leave_{db_,
                    "SELECT LD.LEVID, FIRSTHALFYN, SECONDHALFYN, LEVMONTHLY, LEAVEYN, "
                    "AFFECTSALARYYN FROM LEV_DETAILS LD JOIN ATT_DEFINITION AD ON AD.LEVID = "
                    "LD.LEVID WHERE EMPID = ? AND LEAVEDATE BETWEEN ? AND ?"};
    Prepared adjustments_{db_,
                          "SELECT sum(TAKEN) FROM LEV_ADJUSTMENT WHERE EMPID = ? AND ASONDATE "
                          "BETWEEN ? AND ?"};
    Prepared register_{db_,
                       "SELECT " + hours() +
                           " FROM ATT_OVERTIME AO JOIN ATT_DAYTODAY AD ON AD.ATTTRANNO = "
                           "AO.ATTTRANNO WHERE AD.EMPID = ? AND AD.EMPDETID = ? AND AD.MONTHYEAR = "
                           "?"};
    Prepared there_{db_,
                    "SELECT 1 FROM LEV_OTDETAILS WHERE EMPID = ? AND EMPDETID = ? AND OTDATE = ?"};
    Prepared updateDay_{db_,
                        "UPDATE LEV_OTDETAILS SET OT1 = ?, OT2 = 0, ADJHRS = 0 WHERE EMPID = ? AND "
                        "EMPDETID = ? AND OTDATE = ?"};
    Prepared insertDay_{db_, "INSERT INTO LEV_OTDETAILS VALUES (?, ?, ?, ?, 0, 0)"};
    Prepared sums_{db_,
                   "SELECT sum(OT1), sum(OT2), sum(ADJHRS) FROM LEV_OTDETAILS WHERE EMPID = ? AND "
                   "EMPDETID = ? AND OTDATE BETWEEN ? AND ?"};
    Prepared salary_{db_,
                     "UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 WHERE EMPID = ? AND MONTHYEAR = "
                     "?"};
    Prepared write_{db_,
                    "UPDATE LEV_MONTHDET SET NODCALC = ?, NOD = ?, NDP = ?, OT1 = ?, EDITMODEYN = "
                    "0 WHERE EMPID = ? AND EMPDETID = ? AND MONTHYEAR = ?"};
};

}  // namespace

int main(int argc, char** argv) {
    sample::SampleOptions options;
    options.employees = argc > 1 ? std::atoi(argv[1]) : 1000;
    options.months = argc > 2 ? std::atoi(argv[2]) : 12;
    const bench::Folder folder;
    const std::string path = folder.file("company.owb"), copy = folder.file("floor.owb");
    const double making = seconds([&] { prepare(path, options); });
    std::filesystem::copy_file(path, copy);
    std::printf("%d employees, %d months: made, configured and registers filled in %.1f s\n",
                options.employees, options.months, making);

    size_t rows = 0;
    const double floor = seconds([&] { rows = Floor(copy).run(); });
    const double pass = seconds([&] {
        Work work(path);
        LoadOptSet(work.session);
        UpdateMonthDays(work.session, work.progress);
    });
    std::printf("month rows: %zu, pass %.1f s\n", rows, pass);
    bench::report("month days, a row", rows, pass, floor);
    return 0;
}
