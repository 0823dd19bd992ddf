// What becomes of a leave that is asked for, and the questions to the user.
#include "leave/LeaveEntry.h"

#include <algorithm>

#include "base/db_error.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/LeavePriority.h"
#include "leave/modLeaveFunctions.h"
#include "session/modAttSetting.h"
#include "session/modFiles.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr char kCancelLine[] = "III. Click 'Cancel' to exit without any changes.";

// A figure of the month stands on the last day of the version in it.
DateTime lastDayOfVersion(Session& session, const LeaveHalf& half) {
    const std::string date = FnStrIsoLiteral(half.dteDate);
    return FnVarValueOrThrow(session,
                             Sql() << "SELECT [dbo].FnDteToDate(" << half.lngEmpId
                                   << ", [dbo].FnIntMaxEmpDetID(" << half.lngEmpId << "," << date
                                   << "," << date << "),[dbo].FnLngMonthYear(" << date << ","
                                   << date << "))",
                             half.dteDate)
        .toDate();
}

}  // namespace

LeaveEntry::LeaveEntry(Session& session, int32_t lngAttHeadId, int32_t intOptionHead)
    : session_(session), lngAttHeadId_(lngAttHeadId), strLop_(FnStrLopName(session)) {
    LoadAttHead(session, lngAttHeadId);
    LoadAttOptions(session, intOptionHead);
    options_ = session.gOpt;
}

void LeaveEntry::Trap(const std::function<void()>& work) {
    try {
        work();
    } catch (const DbError& e) {
        failed_ = true;
        session_.boxes.critical(std::to_string(e.number) + " : " + e.what());
    }
}

void LeaveEntry::ApplyLeaveHalf(int32_t& intLevId, const LeaveHalf& half) {
    if (!failed_ && !Cancelled()) Trap([&] { Apply(intLevId, half); });
}

void LeaveEntry::Apply(int32_t& intLevId, LeaveHalf half) {
    double unit = 0.5;
    if (half.intKind == 2) {
        half.dteDate = lastDayOfVersion(session_, half);
        if (!FnBlnMarkerFile(session_, "\\AvailHalfDayLeave.dat")) unit = 0.25;
    }
    while (ApplyUnit(intLevId, half, unit)) {
        half.dblDays = textToNumber(formatNumber(half.dblDays - unit, "#.##"));
        if (half.dblDays <= 0) return;
        half.blnRepeat |= half.intKind == 2;
    }
}

// False when the user has declined. A leave that is not tested is written as it is.
bool LeaveEntry::ApplyUnit(int32_t& intLevId, const LeaveHalf& half, double unit) {
    const auto tested = FnStrTestedLeave(session_, intLevId);
    double balance = 0;
    if (tested && intLevId != 1 &&
        !FnBlnAvailOpen(session_, half.lngEmpId, intLevId, half.dteDate)) {
        if (half.blnAsk &&
            session_.boxes.show(
                {"'Leave Date' is prior to 'Leave Avail From' date set for the " +
                     session_.gEmployeeCaption + "\n\nTherefore, Leave will be considered as '" +
                     strLop_ + "'. Do you want to continue ?",
                 "Orvane Wagebook", BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::No}) !=
                BoxAnswer::Yes)
            return false;
        intLevId = 1;
    }
    if (tested && intLevId != 1) AsThoughWritten([&] { balance = Balance(intLevId, half); });
    const bool shortOf = tested && balance < unit;
    if (shortOf && intAnswer_ == kNotAsked && options_.EXCESSLEVYN)
        AskExcess(intLevId, half, *tested, balance);
    if (Cancelled()) return false;

    const bool decided = shortOf && (intAnswer_ == kYes || intAnswer_ == kNo);
    if (decided && intAnswer_ == kYes && options_.LEVPRIORITYYN) {
        int32_t next = 1;
        AsThoughWritten([&] {
            next = FnIntNextPriorityLeave(session_, half.lngEmpId, lngAttHeadId_, intLevId, 0.5,
                                          half.dteDate);
        });
        intLevId = next;
    } else if (decided && (intAnswer_ == kYes || (options_.LEVPRIORITYYN && blnByPriority_))) {
        intLevId = 1;
    }
    WriteLeaveHalf(intLevId, half, std::min(unit, half.dblDays),
                   half.blnRepeat || (decided && half.intKind == 2));
    return true;
}

