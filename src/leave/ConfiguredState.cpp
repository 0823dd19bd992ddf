#include "leave/ConfiguredState.h"

#include "db/recordset.h"
#include "db/sql_text.h"
#include "leave/BlockStamp.h"
#include "schema/modSQLFunction.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr const char* kState = "STATE";
constexpr const char* kSwept = "SWEPT";

std::string seen(Session& session, const char* what) {
    return FnVarValueOrThrow(
               session, Sql() << "SELECT SEEN FROM LEV_CONFIGURED WHERE WHAT = '" << what << "'",
               "")
        .toText();
}

void remember(Session& session, const char* what, const std::string& text) {
    const std::string of = Sql() << " WHERE WHAT = '" << what << "'";
    session.gConn.ExecuteAtomic(Sql() << "DELETE FROM LEV_CONFIGURED" << of
                                      << " INSERT INTO LEV_CONFIGURED (WHAT, SEEN) VALUES ('"
                                      << what << "', " << literal(text) << ")");
}

// The values of one row of a query, in one text.
std::string rowText(Session& session, const std::string& sql) {
    Recordset rs(session.gConn, sql);
    std::string text;
    for (size_t i = 0; i < rs.FieldCount(); ++i) text += rs.Fields(i).toText() + " ";
    return text;
}

}  // namespace

void InstallPassTables(Session& session) {
    session.gConn.Execute(
        "IF OBJECT_ID('LEV_CONFIGURED') IS NULL CREATE TABLE LEV_CONFIGURED (WHAT varchar(20) NOT "
        "NULL CONSTRAINT PK_LEV_CONFIGURED PRIMARY KEY, SEEN varchar(1000) NULL)");
    session.gConn.Execute(
        "IF OBJECT_ID('LEV_CONFIGUREDDET') IS NULL CREATE TABLE LEV_CONFIGUREDDET (EMPID int NOT "
        "NULL, EMPDETID int NOT NULL, EFFFROMDATE datetime NULL, EFFTODATE datetime NULL, "
        "ATTHEADID int NULL, BRANCHID int NULL, DOJ datetime NULL, DOL datetime NULL, SALCALCFROM "
        "datetime NULL, CONSTRAINT PK_LEV_CONFIGUREDDET PRIMARY KEY (EMPID, EMPDETID))");
    session.gConn.Execute(
        "IF OBJECT_ID('LEV_RECALCULATION') IS NULL CREATE TABLE LEV_RECALCULATION (HOSTNAME "
        "nvarchar(200) NOT NULL CONSTRAINT PK_LEV_RECALCULATION PRIMARY KEY, USERNAME nvarchar(60) "
        "NULL)");
}

ConfiguredState::ConfiguredState(Session& session)
    : session_(session), masters_(Masters()), dates_(Dates()) {}

std::string ConfiguredState::Masters() const {
    const auto of = [](const char* table, const char* columns) {
        return ", " + BlockStamp::SumSql(table, columns, "");
    };
    return rowText(
        session_,
        Sql() << "SELECT " << session_.gFeature.LVSTARTMNYEAR << ", "
              << session_.gFeature.CALCINMIDYN
              << of("MAS_MONTHYEAR", "MONTHYEAR CALCSTARTDATE@ CALCENDDATE@ TDSPORTYN")
              << of("ATT_DEFINITION", "LEVID ALLOTMENTYN")
              << of("MAS_ATTHEAD", "ATTHEADID ATTNTYPE")
              << of("ATT_OPTSETTINGS", "ATTHEADID LOADDEFYN DEFVAL")
              << of("LEV_SETTINGS",
                    "LEVID ATTHEADID MONTHYEAR MINDATETYPE MINMONTH MINDAYS MINAVAILDATETYPE "
                    "MINAVAILMONTH MINAVAILDAYS")
              << of("MAS_EMPLOYEE", "EMPID DOJ@ DOL@ SALCALCFROM@ PROBATIONDATE@ CONFIRMATIONDATE@")
              << of("MAS_EMPLOYEEDET", "EMPID EMPDETID EFFFROMDATE@ EFFTODATE@ ATTHEADID BRANCHID")
              << of("SLC_SALARYCALC_E", "EMPID EMPDETID MONTHYEAR"));
}

