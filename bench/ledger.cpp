// The leave ledger against a floor: every row from marked to done, one employee's back-dated change
// of one leave, statements a row. The company has eight leaves of every allotment type: monthly,
// monthly on Pay Days, quarterly, half-yearly, yearly, yearly on the Present Days of the year
// before, compensatory off; a fifth of the employees joins, leaves or changes head in the months.
//
// The floor is a plain program over prepared statements of the file database, on a copy of the same
// file: for each row in order of employee, leave and date it reads what the row rests on (leave,
// adjustments, encashments, work done; settings and figures are read once) and writes the row, one
// transaction for each month of an employee. It counts no days payable and knows no rule.
//
//   bench_ledger [EMPLOYEES [MONTHS]]
#include <sys/resource.h>

#include <cstdlib>
#include <map>

#include "bench.h"
#include "leave/modLeaveFunctions.h"
#include "leave/screens/frmConfiguring.h"
#include "marks/marks.h"
#include "sample/sample.h"
#include "schema/modSQLFunction.h"
#include "session/modOWBSetting.h"
#include "spent.h"
#include "work.h"

namespace {

using namespace owb;
using bench::Counting;
using bench::Ledger;
using bench::Prepared;
using bench::seconds;
using bench::Spent;
using bench::tellDearest;

struct Work : bench::Work {
    Ledger ledger;

    explicit Work(const std::string& path) : bench::Work(path) {
        session.gConn.Wrap([&](std::unique_ptr<Driver> inner) {
            return std::make_unique<Counting>(std::move(inner), ledger);
        });
        LoadOptSet(session);
    }
};

// Three more leaves than the sample company has, so that every type is there.
constexpr const char* kMoreLeaves = R"sql(
INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, ALLOTMENTYN) VALUES
(9, 'Privilege Leave', 'PL', 1, 0, 1), (10, 'Quarterly Leave', 'QL', 1, 0, 1),
(11, 'Half-Yearly Leave', 'HL', 1, 0, 1)
INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, PRIORITY, AUTOALLOTYN, ALLOTTYPE, ALLOTON,
    ALLOTASPER, ALLOTFOR, ALLOTRNDTYPE, MINLEVDAYS, COYN, COTYPE, LAPSEMONTH, LAPSELIMIT, RNDTYPE,
    MINDATETYPE, MINMONTH, MINDAYS)
SELECT L.LEVID, LS.ATTHEADID, LS.MONTHYEAR, L.LEVID, 1, L.ALLOTTYPE, L.ALLOTON, 0, 0, 0, 0, L.COYN,
    0, 0, 0, 0, 0, 0, 0
FROM LEV_SETTINGS LS, (SELECT 9 AS LEVID, 1 AS ALLOTTYPE, 1 AS ALLOTON, 1 AS COYN UNION ALL
    SELECT 10, 3, 0, 0 UNION ALL SELECT 11, 4, 2, 0) L WHERE LS.LEVID = 5
INSERT INTO LEV_ALLOTCONFIG (EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, ALLOTON, PERIOD, NOL, FID,
    QUERYYN)
SELECT LS.MONTHYEAR, LS.LEVID, LS.ATTHEADID, LS.ALLOTTYPE, CASE LS.LEVID WHEN 11 THEN 2 ELSE 0 END,
    30, 1.5, 0, 0 FROM LEV_SETTINGS LS WHERE LS.LEVID IN (9, 10, 11)
)sql";

void prepare(const std::string& path, const sample::SampleOptions& options) {
    ctl::makeDatabase(path, [&](Connection& connection) {
        createFamilyDatabase(connection);
        NoProgress quiet;
        sample::makeSample(connection, options, quiet);
        connection.Execute(kMoreLeaves);
    });
    Work work(path);
    std::printf("configuration, all rows made: %.1f s\n",
                seconds([&] { frmConfiguring(work.session, work.frontEnd).showModal(); }));
    work.ledger.clear();
    std::printf("configuration, nothing to do: %.1f s\n",
                seconds([&] { frmConfiguring(work.session, work.frontEnd).showModal(); }));
    tellDearest(work.ledger, 8);
}

class Floor {
  public:
    explicit Floor(const std::string& path) : db_(path) {}

