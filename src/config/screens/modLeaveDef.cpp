#include "config/screens/modLeaveDef.h"

#include "db/recordset.h"
#include "marks/marks.h"
#include "session/queries.h"
#include "session/screens/query_lists.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1500;
constexpr const char* kNameTaken = "Leave/Non Leave Type is already been created.";
constexpr const char* kShortTaken = "Given abbreviation already set for a Leave/Non Leave Type.";
constexpr const char* kIsEncashed =
    "Leave encashment has been done for this Leave. Now Allotment option cannot be unchecked.";

constexpr int64_t kCompensatoryWork = 3, kReserved = 4;

}  // namespace

modLeaveDef::modLeaveDef(Session& session, FrontEnd& frontEnd)
    : RowScreen(session, frontEnd,
                {"modLeaveDef", "Leave / Non-Leave Definition", kMenuId, "fpgMstDetail"},
                definition_) {
    txtLeaveName.maxLength = 60;
    txtAttShort.maxLength = 10;
    definition_.text("LEVNAME", txtLeaveName, "Leave Name").addedLabel = "Name";
    definition_.text("LEVSHORT", txtAttShort, "Leave Short Name").addedLabel = "Short Name";
    definition_.check("AFFECTSALARYYN", chkAffectSalary, "Affects Salary");
    definition_.check("ALLOTMENTYN", chkLeaveAllotment, "Leave Allotment");
    cmdMasterSetting.toolTip = "Leave settings common to all attendance heads";
    list.caption = "Leave and non-leave types";
    list.setColumns({{.caption = "LEVID", .hidden = true},
                     {.caption = "Name", .width = 30},
                     {.caption = "Abbreviation", .width = 12},
                     {.caption = "Affects Salary", .width = 14, .type = CellType::Check},
                     {.caption = "Leave Allotment", .width = 15, .type = CellType::Check}});
    optLeave.onClick = optNonLeave.onClick = [this] { optLeave_Click(); };
    chkLeaveAllotment.onClick = [this] { chkLeaveAllotment_Click(); };
}

Layout modLeaveDef::layout() {
    return column({row({item(optLeave), item(optNonLeave), space()}), item(list, 1),
                   form({item("Name", txtLeaveName), item("Abbreviation", txtAttShort),
                         item("", chkAffectSalary), item("", chkLeaveAllotment)}),
                   commandRow({item(cmdMasterSetting)})});
}

// The kinds of the other list; what is typed for this one is asked for before it goes.
void modLeaveDef::optLeave_Click() {
    if (mayDrop("show the other kinds")) return showAgain();
    (leavesListed_ ? optLeave : optNonLeave).choose();
}

