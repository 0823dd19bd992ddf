// Saving and deleting a head: the checks in their order, the row, and what it marks.
#include "config/screens/modAttHead.h"
#include "db/recordset.h"
#include "session/locks.h"
#include "session/modAttSetting.h"
#include "session/modAuditTrail.h"
#include "session/modOWBSetting.h"
#include "session/queries.h"

namespace owb {

namespace {

std::string number(int64_t value) {
    return std::to_string(value);
}

constexpr const char* kNameTaken = "Specified name already exists";
constexpr const char* kMenuTaken = "Specified Attendance Menu already exists";

const char* yesNo(bool value) {
    return value ? "Yes" : "No";
}

}  // namespace

void modAttHead::cmdSave_Click() {
    if (denied(cmdSave)) return;
    if (!isNew_ && !stillAsShown(shown_, kHead, [this] { showAgain(); })) return;
    const Head now = headOnScreen();
    if (!fieldsAccepted(now)) return;
    SaveBatch batch;
    std::string marks;
    if (isNew_) {
        insert(batch, now);
    } else {
        if (!changesAccepted(batch, now, marks)) return;
        batch.requireShown(shown_, kHead);
        requireFreeNames(batch, now);
        batch.add(rowOf(now).update("MAS_ATTHEAD", shown_.key())).add(marks);
    }
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_)) auditSave(now);
    finish();
    session_.gGenCmn.ShowSavedMessage();
}

bool modAttHead::fieldsAccepted(const Head& head) {
    const auto refused = [&](const char* text, Control& field) {
        refuse(text, field);
        return false;
    };
    if (head.id == 0) return refused("Specify Sl. No.", txtAttID);
    if (head.menuName.empty()) return refused("Specify Menu Caption", txtShortName);
    if (head.name.empty()) return refused("Specify Attendance Head Name", txtAttName);
    if (FnBlnDuplicate(session_, "MAS_ATTHEAD", "ATTHEADNAME", "ATTHEADID", head.name, head.id))
        return refused(kNameTaken, txtAttName);
    if (FnBlnDuplicate(session_, "MAS_ATTHEAD", "ATTMENUNAME", "ATTHEADID", head.menuName, head.id))
        return refused(kMenuTaken, txtShortName);
    if (head.tight && head.nwdOption == 0)
        return refused("Invalid option selected for 'Salary Calendar Days'.", optNODForCalc[0]);
    if (OptAttMonthly.value() && head.allotType == 0)
        return refused("Invalid Allotment type option selected.", optAllotType[0]);
    return true;
}

std::vector<modAttHead::Setting> modAttHead::settingsOf(const Head& before, const Head& now) const {
    const auto chosen = [](const OptionGroup& group, int index) -> std::string {
        return index == 0 ? "" : group.buttons()[static_cast<size_t>(index - 1)]->caption;
    };
    const auto integration = [&](bool tight) {
        return (tight ? optTightIntegrate : optLooseIntegrate).caption;
    };
    return {
        {"Attendance Name", before.name, now.name},
        {"Short Name", before.menuName, now.menuName},
        {"Salary Calculation", integration(before.tight), integration(now.tight), true},
        {"Salary Calendar days (NWD)", chosen(nwdOptions, before.nwdOption),
         chosen(nwdOptions, now.nwdOption), true},
        {"Attendance Register Type", chosen(optRegister, before.registerType),
         chosen(optRegister, now.registerType)},
        {chkAllowMore.caption, yesNo(before.allowMore), yesNo(now.allowMore), true},
        {"Allotment Type", chosen(allotTypes, before.allotType), chosen(allotTypes, now.allotType)},
        {chkOT1.caption, yesNo(before.ot1), yesNo(now.ot1)},
        {chkOT2.caption, yesNo(before.ot2), yesNo(now.ot2)},
        {"Over Time for Day to day attendance", before.otHourly ? "Hourly" : "Daily",
         now.otHourly ? "Hourly" : "Daily"},
        {chkInactive.caption, yesNo(before.inactive), yesNo(now.inactive)},
        {"Remarks", before.remarks, now.remarks}};
}

bool modAttHead::hasSalaryRows() const {
    return FnBlnExistsOrThrow(
        session_,
        "Select SE.SALID From SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET ED  Where SE.EMPID = ED.EMPID "
        "AND SE.EMPDETID = ED.EMPDETID AND ED.ATTHEADID = " +
            number(selected_.id));
}

