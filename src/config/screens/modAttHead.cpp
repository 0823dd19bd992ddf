#include "config/screens/modAttHead.h"

#include "config/screens/modAttHeadSet.h"
#include "db/recordset.h"
#include "session/clsCtrlDep.h"
#include "session/modAttSetting.h"
#include "session/queries.h"
#include "session/screens/query_lists.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1503;

}  // namespace

modAttHead::modAttHead(Session& session, FrontEnd& frontEnd)
    : RowScreen(session, frontEnd, {"modAttHead", "Attendance Configuration", kMenuId, "fpgAtt"},
                head_) {
    declareRow();
    txtAttID.locked = true;
    txtAttID.alignRight = true;
    txtAttName.maxLength = txtShortName.maxLength = 60;
    txtDescription.maxLength = 200;
    cmdSetting.toolTip = "Hours of the bands of a day";
    list.caption = "Attendance Heads";
    list.setColumns({{.caption = "Sl. No.", .width = 6},
                     {.caption = "Attendance Head Name", .width = 24},
                     {.caption = "Sal. Calc.", .width = 13},
                     {.caption = "Register Type", .width = 15},
                     {.caption = "OT 1", .width = 6, .type = CellType::Check},
                     {.caption = "OT 2", .width = 6, .type = CellType::Check},
                     {.caption = "Salary Calendar days (NWD)", .width = 32},
                     {.caption = "Short Name", .width = 16},
                     {.caption = "Remarks", .width = 30},
                     {.caption = "Inactive", .width = 8, .type = CellType::Check}});
    list.frozenColumns = 2;
    chkOT1.onClick = [this] {
        refuseClearedOvertime(chkOT1, "OT1YN", 100, "OT1 defined, cannot change");
    };
    chkOT2.onClick = [this] {
        refuseClearedOvertime(chkOT2, "OT2YN", 101, "OT2 defined, cannot change");
    };
}

// In the order of the audit line. A new head's line tells the first five.
void modAttHead::declareRow() {
    head_.text("ATTHEADNAME", txtAttName, "Attendance Name");
    head_.text("ATTMENUNAME", txtShortName, "Short Name");
    head_.flag("ATTNTIGHTYN", optIntegration, "Salary Calculation");
    // Without a choice, which only an independent head may leave open, months have all their days.
    head_.option("NODFORCALC", optNODForCalc, "Salary Calendar days (NWD)").typed = [this] {
        return Value(optNODForCalc.chosen() < 0 ? 2 : optNODForCalc.chosen() + 1);
    };
    head_.option("ATTNTYPE", optRegister, "Attendance Register Type", 1, 3);
    for (EditedRow::Field* field :
         {&head_.check("MORETHANNODYN", chkAllowMore, chkAllowMore.caption),
          &head_.option("ATTNALLOTTYPE", optAllotType, "Allotment Type"),
          &head_.check("OT1YN", chkOT1, chkOT1.caption),
          &head_.check("OT2YN", chkOT2, chkOT2.caption),
          &head_.flag("OTHOURLYYN", optOT, "Over Time for Day to day attendance"),
          &head_.check("INACTIVEYN", chkInactive, chkInactive.caption),
          &head_.text("ATTDESC", txtDescription, "Remarks")})
        field->inAdded = false;
}

Layout modAttHead::layout() {
    std::vector<Layout> allot, nwdLeft, nwdRight;
    for (OptionButton& option : optAllotType) allot.push_back(item(option));
    for (size_t i = 0; i < optNODForCalc.size(); ++i)
        (i < optNODForCalc.size() / 2 ? nwdLeft : nwdRight).push_back(item(optNODForCalc[i]));
    return column(
        {item(list, 1),
         row({form({item("Sl. No.", txtAttID), item("Attendance Head Name", txtAttName),
                    item("Short Name for menu caption.", txtShortName),
                    item("Remarks", txtDescription), item("", chkInactive),
                    item("", lblEmployees)}),
              group(fmeNWDOption.caption,
                    {row({item(lblSalary), column({item(lblDaysPaid), line(), item(lblNWD)}),
                          space()}),
                     row({column(std::move(nwdLeft)), column(std::move(nwdRight))}),
                     item(chkAllowMore), space()})}),
         row({group("Salary Calculation",
                    {item(optTightIntegrate), item(optLooseIntegrate), space()}),
              group("Attendance Register Type", {item(optAttLeave), item(optAttDaily),
                                                 item(optAttHourly), item(OptAttMonthly)}),
              group("Allotment Type", std::move(allot)),
              group("Over Time", {item(chkOT1), item(chkOT2), space()}),
              group("Over Time for Day to day attendance",
                    {item(optOTHourly), item(optOTDaily), space()})}),
         commandRow({item(cmdSetting), item(cmdCreateCopy)})});
}

