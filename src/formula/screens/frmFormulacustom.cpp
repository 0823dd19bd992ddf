#include "formula/screens/frmFormulacustom.h"

#include "base/utf8.h"
#include "db/recordset.h"
#include "formula/VerifyCusQuery.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr const char* kWhat = "The query";

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
    shown_ = {};
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
    // Names tell rows of one number apart.
    shown_ = ShownRow(session_, "MAS_FORMULACUSTOM", "FNAME, FTYPE, FQUERY",
                      "MODULEID = 2 AND FID = " + std::to_string(fid_) +
                          " AND FNAME = " + literal(fpgFormulaQry.cell(row, kName)));
    if (!shown_.found()) {
        frontEnd().warning(FnStrChangedMeanwhile(kWhat));
        return loadGrid();
    }
    name_ = shown_.value("FNAME").toText();
    txtFname.value = name_;
    txtFtype.value = shown_.value("FTYPE").toText();
    txtFquery.value = shown_.value("FQUERY").toText();
}

void frmFormulacustom::cmdverify_Click() {
    if (trim(txtFquery.value).empty()) return refuse("Enter Query", txtFquery);
    if (VerifyCusQuery(session_, frontEnd(), txtFquery.value)) inform("Query is Correct");
}

void frmFormulacustom::cmdSave_Click() {
    if (denied(cmdSave)) return;
    const auto showAgain = [this] { loadGrid(); };
    if (fid_ != 0 && !stillAsShown(shown_, kWhat, showAgain)) return;
    const std::string name = trim(txtFname.value);
    if (name.empty()) return refuse("Enter Name", txtFname);
    const std::string taken = "SELECT FID from MAS_FORMULACUSTOM where FNAME=" + literal(name) +
                              " AND FID <> " + std::to_string(fid_);
    const char* isTaken = "Specified Name already exist";
    if (FnBlnExistsOrThrow(session_, taken)) return refuse(isTaken, txtFname);
    if (trim(txtFquery.value).empty()) return refuse("Please Write the Query", txtFquery);
    if (!VerifyCusQuery(session_, frontEnd(), txtFquery.value)) return setFocus(txtFquery);
    SaveBatch batch;
    batch.refuseUnless("NOT EXISTS (" + taken + ")", isTaken);
    write(batch, name);
    if (!name_.empty() && name_ != name) renameInFormulas(batch, name_, name);
    if (save(batch, showAgain)) loadGrid();
}

void frmFormulacustom::write(SaveBatch& batch, const std::string& name) const {
    RowText row;
    row.set("FNAME", Value(name))
        .set("FTYPE", Value(trim(txtFtype.value)))
        .set("FQUERY", Value(txtFquery.value));
    if (fid_ != 0) {
        batch.requireShown(shown_, kWhat).add(row.update("MAS_FORMULACUSTOM", shown_.key()));
        return;
    }
    // The count of rows and one; the next free number behind it where rows have been deleted.
    batch.add(
        " DECLARE @FID int SELECT @FID = COUNT(*) + 1 FROM MAS_FORMULACUSTOM WITH (TABLOCKX, "
        "HOLDLOCK) WHILE EXISTS (SELECT * FROM MAS_FORMULACUSTOM WHERE FID = @FID) SET @FID = @FID "
        "+ 1");
    batch.add(row.setSql("FID", "@FID").set("MODULEID", Value(2)).insertInto("MAS_FORMULACUSTOM"));
}

void frmFormulacustom::renameInFormulas(SaveBatch& batch, const std::string& from,
                                        const std::string& to) const {
    const std::string before = literal("(CustQry{" + from + "})");
    const std::string after = literal("(CustQry{" + to + "})");
    batch.add(" UPDATE MAS_FORMULA SET FORMULA=REPLACE(FORMULA," + before + "," + after +
              "),FORMULAFLDREP=REPLACE(FORMULAFLDREP," + before + "," + after +
              ") WHERE CHARINDEX(" + before + ",FORMULA)>0");
}

void frmFormulacustom::cmdDelete_Click() {
    if (denied(cmdDelete)) return;
    if (fid_ == 0) return inform("Select query to Delete");
    const auto showAgain = [this] { loadGrid(); };
    if (!stillAsShown(shown_, kWhat, showAgain)) return;
    const std::string uses =
        "SELECT COUNT(*) FROM LEV_ALLOTCONFIG WHERE FID = " + std::to_string(fid_);
    const char* isUsed = "Query already assigned. Cannot be deleted.";
    if (FnVarValueOrThrow(session_, uses, 0).toInt() > 0) return inform(isUsed);
    SaveBatch batch;
    batch.requireShown(shown_, kWhat)
        .refuseUnless("0 = (" + uses + ")", isUsed)
        .add(" DELETE FROM MAS_FORMULACUSTOM WHERE " + shown_.key());
    if (save(batch, showAgain)) loadGrid();
}

}  // namespace owb
