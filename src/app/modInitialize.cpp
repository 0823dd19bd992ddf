#include "app/modInitialize.h"

#include <algorithm>
#include <array>

#include "app/ThisApp.h"
#include "app/modMenu.h"
#include "base/number_text.h"
#include "db/sql_text.h"
#include "leave/AwaitingRows.h"
#include "leave/screens/frmConfiguring.h"
#include "leave/screens/modLeaveProcess.h"
#include "schema/modSQLFunction.h"
#include "session/locks.h"
#include "session/modAttSetting.h"
#include "session/modEmployeeViews.h"
#include "session/modFiles.h"
#include "session/modOWBSetting.h"
#include "session/modRights.h"
#include "session/queries.h"

namespace owb {

namespace {

// Shows a screen of start-up; in an extended session all that it does is one transaction, and a
// failure that undid it ends the start.
void showInTransaction(Session& session, Screen& screen) {
    if (session.gExtendedYN) session.gConn.BeginTrans();
    screen.showModal();
    if (session.gExtendedYN) session.gConn.CommitTrans();
}

// Head 0 is the whole company; a number that no head has must not be taken for it.
void requireHead(Session& session) {
    if (session.gAttHeadId == 0 ||
        FnBlnExistsOrThrow(session, Sql() << "SELECT ATTHEADID FROM MAS_ATTHEAD WHERE ATTHEADID = "
                                          << session.gAttHeadId))
        return;
    session.boxes.critical("There is no attendance head " + std::to_string(session.gAttHeadId) +
                           " in this company.");
    ExitToShell(session, true);
    throw EndOfProgram{1};
}

void repairOlderTables(Session& session) {
    if (!FnBlnExistsOrThrow(session,
                            "SELECT * FROM INFORMATION_SCHEMA.COLUMNS WHERE COLUMN_NAME = "
                            "'EXLEVPRIORITY' AND TABLE_NAME = 'ATT_OPTSETTINGS'"))
        session.gConn.Execute(" ALTER TABLE ATT_OPTSETTINGS ADD EXLEVPRIORITY VARCHAR(100)");
    // Looked for first: where another session holds a transaction, a writer would wait for it.
    const std::string late =
        "  from ATT_ENCASH A INNER JOIN MAS_EMPLOYEE E ON A.EMPID=E.EMPID WHERE "
        "A.UPTODATE>isnull(DOL,'2099-12-31')";
    if (FnBlnExistsOrThrow(session, "SELECT TOP 1 A.EMPID" + late))
        session.gConn.Execute(" UPDATE ATT_ENCASH SET UPTODATE=DOL" + late);
}

void configure(Session& session, FrontEnd& frontEnd) {
    if (session.gMenuId == 1525 || session.gMenuId == 1601) {
        LoadOptSet(session);
        return;
    }
    const bool otherTransaction =
        FnBlnExistsOrThrow(session,
                           "select database_id from sys.dm_tran_database_transactions WHERE "
                           "database_id=DB_ID()");
    if (otherTransaction && FnBlnMarkerFile(session, "\\SkipLEVConfigBegintrans.dat")) return;
    frmConfiguring screen(session, frontEnd);
    showInTransaction(session, screen);
    if (screen.MayGoOn()) return;
    ExitToShell(session, true);
    throw EndOfProgram{1};
}

void readCompanyKind(Session& session) {
    session.gConsultantMode = FnBlnExistsOrThrow(
        session, "SELECT refid FROM MAS_PULLDOWNVALUES WHERE refID=2001 AND pdid=1");
    if (session.gConsultantMode)
        session.gEmployeeCaption =
            FnVarValueOrThrow(
                session, "SELECT PDLISTNAME FROM MAS_PULLDOWNVALUES WHERE REFID=2001 AND PDID=2",
                "Consultant/Student")
                .toText();
    session.gRestrictedLeaveId = static_cast<int32_t>(
        FnVarValueOrThrow(session, "SELECT LEVID FROM ATT_DEFINITION WHERE LEVSHORT='RH'", 0)
            .toInt());
    session.gRestrictedHolidayOn = FnBlnExistsOrThrow(
        session, "SELECT 1 FROM ATT_RESTRICTHOLIDAY WHERE ISNULL(RESTRICTYN,0)=1");
}

// The screens that show figures find nothing marked.
void recalculatePending(Session& session, FrontEnd& frontEnd) {
    static constexpr std::array<int32_t, 11> kScreensOnFigures = {
        1507, 1510, 1514, 1515, 1516, 1518, 1521, 1522, 1523, 1524, 15210};
    if (std::find(kScreensOnFigures.begin(), kScreensOnFigures.end(), session.gMenuId) ==
        kScreensOnFigures.end())
        return;
    std::string condition;
    if (session.gExtendedYN) {
        FillClassSecurity(session, 0, 0);
        condition = FnStrClassSecurityFilter(session, "LEV.EMPID");
    }
    if (FnLngAwaitingRows(session, condition) == 0) return;
    frontEnd.pause(1000);
    session.gRecalcPending = true;
    modLeaveProcess screen(session, frontEnd);
    showInTransaction(session, screen);
}

void readPeriod(Session& session) {
    session.gFirstLeaveMonth = static_cast<int32_t>(
        FnVarValueOrThrow(session,
                          Sql() << "SELECT MIN(MONTHYEAR) FROM MAS_MONTHYEAR WHERE MONTHYEAR >= "
                                << session.gFeature.LVSTARTMNYEAR,
                          0)
            .toInt());
    session.gLastMonth = static_cast<int32_t>(
        FnVarValueOrThrow(session, "SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR", 0).toInt());
    CreatePeriodViews(session);
    session.gPeriodLocked =
        FnBlnMonthRangeLocked(session, session.gFirstLeaveMonth, session.gLastMonth, true, 0);
}

}  // namespace

void ReadLaunchSettings(Session& session) {
    const SettingsStore& store = session.settings;
    session.gExtendedYN = textToNumber(store.GetSetting("ExeTalk", "OWBExtendedYN", "0")) != 0;
    session.gWinUserId = store.GetSetting("Settings", "WinUserID");
    session.gUser = store.GetSetting("Settings", "USER", "ADMIN");
    session.gProductPath = store.GetSetting("Settings", "Path", session.programFolder);
}

bool FnBlnReadOnlyUser(Session& session) {
    return FnVarValueOrThrow(session,
                             Sql() << "SELECT ISNULL(READONLYYN, 0) FROM SEC_USERLIST WHERE "
                                      "USERNAME = "
                                   << literal(session.gUser),
                             0)
        .toBool();
}

void StartOnConnection(Session& session, FrontEnd& frontEnd) {
    requireHead(session);
    ReadLaunchSettings(session);
    SetHostNames(session);
    repairOlderTables(session);
    configure(session, frontEnd);
    readCompanyKind(session);
    recalculatePending(session, frontEnd);
    readPeriod(session);
    LoadAttOptions(session, 0);
    LoadAttHead(session, session.gAttHeadId);
    CreateFilterObjects(session);
    session.gReadOnly = FnBlnReadOnlyUser(session);
    OpenMenuScreen(session, frontEnd);
}

}  // namespace owb
