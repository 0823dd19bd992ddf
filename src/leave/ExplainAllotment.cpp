#include "leave/ExplainAllotment.h"

#include <array>

#include "base/db_error.h"
#include "base/number_text.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/LeaveChain.h"
#include "leave/slice_sql.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

template <size_t N>
std::string caption(const std::array<const char*, N>& captions, int code) {
    const bool known =
        code >= 0 && static_cast<size_t>(code) < N && captions[static_cast<size_t>(code)];
    return known ? captions[static_cast<size_t>(code)] : "type " + std::to_string(code);
}

constexpr std::array kBases = {"Actual Days",
                               "Pay Days",
                               "Present Days",
                               "None",
                               "Fixed 30 Days",
                               "Actual Days / Month",
                               "User Edited Pay Days",
                               "Only Working Days",
                               "Only Working Days + Weekly Holiday",
                               "Only Working Days + General Holiday"};
constexpr std::array<const char*, 3> kYears = {nullptr, "Calendar Year", "Financial Year"};
constexpr std::array kMonths = {"Every Month", "Odd Month", "Even Month"};
constexpr std::array kTypes = {"Period", "Monthly", "Yearly", "Quarterly", "Half Yearly"};
constexpr std::array kPeriods = {"", "Month", "Year", "Quarter", "Half-Year"};

// The setting in the words of its screen.
std::string inWords(const LeaveSettingsRecord& s) {
    std::string text =
        "since " + FnStrMonthYearText(s.MONTHYEAR) + ": " + caption(kTypes, s.ALLOTTYPE);
    if (s.ALLOTTYPE == 0) return text + " on " + caption(kBases, s.ALLOTON);
    if (s.ALLOTTYPE > 4) return text;
    if (s.ALLOTTYPE == 1)
        text += ", " + caption(kMonths, s.ALLOTFOR) + ", on " + caption(kBases, s.ALLOTON);
    else if (s.ALLOTTYPE != 3)
        text += " by " + caption(kYears, s.ALLOTON);
    text += std::string(s.ALLOTASPER == 1 ? ", as per Previous " : ", as per Current ") +
            kPeriods[static_cast<size_t>(s.ALLOTTYPE)];
    if (s.ALLOTTYPE != 1 && s.ALLOTASPER == 1) text += " on " + caption(kBases, s.ALLOTFOR);
    if (s.MINLEVDAYS > 0) text += ", from " + numberText(s.MINLEVDAYS) + " days on";
    return text;
}

std::string rounded(Session& session, double value, int type) {
    return FnVarValueOrThrow(session, Sql() << "SELECT [dbo].FnDblRndOff(" << numberText(value)
                                            << "," << type << ")")
        .toText();
}

void explainCredit(Session& session, LeaveCalc& calc, const AllotRow& row, AllotmentSteps& steps) {
    const LeaveSettingsRecord* settings =
        calc.rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear);
    if (!settings) return steps.step("setting", "none in force: the row stays marked");
    steps.step("setting", inWords(*settings));
    if (row.intLevId == 2) {
        const double work =
            FnVarValueOrThrow(
                session, Sql() << "SELECT " << slice_sql::compensatoryWork("LA")
                               << " FROM LEV_ALLOTMENT LA WHERE LA.ALLOTID = " << row.lngAllotId)
                .toDouble();
        return steps.step("credit", "compensatory work in the slice: " + numberText(work));
    }
    if (!settings->AUTOALLOTYN) return steps.step("credit", "entered by hand");
    try {
        const double credit = calc.Credit(row).value();
        steps.step("rounding", numberText(credit) + " by '" +
                                   FnStrRoundingType(settings->ALLOTRNDTYPE) + "' is " +
                                   rounded(session, credit, settings->ALLOTRNDTYPE));
    } catch (const DbError& e) {
        steps.step("credit", std::to_string(e.number) + ": " + e.what() + "; the row stays marked");
    }
}

}  // namespace

void ExplainAllotment(Session& session, const AllotRow& row, AllotmentSteps& steps) {
    LeaveCalc calc(session, &steps);
    explainCredit(session, calc, row, steps);
    LeaveChain(session, calc.rules, calc.periods, &steps).Chain(row);
}

}  // namespace owb
