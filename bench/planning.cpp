// What reading a statement costs before it first runs: a text of 4 KB cut into tokens, parsed,
// bound against the catalog and written down for the file database below. The floor is what that
// one needs to prepare the same query as its own users would write it.
#include "bench.h"
#include "tsql/catalog/catalog.h"
#include "tsql/catalog/file_format.h"
#include "tsql/plan/planner.h"

namespace {

using namespace owb;

constexpr int kRounds = 50, kRuns = 20;

// A query like those of the ledger: joins, subqueries, CASE, functions. `before` and `after` make
// the sum of a date and of days; `ifNull` replaces a missing number.
std::string queryText(const std::string& before, const std::string& after,
                      const std::string& ifNull) {
    std::string text = "SELECT A.EMPID, A.LEVID";
    for (int i = 10; i < 26; ++i) {
        const std::string n = std::to_string(i);
        text += ",\n CASE WHEN A.OPBAL + A.ALLOTLEV > " + n +
                ".5 AND B.NAME LIKE 'A%' THEN ROUND(A.OPBAL / 2.0, 2) ELSE " + ifNull +
                "((SELECT SUM(C.ALLOTLEV) FROM LEDGER C WHERE C.EMPID = A.EMPID AND C.ALLOTFROM "
                "BETWEEN '01/Jan/2014' AND " +
                before + n + after + "), 0) END AS C" + n;
    }
    return text +
           "\nFROM LEDGER A INNER JOIN EMP B ON B.EMPID = A.EMPID WHERE A.LEVID IN (1, 2, 3)"
           " ORDER BY B.NAME, A.ALLOTFROM";
}

}  // namespace

int main() {
    const std::string tables =
        "CREATE TABLE LEDGER (EMPID int, LEVID tinyint, ALLOTFROM datetime, ALLOTTO datetime, "
        "OPBAL numeric(18,2), ALLOTLEV numeric(18,2));"
        "CREATE TABLE EMP (EMPID int, NAME varchar(50))";
    tsql::Sqlite sqlite(":memory:", true, false, 1);
    tsql::bringToFormat(sqlite);
    sqlite.run(tables);
    tsql::Catalog catalog(sqlite);
    catalog.refresh();
    bench::PlainDatabase db(":memory:");
    db.run(tables.c_str());

    const std::string text = queryText("DATEADD(DAY, ", ", A.ALLOTTO)", "ISNULL");
    const std::string plain = queryText("A.ALLOTTO + ", "", "ifnull");
    size_t done = 0;
    const auto read = [&](bool bind, bool write) {
        for (int i = 0; i < kRuns; ++i) {
            const auto code = tsql::parseBatch(text);
            tsql::BindContext context{catalog};
            context.literals = &code->ast.literals;
            context.variables = &code->variables;
            const tsql::Query& query =
                *tsql::as<tsql::QueryStatement>(*code->ast.statements[0]).query;
            if (write)
                done += tsql::Planner(context).query(query)->sql.size();
            else if (bind)
                done += tsql::Binder(context).bindQuery(query)->items.size();
        }
    };
    const auto prepare = [&] {
        for (int i = 0; i < kRuns; ++i) bench::Prepared(db, plain).reset();
    };
    std::printf("A statement of %zu bytes:\n", text.size());
    const auto tell = [&](const char* what, bool bind, bool write) {
        const bench::Race times(
            kRounds, [&] { read(bind, write); }, prepare);
        bench::report(what, kRuns, times.engine, times.floor);
    };
    tell("  cut into tokens and parsed", false, false);
    tell("  the same and bound", true, false);
    tell("  the same and written down", true, true);
    return done > 0 ? 0 : 1;
}