    size_t run() {
        for (settings_.with(); settings_.next();) rules_[settings_.number(0)] = settings_.number(1);
        size_t rows = 0;
        int64_t employee = 0, carried = 0, leave = 0;
        db_.run("BEGIN");
        std::vector<std::array<int64_t, 5>> all;
        for (rows_.with(); rows_.next();)
            all.push_back({rows_.number(0), rows_.number(1), rows_.number(2), rows_.number(3),
                           rows_.number(4)});
        for (const auto& [id, emp, lev, from, to] : all) {
            if (emp != employee || lev != leave) carried = 0;
            if (++rows % 8 == 0) db_.run("COMMIT; BEGIN");
            employee = emp;
            leave = lev;
            for (before_.with(emp, lev, from - 1); before_.next();) carried = before_.number(1);
            int64_t taken = 0;
            for (leave_.with(emp, lev, from, to); leave_.next();)
                taken += 50 * (leave_.number(0) + leave_.number(1));
            for (adjusted_.with(emp, lev, from, to); adjusted_.next();)
                taken += adjusted_.number(0);
            for (encashed_.with(emp, from, to); encashed_.next();) taken += encashed_.number(0);
            write_.with(100, 100, carried, id).run();
            lapse_.with(0, id).run();
            carried += 100 - taken;
        }
        db_.run("COMMIT");
        return rows;
    }

  private:
    bench::PlainDatabase db_;
    std::map<int64_t, int64_t> rules_;
    Prepared settings_{db_, "SELECT LEVID, ALLOTTYPE FROM LEV_SETTINGS"};
    Prepared rows_{db_,
                   "SELECT ALLOTID, EMPID, LEVID, ALLOTFROM, ALLOTTO FROM LEV_ALLOTMENT WHERE "
                   "EDITMODEYN = 1 ORDER BY EMPID, LEVID, ALLOTFROM"};
    Prepared before_{db_,
                     "SELECT ALLOTLEV, COLEV FROM LEV_ALLOTMENT WHERE EMPID = ? AND LEVID = ? AND "
                     "ALLOTTO = ?"};
    Prepared leave_{db_,
                    "SELECT FIRSTHALFYN, SECONDHALFYN, LEVMONTHLY FROM LEV_DETAILS WHERE EMPID = ? "
                    "AND LEVID = ? AND LEAVEDATE BETWEEN ? AND ?"};
    Prepared adjusted_{db_,
                       "SELECT ALLOT, TAKEN FROM LEV_ADJUSTMENT WHERE EMPID = ? AND LEVID = ? AND "
                       "ASONDATE BETWEEN ? AND ?"};
    Prepared encashed_{db_,
                       "SELECT NOOFDAYS FROM ATT_ENCASH WHERE EMPID = ? AND UPTODATE BETWEEN ? AND "
                       "?"};
    Prepared write_{db_,
                    "UPDATE LEV_ALLOTMENT SET ACTALLOTLEV = ?, ALLOTLEV = ?, COLEV = ?, EDITMODEYN "
                    "= 0 WHERE ALLOTID = ?"};
    Prepared lapse_{db_, "UPDATE LEV_ALLOTMENT SET LAPSE = ? WHERE ALLOTID = ?"};
};

int64_t marked(Work& work) {
    return work.session.gConn.Run("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1")
        .sets.front()
        .at(0, 0)
        .toInt();
}

}  // namespace

int main(int argc, char** argv) {
    sample::SampleOptions options;
    options.employees = argc > 1 ? std::atoi(argv[1]) : 1000;
    options.months = argc > 2 ? std::atoi(argv[2]) : 12;
    const bench::Folder folder;
    const std::string path = folder.file("company.owb"), copy = folder.file("floor.owb");
    prepare(path, options);
    std::filesystem::copy_file(path, copy);

    size_t rows = 0;
    const double floor = seconds([&] { rows = Floor(copy).run(); });
    Work work(path);
    work.ledger.clear();
    const double pass = seconds([&] { ProcessAllotmentsOld(work.session, work.progress, ""); });
    size_t batches = 0;
    for (const auto& [text, spent] : work.ledger) batches += spent.batches;
    std::printf("%d employees, %d months, %zu ledger rows: %.1f s, %.2f statements a row\n",
                options.employees, options.months, rows, pass,
                static_cast<double>(batches) / static_cast<double>(rows));
    bench::report("a ledger row, all marked", rows, pass, floor);
    if (marked(work) != 0) std::printf("STILL MARKED: %ld\n", static_cast<long>(marked(work)));

    tellDearest(work.ledger, 16);

    for (const int64_t leave : {5, 7, 9}) {
        double best = 1e9;
        for (int i = 0; i < 3; ++i)
            best = std::min(best, seconds([&] {
                                MarkAllotmentDirtyFrom(
                                    work.session,
                                    DateTime::fromCivil((options.fromMonth - 1) / 12,
                                                        (options.fromMonth - 1) % 12 + 1, 1),
                                    0, "2", std::to_string(leave));
                                ProcessAllotmentsOld(work.session, work.progress, "");
                            }));
        std::printf("one employee, leave %ld from the first month on: %.0f ms\n",
                    static_cast<long>(leave), best * 1000);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak %.0f MB\n", static_cast<double>(usage.ru_maxrss) / 1024.0);
    return 0;
}