// The first half stands apart: the balance of a day that is entered again leaves the day out.
double LeaveEntry::Balance(int32_t intLevId, const LeaveHalf& half) {
    const double balance =
        GetClosingBalance(session_, half.lngEmpId, intLevId, half.dteDate,
                          half.blnRepeat ? DateTime{} : half.dteDate, lngAttHeadId_);
    if (half.intKind != 1) return balance;
    return balance - FnVarValueOrThrow(session_,
                                       Sql()
                                           << "SELECT FIRSTHALFYN FROM LEV_DETAILS WHERE EMPID = "
                                           << half.lngEmpId << " AND LEVID = " << intLevId
                                           << " AND LEAVEDATE = " << FnStrIsoLiteral(half.dteDate),
                                       0)
                             .toDouble() /
                         2;
}

LeaveEntry::Answer LeaveEntry::Ask(const std::string& text, const std::string& title,
                                   BoxAnswer defaultAnswer) {
    switch (session_.boxes.show(
        {text, title, BoxIcon::Question, BoxButtons::YesNoCancel, defaultAnswer})) {
        case BoxAnswer::Yes:
            return kYes;
        case BoxAnswer::No:
            return kNo;
        default:
            return kCancel;
    }
}

void LeaveEntry::AskExcess(int32_t& intLevId, const LeaveHalf& half, const std::string& name,
                           double dblBalance) {
    const std::string begin = "Available '" + name + "' Leave Balance : ";
    const std::string note =
        options_.AUTOALLOTYN
            ? "\n\nNote : In case of 'Leave Allotment' on Pay Days/Present Days, Leave balance "
              "might vary before and after availing Leave."
            : "";
    const auto ask = [&](const std::string& text) {
        return Ask(begin + text + note, "Orvane Wagebook", BoxAnswer::No);
    };
    if (intLevId == 1) {  // before its avail-from date
        intAnswer_ = kNo;
    } else if (options_.LEVPRIORITYYN) {
        intAnswer_ = !half.blnAsk
                         ? kYes
                         : ask(formatNumber(dblBalance, "0.00") +
                               "\n\n  I. Click 'Yes' to continue further for priority wise Leave "
                               "selection.\n II. Click 'No' to apply selected Leave (Even when "
                               "balance is zero).\n" +
                               kCancelLine);
        if (intAnswer_ != kYes) return;
        blnByPriority_ = true;
        intAnswer_ = FnIntAskByPriority(intLevId, half, name, dblBalance);
    } else if (half.blnAsk) {
        intAnswer_ = ask(numberText(dblBalance) +
                         "\n\nDo you want to consider excess leave taken as '" + strLop_ + "' ?");
    } else {
        intAnswer_ = kNo;
        intLevId = 1;
    }
}

LeaveEntry::Answer LeaveEntry::FnIntAskByPriority(int32_t intLevId, const LeaveHalf& half,
                                                  const std::string& name, double dblBalance) {
    std::string list;
    AsThoughWritten([&] {
        list = FnStrPriorityList(session_, half.lngEmpId, lngAttHeadId_, intLevId, half.dteDate);
    });
    if (list.empty()) return kListEmpty;
    if (!half.blnAsk) return kYes;
    return Ask("Available Leave Balance for '" + upperCase(name) +
                   "' : " + formatNumber(dblBalance, "0.00") +
                   "\n\nAvailable other Leave Balance is as follows\n" + list +
                   "\nDo you want to set the excess Leave as per the Leave priority ?\n\n I. Click "
                   "'Yes' to set the Leave Type as per the Leave priority and availability.\n II. "
                   "Click 'No' to consider excess Leave as '" +
                   strLop_ + "'.\n" + kCancelLine,
               "Insufficient Leave Balance", BoxAnswer::Cancel);
}

}  // namespace owb
