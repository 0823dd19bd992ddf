#include "config/screens/modAttHead.h"

#include "base/number_text.h"
#include "base/utf8.h"
#include "config/screens/modAttHeadSet.h"
#include "db/recordset.h"
#include "session/clsCtrlDep.h"
#include "session/modAttSetting.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr int32_t kMenuId = 1503;
constexpr std::array kAllotTypes = {"Between Dates", "Monthly", "Calendar Year", "Financial Year"};
constexpr std::array kNwdOptions = {"Fixed (30) days / month",
                                    "Actual Days / Month",
                                    "Allow User to Edit Days in Month",
                                    "Only working days",
                                    "Only working days + Weekly Holiday",
                                    "Only working days + Holiday"};

template <size_t N, size_t... I>
std::array<OptionButton, N> options(Screen& screen, OptionGroup& group, const std::string& name,
                                    const std::array<const char*, N>& captions,
                                    std::index_sequence<I...>) {
    return {OptionButton(screen, group, name + "(" + std::to_string(I + 1) + ")", captions[I])...};
}

template <size_t N>
std::array<OptionButton, N> options(Screen& screen, OptionGroup& group, const std::string& name,
                                    const std::array<const char*, N>& captions) {
    return options(screen, group, name, captions, std::make_index_sequence<N>());
}

}  // namespace

