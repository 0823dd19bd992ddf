#include "config/screens/modLeaveDef.h"

#include "base/utf8.h"
#include "data/clsCtrlDep.h"
#include "data/modAuditTrail.h"
#include "data/modCommon.h"
#include "data/modOWBSetting.h"
#include "db/recordset.h"

namespace owb {

namespace {

enum Column { kId, kName, kShort, kAffectsSalary, kAllotment };

constexpr int64_t kCompensatoryWork = 3, kReserved = 4;

std::string number(int64_t value) {
    return std::to_string(value);
}

const char* yesNo(bool value) {
    return value ? "Yes" : "No";
}

}  // namespace

modLeaveDef::modLeaveDef(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "modLeaveDef", "Leave / Non-Leave Definition") {
    txtLeaveName.maxLength = 60;
    txtAttShort.maxLength = 10;
    cmdMasterSetting.toolTip = "Leave settings common to all attendance heads";
    fpgMstDetail.caption = "Leave and non-leave types";
    fpgMstDetail.setColumns({{.caption = "LEVID", .hidden = true},
                             {.caption = "Name", .width = 30},
                             {.caption = "Abbreviation", .width = 12},
                             {.caption = "Affects Salary", .width = 14, .type = CellType::Check},
                             {.caption = "Leave Allotment", .width = 15, .type = CellType::Check}});
    fpgMstDetail.singleRows = true;
    fpgMstDetail.onCurrentChange = [this](size_t row, size_t) { fpgMstDetail_Click(row); };
    optLeave.onClick = optNonLeave.onClick = [this] { optKind_Click(); };
    chkLeaveAllotment.onClick = [this] { chkLeaveAllotment_Click(); };
    cmdMasterSetting.onClick = [this] { cmdMasterSetting_Click(); };
    cmdNew.onClick = [this] { cmdNew_Click(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdDelete.onClick = [this] { cmdDelete_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout modLeaveDef::layout() {
    return column({row({item(optLeave), item(optNonLeave), space()}), item(fpgMstDetail, 1),
                   form({item("Name", txtLeaveName), item("Abbreviation", txtAttShort),
                         item("", chkAffectSalary), item("", chkLeaveAllotment)}),
                   row({item(cmdMasterSetting), space(), item(cmdNew), item(cmdSave),
                        item(cmdDelete), item(cmdClose)})});
}

void modLeaveDef::onLoad() {
    applyRights({&cmdSave, &cmdDelete});
    repairRows();
    optLeave.choose();
    loadGrid();
}

// Rows of older versions, brought to what the ledger expects of them.
void modLeaveDef::repairRows() {
    for (const char* sql :
         {"UPDATE LEV_ALLOTCONFIG SET ALLOTON = ISNULL(LS.ALLOTON,0) FROM LEV_ALLOTCONFIG LA, "
          "LEV_SETTINGS LS, ATT_DEFINITION AD WHERE LA.LEVID = LS.LEVID AND "
          "LS.ATTHEADID=LA.ATTHEADID AND AD.LEVID =LS.LEVID AND LS.LEVID =LA.LEVID AND "
          "AD.LEAVEYN=1 AND LA.ALLOTTYPE IN (2, 4) AND LS.MONTHYEAR = (SELECT MAX(MONTHYEAR) FROM "
          "LEV_SETTINGS WHERE LEVID = LS.LEVID AND ATTHEADID = LS.ATTHEADID AND ALLOTTYPE = "
          "LA.ALLOTTYPE) AND LA.ALLOTON = 0",
          "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EDITMODEYN IS NULL",
          "UPDATE LEV_SETTINGS SET ALLOTRNDTYPE = 0 WHERE ALLOTRNDTYPE IS NULL",
          "UPDATE LEV_ALLOTMENT SET ACTALLOTLEV = ALLOTLEV WHERE ACTALLOTLEV IS NULL",
          "UPDATE ATT_DEFINITION SET ALLOTMENTYN = (CASE AFFECTSALARYYN WHEN 1 THEN 0 ELSE 1 END) "
          "WHERE ALLOTMENTYN IS NULL AND LEAVEYN = 1 AND LEVID NOT IN (1, 2, 3)",
          "UPDATE ATT_DEFINITION SET ALLOTMENTYN = 0 WHERE ALLOTMENTYN IS NULL AND LEVID = 1",
          "UPDATE ATT_DEFINITION SET ALLOTMENTYN = 1 WHERE LEVID = 2",
          "UPDATE ATT_DEFINITION SET ALLOTMENTYN = 1 WHERE LEVID = 3",
          "UPDATE LEV_SETTINGS SET ALLOTFOR = 0 WHERE ALLOTFOR IS NULL",
          "UPDATE LEV_SETTINGS SET LAPSENEGATIVE = 0 WHERE LAPSENEGATIVE IS NULL",
          "DELETE FROM LEV_ADJUSTMENT WHERE ATTHEADID NOT IN (SELECT ATTHEADID FROM "
          "MAS_EMPLOYEEDET WHERE ATTHEADID IS NOT NULL)"})
        session_.gConn.Execute(sql);
}

void modLeaveDef::loadGrid() {
    fpgMstDetail.setRowCount(0);
    Recordset rs(session_.gConn,
                 "SELECT LEVID, LEVNAME, LEVSHORT, AFFECTSALARYYN, ALLOTMENTYN FROM ATT_DEFINITION "
                 "WHERE LEAVEYN = " +
                     number(optLeave.value() ? 1 : 0) + " ORDER BY LEVID");
    for (; !rs.IsEOF(); rs.MoveNext())
        fpgMstDetail.addRow({rs.Fields("LEVID").toText(), rs.Fields("LEVNAME").toText(),
                             rs.Fields("LEVSHORT").toText(),
                             rs.Fields("AFFECTSALARYYN").toBool() ? "1" : "0",
                             rs.Fields("ALLOTMENTYN").toBool() ? "1" : "0"});
    show({});
}

void modLeaveDef::show(const Definition& definition) {
    selected_ = definition;
    if (definition.levId == 0) fpgMstDetail.setCurrent(-1, -1);
    txtLeaveName.value = definition.name;
    txtAttShort.value = definition.shortName;
    chkAffectSalary.value = definition.affectsSalary;
    chkLeaveAllotment.value = definition.allotment;
    // Loss of pay is never allotted, the compensatory pair always.
    chkLeaveAllotment.enabled = definition.levId == 0 || definition.levId > kCompensatoryWork;
}

modLeaveDef::Definition modLeaveDef::definitionOnScreen() const {
    return {selected_.levId, trim(txtLeaveName.value), trim(txtAttShort.value),
            chkAffectSalary.value, chkLeaveAllotment.value};
}

std::string modLeaveDef::word() const {
    return optLeave.value() ? "Leave" : "Non-Leave";
}

void modLeaveDef::optKind_Click() {
    loadGrid();
}

void modLeaveDef::fpgMstDetail_Click(size_t row) {
    show({static_cast<int64_t>(fpgMstDetail.number(row, kId)), fpgMstDetail.cell(row, kName),
          fpgMstDetail.cell(row, kShort), fpgMstDetail.checked(row, kAffectsSalary),
          fpgMstDetail.checked(row, kAllotment)});
}

void modLeaveDef::chkLeaveAllotment_Click() {
    if (chkLeaveAllotment.value || selected_.levId == 0) return;
    if (FnVarReadValue(session_,
                       "SELECT COUNT(AE.ALLOTID) FROM ATT_ENCASH AE INNER JOIN LEV_ALLOTMENT LA ON "
                       "AE.ALLOTID = LA.ALLOTID INNER JOIN ATT_DEFINITION AD ON LA.LEVID = "
                       "AD.LEVID WHERE AD.LEVID = " +
                           number(selected_.levId))
            .toInt() == 0)
        return;
    chkLeaveAllotment.value = true;
    inform(
        "Leave encashment has been done for this Leave. Now Allotment option cannot be unchecked.");
}

void modLeaveDef::cmdMasterSetting_Click() {
    inform("Leave Settings is not available in this version.");
}

void modLeaveDef::cmdNew_Click() {
    show({});
    setFocus(txtLeaveName);
}

// --- saving ---

bool modLeaveDef::taken(const char* column, const std::string& text) const {
    return FnBlnRecordExists(session_, std::string("SELECT LEVID FROM ATT_DEFINITION WHERE ") +
                                           column + " = '" + session_.gSpChar.FnStrSpSQL(text) +
                                           "' AND LEVID <> " + number(selected_.levId));
}

void modLeaveDef::cmdSave_Click() {
    if (denied(cmdSave)) return;
    Definition now = definitionOnScreen();
    if (now.name.empty()) return refuse("Specify " + word() + " name.", txtLeaveName);
    if (now.shortName.empty()) return refuse("Specify " + word() + " abbreviation.", txtAttShort);
    if (taken("LEVNAME", now.name))
        return refuse("Leave/Non Leave Type is already been created.", txtLeaveName);
    if (taken("LEVSHORT", now.shortName))
        return refuse("Given abbreviation already set for a Leave/Non Leave Type.", txtAttShort);
    if (now.levId != 0 && now.affectsSalary != selected_.affectsSalary && !changeOfSalaryAccepted())
        return;
    if (now.levId == 0)
        now.levId = clsCtrlDep(session_).FnLngGetNextNumber("ATT_DEFINITION", "LEVID");
    write(now);
    alignSettings();
    if (FnBlnAuditTrailOn(session_)) auditSave(now);
    finish();
    session_.gGenCmn.ShowSavedMessage();
}

bool modLeaveDef::changeOfSalaryAccepted() {
    const std::string id = number(selected_.levId);
    if (FnVarReadValue(session_,
                       "Select COUNT(*) From MAS_MONTHYEAR Where LOCKEDYN = 1 And MONTHYEAR In "
                       "(Select MONTH(LEAVEDATE) + (YEAR(LEAVEDATE) * 12) From LEV_DETAILS Where "
                       "LEVID = " +
                           id + ")")
            .toInt() > 0) {
        inform(
            "Some of the Salary processed months are 'Locked'.\nUnlock such months to change "
            "'Affects Salary' setting.");
        return false;
    }
    if (!ask("Salaries will be processed for " + session_.gEmployeeCaption +
             " (s) who have availed selected leave.\nDo you want to continue updating leave "
             "definition?"))
        return false;
    session_.gConn.Execute(
        "UPDATE dbo.LEV_MONTHDET SET EDITMODEYN = 1 FROM dbo.LEV_MONTHDET LM, (SELECT DISTINCT "
        "EMPID, DBO.FNLNGMONTHYEAR(LEAVEDATE, LEAVEDATE) AS MNTHYR FROM dbo.LEV_DETAILS WHERE "
        "LEVID = " +
        id + ") AS TMPTAB WHERE LM.EMPID = TMPTAB.EMPID AND LM.MONTHYEAR = TMPTAB.MNTHYR");
    return true;
}

void modLeaveDef::write(const Definition& definition) {
    const std::string id = number(definition.levId);
    const std::string name = "'" + session_.gSpChar.FnStrSpSQL(definition.name) + "'";
    const std::string shortName = "'" + session_.gSpChar.FnStrSpSQL(definition.shortName) + "'";
    const std::string leave = number(optLeave.value()), affects = number(definition.affectsSalary),
                      allotment = number(definition.allotment);
    session_.gConn.Execute(
        selected_.levId == 0
            ? "INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, "
              "AllotmentYN) VALUES (" +
                  id + ", " + name + ", " + shortName + ", " + leave + ", " + affects + ", " +
                  allotment + ")"
            : "UPDATE ATT_DEFINITION SET LEVNAME = " + name + ", LEVSHORT = " + shortName +
                  ", LEAVEYN = " + leave + ", AFFECTSALARYYN = " + affects +
                  ", AllotmentYN = " + allotment + " WHERE LEVID = " + id);
}

void modLeaveDef::alignSettings() {
    const std::string insert =
        "Insert into LEV_SETTINGS(LEVID, ATTHEADID, MINMONTH, MINDAYS, MINAVAILMONTH, "
        "MINAVAILDAYS, ALLOTTYPE, COTYPE, ENCASHMINBAL, PRIORITY) ";
    session_.gConn.Execute(
        "DELETE FROM LEV_SETTINGS WHERE LEVID IN (SELECT LEVID FROM ATT_DEFINITION WHERE "
        "ALLOTMENTYN = 0) ");
    session_.gConn.Execute(insert +
                           "Select LEVID, 0, 0, 0, 0, 0, 0, 0, 0, LEVID From ATT_DEFINITION Where "
                           "AllotmentYN = 1 And LEVID Not In (Select LEVID From LEV_SETTINGS Where "
                           "ATTHEADID = 0) ");
    session_.gConn.Execute(
        insert +
        "Select AD.LEVID, MA.ATTHEADID, 0, 0, 0, 0, 0, 0, 0, AD.LEVID From ATT_DEFINITION AD, "
        "MAS_ATTHEAD MA Where AD.AllotmentYN = 1 And Not Exists (Select LEVID From LEV_SETTINGS "
        "Where LEVID = AD.LEVID And ATTHEADID = MA.ATTHEADID) ");
}

// --- deleting ---

void modLeaveDef::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (!deletionAccepted()) return;
    const Definition gone = selected_;
    session_.gConn.BeginTrans();
    try {
        for (const char* table :
             {"ATT_OPBAL", "LEV_DETAILS", "LEV_ALLOTMENT", "LEV_SETTINGS", "ATT_ALLOTMENT",
              "ATT_MONTHLEV", "ATT_DEFINITION", "LEV_ALLOTCONFIG", "LEV_ALLOTFROM", "LEV_AVAILFROM",
              "LEV_ADJUSTMENT"})
            session_.gConn.Execute(std::string("DELETE FROM ") + table +
                                   " WHERE LEVID = " + number(gone.levId));
        session_.gConn.CommitTrans();
    } catch (...) {
        session_.gConn.RollbackTrans();
        throw;
    }
    alignSettings();
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "Leave Definition Deleted", auditOf(gone),
                         word() + " Type Deleted");
    finish();
}

bool modLeaveDef::deletionAccepted() {
    const auto refused = [&](const std::string& text, const std::string& title) {
        inform(text, title);
        return false;
    };
    const std::string title = "Orvane Wagebook", id = number(selected_.levId);
    if (selected_.levId == 0) return refused("Select " + word() + " to delete.", title);
    if (selected_.levId <= kReserved)
        return refused(
            "Selected " + word() + " is not user created. Hence, deletion is not allowed", title);
    if (FnBlnRecordExists(session_, "SELECT EMPID FROM LEV_DETAILS WHERE LEVID=" + id))
        return refused("'" + selected_.shortName + "' has been availed by one or more " +
                           session_.gEmployeeCaption +
                           " (s). \nYou can not delete the Leave Definition.",
                       "Invalid Action");
    if (FnBlnRecordExists(session_,
                          "SELECT ENCASHSLNO FROM ATT_ENCASH AE, LEV_ALLOTMENT LA WHERE "
                          "LA.ALLOTID=AE.ALLOTID AND LA.LEVID=" +
                              id))
        return refused(
            "Encashment has been done for '" + selected_.shortName + "'. Deletion is not allowed.",
            title);
    if (FnBlnRecordExists(session_,
                          "Select OPBAL From ATT_OPBAL Where LEVID = " + id + " And OPBAL > 0"))
        return refused(" 'Opening Balance' given for one or more " + session_.gEmployeeCaption +
                           " (s). Hence, Leave can not be deleted.",
                       title);
    return ask("Do you want to delete selected " + word() + "?");
}

// The shell's menu and the list show what there is now.
void modLeaveDef::finish() {
    session_.settings.SaveSetting("LeaveMgmt", "CallMenu", "1");
    loadGrid();
}

// --- the audit's words ---

std::string modLeaveDef::auditOf(const Definition& definition) const {
    return ":Type = " + word() + ":Name = " + definition.name +
           ":Short Name = " + definition.shortName +
           ":Affects Salary = " + yesNo(definition.affectsSalary) +
           ":Leave Allotment = " + yesNo(definition.allotment);
}

void modLeaveDef::auditSave(const Definition& now) {
    if (selected_.levId == 0) {
        UpdateAuditTrail(session_, kAuditModule, 0, "New Leave Added", auditOf(now),
                         word() + " Type Added");
        return;
    }
    std::string detail = "::Leave Name = " + now.name;
    const auto change = [&](const char* label, const std::string& from, const std::string& to) {
        if (from != to) detail += label + from + " to " + to;
    };
    change(":Leave Name Changed from ", selected_.name, now.name);
    change(":Leave Short Name Changed from ", selected_.shortName, now.shortName);
    change(":Affects Salary Changed from ", yesNo(selected_.affectsSalary),
           yesNo(now.affectsSalary));
    change(":Leave Allotment Changed from ", yesNo(selected_.allotment), yesNo(now.allotment));
    UpdateAuditTrail(session_, kAuditModule, 0, "Leave Definition Updated", detail,
                     word() + " Type Updated");
}

}  // namespace owb