void modLeaveDef::load() {
    repairRows();
    optLeave.choose();
    showAgain();
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

void modLeaveDef::loadList() {
    leavesListed_ = optLeave.value();
    fillGrid(session_, list,
             Sql() << "SELECT LEVID, LEVNAME, LEVSHORT, AFFECTSALARYYN, ALLOTMENTYN FROM "
                      "ATT_DEFINITION WHERE LEAVEYN = "
                   << optLeave.value() << " ORDER BY LEVID");
}

// Loss of pay is never allotted, the compensatory pair always.
void modLeaveDef::rowShown() {
    chkLeaveAllotment.enabled = row_.isNew() || row_.key() > kCompensatoryWork;
}

std::string modLeaveDef::word() const {
    return optLeave.value() ? "Leave" : "Non-Leave";
}

std::string modLeaveDef::encashedSql() const {
    return "SELECT COUNT(AE.ALLOTID) FROM ATT_ENCASH AE INNER JOIN LEV_ALLOTMENT LA ON AE.ALLOTID "
           "= LA.ALLOTID INNER JOIN ATT_DEFINITION AD ON LA.LEVID = AD.LEVID WHERE AD.LEVID = " +
           std::to_string(row_.key());
}

void modLeaveDef::chkLeaveAllotment_Click() {
    if (chkLeaveAllotment.value || row_.isNew()) return;
    chkLeaveAllotment.value = true;  // until it is known that it may go
    if (FnVarValueOrThrow(session_, encashedSql()).toInt() == 0)
        chkLeaveAllotment.value = false;
    else
        inform(kIsEncashed);
}

void modLeaveDef::cmdMasterSetting_Click() {
    inform("Leave Settings is not available in this version.");
}

// --- saving ---

std::optional<Refusal> modLeaveDef::check() {
    const auto taken = [&](const char* column) {
        return FnBlnExistsOrThrow(session_, Sql() << "SELECT LEVID FROM ATT_DEFINITION WHERE "
                                                  << column << " = " << literal(row_.typed(column))
                                                  << " AND LEVID <> " << row_.key());
    };
    if (row_.typed("LEVNAME").toText().empty())
        return Refusal{"Specify " + word() + " name.", &txtLeaveName};
    if (row_.typed("LEVSHORT").toText().empty())
        return Refusal{"Specify " + word() + " abbreviation.", &txtAttShort};
    if (taken("LEVNAME")) return Refusal{kNameTaken, &txtLeaveName};
    if (taken("LEVSHORT")) return Refusal{kShortTaken, &txtAttShort};
    return {};
}

bool modLeaveDef::mayBeSaved(SaveBatch& batch) {
    if (salaryChanged()) {
        const Lock taken{Sql() << "EXISTS (Select * From MAS_MONTHYEAR Where LOCKEDYN = 1 And "
                                  "MONTHYEAR In (Select MONTH(LEAVEDATE) + (YEAR(LEAVEDATE) * 12) "
                                  "From LEV_DETAILS Where LEVID = "
                               << row_.key() << "))",
                         "Some of the Salary processed months are 'Locked'.\nUnlock such months to "
                         "change 'Affects Salary' setting."};
        if (taken.holds(session_)) return !refused(Refusal{taken.text});
        if (!ask("Salaries will be processed for " + session_.gEmployeeCaption +
                 " (s) who have availed selected leave.\nDo you want to continue updating leave "
                 "definition?"))
            return false;
        batch.requireOpen(taken);
    }
    row_.requireFree(batch, "LEVNAME", kNameTaken);
    row_.requireFree(batch, "LEVSHORT", kShortTaken);
    if (row_.before("ALLOTMENTYN").toBool() && !chkLeaveAllotment.value)
        batch.refuseUnless("0 = (" + encashedSql() + ")", kIsEncashed);
    return true;
}

std::string modLeaveDef::writeRow(SaveBatch& batch) {
    return row_.writeInto(batch, RowText().set("LEAVEYN", Value(optLeave.value())));
}

// Settings of every type with allotment, and of no other; then the marks.
void modLeaveDef::joinMarks(SaveBatch& batch, Change change, const std::string&) {
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
    if (change == Change::Updated && salaryChanged())
        batch.add(MarkLeaveKindSql(static_cast<int32_t>(row_.key())));
}

// --- deleting ---

std::optional<Refusal> modLeaveDef::checkDeletion() {
    if (row_.isNew()) return Refusal{"Select " + word() + " to delete."};
    if (row_.key() <= kReserved)
        return Refusal{"Selected " + word() +
                       " is not user created. Hence, deletion is not allowed"};
    return {};
}

bool modLeaveDef::mayBeDeleted(SaveBatch& batch) {
    const std::string id = std::to_string(row_.key());
    const std::string shortName = row_.before("LEVSHORT").toText();
    struct Use {
        std::string sql, text, title = "Orvane Wagebook";
    };
    const Use uses[] = {
        {"SELECT EMPID FROM LEV_DETAILS WHERE LEVID=" + id,
         "'" + shortName + "' has been availed by one or more " + session_.gEmployeeCaption +
             " (s). \nYou can not delete the Leave Definition.",
         "Invalid Action"},
        {"SELECT ENCASHSLNO FROM ATT_ENCASH AE, LEV_ALLOTMENT LA WHERE LA.ALLOTID=AE.ALLOTID AND "
         "LA.LEVID=" +
             id,
         "Encashment has been done for '" + shortName + "'. Deletion is not allowed."},
        {"Select OPBAL From ATT_OPBAL Where LEVID = " + id + " And OPBAL > 0",
         " 'Opening Balance' given for one or more " + session_.gEmployeeCaption +
             " (s). Hence, Leave can not be deleted."}};
    for (const Use& use : uses) {
        if (FnBlnExistsOrThrow(session_, use.sql)) {
            inform(use.text, use.title);
            return false;
        }
        batch.refuseUnless("NOT EXISTS (" + use.sql + ")", use.text);
    }
    return askToDelete("Do you want to delete selected " + word() + "?");
}

std::string modLeaveDef::rowWords() const {
    return row_.before("LEVNAME").toText() + ", " + row_.before("LEVSHORT").toText();
}

void modLeaveDef::deleteRow(SaveBatch& batch) {
    row_.deleteIn(batch);
    for (const char* table :
         {"ATT_OPBAL", "LEV_DETAILS", "LEV_ALLOTMENT", "LEV_SETTINGS", "ATT_ALLOTMENT",
          "ATT_MONTHLEV", "LEV_ALLOTCONFIG", "LEV_ALLOTFROM", "LEV_AVAILFROM", "LEV_ADJUSTMENT"})
        batch.add(Sql() << " DELETE FROM " << table << " WHERE LEVID = " << row_.key());
}

// The shell's menu and the list show what there is now.
void modLeaveDef::finish() {
    session_.settings.SaveSetting("LeaveMgmt", "CallMenu", "1");
    RowScreen::finish();
}

AuditLine modLeaveDef::auditLine(Change change) {
    const std::string type = word() + " Type ";
    if (change == Change::Updated)
        return {"Leave Definition Updated",
                AuditText(":").value("Leave Name", row_.typed("LEVNAME").toText()),
                type + "Updated"};
    const AuditText begin = AuditText().value("Type", word());
    if (change == Change::Added) return {"New Leave Added", begin, type + "Added"};
    return {"Leave Definition Deleted", begin, type + "Deleted"};
}

}  // namespace owb
