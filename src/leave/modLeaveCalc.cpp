#include "leave/modLeaveCalc.h"

#include <algorithm>

#include "base/db_error.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "formula/CustomQuery.h"
#include "formula/clsEvalFormula.h"
#include "leave/slice_sql.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

int monthOf(const AllotRow& row) {
    return (row.lngMonthYear - 1) % 12 + 1;
}

// The year, or for the financial year type the one in which it began, by the family's rule.
int32_t figureKey(const AllotRow& row, const LeaveSettingsRecord& settings) {
    if (settings.ALLOTTYPE != 2) return row.lngMonthYear;
    const int32_t year = (row.lngMonthYear - 1) / 12;
    return settings.ALLOTON == 1 || monthOf(row) >= 4 ? year : year - 1;
}

bool isOpeningMonth(const LeaveSettingsRecord& settings, int intMonth) {
    switch (settings.ALLOTTYPE) {
        case 2:
            return intMonth == (settings.ALLOTON == 1 ? 1 : 4);
        case 3:
            return intMonth % 3 == 1;
        default:
            return (settings.ALLOTON == 1 && intMonth % 6 == 1) ||
                   (settings.ALLOTON == 2 && intMonth % 6 == 4);
    }
}

// Every `what` (ASCII) in the text, letters' case counting or not.
std::string replaced(const std::string& text, const std::string& what, const std::string& with,
                     bool ignoreCase) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const std::string_view here = std::string_view(text).substr(at, what.size());
        if (ignoreCase ? equalsIgnoreCaseAscii(here, what) : here == what) {
            out += with;
            at += what.size();
        } else {
            out += text[at++];
        }
    }
    return out;
}

}  // namespace

std::string FnStrAllotRows(const std::string& strFrom, const std::string& strRest) {
    return "SELECT LA.ALLOTID, LA.EMPID, LA.EMPDETID, LA.ATTHEADID, LA.LEVID, LA.ALLOTFROM, "
           "LA.ALLOTTO, [DBO].FNLNGMONTHYEAR(LA.ALLOTFROM, LA.ALLOTTO) AS MONTHYEAR, CASE WHEN "
           "LA.ACTALLOTLEV = 0 AND LA.ALLOTLEV = 0 THEN 0 ELSE 1 END, PV.ALLOTID, "
           "PV.ATTHEADID, PV.ALLOTFROM, PV.ALLOTTO, CASE WHEN PV.ALLOTID IS NULL THEN 0 ELSE "
           "[DBO].FNLNGMONTHYEAR(PV.ALLOTFROM, PV.ALLOTTO) END FROM " +
           strFrom + slice_sql::kRowBefore + strRest;
}

AllotRow FnReadAllotRow(Recordset& rs) {
    size_t column = 0;
    auto number = [&] { return rs.Fields(column++).toInt(); };
    auto whole = [&] { return static_cast<int>(number()); };
    auto date = [&] { return rs.Fields(column++).toDate(); };
    AllotRow row;
    row.lngAllotId = number();
    row.lngEmpId = number();
    row.lngEmpDetId = whole();
    row.intAttHeadId = whole();
    row.intLevId = whole();
    row.dteFrom = date();
    row.dteTo = date();
    row.lngMonthYear = whole();
    row.blnCredited = number() != 0;
    row.lngPrevAllotId = number();
    row.intPrevHead = whole();
    row.dtePrevFrom = date();
    row.dtePrevTo = date();
    row.lngPrevMonthYear = whole();
    return row;
}

void CalcLeaveAllotment(Session& session, int64_t lngAllotId, bool& blnUseStoredDays,
                        DateTime& dteMonthStart) {
    Recordset rs(session.gConn,
                 FnStrAllotRows("LEV_ALLOTMENT LA", Sql() << "WHERE LA.ALLOTID = " << lngAllotId));
    if (rs.IsEOF()) return;
    LeaveCalc calc(session);
    const AllotRow row = FnReadAllotRow(rs);
    if (const auto credit = calc.Credit(row, blnUseStoredDays, dteMonthStart))
        calc.WriteCredit(row, *credit);
}

void LeaveCalc::ForgetRules() {
    rules = LeaveRules(session_);
    periods.Forget();
    ForgetDays();
}

std::optional<double> LeaveCalc::Credit(const AllotRow& row, bool blnUseStoredDays,
                                        DateTime dteMonthStart) {
    const LeaveSettingsRecord* settings =
        rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear);
    if (!settings) return std::nullopt;
    const AllotFigure* figure =
        settings->ALLOTTYPE > 4 ? nullptr
                                : rules.figure(row.intLevId, row.intAttHeadId, settings->ALLOTTYPE,
                                               settings->ALLOTON, figureKey(row, *settings));
    if (!figure) {
        tell("figure", [] { return "none in force: no credit"; });
        return 0;
    }
    const Task task{row, *settings, NumberOfLeaves(row, *figure), figure->PERIOD,
                    blnUseStoredDays && row.dteFrom == dteMonthStart};
    switch (settings->ALLOTTYPE) {
        case 0:
            return PeriodType(task);
        case 1:
            return Monthly(task);
        default:
            return ByPeriod(task);
    }
}