void modAttHead::load() {
    RowScreen::showAgain();
    for (size_t line = 0; line < list.rowCount(); ++line)
        if (list.number(line, 0) == session_.gAttHeadId) showLine(line);
}

// The session's records follow what is stored.
void modAttHead::showAgain() {
    LoadAttHead(session_, session_.gAttHeadId);
    LoadAttOptions(session_, session_.gAttHeadId);
    RowScreen::showAgain();
}

void modAttHead::loadList() {
    std::string days = "(CASE";
    for (size_t i = 0; i + 1 < kNwdOptions.size(); ++i)
        days += Sql() << " WHEN NODFORCALC = " << i + 1 << " THEN " << literal(kNwdOptions[i]);
    fillGrid(session_, list,
             "SELECT ATTHEADID, ATTHEADNAME, (CASE ATTNTIGHTYN WHEN 1 THEN 'Dependent' ELSE "
             "'Independent' END) AS INTEGRATION, (CASE ATTNTYPE WHEN 1 THEN 'Leave Register' WHEN "
             "2 THEN 'Daily' WHEN 3 THEN 'Hourly' ELSE 'Monthly' END) AS REGISTERTYPE, OT1YN, "
             "OT2YN, " +
                 days + " WHEN NODFORCALC > 5 THEN " + literal(kNwdOptions[5]) +
                 " ELSE '' END) AS DAYS, ATTMENUNAME, ATTDESC, INACTIVEYN FROM MAS_ATTHEAD ORDER "
                 "BY ATTHEADID");
}

void modAttHead::rowShown() {
    const bool isNew = row_.isNew();
    if (isNew) {
        optIntegration.choose(0);
        optRegister.choose(0);
    }
    txtAttID.value = isNew ? "" : std::to_string(row_.key());
    const bool allotted =
        !isNew && FnBlnExistsOrThrow(session_, Sql() << "SELECT ALLOTID FROM ATT_ALLOTMENT WHERE "
                                                        "EMPID IN(SELECT EMPID FROM "
                                                        "MAS_EMPLOYEEDET WHERE ATTHEADID = "
                                                     << row_.key() << ")");
    for (OptionButton* option : optRegister.buttons()) option->enabled = !allotted;
    const std::string employees =
        isNew ? "0"
              : FnVarValueOrThrow(session_,
                                  Sql() << "SELECT COUNT(ME.EMPID) FROM MAS_EMPLOYEE ME, "
                                           "MAS_EMPLOYEEDET MD WHERE ME.EMPID = MD.EMPID AND "
                                           "MD.ATTHEADID = "
                                        << row_.key())
                    .toText();
    lblEmployees.caption = session_.gEmployeeCaption + " (s) : " + employees;
    cmdSetting.enabled = !isNew && isRegisterKept();
}

bool modAttHead::isRegisterKept() const {
    return optAttDaily.value() || optAttHourly.value();
}

// Overtime that was paid on the head stays, and so does the last head of a salary structure's row.
void modAttHead::refuseClearedOvertime(CheckBox& box, const char* column, int row,
                                       const char* text) {
    if (box.value || row_.isNew() || !row_.before(column).toBool()) return;
    const bool paid = FnBlnExistsOrThrow(
        session_,
        Sql() << "SELECT OT.SLNO FROM SLC_COMPCALCDET OT, SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET E "
                 "WHERE OT.EMPID = SE.EMPID AND OT.MONTHYEAR = SE.MONTHYEAR AND OT.STRUCTID = "
                 "E.STRUCTID AND SE.EMPDETID = E.EMPDETID AND SE.EMPID = E.EMPID AND "
                 "OT.SALHEADROWID = "
              << row << " AND (OT.UNIT > 0 OR OT.RATE > 0 ) AND E.ATTHEADID = " << row_.key());
    const auto isLastOfStructure = [&] {
        return FnBlnExistsOrThrow(session_, Sql() << "Select STRUCTID From SLC_SALSTRUCTDET Where "
                                                     "SALHEADROWID = "
                                                  << row << " AND CALCTYPE <> 7") &&
               !FnBlnExistsOrThrow(session_, Sql() << "Select ATTHEADID From MAS_ATTHEAD Where "
                                                      "ATTHEADID <> "
                                                   << row_.key() << " AND " << column << " = 1");
    };
    if (!paid && !isLastOfStructure()) return;
    box.value = true;
    inform(text);
}

void modAttHead::cmdSetting_Click() {
    modAttHeadSet(session_, frontEnd(), static_cast<int32_t>(row_.key())).showModal();
}

void modAttHead::cmdCreateCopy_Click() {
    inform("New Attendance Creation is not available in this version.");
}

void modAttHead::newBegun() {
    txtAttID.value =
        std::to_string(clsCtrlDep(session_).FnLngGetNextNumber("MAS_ATTHEAD", "ATTHEADID"));
}

}  // namespace owb