bool modAttHead::changesAccepted(SaveBatch& batch, const Head& now, std::string& marks) {
    const std::vector<Setting> settings = settingsOf(selected_, now);
    const auto changed = std::find_if(settings.begin(), settings.end(), [](const Setting& s) {
        return s.salaryRestsOnIt && s.before != s.now;
    });
    if (changed == settings.end() || !hasSalaryRows()) return true;
    const std::string locked =
        "Months locked, unlock locked months to change " + changed->label + " setting.";
    if (FnBlnMonthRangeLocked(session_, 0, 99999, false, 0)) {
        inform(locked);
        return false;
    }
    if (!ask("By changing these values, salary will be recalculated.\nDo you want to proceed?"))
        return false;
    batch.refuseUnless(FnStrMonthRangeOpenSql(0, 99999, false, 0), locked);
    marks = markHeadSql();
    return true;
}

// Two heads may not take one name at once.
void modAttHead::requireFreeNames(SaveBatch& batch, const Head& head) const {
    const auto require = [&](const char* column, const std::string& name, const char* text) {
        batch.refuseUnless("NOT EXISTS (SELECT * FROM MAS_ATTHEAD WITH (UPDLOCK, HOLDLOCK) WHERE " +
                               RowText().set(column, Value(name)).condition() +
                               (isNew_ ? ")" : " AND ATTHEADID <> " + number(head.id) + ")"),
                           text);
    };
    require("ATTHEADNAME", head.name, kNameTaken);
    require("ATTMENUNAME", head.menuName, kMenuTaken);
}

RowText modAttHead::rowOf(const Head& head) {
    RowText row;
    const auto flag = [&](const char* column, bool value) { row.set(column, Value(value)); };
    row.set("ATTHEADNAME", Value(head.name))
        .set("ATTMENUNAME", Value(head.menuName))
        .set("ATTDESC", Value(head.remarks))
        .set("ATTNTYPE", Value(head.registerType))
        .set("ATTNALLOTTYPE", head.allotType == 0 ? Value() : Value(head.allotType))
        // Without a choice, which only an independent head may leave open, months have all their
        // days.
        .set("NODFORCALC", Value(head.nwdOption == 0 ? 2 : head.nwdOption));
    flag("ATTNTIGHTYN", head.tight);
    flag("ATTNDTODYN", head.registerType == 2 || head.registerType == 3);
    flag("ATTNHOURLYYN", head.registerType == 3);
    flag("OT1YN", head.ot1);
    flag("OT2YN", head.ot2);
    flag("OTHOURLYYN", head.otHourly);
    flag("MORETHANNODYN", head.allowMore);
    flag("INACTIVEYN", head.inactive);
    return row;
}

void modAttHead::insert(SaveBatch& batch, const Head& head) {
    requireFreeNames(batch, head);
    const std::string id = batch.newKey("MAS_ATTHEAD", "ATTHEADID");
    RowText row = rowOf(head);
    row.setSql("ATTHEADID", id);
    // The bands of a day, until the user sets his own.
    for (const auto& [column, value] : {std::pair{"MINNOATT", 0.0},
                                        {"MAXNOATT", 1.99},
                                        {"MINHALFDAY", 2.0},
                                        {"MAXHALFDAY", 5.99},
                                        {"CUTOFFHALFDAY", 4.0},
                                        {"MINFULLDAY", 6.0},
                                        {"CUTOFFFULLDAY", 8.0},
                                        {"MAXFULLDAY", 10.0},
                                        {"ATTUPPERLIMIT", 10.0},
                                        {"NOATTOTYN", 1.0},
                                        {"HALFDAYOTYN", 1.0},
                                        {"HALFDAYDEDYN", 0.0},
                                        {"FULLDAYOTYN", 1.0},
                                        {"FULLDAYDEDYN", 0.0},
                                        {"OTHOURMIN", 30.0},
                                        {"NOATTSALAFFYN", 0.0},
                                        {"HALFATTSALAFFYN", 0.0},
                                        {"FULLATTSALAFFYN", 0.0}})
        row.set(column, Value(value));
    batch.add(row.insertInto("MAS_ATTHEAD"));
    makeLeaveSettings(batch, id);
}

