#include "schema/modSQLFunction.h"

#include <array>

#include "base/utf8.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "schema/embedded_sql.h"
#include "session/Session.h"
#include "session/modEmployeeViews.h"
#include "session/queries.h"

namespace owb {

namespace {

struct ServerObject {
    const char* name;
    ServerObjectKind kind;
};

// In the order of their installation.
constexpr ServerObject kObjects[] = {
    {"FnDblLowerHalfDay", ServerObjectKind::Function},
    {"FnDblHigherHalfDay", ServerObjectKind::Function},
    {"FnDblNearestHalfDay", ServerObjectKind::Function},
    {"FnDteFromDate", ServerObjectKind::Function},
    {"FnDteToDate", ServerObjectKind::Function},
    {"FnDteEmpLastDate", ServerObjectKind::Function},
    {"FnStrMonthName", ServerObjectKind::Function},
    {"FnStrWeekName", ServerObjectKind::Function},
    {"FnDteGetFirstDate", ServerObjectKind::Function},
    {"FnDteGetLastDate", ServerObjectKind::Function},
    {"FnIntAttHeadID", ServerObjectKind::Function},
    {"FnLngMonthYear", ServerObjectKind::Function},
    {"USP_OWB_UPDATELEVDET", ServerObjectKind::Procedure},
    {"USP_OWB_FNINTATTTRANNO", ServerObjectKind::Procedure},
    {"UDF_OWB_FNINTATTHEADID", ServerObjectKind::Function},
    {"FnDblRndOff", ServerObjectKind::Function},
    {"FnIntMaxEmpDetID", ServerObjectKind::Function},
    {"FnStrLeaveStatus", ServerObjectKind::Function},
    {"USP_OWB_CLRENCASHMENT", ServerObjectKind::Procedure},
    {"ClearLeaveRecords", ServerObjectKind::Procedure},
    {"CLEARDAYTODAYREC", ServerObjectKind::Procedure},
    {"TrMonthLockHistory", ServerObjectKind::Trigger},
};
constexpr const char* kLeaveSettings = "UDF_LSET";

std::string objectText(const std::string& name) {
    return std::string(FnStrSchemaText("objects/" + name));
}

// A transaction of our own, unless start-up holds one already: other sessions must never meet the
// moment between drop and create.
class OwnTransaction {
  public:
    explicit OwnTransaction(Session& session) : connection_(session.gConn) {
        if (session.gExtendedYN) return;
        connection_.BeginTrans();
        open_ = true;
    }
    ~OwnTransaction() {
        if (!open_) return;
        try {
            connection_.RollbackTrans();
        } catch (const DbError&) {
            // The error that brought us here is the one to report.
        }
    }
    void commit() {
        if (open_) connection_.CommitTrans();
        open_ = false;
    }

