// Saving and deleting a head: the checks in their order, the row, and what it marks.
#include "config/screens/modAttHead.h"
#include "config/screens/paid_heads.h"
#include "db/recordset.h"
#include "marks/marks.h"
#include "session/modAttSetting.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr const char* kNameTaken = "Specified name already exists";
constexpr const char* kMenuTaken = "Specified Attendance Menu already exists";
constexpr const char* kOnlyHead = "First Attedance detail is required, can't delete";

}  // namespace

std::optional<Refusal> modAttHead::check() {
    const auto taken = [&](const char* column) {
        return FnBlnDuplicate(session_, "MAS_ATTHEAD", column, "ATTHEADID",
                              row_.typed(column).toText(), row_.key());
    };
    if (txtAttID.value.empty()) return Refusal{"Specify Sl. No.", &txtAttID};
    if (row_.typed("ATTMENUNAME").toText().empty())
        return Refusal{"Specify Menu Caption", &txtShortName};
    if (row_.typed("ATTHEADNAME").toText().empty())
        return Refusal{"Specify Attendance Head Name", &txtAttName};
    if (taken("ATTHEADNAME")) return Refusal{kNameTaken, &txtAttName};
    if (taken("ATTMENUNAME")) return Refusal{kMenuTaken, &txtShortName};
    if (optTightIntegrate.value() && optNODForCalc.chosen() < 0)
        return Refusal{"Invalid option selected for 'Salary Calendar Days'.", &optNODForCalc[0]};
    if (OptAttMonthly.value() && optAllotType.chosen() < 0)
        return Refusal{"Invalid Allotment type option selected.", &optAllotType[0]};
    return {};
}

std::string modAttHead::changedForSalary() const {
    if (row_.isNew()) return "";
    for (const EditedRow::Field& field : row_.fields())
        for (const char* column : {"ATTNTIGHTYN", "NODFORCALC", "MORETHANNODYN"})
            if (field.column == column && row_.changed(column) &&
                FnBlnHeadPaid(session_, static_cast<int32_t>(row_.key())))
                return field.label;
    return "";
}

bool modAttHead::mayBeSaved(SaveBatch& batch) {
    row_.requireFree(batch, "ATTHEADNAME", kNameTaken);
    row_.requireFree(batch, "ATTMENUNAME", kMenuTaken);
    const std::string setting = changedForSalary();
    if (setting.empty()) return true;
    Lock lock = ConfigurationLock(0, static_cast<int32_t>(row_.key()), session_.gFeature.EMPLOCKYN,
                                  FnStrSettingLocked(setting));
    batch.requireOpen(lock);
    if (lock.holds(session_)) return !refused(Refusal{lock.text});
    return ask("By changing these values, salary will be recalculated.\nDo you want to proceed?");
}

std::string modAttHead::writeRow(SaveBatch& batch) {
    RowText further, bands;
    further.set("ATTNDTODYN", Value(isRegisterKept()))
        .set("ATTNHOURLYYN", Value(optAttHourly.value()));
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
        bands.set(column, Value(value));
    const std::string key = row_.writeInto(batch, further, bands);
    if (row_.isNew()) batch.add(makeLeaveSettings(key));
    return key;
}

// From the payroll's first month on, as the master rows say.
std::string modAttHead::makeLeaveSettings(const std::string& headId) {
    const auto month = static_cast<int32_t>(
        FnVarValueOrThrow(session_, "SELECT MIN(MONTHYEAR) FROM MAS_MONTHYEAR", 0).toInt());
    std::string sql;
    for (Recordset rs(session_.gConn,
                      "SELECT LEVID FROM ATT_DEFINITION WHERE LEAVEYN = 1 AND ALLOTMENTYN = 1");
         !rs.IsEOF(); rs.MoveNext()) {
        const auto levId = static_cast<int32_t>(rs.Fields(0).toInt());
        bool found = false;
        LeaveSettingsRecord settings = FnReadLeaveSettings(session_, levId, 0, month, found);
        if (!found) settings.PRIORITY = levId;
        settings.EDITEDYN = false;
        sql += SaveLeaveSettingsSql(levId, headId, month, settings);
    }
    return sql;
}

void modAttHead::joinMarks(SaveBatch& batch, Change change, const std::string&) {
    if (change == Change::Updated && !changedForSalary().empty())
        batch.add(MarkHeadSql(static_cast<int32_t>(row_.key())));
}

std::optional<Refusal> modAttHead::checkDeletion() {
    if (FnVarValueOrThrow(session_, "SELECT COUNT(ATTHEADID) FROM MAS_ATTHEAD").toInt() == 1)
        return Refusal{kOnlyHead};
    if (row_.isNew()) return Refusal{"Select Attendance Head to delete."};
    return {};
}

bool modAttHead::mayBeDeleted(SaveBatch& batch) {
    const std::string assigned = Sql() << "Select * From MAS_EMPLOYEEDET Where ATTHEADID = "
                                       << row_.key();
    const std::string isAssigned = session_.gEmployeeCaption + " assigned, cannot delete";
    if (FnBlnExistsOrThrow(session_, assigned)) return !refused(Refusal{isAssigned});
    batch.refuseUnless("NOT EXISTS (" + assigned + ")", isAssigned)
        .refuseUnless("1 < (SELECT COUNT(ATTHEADID) FROM MAS_ATTHEAD WITH (TABLOCKX, HOLDLOCK))",
                      kOnlyHead);
    return askToDelete("Do you want to delete ?");
}

std::string modAttHead::rowWords() const {
    return row_.before("ATTHEADNAME").toText();
}

void modAttHead::deleteRow(SaveBatch& batch) {
    row_.deleteIn(batch);
    for (const char* table : {"ATT_WEEKLY", "LEV_WEEKLYHLD", "SLC_ATTHEADNOD", "LEV_SETTINGS",
                              "ATT_OPTSETTINGS", "ATT_HOLIDAY", "LEV_ALLOTCONFIG", "LEV_ALLOTMENT"})
        batch.add(Sql() << " DELETE FROM " << table << " WHERE ATTHEADID = " << row_.key());
}

// The shell's menu, the session's records and the list show what there is now.
void modAttHead::finish() {
    session_.settings.SaveSetting("LeaveMgmt", "CallMenu", "1");
    RowScreen::finish();
}

AuditLine modAttHead::auditLine(Change change) {
    if (change == Change::Added)
        return {"Attendance Configuration Added", AuditText("New Attendance Head Added", ":->")};
    if (change == Change::Deleted)
        return {"Attendance Configuration Deleted", AuditText("Attendance Head Deleted", ":->")};
    AuditText begin("Attendance Head Updated", ":->");
    if (!row_.changed("ATTHEADNAME"))
        begin.value("Attendance Name", row_.typed("ATTHEADNAME").toText());
    return {"Attendance Configuration Updated", begin};
}

}  // namespace owb
