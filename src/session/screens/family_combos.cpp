#include "session/screens/family_combos.h"

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/screens/SessionScreen.h"
#include "session/screens/frmSelMonth.h"
#include "session/screens/query_lists.h"

namespace owb {

MonthCombo::MonthCombo(SessionScreen& screen, std::string name, std::string caption)
    : Combo(screen, std::move(name), std::move(caption)), screen_(screen) {
    onPick = [this] {
        frmSelMonth picker(screen_.session(), screen_.frontEnd());
        picker.SetTarget(*this);
        picker.showModal();
    };
}

void MonthCombo::load(int32_t lngFrom) {
    clear();
    addItems(screen_.session(), *this,
             Sql() << "SELECT MONTHYEAR, MONTHNAME FROM QRYMONTH WHERE MONTHYEAR >= " << lngFrom
                   << " ORDER BY MONTHYEAR DESC");
}

void MonthCombo::setMonth(int32_t lngMonthYear) {
    if (lngMonthYear == 0) return Combo::select(-1);
    if (selectKey(lngMonthYear)) return;
    add(FnStrMonthYearText(lngMonthYear), lngMonthYear);
    selectKey(lngMonthYear);
}

bool MonthCombo::step(int places) {
    const int at = selected() + places;
    return selected() >= 0 && at >= 0 && choose(static_cast<size_t>(at));
}

ScopeCombo::ScopeCombo(SessionScreen& screen, std::string name, std::string caption)
    : Combo(screen, std::move(name), std::move(caption)), screen_(screen) {}

void ScopeCombo::load(Of of, int64_t key) {
    clear();
    add("ALL", 0);
    addItems(screen_.session(), *this,
             of == Of::Branches
                 ? "SELECT BRANCHID, BRANCHNAME FROM MAS_BRANCH ORDER BY BRANCHNAME"
                 : "SELECT ATTHEADID, ATTHEADNAME FROM MAS_ATTHEAD ORDER BY ATTHEADID");
    if (!selectKey(key)) select(0);
}

EmployeeCombos::EmployeeCombos(SessionScreen& screen, const std::string& idName,
                               const std::string& nameName)
    : byId(screen, idName), byName(screen, nameName), screen_(screen) {
    byId.onChange = [this] { follow(byName, byId); };
    byName.onChange = [this] { follow(byId, byName); };
}

void EmployeeCombos::load(const std::string& sql) {
    byId.clear();
    byName.clear();
    const char* shown = screen_.session().gOptSet.EMPREFNOYN ? "REFNO" : "EMPID";
    for (Recordset rs(screen_.session().gConn, sql); !rs.IsEOF(); rs.MoveNext()) {
        byId.add(rs.Fields(shown).toText(), rs.Fields("EMPID").toInt());
        byName.add(rs.Fields("EMPNAME").toText(), rs.Fields("EMPID").toInt());
    }
}

bool EmployeeCombos::select(int64_t lngEmpId) {
    return byId.selectKey(lngEmpId) && byName.selectKey(lngEmpId);
}

// A text that names nobody empties the other combo.
void EmployeeCombos::follow(Combo& other, const Combo& chosen) {
    if (!other.selectKey(chosen.isInList() ? chosen.key() : 0)) other.select(-1);
    if (onChange) onChange();
}

}  // namespace owb