void LeaveCalc::WriteCredit(const AllotRow& row, double dblAllot) {
    if (dblAllot == 0 && !row.blnCredited) return;  // no rounding makes something of nothing
    const LeaveSettingsRecord* settings =
        rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear);
    const std::string amount = numberText(dblAllot);
    session_.gConn.Execute(Sql() << "UPDATE LEV_ALLOTMENT SET ACTALLOTLEV = " << amount
                                 << ", ALLOTLEV = [dbo].FnDblRndOff(" << amount << ","
                                 << settings->ALLOTRNDTYPE
                                 << ") WHERE ALLOTID = " << row.lngAllotId);
}

// The number that the figure gives: plain, by the company's own query, or by a formula.
double LeaveCalc::NumberOfLeaves(const AllotRow& row, const AllotFigure& figure) {
    if (figure.QUERYYN == 1) {
        std::string query =
            FnVarValueOrThrow(
                session_, Sql() << "select FQUERY From MAS_FORMULACUSTOM where fid=" << figure.FID,
                "")
                .toText();
        if (!query.empty()) {
            for (const auto& [name, value] :
                 {std::pair<std::string, int64_t>{"$EMPID$", row.lngEmpId},
                  {"$EMPDETID$", row.lngEmpDetId},
                  {"$ATTHEADID$", row.intAttHeadId},
                  {"$LEVID$", row.intLevId},
                  {"$MONTHYEAR$", row.lngMonthYear}})
                query = replaced(query, name, std::to_string(value), true);
            query = replaced(query, "$HOSTNAME$", session_.gHostPrefix, false);
            const double custom = FnVarCustomQuery(session_, query, 0).toDouble();
            tell("figure", [&] { return numberText(custom) + " leaves by the custom query"; });
            return custom;
        }
    }
    if (figure.QUERYYN == 2) {
        const double custom = FnEvalFormula(session_).FnDblEvalFormula(
            static_cast<int32_t>(figure.FID), row.lngEmpId, row.lngEmpDetId, row.lngMonthYear,
            row.dteFrom, row.dteTo);
        tell("figure", [&] { return numberText(custom) + " leaves by the formula"; });
        return custom;
    }
    tell("figure", [&] { return numberText(figure.NOL) + " leaves"; });
    return figure.NOL;
}

double LeaveCalc::Share(double dblNol, double dblDays, double dblOf) {
    if (dblOf == 0) throw DbError(11, 16, 1, 0, "Division by zero");
    const double share = dblNol * (dblDays / dblOf);
    tell("credit", [&] {
        return numberText(dblNol) + " x " + numberText(dblDays) + " / " + numberText(dblOf) +
               " = " + numberText(share);
    });
    return share;
}

DateTime LeaveCalc::MonthStart(const AllotRow& row) {
    DateTime from, to;
    periods.GetMonthBounds(row.lngMonthYear, from, to);
    return from;
}

double LeaveCalc::PeriodType(const Task& task) {
    const int on = task.settings.ALLOTON;
    if (on == 3) return task.dblNol;
    if (on > 9) return 0;
    double days = FnDblDays(task.row.dteFrom, task.row.dteTo);
    if (on != 0) {
        const Days counted = RowDays(task, on >= 4 ? on : 0);
        days = on == 2 ? counted.NDP : counted.NOD;
    }
    return Share(task.dblNol, days, task.dblPeriod);
}

double LeaveCalc::Monthly(const Task& task) {
    const int allotFor = task.settings.ALLOTFOR, on = task.settings.ALLOTON;
    const bool odd = monthOf(task.row) % 2 == 1;
    if (allotFor != 0 && !(allotFor == 1 && odd) && !(allotFor == 2 && !odd)) {
        tell("gate", [&] { return odd ? "closed: an odd month" : "closed: an even month"; });
        return 0;
    }
    if (task.settings.ALLOTASPER == 1) return MonthlyAsPrevious(task);
    if (on == 3) return IsPeriodOpening(task, MonthStart(task.row)) ? task.dblNol : 0;
    if (on > 2) return 0;  // other bases are served by the Period type alone
    const Days days = RowDays(task, 0);
    if (on == 0)
        return std::min(
            Share(task.dblNol, FnDblDays(task.row.dteFrom, task.row.dteTo), days.NODCALC),
            task.dblNol);
    const double worked = on == 1 ? days.NOD : days.NDP;
    if (worked < task.settings.MINLEVDAYS) {
        tell("credit", [&] {
            return "none: " + numberText(worked) + " days are fewer than " +
                   numberText(task.settings.MINLEVDAYS);
        });
        return 0;
    }
    return Share(task.dblNol, worked, days.NODCALC);
}

