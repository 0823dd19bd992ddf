#include "leave/ConfigurationPass.h"

#include <iterator>

#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "leave/ConfiguredState.h"
#include "leave/RecalculationLock.h"
#include "leave/VersionChanges.h"
#include "leave/modLeaveFunctions.h"
#include "schema/modSQLFunction.h"
#include "session/Session.h"
#include "session/modOWBSetting.h"

namespace owb {

bool ConfigurationPass::Run() {
    struct Step {
        const char* status;  // nullptr: the text before stays
        void (ConfigurationPass::*run)();
    };
    static constexpr Step kSteps[] = {
        {"Allottment methods ... ", &ConfigurationPass::AllotmentMethods},
        {"Clearing Records ... ", &ConfigurationPass::ClearRecords},
        {"Updating Null Values...", &ConfigurationPass::UpdateNullValues},
        {"Updating Option settings...", &ConfigurationPass::UpdateOptionSettings},
        {"Updating Month Dates...", &ConfigurationPass::UpdateMonthDates},
        {nullptr, &ConfigurationPass::UpdateVersionChanges},
        {"Updating Opening Balance...", &ConfigurationPass::UpdateOpeningBalance},
        {"Updating Allotment Dates...", &ConfigurationPass::UpdateAllotmentDates},
        {"Updating Avail from Dates...", &ConfigurationPass::UpdateAvailFromDates},
        {"Updating monthly records...", &ConfigurationPass::UpdateMonthlyRecords},
        {nullptr, &ConfigurationPass::UpdateLedgerRows},  // tells what it does by itself
        {"Filling default values ...", &ConfigurationPass::FillDefaultValues},
        {nullptr, &ConfigurationPass::DateAdjustments},
    };
    const RecalculationLock lock(session_, frm_);
    if (!lock.Held()) return false;
    frm_.status("Initializing Advanced Leave Management");
    LoadOptions();
    UpdateSchema();
    ClearIdleMarks();
    RepairVersions();
    ConfiguredState state(session_);
    if (!state.Changed()) return true;
    state_ = &state;
    size_t done = 0;
    for (const Step& step : kSteps) {
        if (frm_.cancelled()) return false;
        if (step.status != nullptr) frm_.status(step.status);
        (this->*step.run)();
        frm_.step(++done, std::size(kSteps));
    }
    state.Remember();
    return true;
}

void ConfigurationPass::LoadOptions() {
    LoadOptSet(session_);
    LoadCompany(session_);
    LoadCaptions(session_);
    optionsLoaded_ = true;
    InstallServerObjects(session_);
    session_.gConn.Execute(
        "UPDATE LEV_SETTINGS SET UPPERLIMITYN=0, LOWERLIMITYN=0 WHERE COTYPE=0 AND "
        "(UPPERLIMITYN=1 OR LOWERLIMITYN=1)");
}

// Columns, tables, objects and defaults that older databases lack.
void ConfigurationPass::UpdateSchema() {
    const auto lacks = [&](const std::string& query) {
        return Recordset(session_.gConn, query).IsEOF();
    };
    if (lacks("SELECT * FROM INFORMATION_SCHEMA.COLUMNS WHERE COLUMN_NAME = 'LAPSENEGATIVE' AND "
              "TABLE_NAME = 'LEV_SETTINGS'"))
        session_.gConn.Execute("ALTER TABLE LEV_SETTINGS ADD LAPSENEGATIVE tinyint NULL DEFAULT 0");
    InstallLeaveSettingsFunction(session_);
    if (lacks("Select * From Sys.Objects Where Name = 'DF__LEV_ALLOT__EDITMODEYN'"))
        session_.gConn.Execute(
            "ALTER TABLE LEV_ALLOTMENT ADD CONSTRAINT DF__LEV_ALLOT__EDITMODEYN DEFAULT (1) FOR "
            "EDITMODEYN");
    InstallPassTables(session_);
}

// Marks that no pass takes up: of months whose tax has been ported, and of rows before the first
// month of leave. A row without a mark has never been worked out.
void ConfigurationPass::ClearIdleMarks() {
    const std::string before = Sql() << " WHERE EDITMODEYN = 1 AND (MONTHYEAR < "
                                     << session_.gFeature.LVSTARTMNYEAR;
    const std::string ported =
        " OR MONTHYEAR IN (SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE TDSPORTYN = 1)";
    for (const std::string& sql :
         {std::string("UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL"),
          std::string("UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL"),
          std::string("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL"),
          "UPDATE ATT_DAYTODAY SET EDITMODEYN = 0" + before + ")",
          "UPDATE LEV_MONTHDET SET EDITMODEYN = 0" + before + ported + ")"})
        session_.gConn.Execute(sql);
}

// Rows of leave, adjustments and overtime under a version that is not in force on their date; what
// stays without one is deleted.
void ConfigurationPass::RepairVersions() {
    AlignVersions(session_);
    const std::string empty =
        " From LEV_DETAILS Where LEVID = 0 OR EMPDETID = 0 OR EMPDETID IS NULL OR "
        "(ISNULL(FIRSTHALFYN,0) = 0 AND ISNULL(SECONDHALFYN,0) = 0 AND (LEVMONTHLY IS NULL OR "
        "LEVMONTHLY = 0))";
    if (!Recordset(session_.gConn, "SELECT TOP 1 EMPID" + empty).IsEOF())
        session_.gConn.Execute(" Delete" + empty);
}

void ConfigurationPass::AllotmentMethods() {
    KeepLastAllotId(session_);
    DeleteUnallottedLeaves(session_);
}

void ConfigurationPass::ClearRecords() {
    if (!Recordset(session_.gConn,
                   "SELECT ATTHEADID FROM MAS_ATTHEAD WHERE (ATTNTYPE = 2 OR ATTNTYPE = 3)")
             .IsEOF())
        TidyAttendanceRows(session_);
    SweepLeaveTables(session_);
}

// A half that is not known was not taken.
void ConfigurationPass::UpdateNullValues() {
    for (const char* sql :
         {"UPDATE LEV_DETAILS SET FIRSTHALFYN = ISNULL(FIRSTHALFYN, 0), SECONDHALFYN = "
          "ISNULL(SECONDHALFYN, 0) WHERE FIRSTHALFYN IS NULL OR SECONDHALFYN IS NULL",
          "UPDATE LEV_ALLOTMENT SET ACTALLOTLEV = ALLOTLEV WHERE ACTALLOTLEV IS NULL"})
        session_.gConn.Execute(sql);
}

// A head without options of its own starts from the common row.
void ConfigurationPass::UpdateOptionSettings() {
    const std::string columns =
        "EXCESSLEVYN, LOADDEFYN, DEFVAL, SPLOTYN, WHOT2YN, GHOT2YN, FULLDAYOT2, PRIORITYYN, "
        "HOLPRIORITY, ROTWHYN, AUTOALLOTYN, LEVPRIORITYYN, AFFECTSALYN, INDLEVSETYN, INDWHYN, "
        "COCWYN, COMMONYN, EDITEDYN";
    session_.gConn.Execute(
        "IF NOT EXISTS (SELECT * FROM ATT_OPTSETTINGS WHERE ATTHEADID = 0) INSERT INTO "
        "ATT_OPTSETTINGS(ATTHEADID, " +
        columns + ") VALUES(0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)");
    session_.gConn.Execute(
        "INSERT INTO ATT_OPTSETTINGS(ATTHEADID, " + columns + ") (SELECT MA.ATTHEADID, " + columns +
        " FROM MAS_ATTHEAD MA, ATT_OPTSETTINGS AO WHERE AO.ATTHEADID = 0 AND NOT EXISTS (SELECT "
        "* FROM ATT_OPTSETTINGS WHERE ATTHEADID = MA.ATTHEADID))");
}

void ConfigurationPass::UpdateMonthDates() {
    FnNodNdp(session_).Update_MonthYear();
    state_->MastersRepaired();
}

void ConfigurationPass::UpdateVersionChanges() {
    MarkVersionChanges(session_);
}

void ConfigurationPass::UpdateOpeningBalance() {
    InsertOpeningBalances(session_);
}

void ConfigurationPass::UpdateAllotmentDates() {
    InsertAllotFromDate(session_);
    UpdateAllotFromDate(session_);
}

void ConfigurationPass::UpdateAvailFromDates() {
    InsertAvailFromDate(session_);
    UpdateAvailFromDate(session_);
    state_->DatesMade();
}

// New register rows mark the months that they stand in, so the months come first.
void ConfigurationPass::UpdateMonthlyRecords() {
    ReconcileMonthDetails(session_);
    ReconcileMonthlyRows(session_);
}

void ConfigurationPass::UpdateLedgerRows() {
    ReconcileLedgerRows(session_, [this](const char* text) { frm_.status(text); });
    DeleteOrphanedEncashments(session_);
}

void ConfigurationPass::FillDefaultValues() {
    LoadDefaultAttendance(session_);
}

// An adjustment is dated on the last day of its month under its version.
void ConfigurationPass::DateAdjustments() {
    const std::string date = "[dbo].FnDteToDate(EMPID, EMPDETID, MONTHYEAR)";
    session_.gConn.Execute("UPDATE LEV_ADJUSTMENT SET ASONDATE = " + date +
                           " WHERE ASONDATE IS NULL OR ASONDATE <> " + date);
}

}  // namespace owb
