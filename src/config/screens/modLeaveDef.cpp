#include "config/screens/modLeaveDef.h"

#include "base/utf8.h"
#include "db/recordset.h"
#include "session/modAuditTrail.h"
#include "session/modOWBSetting.h"
#include "session/queries.h"

namespace owb {

namespace {

enum Column { kId, kName, kShort, kAffectsSalary, kAllotment };

constexpr int32_t kMenuId = 1500;
constexpr const char* kDefinition = "The leave definition";
constexpr const char* kNameTaken = "Leave/Non Leave Type is already been created.";
constexpr const char* kShortTaken = "Given abbreviation already set for a Leave/Non Leave Type.";
constexpr const char* kIsEncashed =
    "Leave encashment has been done for this Leave. Now Allotment option cannot be unchecked.";

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
    applyRights({&cmdSave, &cmdDelete}, kMenuId);
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
    shown_ = {};
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
    const auto levId = static_cast<int64_t>(fpgMstDetail.number(row, kId));
    const ShownRow read(session_, "ATT_DEFINITION",
                        "LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, ALLOTMENTYN",
                        "LEVID = " + number(levId));
    if (!read.found()) {
        frontEnd().warning(FnStrChangedMeanwhile(kDefinition));
        return loadGrid();
    }
    show({levId, read.value("LEVNAME").toText(), read.value("LEVSHORT").toText(),
          read.value("AFFECTSALARYYN").toBool(), read.value("ALLOTMENTYN").toBool()});
    shown_ = read;
}

std::string modLeaveDef::encashedSql() const {
    return "SELECT COUNT(AE.ALLOTID) FROM ATT_ENCASH AE INNER JOIN LEV_ALLOTMENT LA ON AE.ALLOTID "
           "= LA.ALLOTID INNER JOIN ATT_DEFINITION AD ON LA.LEVID = AD.LEVID WHERE AD.LEVID = " +
           number(selected_.levId);
}

void modLeaveDef::chkLeaveAllotment_Click() {
    if (chkLeaveAllotment.value || selected_.levId == 0) return;
    chkLeaveAllotment.value = true;  // until it is known that it may go
    if (FnVarValueOrThrow(session_, encashedSql()).toInt() == 0)
        chkLeaveAllotment.value = false;
    else
        inform(kIsEncashed);
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
    return FnBlnExistsOrThrow(session_, std::string("SELECT LEVID FROM ATT_DEFINITION WHERE ") +
                                            column + " = '" + session_.gSpChar.FnStrSpSQL(text) +
                                            "' AND LEVID <> " + number(selected_.levId));
}

void modLeaveDef::cmdSave_Click() {
    if (denied(cmdSave)) return;
    const auto showAgain = [this] { loadGrid(); };
    if (selected_.levId != 0 && !stillAsShown(shown_, kDefinition, showAgain)) return;
    const Definition now = definitionOnScreen();
    if (now.name.empty()) return refuse("Specify " + word() + " name.", txtLeaveName);
    if (now.shortName.empty()) return refuse("Specify " + word() + " abbreviation.", txtAttShort);
    if (taken("LEVNAME", now.name)) return refuse(kNameTaken, txtLeaveName);
    if (taken("LEVSHORT", now.shortName)) return refuse(kShortTaken, txtAttShort);
    SaveBatch batch;
    std::string marks;
    if (now.levId != 0 && now.affectsSalary != selected_.affectsSalary &&
        !changeOfSalaryAccepted(batch, marks))
        return;
    requireFree(batch, now);
    write(batch, now);
    alignSettings(batch);
    batch.add(marks);
    if (!save(batch, showAgain)) return;
    if (FnBlnAuditTrailOn(session_)) auditSave(now);
    finish();
    session_.gGenCmn.ShowSavedMessage();
}

bool modLeaveDef::changeOfSalaryAccepted(SaveBatch& batch, std::string& marks) {
    const std::string id = number(selected_.levId);
    const std::string lockedMonths =
        "Select COUNT(*) From MAS_MONTHYEAR Where LOCKEDYN = 1 And MONTHYEAR In (Select "
        "MONTH(LEAVEDATE) + (YEAR(LEAVEDATE) * 12) From LEV_DETAILS Where LEVID = " +
        id + ")";
    const char* locked =
        "Some of the Salary processed months are 'Locked'.\nUnlock such months to change 'Affects "
        "Salary' setting.";
    if (FnVarValueOrThrow(session_, lockedMonths).toInt() > 0) {
        inform(locked);
        return false;
    }
    if (!ask("Salaries will be processed for " + session_.gEmployeeCaption +
             " (s) who have availed selected leave.\nDo you want to continue updating leave "
             "definition?"))
        return false;
    batch.refuseUnless("0 = (" + lockedMonths + ")", locked);
    marks =
        " UPDATE dbo.LEV_MONTHDET SET EDITMODEYN = 1 FROM dbo.LEV_MONTHDET LM, (SELECT DISTINCT "
        "EMPID, DBO.FNLNGMONTHYEAR(LEAVEDATE, LEAVEDATE) AS MNTHYR FROM dbo.LEV_DETAILS WHERE "
        "LEVID = " +
        id + ") AS TMPTAB WHERE LM.EMPID = TMPTAB.EMPID AND LM.MONTHYEAR = TMPTAB.MNTHYR";
    return true;
}

// What two users who save at once may not both do.
void modLeaveDef::requireFree(SaveBatch& batch, const Definition& definition) const {
    const auto require = [&](const char* column, const std::string& text, const char* taken) {
        batch.refuseUnless(
            "NOT EXISTS (SELECT * FROM ATT_DEFINITION WITH (UPDLOCK, HOLDLOCK) WHERE " +
                RowText().set(column, Value(text)).condition() + " AND LEVID <> " +
                number(definition.levId) + ")",
            taken);
    };
    require("LEVNAME", definition.name, kNameTaken);
    require("LEVSHORT", definition.shortName, kShortTaken);
    if (selected_.allotment && !definition.allotment)
        batch.refuseUnless("0 = (" + encashedSql() + ")", kIsEncashed);
}

void modLeaveDef::write(SaveBatch& batch, const Definition& definition) const {
    RowText row;
    row.set("LEVNAME", Value(definition.name))
        .set("LEVSHORT", Value(definition.shortName))
        .set("LEAVEYN", Value(optLeave.value()))
        .set("AFFECTSALARYYN", Value(definition.affectsSalary))
        .set("AllotmentYN", Value(definition.allotment));
    if (definition.levId != 0) {
        batch.requireShown(shown_, kDefinition).add(row.update("ATT_DEFINITION", shown_.key()));
        return;
    }
    row.setSql("LEVID", batch.newKey("ATT_DEFINITION", "LEVID"));
    batch.add(row.insertInto("ATT_DEFINITION"));
}

void modLeaveDef::alignSettings(SaveBatch& batch) {
    const std::string insert =
        " Insert into LEV_SETTINGS(LEVID, ATTHEADID, MINMONTH, MINDAYS, MINAVAILMONTH, "
        "MINAVAILDAYS, ALLOTTYPE, COTYPE, ENCASHMINBAL, PRIORITY) ";
    batch
        .add(
            " DELETE FROM LEV_SETTINGS WHERE LEVID IN (SELECT LEVID FROM ATT_DEFINITION WHERE "
            "ALLOTMENTYN = 0) ")
        .add(insert +
             "Select LEVID, 0, 0, 0, 0, 0, 0, 0, 0, LEVID From ATT_DEFINITION Where AllotmentYN = "
             "1 And LEVID Not In (Select LEVID From LEV_SETTINGS Where ATTHEADID = 0) ")
        .add(insert +
             "Select AD.LEVID, MA.ATTHEADID, 0, 0, 0, 0, 0, 0, 0, AD.LEVID From ATT_DEFINITION AD, "
             "MAS_ATTHEAD MA Where AD.AllotmentYN = 1 And Not Exists (Select LEVID From "
             "LEV_SETTINGS Where LEVID = AD.LEVID And ATTHEADID = MA.ATTHEADID) ");
}

// --- deleting ---

void modLeaveDef::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    SaveBatch batch;
    if (!deletionAccepted(batch)) return;
    const Definition gone = selected_;
    for (const char* table : {"ATT_OPBAL", "LEV_DETAILS", "LEV_ALLOTMENT", "LEV_SETTINGS",
                              "ATT_ALLOTMENT", "ATT_MONTHLEV", "ATT_DEFINITION", "LEV_ALLOTCONFIG",
                              "LEV_ALLOTFROM", "LEV_AVAILFROM", "LEV_ADJUSTMENT"})
        batch.add(std::string(" DELETE FROM ") + table + " WHERE LEVID = " + number(gone.levId));
    alignSettings(batch);
    if (!save(batch, [this] { loadGrid(); })) return;
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "Leave Definition Deleted", auditOf(gone),
                         word() + " Type Deleted");
    finish();
}

