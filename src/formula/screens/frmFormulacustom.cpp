#include "formula/screens/frmFormulacustom.h"

#include "base/utf8.h"
#include "data/modCommon.h"
#include "formula/VerifyCusQuery.h"

namespace owb {

namespace {

enum Column { kFid, kName, kType, kQuery };

}  // namespace

frmFormulacustom::frmFormulacustom(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "frmFormulacustom", "Custom Query") {
    txtFname.maxLength = 100;
    txtFtype.maxLength = 30;
    txtFquery.multiLine = true;
    lblqryinfo.caption =
        "Parameters : $EMPID$, $EMPDETID$, $MONTHYEAR$, $HOSTNAME$, $LEVID$, $ATTHEADID$";
    fpgFormulaQry.caption = "Custom queries";
    fpgFormulaQry.setColumns({{.caption = "FID", .hidden = true},
                              {.caption = "Name", .width = 30},
                              {.caption = "Type", .width = 12},
                              {.caption = "Query", .width = 60}});
    fpgFormulaQry.singleRows = true;
    fpgFormulaQry.onCurrentChange = [this](size_t row, size_t) { fpgFormulaQry_Click(row); };
    cmdverify.onClick = [this] { cmdverify_Click(); };
    cmdNew.onClick = [this] { cmdNew_Click(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdDelete.onClick = [this] { cmdDelete_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout frmFormulacustom::layout() {
    return column({item(fpgFormulaQry, 1),
                   form({item("Name", txtFname), item("Type", txtFtype), item("Query", txtFquery),
                         item("", lblqryinfo)}),
                   row({item(cmdverify), space(), item(cmdNew), item(cmdSave), item(cmdDelete),
                        item(cmdClose)})});
}

void frmFormulacustom::onLoad() {
    applyRights({&cmdSave, &cmdDelete});
    loadGrid();
}

void frmFormulacustom::loadGrid() {
    fpgFormulaQry.setRowCount(0);
    for (Recordset rs(session_.gConn,
                      "SELECT FID,FNAME,FTYPE,FQUERY FROM MAS_FORMULACUSTOM where moduleid=2 ");
         !rs.IsEOF(); rs.MoveNext())
        fpgFormulaQry.addRow({rs.Fields("FID").toText(), rs.Fields("FNAME").toText(),
                              rs.Fields("FTYPE").toText(), rs.Fields("FQUERY").toText()});
    cmdNew_Click();
}

void frmFormulacustom::cmdNew_Click() {
    fid_ = 0;
    name_.clear();
    fpgFormulaQry.setCurrent(-1, -1);
    txtFname.value = txtFtype.value = txtFquery.value = "";
    setFocus(txtFname);
}

std::string frmFormulacustom::literal(const std::string& text) const {
    return "'" + session_.gSpChar.FnStrSpSQL(text) + "'";
}

void frmFormulacustom::fpgFormulaQry_Click(size_t row) {
    fid_ = static_cast<int64_t>(fpgFormulaQry.number(row, kFid));
    name_ = fpgFormulaQry.cell(row, kName);
    txtFname.value = name_;
    txtFtype.value = fpgFormulaQry.cell(row, kType);
    txtFquery.value =
        FnVarReadValue(session_,
                       "SELECT FQUERY FROM MAS_FORMULACUSTOM WHERE FID=" + std::to_string(fid_) +
                           " AND FNAME=" + literal(name_),
                       "")
            .toText();
}

void frmFormulacustom::cmdverify_Click() {
    if (trim(txtFquery.value).empty()) return refuse("Enter Query", txtFquery);
    if (VerifyCusQuery(session_, frontEnd(), txtFquery.value)) inform("Query is Correct");
}

void frmFormulacustom::cmdSave_Click() {
    if (denied(cmdSave)) return;
    const std::string name = trim(txtFname.value);
    if (name.empty()) return refuse("Enter Name", txtFname);
    const int64_t fid = fid_ != 0 ? fid_ : newFid();
    if (FnBlnRecordExists(session_, "SELECT FID from MAS_FORMULACUSTOM where FNAME=" +
                                        literal(name) + " AND FID <> " + std::to_string(fid)))
        return refuse("Specified Name already exist", txtFname);
    if (trim(txtFquery.value).empty()) return refuse("Please Write the Query", txtFquery);
    if (!VerifyCusQuery(session_, frontEnd(), txtFquery.value)) return setFocus(txtFquery);
    write(fid, name);
    if (!name_.empty() && name_ != name) renameInFormulas(name_, name);
    loadGrid();
}

// The count of rows and one; the next free number behind it where rows have been deleted.
int64_t frmFormulacustom::newFid() {
    int64_t fid =
        FnVarReadValue(session_, "SELECT COUNT(*) + 1 AS CNT FROM MAS_FORMULACUSTOM", 1).toInt();
    while (FnBlnRecordExists(
        session_, "SELECT FID FROM MAS_FORMULACUSTOM WHERE FID = " + std::to_string(fid)))
        ++fid;
    return fid;
}

void frmFormulacustom::write(int64_t fid, const std::string& name) {
    Recordset rs;
    rs.Open(
        "SELECT FID,FNAME,FTYPE,FQUERY,MODULEID FROM MAS_FORMULACUSTOM WHERE MODULEID = 2 AND "
        "FID = " +
            std::to_string(fid),
        session_.gConn, adOpenKeyset, adLockOptimistic);
    if (rs.IsEOF()) rs.AddNew();
    rs.Fields("FID") = Value(fid);
    rs.Fields("FNAME") = Value(name);
    rs.Fields("FTYPE") = Value(trim(txtFtype.value));
    rs.Fields("FQUERY") = Value(txtFquery.value);
    rs.Fields("MODULEID") = Value(2);
    rs.Update();
}

void frmFormulacustom::renameInFormulas(const std::string& from, const std::string& to) {
    const std::string before = literal("(CustQry{" + from + "})");
    const std::string after = literal("(CustQry{" + to + "})");
    session_.gConn.Execute("UPDATE MAS_FORMULA SET FORMULA=REPLACE(FORMULA," + before + "," +
                           after + "),FORMULAFLDREP=REPLACE(FORMULAFLDREP," + before + "," + after +
                           ") WHERE CHARINDEX(" + before + ",FORMULA)>0");
}

void frmFormulacustom::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (fid_ == 0) return inform("Select query to Delete");
    const std::string fid = std::to_string(fid_);
    if (FnVarReadValue(session_, "SELECT COUNT(*) FROM LEV_ALLOTCONFIG WHERE FID = " + fid, 0)
            .toInt() > 0)
        return inform("Query already assigned. Cannot be deleted.");
    session_.gConn.Execute("DELETE FROM MAS_FORMULACUSTOM WHERE FID = " + fid +
                           " AND MODULEID = 2");
    loadGrid();
}

}  // namespace owb