modAttHead::modAttHead(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "modAttHead", "Attendance Configuration"),
      optAllotType(options(*this, allotTypes, "optAllotType", kAllotTypes)),
      optNODForCalc(options(*this, nwdOptions, "optNODForCalc", kNwdOptions)) {
    txtAttID.locked = true;
    txtAttName.maxLength = txtShortName.maxLength = 60;
    txtDescription.maxLength = 200;
    cmdSetting.toolTip = "Hours of the bands of a day";
    fpgAtt.caption = "Attendance Heads";
    fpgAtt.setColumns({{.caption = "Sl. No.", .width = 6},
                       {.caption = "Attendance Head Name", .width = 24},
                       {.caption = "Sal. Calc.", .width = 13},
                       {.caption = "Register Type", .width = 15},
                       {.caption = "OT 1", .width = 6, .type = CellType::Check},
                       {.caption = "OT 2", .width = 6, .type = CellType::Check},
                       {.caption = "Salary Calendar days (NWD)", .width = 32},
                       {.caption = "Short Name", .width = 16},
                       {.caption = "Remarks", .width = 30},
                       {.caption = "Inactive", .width = 8, .type = CellType::Check}});
    fpgAtt.frozenColumns = 2;
    fpgAtt.singleRows = true;
    fpgAtt.onCurrentChange = [this](size_t row, size_t) { fpgAtt_Click(row); };
    chkOT1.onClick = [this] { chkOT1_Click(); };
    chkOT2.onClick = [this] { chkOT2_Click(); };
    cmdSetting.onClick = [this] { cmdSetting_Click(); };
    cmdCreateCopy.onClick = [this] { cmdCreateCopy_Click(); };
    cmdNew.onClick = [this] { cmdNew_Click(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdDelete.onClick = [this] { cmdDelete_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout modAttHead::layout() {
    std::vector<Layout> allot, nwdLeft, nwdRight;
    for (OptionButton& option : optAllotType) allot.push_back(item(option));
    for (size_t i = 0; i < optNODForCalc.size(); ++i)
        (i < optNODForCalc.size() / 2 ? nwdLeft : nwdRight).push_back(item(optNODForCalc[i]));
    return column(
        {item(fpgAtt, 1),
         row({form({item("Sl. No.", txtAttID), item("Attendance Head Name", txtAttName),
                    item("Short Name for menu caption.", txtShortName),
                    item("Remarks", txtDescription), item("", chkInactive),
                    item("", lblEmployees)}),
              group(fmeNWDOption.caption,
                    {row({item(lblSalary), column({item(lblDaysPaid), item(lblNWD)}), space()}),
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
         row({item(cmdSetting), item(cmdCreateCopy), space(), item(cmdNew), item(cmdSave),
              item(cmdDelete), item(cmdClose)})});
}

void modAttHead::onLoad() {
    applyRights({&cmdSave, &cmdDelete, &cmdCreateCopy}, kMenuId);
    loadGrid();
    for (size_t row = 0; row < fpgAtt.rowCount(); ++row) {
        if (fpgAtt.number(row, 0) != session_.gAttHeadId) continue;
        fpgAtt.setCurrent(static_cast<int>(row), 0);
        fpgAtt_Click(row);
    }
}

void modAttHead::loadGrid() {
    fpgAtt.setRowCount(0);
    Recordset rs(session_.gConn,
                 "SELECT ATTHEADID, ATTHEADNAME, (CASE ATTNTIGHTYN WHEN 1 THEN 'Dependent' ELSE "
                 "'Independent' END) AS INTEGRATION, (CASE ATTNTYPE WHEN 1 THEN 'Leave Register' "
                 "WHEN 2 THEN 'Daily' WHEN 3 THEN 'Hourly' ELSE 'Monthly' END) AS REGISTERTYPE, "
                 "ISNULL(OT1YN,0) AS OT1YN, ISNULL(OT2YN,0) AS OT2YN, NODFORCALC, ATTMENUNAME, "
                 "ATTDESC,ISNULL(INACTIVEYN,0) AS INACTIVEYN FROM MAS_ATTHEAD ORDER BY ATTHEADID");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const auto option = static_cast<size_t>(rs.Fields("NODFORCALC").toInt());
        fpgAtt.addRow({rs.Fields("ATTHEADID").toText(), rs.Fields("ATTHEADNAME").toText(),
                       rs.Fields("INTEGRATION").toText(), rs.Fields("REGISTERTYPE").toText(),
                       rs.Fields("OT1YN").toText(), rs.Fields("OT2YN").toText(),
                       option == 0 ? "" : kNwdOptions[std::min<size_t>(option, 6) - 1],
                       rs.Fields("ATTMENUNAME").toText(), rs.Fields("ATTDESC").toText(),
                       rs.Fields("INACTIVEYN").toText()});
    }
    show({}, true);
}

modAttHead::Head modAttHead::readHead(int64_t id) {
    shown_ = ShownRow(session_, "MAS_ATTHEAD",
                      "ATTHEADNAME, ATTMENUNAME, ATTDESC, ATTNTYPE, ATTNALLOTTYPE, NODFORCALC, "
                      "ATTNTIGHTYN, OT1YN, OT2YN, OTHOURLYYN, MORETHANNODYN, INACTIVEYN",
                      "ATTHEADID = " + std::to_string(id));
    if (!shown_.found()) return {};
    // A number above those that the options name means the last of them.
    const auto number = [&](const char* column, int64_t last) {
        return static_cast<int>(std::min(shown_.value(column).toInt(), last));
    };
    Head head;
    head.id = id;
    head.name = shown_.value("ATTHEADNAME").toText();
    head.menuName = shown_.value("ATTMENUNAME").toText();
    head.remarks = shown_.value("ATTDESC").toText();
    head.registerType = number("ATTNTYPE", 4);
    if (head.registerType < 1) head.registerType = 4;
    head.allotType = number("ATTNALLOTTYPE", 4);
    head.nwdOption = number("NODFORCALC", 6);
    head.tight = shown_.value("ATTNTIGHTYN").toBool();
    head.ot1 = shown_.value("OT1YN").toBool();
    head.ot2 = shown_.value("OT2YN").toBool();
    head.otHourly = shown_.value("OTHOURLYYN").toBool();
    head.allowMore = shown_.value("MORETHANNODYN").toBool();
    head.inactive = shown_.value("INACTIVEYN").toBool();
    return head;
}

void modAttHead::show(const Head& head, bool isNew) {
    selected_ = head;
    isNew_ = isNew;
    if (isNew) fpgAtt.setCurrent(-1, -1);
    txtAttID.value = head.id == 0 ? "" : std::to_string(head.id);
    txtAttName.value = head.name;
    txtShortName.value = head.menuName;
    txtDescription.value = head.remarks;
    optIntegration.choose(head.tight ? 0 : 1);
    optRegister.choose(head.registerType - 1);
    allotTypes.choose(head.allotType - 1);
    nwdOptions.choose(head.nwdOption - 1);
    optOT.choose(head.otHourly ? 0 : 1);
    chkOT1.value = head.ot1;
    chkOT2.value = head.ot2;
    chkAllowMore.value = head.allowMore;
    chkInactive.value = head.inactive;

    const std::string id = std::to_string(head.id);
    const bool allotted =
        !isNew &&
        FnBlnExistsOrThrow(session_,
                           "SELECT ALLOTID FROM ATT_ALLOTMENT WHERE EMPID IN(SELECT EMPID "
                           "FROM MAS_EMPLOYEEDET WHERE ATTHEADID = " +
                               id + ")");
    for (OptionButton* option : optRegister.buttons()) option->enabled = !allotted;
    const int64_t employees =
        isNew ? 0
              : FnVarValueOrThrow(session_,
                                  "SELECT COUNT(ME.EMPID) FROM MAS_EMPLOYEE ME, MAS_EMPLOYEEDET MD "
                                  "WHERE ME.EMPID = MD.EMPID AND MD.ATTHEADID = " +
                                      id)
                    .toInt();
    lblEmployees.caption = session_.gEmployeeCaption + " (s) : " + std::to_string(employees);
    cmdSetting.enabled = !isNew && (head.registerType == 2 || head.registerType == 3);
}

modAttHead::Head modAttHead::headOnScreen() const {
    Head head;
    head.id = static_cast<int64_t>(textToNumber(txtAttID.value));
    head.name = trim(txtAttName.value);
    head.menuName = trim(txtShortName.value);
    head.remarks = trim(txtDescription.value);
    head.registerType = optRegister.chosen() + 1;
    head.allotType = allotTypes.chosen() + 1;
    head.nwdOption = nwdOptions.chosen() + 1;
    head.tight = optTightIntegrate.value();
    head.ot1 = chkOT1.value;
    head.ot2 = chkOT2.value;
    head.otHourly = optOTHourly.value();
    head.allowMore = chkAllowMore.value;
    head.inactive = chkInactive.value;
    return head;
}

void modAttHead::fpgAtt_Click(size_t row) {
    const Head head = readHead(static_cast<int64_t>(fpgAtt.number(row, 0)));
    if (shown_.found()) return show(head, false);
    frontEnd().warning(FnStrChangedMeanwhile(kHead));
    showAgain();
}

void modAttHead::showAgain() {
    LoadAttHead(session_, session_.gAttHeadId);
    LoadAttOptions(session_, session_.gAttHeadId);
    loadGrid();
}

void modAttHead::chkOT1_Click() {
    refuseClearedOvertime(chkOT1, selected_.ot1, 100, "OT1YN", "OT1 defined, cannot change");
}

void modAttHead::chkOT2_Click() {
    refuseClearedOvertime(chkOT2, selected_.ot2, 101, "OT2YN", "OT2 defined, cannot change");
}

// Overtime that was paid on the head stays, and so does the last head of a salary structure's row.
void modAttHead::refuseClearedOvertime(CheckBox& box, bool wasKept, int row, const char* column,
                                       const char* text) {
    if (box.value || isNew_ || !wasKept) return;
    const std::string id = std::to_string(selected_.id), salaryRow = std::to_string(row);
    const bool paid = FnBlnExistsOrThrow(
        session_,
        "SELECT OT.SLNO FROM SLC_COMPCALCDET OT, SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET E WHERE "
        "OT.EMPID = SE.EMPID AND OT.MONTHYEAR = SE.MONTHYEAR AND OT.STRUCTID = E.STRUCTID AND "
        "SE.EMPDETID = E.EMPDETID AND SE.EMPID = E.EMPID AND OT.SALHEADROWID = " +
            salaryRow + " AND (OT.UNIT > 0 OR OT.RATE > 0 ) AND E.ATTHEADID = " + id);
    if (!paid) {
        const bool inStructure = FnBlnExistsOrThrow(
            session_, "Select STRUCTID From SLC_SALSTRUCTDET Where SALHEADROWID = " + salaryRow +
                          " AND CALCTYPE <> 7");
        if (!inStructure ||
            FnBlnExistsOrThrow(session_, "Select ATTHEADID From MAS_ATTHEAD Where ATTHEADID <> " +
                                             id + " AND " + column + " = 1"))
            return;
    }
    box.value = true;
    inform(text);
}

void modAttHead::cmdSetting_Click() {
    modAttHeadSet(session_, frontEnd(), static_cast<int32_t>(selected_.id)).showModal();
}

void modAttHead::cmdCreateCopy_Click() {
    inform("New Attendance Creation is not available in this version.");
}

void modAttHead::cmdNew_Click() {
    Head head;
    shown_ = {};
    head.id = clsCtrlDep(session_).FnLngGetNextNumber("MAS_ATTHEAD", "ATTHEADID");
    show(head, true);
    setFocus(txtAttName);
}

}  // namespace owb
