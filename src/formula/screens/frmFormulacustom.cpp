#include "formula/screens/frmFormulacustom.h"

#include "base/utf8.h"
#include "db/sql_text.h"
#include "formula/VerifyCusQuery.h"
#include "session/queries.h"
#include "session/screens/query_lists.h"

namespace owb {

namespace {

constexpr const char* kIsTaken = "Specified Name already exist";

enum Column { kFid, kName, kType, kQuery };

}  // namespace

frmFormulacustom::frmFormulacustom(Session& session, FrontEnd& frontEnd)
    : RowScreen(session, frontEnd, {"frmFormulacustom", "Custom Query", 0, "fpgFormulaQry"},
                query_) {
    query_.text("FNAME", txtFname);
    query_.text("FTYPE", txtFtype);
    query_.text("FQUERY", txtFquery);
    txtFname.maxLength = 100;
    txtFtype.maxLength = 30;
    txtFquery.multiLine = true;
    lblqryinfo.caption =
        "Parameters : $EMPID$, $EMPDETID$, $MONTHYEAR$, $HOSTNAME$, $LEVID$, $ATTHEADID$";
    list.caption = "Custom queries";
    list.setColumns({{.caption = "FID", .hidden = true},
                     {.caption = "Name", .width = 30},
                     {.caption = "Type", .width = 12},
                     {.caption = "Query", .width = 60}});
}

Layout frmFormulacustom::layout() {
    return column({item(list, 1),
                   form({item("Name", txtFname), item("Type", txtFtype), item("Query", txtFquery),
                         item("", lblqryinfo)}),
                   commandRow({item(cmdverify)})});
}

void frmFormulacustom::loadList() {
    fillGrid(session_, list,
             "SELECT FID,FNAME,FTYPE,FQUERY FROM MAS_FORMULACUSTOM where moduleid=2 ");
}

// Names tell rows of one number apart.
bool frmFormulacustom::readLine(size_t line) {
    return row_.readWhere(session_, Sql() << "MODULEID = 2 AND FID = " << list.cell(line, kFid)
                                          << " AND FNAME = " << literal(list.cell(line, kName)));
}

bool frmFormulacustom::isShownBy(size_t line) const {
    return RowScreen::isShownBy(line) && list.cell(line, kName) == row_.before("FNAME").toText();
}

void frmFormulacustom::cmdverify_Click() {
    if (trim(txtFquery.value).empty()) return refuse("Enter Query", txtFquery);
    if (VerifyCusQuery(session_, frontEnd(), txtFquery.value)) inform("Query is Correct");
}

std::string frmFormulacustom::takenSql() const {
    return Sql() << "SELECT FID from MAS_FORMULACUSTOM where FNAME=" << literal(row_.typed("FNAME"))
                 << " AND FID <> " << row_.key();
}

std::optional<Refusal> frmFormulacustom::check() {
    if (trim(txtFname.value).empty()) return Refusal{"Enter Name", &txtFname};
    if (FnBlnExistsOrThrow(session_, takenSql())) return Refusal{kIsTaken, &txtFname};
    if (trim(txtFquery.value).empty()) return Refusal{"Please Write the Query", &txtFquery};
    return {};
}

bool frmFormulacustom::mayBeSaved(SaveBatch& batch) {
    if (!VerifyCusQuery(session_, frontEnd(), txtFquery.value)) {
        setFocus(txtFquery);
        return false;
    }
    batch.refuseUnless("NOT EXISTS (" + takenSql() + ")", kIsTaken);
    return true;
}

// A new number is the count of rows and one; the next free one behind it where rows have gone.
std::string frmFormulacustom::writeRow(SaveBatch& batch) {
    if (row_.isNew())
        batch.add(
            " DECLARE @FID int SELECT @FID = COUNT(*) + 1 FROM MAS_FORMULACUSTOM WITH (TABLOCKX, "
            "HOLDLOCK) WHILE EXISTS (SELECT * FROM MAS_FORMULACUSTOM WHERE FID = @FID) SET @FID = "
            "@FID + 1");
    const std::string key = row_.writeInto(batch, {}, RowText().set("MODULEID", Value(2)), "@FID");
    if (!row_.isNew() && row_.changed("FNAME")) renameInFormulas(batch);
    return key;
}

void frmFormulacustom::renameInFormulas(SaveBatch& batch) const {
    const auto call = [](const Value& name) { return literal("(CustQry{" + name.toText() + "})"); };
    const std::string before = call(row_.before("FNAME")), after = call(row_.typed("FNAME"));
    batch.add(Sql() << " UPDATE MAS_FORMULA SET FORMULA=REPLACE(FORMULA," << before << "," << after
                    << "),FORMULAFLDREP=REPLACE(FORMULAFLDREP," << before << "," << after
                    << ") WHERE CHARINDEX(" << before << ",FORMULA)>0");
}

std::optional<Refusal> frmFormulacustom::checkDeletion() {
    if (row_.isNew()) return Refusal{"Select query to Delete"};
    return {};
}

std::string frmFormulacustom::rowWords() const {
    return row_.before("FNAME").toText();
}

bool frmFormulacustom::mayBeDeleted(SaveBatch& batch) {
    const std::string uses = Sql() << "SELECT * FROM LEV_ALLOTCONFIG WHERE FID = " << row_.key();
    const char* isUsed = "Query already assigned. Cannot be deleted.";
    if (FnBlnExistsOrThrow(session_, uses)) return !refused(Refusal{isUsed});
    batch.refuseUnless("NOT EXISTS (" + uses + ")", isUsed);
    return true;
}

}  // namespace owb
