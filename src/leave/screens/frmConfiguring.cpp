#include "leave/screens/frmConfiguring.h"

#include "calendar/clsNODNDPCalc.h"
#include "data/Session.h"
#include "data/modCommon.h"
#include "data/modOWBSetting.h"
#include "leave/modLeaveFunctions.h"
#include "schema/modSQLFunction.h"

namespace owb {

frmConfiguring::frmConfiguring(Session& session, FrontEnd& frontEnd)
    : Screen(frontEnd, "frmConfiguring", "Initializing Advanced Leave Management"),
      session_(session) {}

// The order counts, and leaves no row unmarked that needs a mark:
//  - leaves that are not allotted lose their rows before anything is made for the others; the
//    sweep of "Clearing Records ... " gives every allotted leave its settings;
//  - rows are repaired before what cannot be repaired is deleted; registers get their version's
//    head before the sweep takes out those that differ; months have dates before rows are made;
//  - from-dates come before the ledger rows that begin with them, and mark before they change;
//  - unwanted ledger rows go before missing ones come: both mark what stands in the year around
//    them, and encashments are judged when all rows are there;
//  - defaults of the registers come last, since they mark months, salaries and ledger rows that
//    must be there to be marked. The dates of adjustments follow from masters alone.
// Every step may be run again over its own result.
void frmConfiguring::onActivate() {
    struct Step {
        const char* status;  // nullptr: the text before stays
        void (frmConfiguring::*run)();
    };
    static constexpr Step kSteps[] = {
        {"Initializing Advanced Leave Management", &frmConfiguring::LoadOptions},
        {"Allottment methods ... ", &frmConfiguring::AllotmentMethods},
        {"Clearing Records ... ", &frmConfiguring::ClearRecords},
        {"Updating Null Values...", &frmConfiguring::UpdateNullValues},
        {"Updating Option settings...", &frmConfiguring::UpdateOptionSettings},
        {"Updating Month Dates...", &frmConfiguring::UpdateMonthDates},
        {"Updating Opening Balance...", &frmConfiguring::UpdateOpeningBalance},
        {"Updating Allotment Dates...", &frmConfiguring::UpdateAllotmentDates},
        {"Updating Avail from Dates...", &frmConfiguring::UpdateAvailFromDates},
        {"Updating monthly records...", &frmConfiguring::UpdateMonthlyRecords},
        {nullptr, &frmConfiguring::UpdateLedgerRows},  // tells what it does by itself
        {"Filling default values ...", &frmConfiguring::FillDefaultValues},
        {nullptr, &frmConfiguring::DateAdjustments},
    };
    barProgress.maximum = std::size(kSteps);
    for (const Step& step : kSteps) {
        if (step.status != nullptr) status(step.status);
        if (!guard([&] { (this->*step.run)(); })) break;
        ++barProgress.value;
    }
    close();
}

void frmConfiguring::status(const std::string& text) {
    lblProgress.caption = text;
    frontEnd().refresh(*this);
}

void frmConfiguring::LoadOptions() {
    LoadOptSet(session_);
    LoadCompany(session_);
    LoadCaptions(session_);
    InstallServerObjects(session_);
    session_.gConn.Execute(
        "UPDATE LEV_SETTINGS SET UPPERLIMITYN=0, LOWERLIMITYN=0 WHERE COTYPE=0 AND "
        "(UPPERLIMITYN=1 OR LOWERLIMITYN=1)");
}

// Columns, objects and defaults that older databases lack.
void frmConfiguring::AllotmentMethods() {
    if (!FnBlnRecordExists(session_,
                           "SELECT * FROM INFORMATION_SCHEMA.COLUMNS WHERE COLUMN_NAME = "
                           "'LAPSENEGATIVE' AND TABLE_NAME = 'LEV_SETTINGS'"))
        session_.gConn.Execute("ALTER TABLE LEV_SETTINGS ADD LAPSENEGATIVE tinyint NULL DEFAULT 0");
    InstallLeaveSettingsFunction(session_);
    if (!FnBlnRecordExists(session_,
                           "Select * From Sys.Objects Where Name = 'DF__LEV_ALLOT__EDITMODEYN'"))
        session_.gConn.Execute(
            "ALTER TABLE LEV_ALLOTMENT ADD CONSTRAINT DF__LEV_ALLOT__EDITMODEYN DEFAULT (1) FOR "
            "EDITMODEYN");
    DeleteUnallottedLeaves(session_);
}

void frmConfiguring::ClearRecords() {
    if (FnBlnRecordExists(session_,
                          "SELECT ATTHEADID FROM MAS_ATTHEAD WHERE (ATTNTYPE = 2 OR ATTNTYPE = "
                          "3)"))
        TidyAttendanceRows(session_);
    for (const auto& [table, date] :
         {std::pair<std::string, std::string>{"LEV_DETAILS", "LEAVEDATE"},
          {"LEV_OTDETAILS", "OTDATE"}})
        session_.gConn.Execute("UPDATE " + table +
                               " SET EMPDETID = [dbo].FnIntMaxEmpDetID(EMPID, " + date + ", " +
                               date + ") WHERE EMPDETID = 0 OR EMPDETID IS NULL");
    session_.gConn.Execute(
        " Delete From LEV_DETAILS Where LEVID = 0 OR EMPDETID = 0 OR (FIRSTHALFYN = 0 AND "
        "SECONDHALFYN = 0 AND (LEVMONTHLY IS NULL OR LEVMONTHLY = 0))");
    FreeLeaveTables(session_);
}

// A half that is not known was not taken; a row without a mark has never been worked out.
void frmConfiguring::UpdateNullValues() {
    for (const char* sql :
         {"UPDATE LEV_DETAILS SET FIRSTHALFYN = ISNULL(FIRSTHALFYN, 0), SECONDHALFYN = "
          "ISNULL(SECONDHALFYN, 0) WHERE FIRSTHALFYN IS NULL OR SECONDHALFYN IS NULL",
          "UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL",
          "UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL",
          "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL",
          "UPDATE LEV_ALLOTMENT SET ACTALLOTLEV = ALLOTLEV WHERE ACTALLOTLEV IS NULL"})
        session_.gConn.Execute(sql);
}

// A head without options of its own starts from the common row.
void frmConfiguring::UpdateOptionSettings() {
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

void frmConfiguring::UpdateMonthDates() {
    FnNodNdp(session_).Update_MonthYear();
}

void frmConfiguring::UpdateOpeningBalance() {
    InsertOpeningBalances(session_);
}

void frmConfiguring::UpdateAllotmentDates() {
    InsertAllotFromDate(session_);
    UpdateAllotFromDate(session_);
}

void frmConfiguring::UpdateAvailFromDates() {
    InsertAvailFromDate(session_);
    UpdateAvailFromDate(session_);
}

// New register rows mark the months that they stand in, so the months come first.
void frmConfiguring::UpdateMonthlyRecords() {
    ReconcileMonthDetails(session_);
    ReconcileMonthlyRows(session_);
}

void frmConfiguring::UpdateLedgerRows() {
    ReconcileLedgerRows(session_, [this](const char* text) { status(text); });
    DeleteOrphanedEncashments(session_);
}

void frmConfiguring::FillDefaultValues() {
    LoadDefaultAttendance(session_);
}

void frmConfiguring::DateAdjustments() {
    session_.gConn.Execute(
        "UPDATE LEV_ADJUSTMENT SET ASONDATE = [dbo].FnDteToDate(EMPID, EMPDETID, MONTHYEAR)");
}

}  // namespace owb
