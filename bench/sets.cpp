// Statements over many rows against the same work written by hand for the file database below: an
// UPDATE through a join over half a million ledger rows, and a condition through a scalar function
// against the condition written out.
#include "bench.h"
#include "db/connection.h"
#include "db/embedded/embedded_driver.h"

namespace {

using namespace owb;

constexpr int kEmployees = 5000, kLeaves = 8, kSlices = 13;  // 520,000 rows
constexpr int kRounds = 5;

void fill(Connection& c) {
    c.Execute(
        "CREATE TABLE LEDGER (EMPID int NOT NULL, LEVID tinyint NOT NULL, ALLOTID numeric(17,0) "
        "NOT NULL, ALLOTFROM datetime, ALLOTTO datetime, OPBAL numeric(18,2), ALLOTLEV "
        "numeric(18,2), CLBAL numeric(18,2), CONSTRAINT PK_LEDGER PRIMARY KEY (ALLOTID))\n"
        "CREATE TABLE WORK (ALLOTID numeric(17,0) NOT NULL, LEV numeric(18,2), CONSTRAINT PK_WORK "
        "PRIMARY KEY (ALLOTID))\n"
        "CREATE TABLE N (I int NOT NULL)");
    c.BeginTrans();
    for (int i = 0; i < kEmployees; ++i)
        c.Execute("INSERT INTO N VALUES (" + std::to_string(i) + ")");
    for (int leave = 1; leave <= kLeaves; ++leave)
        for (int slice = 0; slice < kSlices; ++slice)
            c.Execute("INSERT INTO LEDGER SELECT I + 1, " + std::to_string(leave) + ", (I * " +
                      std::to_string(kLeaves) + " + " + std::to_string(leave - 1) + ") * " +
                      std::to_string(kSlices) + " + " + std::to_string(slice) +
                      ", DATEADD(Month, " + std::to_string(slice) +
                      ", '2014-01-01'), DATEADD(Month, " + std::to_string(slice + 1) +
                      ", '2014-01-01') - 1, 3.5, 1.25, 0 FROM N");
    c.Execute("INSERT INTO WORK SELECT ALLOTID, 0.75 FROM LEDGER");
    c.CommitTrans();
}

void makeMonths(Connection& c) {
    c.Execute(
        "CREATE TABLE MAS_MONTHYEAR (MONTHYEAR int NOT NULL, CALCSTARTDATE datetime, CALCENDDATE "
        "datetime, CONSTRAINT PK_MONTHS PRIMARY KEY (MONTHYEAR))");
    for (int month = 0; month < 36; ++month)
        c.Execute("INSERT INTO MAS_MONTHYEAR VALUES (" + std::to_string(24157 + month) +
                  ", DATEADD(Month, " + std::to_string(month) + ", '2013-01-01'), DATEADD(Month, " +
                  std::to_string(month + 1) + ", '2013-01-01') - 1)");
    c.Execute(
        "CREATE FUNCTION dbo.FnLngMonthYear(@FROMDATE datetime, @TODATE datetime) RETURNS int AS "
        "BEGIN RETURN ISNULL((SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR WHERE CALCSTARTDATE <= "
        "@FROMDATE AND CALCENDDATE >= @TODATE), YEAR(@FROMDATE) * 12 + MONTH(@FROMDATE)) END");
}

void tell(const char* what, const bench::Race& r) {
    std::printf("%-44s %9.0f ms,      floor %7.0f ms, ratio %5.2f\n", what, r.engine * 1e3,
                r.floor * 1e3, r.engine / r.floor);
}

}  // namespace

int main() {
    const bench::Folder folder;
    const std::string path = folder.file("engine.owb");
    createEmbedded(path);
    {
        Connection c;
        c.Open("Provider=OWBEmbedded;Data Source=" + path);
        fill(c);
    }
    bench::PlainDatabase(path).run("PRAGMA wal_checkpoint(TRUNCATE)");
    std::filesystem::copy_file(path, folder.file("plain.db"));

    Connection c;
    c.Open("Provider=OWBEmbedded;Data Source=" + path);
    c.setCommandTimeout(0);
    bench::PlainDatabase db(folder.file("plain.db"));

    // The plain file holds numeric(18,2) as hundredths, so its sums need no rounding.
    tell("UPDATE..FROM, 520,000 rows",
         bench::Race(
             kRounds,
             [&] {
                 c.Execute(
                     "UPDATE LEDGER SET CLBAL = OPBAL + ALLOTLEV - B.LEV FROM LEDGER A, WORK "
                     "B WHERE A.ALLOTID = B.ALLOTID");
             },
             [&] {
                 db.run(
                     "UPDATE LEDGER SET CLBAL = OPBAL + ALLOTLEV - B.LEV FROM WORK B WHERE "
                     "LEDGER.ALLOTID = B.ALLOTID");
             }));

    makeMonths(c);
    tell("a condition through FnLngMonthYear",
         bench::Race(
             kRounds,
             [&] {
                 c.Run(
                     "SELECT COUNT(*) FROM LEDGER WHERE [DBO].FNLNGMONTHYEAR(ALLOTFROM, "
                     "ALLOTTO) = 24172");
             },
             [&] {
                 c.Run(
                     "SELECT COUNT(*) FROM LEDGER WHERE ISNULL((SELECT MAX(MONTHYEAR) FROM "
                     "MAS_MONTHYEAR WHERE CALCSTARTDATE <= ALLOTFROM AND CALCENDDATE >= "
                     "ALLOTTO), YEAR(ALLOTFROM) * 12 + MONTH(ALLOTFROM)) = 24172");
             }));
    tell("the same, hardly a period twice",
         bench::Race(
             kRounds,
             [&] {
                 c.Run(
                     "SELECT COUNT(*) FROM LEDGER WHERE [DBO].FNLNGMONTHYEAR(ALLOTFROM + "
                     "EMPID % 5000, ALLOTTO + LEVID) = 24172");
             },
             [&] {
                 c.Run(
                     "SELECT COUNT(*) FROM LEDGER WHERE ISNULL((SELECT MAX(MONTHYEAR) FROM "
                     "MAS_MONTHYEAR WHERE CALCSTARTDATE <= ALLOTFROM + EMPID % 5000 AND "
                     "CALCENDDATE >= ALLOTTO + LEVID), YEAR(ALLOTFROM + EMPID % 5000) * 12 + "
                     "MONTH(ALLOTFROM + EMPID % 5000)) = 24172");
             }));
    return 0;
}