// From the payroll's first month on, as the master rows say.
void modAttHead::makeLeaveSettings(SaveBatch& batch, const std::string& headId) {
    const auto month = static_cast<int32_t>(
        FnVarValueOrThrow(session_, "SELECT MIN(MONTHYEAR) FROM MAS_MONTHYEAR", 0).toInt());
    Recordset rs(session_.gConn,
                 "SELECT LEVID FROM ATT_DEFINITION WHERE LEAVEYN = 1 AND ALLOTMENTYN = 1");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const auto levId = static_cast<int32_t>(rs.Fields(0).toInt());
        bool found = false;
        LeaveSettingsRecord settings = FnReadLeaveSettings(session_, levId, 0, month, found);
        if (!found) settings.PRIORITY = levId;
        settings.EDITEDYN = false;
        batch.add(SaveLeaveSettingsSql(levId, headId, month, settings));
    }
}

std::string modAttHead::markHeadSql() const {
    const std::string head = number(selected_.id);
    return " UPDATE ATT_DAYTODAY SET EDITMODEYN =1 WHERE ATTHEADID = " + head +
           " UPDATE LEV_MONTHDET SET EDITMODEYN =1 WHERE EMPID IN (SELECT EMPID FROM "
           "MAS_EMPLOYEEDET WHERE ATTHEADID = " +
           head +
           ") UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 , TSALEDITMODEYN = 1 WHERE SALID "
           "IN(Select SE.SALID From SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET ED  Where SE.EMPID = "
           "ED.EMPID AND SE.EMPDETID = ED.EMPDETID AND ED.ATTHEADID = " +
           head + ")";
}

void modAttHead::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    const char* onlyHead = "First Attedance detail is required, can't delete";
    if (FnVarValueOrThrow(session_, "SELECT COUNT(ATTHEADID) FROM MAS_ATTHEAD").toInt() == 1)
        return inform(onlyHead);
    if (isNew_) return inform("Select Attendance Head to delete.");
    if (!stillAsShown(shown_, kHead, [this] { showAgain(); })) return;
    const std::string head = number(selected_.id);
    const std::string assigned = "Select * From MAS_EMPLOYEEDET Where ATTHEADID = " + head;
    const std::string isAssigned = session_.gEmployeeCaption + " assigned, cannot delete";
    if (FnBlnExistsOrThrow(session_, assigned)) return inform(isAssigned);
    if (!ask("Do you want to delete ?")) return;
    SaveBatch batch;
    batch.requireShown(shown_, kHead)
        .refuseUnless("NOT EXISTS (" + assigned + ")", isAssigned)
        .refuseUnless("1 < (SELECT COUNT(ATTHEADID) FROM MAS_ATTHEAD WITH (TABLOCKX, HOLDLOCK))",
                      onlyHead);
    for (const char* table :
         {"ATT_WEEKLY", "LEV_WEEKLYHLD", "SLC_ATTHEADNOD", "MAS_ATTHEAD", "LEV_SETTINGS",
          "ATT_OPTSETTINGS", "ATT_HOLIDAY", "LEV_ALLOTCONFIG", "LEV_ALLOTMENT"})
        batch.add(std::string(" DELETE FROM ") + table + " WHERE ATTHEADID = " + head);
    if (!save(batch, [this] { showAgain(); })) return;
    if (FnBlnAuditTrailOn(session_))
        UpdateAuditTrail(session_, kAuditModule, 0, "Attendance Configuration Deleted",
                         "Attendance Head Deleted" + auditOf(selected_));
    finish();
}

// The shell's menu, the session's records and the list show what there is now.
void modAttHead::finish() {
    session_.settings.SaveSetting("LeaveMgmt", "CallMenu", "1");
    showAgain();
}

std::string modAttHead::auditOf(const Head& head) const {
    std::string detail;
    const std::vector<Setting> settings = settingsOf(head, head);
    for (size_t i = 0; i < 5; ++i) detail += ":->" + settings[i].label + " = " + settings[i].now;
    return detail;
}

void modAttHead::auditSave(const Head& now) {
    if (isNew_) {
        UpdateAuditTrail(session_, kAuditModule, 0, "Attendance Configuration Added",
                         "New Attendance Head Added" + auditOf(now));
        return;
    }
    std::string detail = "Attendance Head Updated";
    if (now.name == selected_.name) detail += ":->Attendance Name = " + now.name;
    for (const Setting& s : settingsOf(selected_, now))
        if (s.before != s.now)
            detail += ":->" + s.label + " Changed from " + s.before + " to " + s.now;
    UpdateAuditTrail(session_, kAuditModule, 0, "Attendance Configuration Updated", detail);
}

}  // namespace owb