bool modLeaveDef::deletionAccepted(SaveBatch& batch) {
    const auto refused = [&](const std::string& text) {
        inform(text);
        return false;
    };
    const std::string id = number(selected_.levId);
    if (selected_.levId == 0) return refused("Select " + word() + " to delete.");
    if (selected_.levId <= kReserved)
        return refused("Selected " + word() +
                       " is not user created. Hence, deletion is not allowed");
    if (!stillAsShown(shown_, kDefinition, [this] { loadGrid(); })) return false;
    struct Use {
        std::string sql, text, title = "Orvane Wagebook";
    };
    const Use uses[] = {
        {"SELECT EMPID FROM LEV_DETAILS WHERE LEVID=" + id,
         "'" + selected_.shortName + "' has been availed by one or more " +
             session_.gEmployeeCaption + " (s). \nYou can not delete the Leave Definition.",
         "Invalid Action"},
        {"SELECT ENCASHSLNO FROM ATT_ENCASH AE, LEV_ALLOTMENT LA WHERE LA.ALLOTID=AE.ALLOTID AND "
         "LA.LEVID=" +
             id,
         "Encashment has been done for '" + selected_.shortName + "'. Deletion is not allowed."},
        {"Select OPBAL From ATT_OPBAL Where LEVID = " + id + " And OPBAL > 0",
         " 'Opening Balance' given for one or more " + session_.gEmployeeCaption +
             " (s). Hence, Leave can not be deleted."}};
    batch.requireShown(shown_, kDefinition);
    for (const Use& use : uses) {
        if (FnBlnExistsOrThrow(session_, use.sql)) {
            inform(use.text, use.title);
            return false;
        }
        batch.refuseUnless("NOT EXISTS (" + use.sql + ")", use.text);
    }
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
