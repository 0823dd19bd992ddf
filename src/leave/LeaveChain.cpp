#include "leave/LeaveChain.h"

#include "base/number_text.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/slice_sql.h"
#include "session/Session.h"

namespace owb {

bool FnBlnPeriodEnd(LeavePeriods& periods, int intAllotType, int intAllotOn, int32_t lngMonthYear,
                    DateTime& dteEnd) {
    DateTime from;
    if (intAllotType == 0 || intAllotType == 1)
        periods.GetMonthBounds(lngMonthYear, from, dteEnd);
    else if (intAllotType == 3 ||
             ((intAllotType == 2 || intAllotType == 4) && (intAllotOn == 1 || intAllotOn == 2)))
        periods.GetBounds(intAllotType, intAllotOn, lngMonthYear, from, dteEnd);
    else
        return false;
    return true;
}

bool FnBlnLapseDue(int intLapseMonth, int32_t lngMonthYear) {
    return intLapseMonth != 0 && (lngMonthYear - 1) % 12 == intLapseMonth % 12;
}

LeaveChain::Link LeaveChain::Chain(const AllotRow& row) {
    if (row.lngPrevAllotId == 0) return {OpeningBalance(row), 0};
    const LeaveSettingsRecord* settings =
        rules_.inForce(row.intLevId, row.intPrevHead, row.lngMonthYear);
    if (!settings) return told("no settings for the head of the row before", {});
    const double closing = Closing(row, *settings);
    return settings->COYN ? CarryOver(row, *settings, closing)
                          : WithinPeriod(row, *settings, closing);
}

double LeaveChain::OpeningBalance(const AllotRow& row) {
    const DateTime since = periods_.LeaveStart();
    const std::string from = FnStrIsoLiteral(since);
    Recordset rs(session_.gConn,
                 Sql() << "SELECT " << slice_sql::openingBalance("LA") << ", "
                       << slice_sql::openingAvailed("LA", from) << ", "
                       << slice_sql::openingTaken("LA", from)
                       << " FROM LEV_ALLOTMENT LA WHERE LA.ALLOTID = " << row.lngAllotId);
    const double balance = rs.Fields(0).toDouble(), availed = rs.Fields(1).toDouble(),
                 taken = rs.Fields(2).toDouble();
    if (steps_)
        steps_->step("brought forward", "no row ends the day before: opening balance " +
                                            numberText(balance) + " less " +
                                            numberText(availed + taken) + " taken since " +
                                            FnStrIsoDate(since));
    return balance - (availed + taken);
}

double LeaveChain::Closing(const AllotRow& row, const LeaveSettingsRecord& settings) {
    const std::string notYetOpen =
        "SELECT COUNT(*) FROM ATT_DEFINITION AD, LEV_ALLOTFROM LF WHERE AD.LEVID = LF.LEVID AND "
        "AD.ALLOTMENTYN = 1 AND LF.EMPID = LA.EMPID AND LF.LEVID = LA.LEVID AND LF.ALLOTFROM > "
        "LA.ALLOTTO";
    Recordset rs(
        session_.gConn,
        Sql()
            << "SELECT T.*, [dbo].FnDblRndOff(T.ALLOTTED + T.BROUGHT + T.ADJUSTED - (T.ENCASHED + "
               "T.AVAILED), "
            << settings.RNDTYPE
            << ") FROM (SELECT ISNULL(LA.ALLOTLEV, 0) AS ALLOTTED, ISNULL(LA.COLEV, 0) AS BROUGHT, "
            << slice_sql::adjusted("LA", std::to_string(row.lngPrevMonthYear)) << " AS ADJUSTED, "
            << slice_sql::encashed("LA") << " AS ENCASHED, " << slice_sql::availed("LA")
            << " AS AVAILED, (" << notYetOpen
            << ") AS NOTOPEN FROM LEV_ALLOTMENT LA WHERE LA.ALLOTID = " << row.lngPrevAllotId
            << ") T");
    const double closing = rs.Fields("NOTOPEN").toInt() > 0 ? 0 : rs.Fields(6).toDouble();
    if (steps_) {
        auto part = [&](const char* name) { return numberText(rs.Fields(name).toDouble()); };
        steps_->step("row before", FnStrIsoDate(row.dtePrevFrom) + " to " +
                                       FnStrIsoDate(row.dtePrevTo) + ", head " +
                                       std::to_string(row.intPrevHead));
        steps_->step("its closing", part("BROUGHT") + " brought forward + " + part("ALLOTTED") +
                                        " allotted + " + part("ADJUSTED") + " adjusted - " +
                                        part("ENCASHED") + " encashed - " + part("AVAILED") +
                                        " availed, by '" + FnStrRoundingType(settings.RNDTYPE) +
                                        "': " + numberText(closing));
        if (rs.Fields("NOTOPEN").toInt() > 0)
            steps_->step("its closing", "0: it lies before the allot-from date");
    }
    return closing;
}

LeaveChain::Link LeaveChain::told(const char* finding, const Link& link) const {
    if (steps_) {
        steps_->step("carry-over rule", finding);
        steps_->step("result", numberText(link.COLEV) + " brought forward, " +
                                   numberText(link.dblLapsed) + " lapsed on the row before");
    }
    return link;
}

// Of a month in two slices only the first may follow LAPSEMONTH.
LeaveChain::Link LeaveChain::CarryOver(const AllotRow& row, const LeaveSettingsRecord& settings,
                                       double dblClosing) {
    if (FnBlnLapseDue(settings.LAPSEMONTH, row.lngMonthYear) &&
        row.lngPrevMonthYear != row.lngMonthYear) {
        const double kept = std::min(dblClosing, settings.LAPSELIMIT);
        if (settings.LAPSENEGATIVE && kept < 0)
            return told("the lapse month has ended: a negative balance lapses", {0, kept});
        return told("the lapse month has ended: what exceeds the limit lapses",
                    {kept, dblClosing - kept});
    }
    if (settings.UPPERLIMITYN && dblClosing >= settings.COLIMIT)
        return told("carried up to the upper limit",
                    {settings.COLIMIT, dblClosing - settings.COLIMIT});
    if (settings.LOWERLIMITYN && dblClosing < settings.COLOWERLIMIT)
        return told("below the lower limit: all lapses", {0, dblClosing});
    return told("carried over", {dblClosing, 0});
}

LeaveChain::Link LeaveChain::WithinPeriod(const AllotRow& row, const LeaveSettingsRecord& settings,
                                          double dblClosing) {
    DateTime end;
    if (FnBlnPeriodEnd(periods_, settings.ALLOTTYPE, settings.ALLOTON, row.lngPrevMonthYear, end) &&
        row.dtePrevTo == end)
        return told("not carried over: its period has ended, all lapses", {0, dblClosing});
    return told("not carried over, but its period goes on", {dblClosing, 0});
}

}  // namespace owb