  private:
    Connection& connection_;
    bool open_ = false;
};

std::string_view withoutSpace(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

void recreateView(Session& session, const std::string& file) {
    std::string text = objectText(file);
    constexpr std::string_view placeholder = "<prefix>";
    text.replace(text.find(placeholder), placeholder.size(), session.gHostPrefix);
    const std::string name = session.gHostPrefix + "_" + file;
    OwnTransaction transaction(session);
    if (FnBlnExistsOrThrow(session, "SELECT * FROM SYS.VIEWS WHERE NAME = " + literal(name)))
        session.gConn.Execute("DROP VIEW [dbo]." + sqlName(name));
    session.gConn.Execute(text);
    transaction.commit();
}

}  // namespace

std::string_view FnStrSchemaText(std::string_view name) {
    for (const EmbeddedSql& file : embeddedSql())
        if (file.name == name) return file.text;
    throw DbError(-1, 16, 1, 0, "No built-in SQL text " + std::string(name) + ".");
}

bool FnBlnPrepareObject(Session& session, const std::string& name, ServerObjectKind kind,
                        bool replace) {
    if (!FnBlnExistsOrThrow(session, "Select * From Sys.Objects Where Name = " + literal(name)))
        return true;
    if (!replace) return false;
    constexpr std::array drops = {"Drop Function [dbo].", "Drop Procedure [dbo].",
                                  "Drop TRIGGER [dbo]."};
    session.gConn.Execute(drops[static_cast<size_t>(kind)] + name);
    return true;
}

void InstallServerObjects(Session& session) {
    SetHostNames(session);
    OwnTransaction transaction(session);
    for (const ServerObject& object : kObjects) {
        const bool create = FnBlnPrepareObject(session, object.name, object.kind, true);
        const bool wanted = object.kind != ServerObjectKind::Trigger || !session.gExtendedYN;
        if (create && wanted) session.gConn.Execute(objectText(object.name));
    }
    transaction.commit();
}

void InstallLeaveSettingsFunction(Session& session) {
    if (FnBlnPrepareObject(session, kLeaveSettings, ServerObjectKind::Function, false))
        session.gConn.Execute(objectText(kLeaveSettings));
}

void CreatePeriodViews(Session& session) {
    for (const char* view : {"vw_Quarterly", "vw_CalHalfYear", "vw_FinHalfYear"})
        recreateView(session, view);
}

void CreateLeaveSummaryView(Session& session) {
    recreateView(session, "vw_LeaveSummary");
}

void TidyAttendanceRows(Session& session) {
    Sql batch;
    for (Recordset rs(session.gConn,
                      "SELECT  MAX(ATTTRANNO) FROM DBO.ATT_DAYTODAY GROUP BY EMPID, EMPDETID, "
                      "MONTHYEAR HAVING   COUNT(*) > 1");
         !rs.IsEOF(); rs.MoveNext()) {
        const std::string key = rs.Fields(0).toText();
        batch << " DELETE FROM ATT_OVERTIME WHERE ATTTRANNO = " << key
              << " DELETE FROM ATT_DAYTODAY WHERE ATTTRANNO = " << key;
    }
    if (FnBlnExistsOrThrow(session,
                           "SELECT att.EMPID FROM ATT_DAYTODAY att,dbo.MAS_EMPLOYEEDET det WHERE "
                           "att.empid=det.empid AND att.empdetid=det.empdetid AND "
                           "att.ATTHEADID<>det.ATTHEADID"))
        batch << " UPDATE DBO.ATT_DAYTODAY SET ATTHEADID = DBO.UDF_OWB_FNINTATTHEADID(EMPID, "
                 "EMPDETID)";
    if (!batch.text().empty()) session.gConn.ExecuteAtomic(batch);
}

void FreeLeaveTables(Session& session) {
    session.gConn.Execute("exec [dbo].ClearLeaveRecords");
}

void createFamilyDatabase(Connection& connection) {
    connection.BeginTrans();
    try {
        for (const EmbeddedSql& file : embeddedSql()) {
            if (!file.name.starts_with("family/")) continue;
            for (const std::string& batch : splitBatches(file.text)) connection.Execute(batch);
        }
        for (const ServerObject& object : kObjects) connection.Execute(objectText(object.name));
        connection.Execute(objectText(kLeaveSettings));
        connection.CommitTrans();
    } catch (const DbError&) {
        connection.RollbackTrans();
        throw;
    }
}

std::vector<std::string> splitBatches(std::string_view script) {
    std::vector<std::string> batches(1);
    while (!script.empty()) {
        const size_t end = std::min(script.find('\n'), script.size());
        const std::string_view line = script.substr(0, end);
        script.remove_prefix(std::min(end + 1, script.size()));
        if (equalsIgnoreCaseAscii(withoutSpace(line), "GO"))
            batches.emplace_back();
        else
            batches.back().append(line).append("\n");
    }
    std::erase_if(batches, [](const std::string& batch) { return withoutSpace(batch).empty(); });
    return batches;
}

}  // namespace owb