std::string ConfiguredState::Dates() const {
    return rowText(session_,
                   "SELECT " + BlockStamp::SumSql("LEV_ALLOTFROM", "EMPID LEVID ALLOTFROM@", "") +
                       ", (SELECT COUNT(*) FROM LEV_ALLOTFROM WHERE CHANGEYN = 1), (SELECT "
                       "COUNT(*) FROM LEV_AVAILFROM WHERE CHANGEYN = 1)");
}

std::string ConfiguredState::OwnRows() const {
    return rowText(
        session_,
        "SELECT (SELECT COUNT(*) FROM LEV_ALLOTMENT), (SELECT MAX(ALLOTID) FROM LEV_ALLOTMENT), "
        "(SELECT COUNT(*) FROM LEV_MONTHDET), (SELECT COUNT(*) FROM ATT_DAYTODAY), (SELECT "
        "MAX(ATTTRANNO) FROM ATT_DAYTODAY), (SELECT COUNT(*) FROM ATT_OVERTIME), (SELECT COUNT(*) "
        "FROM ATT_OPBAL), (SELECT COUNT(*) FROM LEV_AVAILFROM), (SELECT COUNT(*) FROM "
        "SLC_ATTHEADNOD), (SELECT COUNT(*) FROM LEV_CONFIGUREDDET), (SELECT COUNT(*) FROM "
        "LEV_ADJUSTMENT WHERE ASONDATE IS NULL)");
}

bool ConfiguredState::Changed() const {
    return seen(session_, kState) != masters_ + dates_ + OwnRows();
}

void ConfiguredState::MastersRepaired() {
    settled_ = Masters() == masters_;
}

void ConfiguredState::DatesMade() {
    dates_ = Dates();
}

void ConfiguredState::Remember() {
    if (settled_) remember(session_, kState, masters_ + dates_ + OwnRows());
}

namespace {

std::string sweptRows(Session& session) {
    return rowText(
        session,
        "SELECT (SELECT COUNT(*) FROM LEV_ALLOTMENT), (SELECT MAX(ALLOTID) FROM LEV_ALLOTMENT), "
        "(SELECT COUNT(*) FROM ATT_DAYTODAY), (SELECT MAX(ATTTRANNO) FROM ATT_DAYTODAY), (SELECT "
        "COUNT(*) FROM SLC_SALARYCALC_E), (SELECT MAX(SALID) FROM SLC_SALARYCALC_E), (SELECT "
        "COUNT(*) FROM LEV_SETTINGS), (SELECT COUNT(*) FROM ATT_ENCASH), (SELECT COUNT(*) FROM "
        "SLC_ADDEMPCALC_E), " +
            BlockStamp::SumSql("ATT_DEFINITION", "LEVID ALLOTMENTYN", "") + ", " +
            BlockStamp::SumSql("MAS_ATTHEAD", "ATTHEADID ATTNTYPE", "") + ", " +
            BlockStamp::SumSql("MAS_EMPLOYEEDET", "EMPID EMPDETID ATTHEADID", "") +
            ", (SELECT COUNT(*) FROM LEV_DETAILS WHERE LEVID = 0 OR ISNULL(EMPDETID, 0) = 0 OR "
            "(ISNULL(FIRSTHALFYN, 0) = 0 AND ISNULL(SECONDHALFYN, 0) = 0 AND ISNULL(LEVMONTHLY, 0) "
            "= 0)), (SELECT COUNT(*) FROM LEV_OTDETAILS WHERE ISNULL(EMPDETID, 0) = 0 OR "
            "(ISNULL(OT1, 0) = 0 AND ISNULL(OT2, 0) = 0 AND ISNULL(ADJHRS, 0) = 0))");
}

}  // namespace

void SweepLeaveTables(Session& session) {
    FreeLeaveTables(session);
    remember(session, kSwept, sweptRows(session));
}

void SweepChangedLeaveTables(Session& session) {
    InstallPassTables(session);
    if (seen(session, kSwept) != sweptRows(session)) SweepLeaveTables(session);
}

}  // namespace owb
