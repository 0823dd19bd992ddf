#include "leave/LeaveRules.h"

#include <algorithm>

#include "db/recordset.h"

namespace owb {

namespace {

int whole(Recordset& rs, const char* name) {
    return static_cast<int>(rs.Fields(name).toInt());
}

LeaveSettingsRecord readSettings(Recordset& rs) {
    LeaveSettingsRecord s;
    s.MONTHYEAR = whole(rs, "MONTHYEAR");
    s.AUTOALLOTYN = rs.Fields("AUTOALLOTYN").toBool();
    s.ALLOTTYPE = whole(rs, "ALLOTTYPE");
    s.ALLOTON = whole(rs, "ALLOTON");
    s.ALLOTASPER = whole(rs, "ALLOTASPER");
    s.ALLOTFOR = whole(rs, "ALLOTFOR");
    s.ALLOTRNDTYPE = whole(rs, "ALLOTRNDTYPE");
    s.MINLEVDAYS = rs.Fields("MINLEVDAYS").toDouble();
    s.EXCLDOJYN = rs.Fields("EXCLDOJYN").toBool();
    s.EXCLDOLYN = rs.Fields("EXCLDOLYN").toBool();
    s.COYN = whole(rs, "COYN") == 1;
    s.LOWERLIMITYN = whole(rs, "LOWERLIMITYN") == 1;
    s.COLOWERLIMIT = rs.Fields("COLOWERLIMIT").toDouble();
    s.UPPERLIMITYN = whole(rs, "UPPERLIMITYN") == 1;
    s.COLIMIT = rs.Fields("COLIMIT").toDouble();
    s.LAPSEMONTH = whole(rs, "LAPSEMONTH");
    s.LAPSENEGATIVE = rs.Fields("LAPSENEGATIVE").toBool();
    s.LAPSELIMIT = rs.Fields("LAPSELIMIT").toDouble();
    s.RNDTYPE = whole(rs, "RNDTYPE");
    return s;
}

}  // namespace

LeaveRules::LeaveRules(Session& session) {
    for (Recordset rs(session.gConn,
                      "SELECT * FROM LEV_SETTINGS ORDER BY LEVID, ATTHEADID, MONTHYEAR");
         !rs.IsEOF(); rs.MoveNext())
        settings_[{whole(rs, "LEVID"), whole(rs, "ATTHEADID")}].push_back(readSettings(rs));
    for (Recordset rs(session.gConn,
                      "SELECT * FROM LEV_ALLOTCONFIG ORDER BY LEVID, ATTHEADID, ALLOTTYPE, "
                      "EFFFROM, ALLOTON DESC");
         !rs.IsEOF(); rs.MoveNext())
        figures_[{whole(rs, "LEVID"), whole(rs, "ATTHEADID"), whole(rs, "ALLOTTYPE")}].push_back(
            {whole(rs, "EFFFROM"), whole(rs, "ALLOTON"), rs.Fields("PERIOD").toDouble(),
             rs.Fields("NOL").toDouble(), rs.Fields("FID").toInt(), whole(rs, "QUERYYN")});
}

const LeaveSettingsRecord* LeaveRules::inForce(int intLevId, int intAttHeadId,
                                               int32_t lngMonthYear) const {
    const auto found = settings_.find({intLevId, intAttHeadId});
    if (found == settings_.end()) return nullptr;
    const auto& versions = found->second;
    const auto next = std::upper_bound(
        versions.begin(), versions.end(), lngMonthYear,
        [](int32_t month, const LeaveSettingsRecord& s) { return month < s.MONTHYEAR; });
    return next == versions.begin() ? nullptr : &*std::prev(next);
}

const AllotFigure* LeaveRules::figure(int intLevId, int intAttHeadId, int intAllotType,
                                      int intAllotOn, int32_t lngKey) const {
    const auto found = figures_.find({intLevId, intAttHeadId, intAllotType});
    if (found == figures_.end()) return nullptr;
    const bool byYearType = intAllotType == 2 || intAllotType == 4;
    const AllotFigure* best = nullptr;
    for (const AllotFigure& figure : found->second)
        if (figure.EFFFROM <= lngKey && (!byYearType || figure.ALLOTON == intAllotOn))
            best = &figure;
    return best;
}

const char* FnStrRoundingType(int intType) {
    static constexpr const char* kTypes[] = {"None",
                                             "Lower Half Day",
                                             "Higher Half Day",
                                             "Lower Full Day",
                                             "Higher Full Day",
                                             "Nearest Half Day",
                                             "Nearest Full Day",
                                             "Lower Quarter Day",
                                             "Higher Quarter Day",
                                             "Nearest Quarter Day"};
    const bool known = intType >= 0 && intType < static_cast<int>(std::size(kTypes));
    return kTypes[known ? intType : 0];
}

}  // namespace owb