double LeaveCalc::MonthlyAsPrevious(const Task& task) {
    const AllotRow& row = task.row;
    if (row.lngPrevAllotId == 0) {
        tell("gate", [] { return "closed: no row ends the day before"; });
        return 0;
    }
    if (!IsPeriodOpening(task, MonthStart(row))) return 0;
    const int on = task.settings.ALLOTON;
    if (on > 9) return 0;
    if (on >= 3) return task.dblNol;
    Days days;
    DateTime from, to;
    SumPrevMonthDays(row.lngEmpId, row.lngMonthYear - 1, days, from, to);
    if (on == 0)
        return std::min(Share(task.dblNol, FnDblDays(from, to), days.NODCALC), task.dblNol);
    const double worked = on == 1 ? days.NOD : days.NDP;
    if (days.NODCALC == 0 || worked < task.settings.MINLEVDAYS) {
        tell("credit", [&] { return "none: " + numberText(worked) + " days in the month before"; });
        return 0;
    }
    return Share(task.dblNol, worked, days.NODCALC);
}

double LeaveCalc::ByPeriod(const Task& task) {
    const AllotRow& row = task.row;
    DateTime from, to;
    periods.GetBounds(task.settings.ALLOTTYPE, task.settings.ALLOTON, row.lngMonthYear, from, to);
    const bool opens = isOpeningMonth(task.settings, monthOf(row)) && from == row.dteFrom;
    if (opens) {
        tell("gate", [&] { return "open: the period begins on " + FnStrIsoDate(from); });
    } else if (!IsPeriodOpening(task, from)) {
        return 0;
    }
    if (task.settings.ALLOTASPER == 1) {
        if (opens) return AsPreviousPeriod(task);
        tell("credit", [] { return "none: the period before counts on its first day alone"; });
        return 0;
    }
    double periodDays = 0, serviceDays = 0;
    GetServiceDays(task, periodDays, serviceDays);
    return Share(task.dblNol, serviceDays, periodDays);
}

double LeaveCalc::AsPreviousPeriod(const Task& task) {
    const AllotRow& row = task.row;
    const int basis = task.settings.ALLOTFOR;
    if (basis == 3) return task.dblNol;
    if (basis > 3) return 0;
    DateTime from, to;
    double periodDays = 0, days = 0;
    periods.GetPrevBounds(row.lngEmpId, task.settings.ALLOTTYPE, task.settings.ALLOTON,
                          row.lngMonthYear, from, to, periodDays, days);
    if (task.settings.ALLOTTYPE == 2) {
        const Value allotFrom = FnVarValueOrThrow(
            session_, Sql() << "SELECT ALLOTFROM FROM LEV_ALLOTFROM WHERE levid=" << row.intLevId
                            << " AND EMPID=" << row.lngEmpId);
        if (!allotFrom.isNull() && allotFrom.toDate() > from) {
            from = allotFrom.toDate();
            days = std::max(FnDblDays(from, to), 0.0);
        }
    }
    if (basis != 0) {
        Days sums;
        SumPeriodDays(row.lngEmpId, from, to, sums);
        days = basis == 1 ? sums.NOD : sums.NDP;
    }
    tell("days", [&] {
        return numberText(days) + " from " + FnStrIsoDate(from) + " to " + FnStrIsoDate(to) +
               ", the period before";
    });
    if (days < task.settings.MINLEVDAYS) {
        tell("credit",
             [&] { return "none: fewer than " + numberText(task.settings.MINLEVDAYS) + " days"; });
        return 0;
    }
    return Share(task.dblNol, days, periodDays);
}

// Rows of one employee and leave follow each other by date, so the row that ends the day before
// tells all: if it lies in the period under the same head and setting, that one was first.
bool LeaveCalc::IsPeriodOpening(const Task& task, const DateTime& dteSince) {
    const AllotRow& row = task.row;
    const char* finding = nullptr;
    bool open = true;
    if (row.lngPrevAllotId == 0) {
        finding = "open: no row ends the day before";
    } else if (row.intPrevHead != row.intAttHeadId) {
        finding = "open: the head has changed";
    } else {
        const LeaveSettingsRecord* before =
            rules.inForce(row.intLevId, row.intPrevHead, row.lngPrevMonthYear);
        if (!before || before->MONTHYEAR != task.settings.MONTHYEAR) {
            finding = "open: first row under this setting";
        } else {
            open = row.dtePrevFrom < dteSince;
            finding = open ? "open: first row of the period" : "closed: not the period's first row";
        }
    }
    tell("gate", [&] { return finding; });
    return open;
}

}  // namespace owb
