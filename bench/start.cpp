// A start of the program with nothing to do, against a floor: what every opening of a screen costs.
// The floor is a plain program that reads each row of the three masters that tell what rows there
// must be (employees, versions, salary rows) once, from the same file.
//
//   bench_start [EMPLOYEES [MONTHS]]
#include <cstdlib>

#include "app/modInitialize.h"
#include "bench.h"
#include "leave/ConfiguredState.h"
#include "sample/sample.h"
#include "schema/modSQLFunction.h"
#include "spent.h"
#include "work.h"

namespace {

using namespace owb;
using bench::seconds;

// A company whose marks are all cleared, as the recalculation would leave them.
void prepare(const std::string& path, const sample::SampleOptions& options) {
    ctl::makeDatabase(path, [&](Connection& connection) {
        createFamilyDatabase(connection);
        NoProgress quiet;
        sample::makeSample(connection, options, quiet);
    });
}

// One process: a connection of its own, the start, the one screen, the end.
struct Start {
    double start = 0, end = 0;
    bench::Ledger ledger;
    explicit Start(const std::string& path) {
        bench::Work work(path);
        work.session.gMenuId = 1512;
        work.session.gConn.Wrap([&](std::unique_ptr<Driver> inner) {
            return std::make_unique<bench::Counting>(std::move(inner), ledger);
        });
        start = seconds([&] { StartOnConnection(work.session, work.frontEnd); });
        end = seconds([&] { SweepChangedLeaveTables(work.session); });
    }
};

double readMasters(const std::string& path) {
    const bench::PlainDatabase db(path);
    return seconds([&] {
        for (const char* sql :
             {"SELECT EMPID, DOJ, DOL, SALCALCFROM FROM MAS_EMPLOYEE",
              "SELECT EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, ATTHEADID FROM MAS_EMPLOYEEDET",
              "SELECT EMPID, EMPDETID, MONTHYEAR FROM SLC_SALARYCALC_E"}) {
            bench::Prepared rows(db, sql);
            int64_t sum = 0;
            for (rows.with(); rows.next();) sum += rows.number(0) ^ rows.number(1);
            if (sum == 42) std::puts("");
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    sample::SampleOptions options;
    options.employees = argc > 1 ? std::atoi(argv[1]) : 2000;
    options.months = argc > 2 ? std::atoi(argv[2]) : 12;
    const bench::Folder folder;
    const std::string path = folder.file("company.owb");
    std::printf("company made: %.1f s\n", seconds([&] { prepare(path, options); }));
    std::printf("first start, all rows made: %.1f s\n", Start(path).start);
    {
        bench::Work work(path);
        for (const char* table : {"LEV_ALLOTMENT", "LEV_MONTHDET", "ATT_DAYTODAY"})
            work.session.gConn.Execute(std::string("UPDATE ") + table + " SET EDITMODEYN = 0");
    }
    std::printf("second start, what the first has brought: %.2f s\n", Start(path).start);
    double floor = 1e9, start = 1e9, end = 1e9;
    for (int i = 0; i < 3; ++i) {
        floor = std::min(floor, readMasters(path));
        const Start once(path);
        start = std::min(start, once.start);
        end = std::min(end, once.end);
        if (i == 2) bench::tellDearest(once.ledger, 12);
    }
    std::printf(
        "%d employees x %d months, nothing to do: start %.3f s, end %.3f s; floor %.4f s: "
        "%.1f times\n",
        options.employees, options.months, start, end, floor, start / floor);
}
