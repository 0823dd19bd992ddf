#include "session/modAttSetting.h"

#include "db/sql_text.h"
#include "session/modSave.h"
#include "session/queries.h"
#include "session/record_columns.h"

namespace owb {

namespace {

template <class Record, class Type, size_t N>
void assignColumns(RowText& row, const Record& record,
                   const RecordColumn<Record, Type> (&columns)[N]) {
    for (const auto& column : columns) row.set(column.name, Value(record.*column.member));
}

using Options = AttOptionsRecord;
constexpr RecordColumn<Options, bool> kOptionFlags[] = {
    {"EXCESSLEVYN", &Options::EXCESSLEVYN},
    {"LOADDEFYN", &Options::LOADDEFYN},
    {"SPLOTYN", &Options::SPLOTYN},
    {"WHOT2YN", &Options::WHOT2YN},
    {"GHOT2YN", &Options::GHOT2YN},
    {"FULLDAYOT2", &Options::FULLDAYOT2},
    {"PRIORITYYN", &Options::PRIORITYYN},
    {"HOLPRIORITY", &Options::HOLPRIORITY},
    {"ROTWHYN", &Options::ROTWHYN},
    {"AUTOALLOTYN", &Options::AUTOALLOTYN},
    {"LEVPRIORITYYN", &Options::LEVPRIORITYYN},
    {"AFFECTSALYN", &Options::AFFECTSALYN},
    {"INDLEVSETYN", &Options::INDLEVSETYN},
    {"INDWHYN", &Options::INDWHYN},
    {"COCWYN", &Options::COCWYN},
    {"COMMONYN", &Options::COMMONYN},
    {"EDITEDYN", &Options::EDITEDYN},
};

using Leave = LeaveSettingsRecord;
constexpr RecordColumn<Leave, bool> kLeaveFlags[] = {
    {"AUTOALLOTYN", &Leave::AUTOALLOTYN},
    {"COYN", &Leave::COYN},
    {"LOWERLIMITYN", &Leave::LOWERLIMITYN},
    {"UPPERLIMITYN", &Leave::UPPERLIMITYN},
    {"LAPSEYN", &Leave::LAPSEYN},
    {"LAPSENEGATIVE", &Leave::LAPSENEGATIVE},
    {"LEAVEENCASHYN", &Leave::LEAVEENCASHYN},
    {"RNDOFFYN", &Leave::RNDOFFYN},
    {"EDITEDYN", &Leave::EDITEDYN},
    {"EXCLDOLYN", &Leave::EXCLDOLYN},
    {"EXCLDOJYN", &Leave::EXCLDOJYN},
};
constexpr RecordColumn<Leave, int32_t> kLeaveNumbers[] = {
    {"MINDATETYPE", &Leave::MINDATETYPE},
    {"MINMONTH", &Leave::MINMONTH},
    {"MINDAYS", &Leave::MINDAYS},
    {"MINAVAILDATETYPE", &Leave::MINAVAILDATETYPE},
    {"MINAVAILMONTH", &Leave::MINAVAILMONTH},
    {"MINAVAILDAYS", &Leave::MINAVAILDAYS},
    {"ALLOTTYPE", &Leave::ALLOTTYPE},
    {"ALLOTON", &Leave::ALLOTON},
    {"ALLOTASPER", &Leave::ALLOTASPER},
    {"ALLOTFOR", &Leave::ALLOTFOR},
    {"COTYPE", &Leave::COTYPE},
    {"LAPSEMONTH", &Leave::LAPSEMONTH},
    {"RNDTYPE", &Leave::RNDTYPE},
    {"ALLOTRNDTYPE", &Leave::ALLOTRNDTYPE},
    {"PRIORITY", &Leave::PRIORITY},
};
constexpr RecordColumn<Leave, double> kLeaveAmounts[] = {
    {"MINLEVDAYS", &Leave::MINLEVDAYS},     {"COLOWERLIMIT", &Leave::COLOWERLIMIT},
    {"COLIMIT", &Leave::COLIMIT},           {"LAPSELIMIT", &Leave::LAPSELIMIT},
    {"ENCASHMINBAL", &Leave::ENCASHMINBAL},
};

constexpr RecordColumn<AttHeadRecord, bool> kHeadFlags[] = {
    {"TIGHTYN", &AttHeadRecord::TIGHTYN},
    {"ATTNDTODYN", &AttHeadRecord::ATTNDTODYN},
    {"ATTNHOURLYYN", &AttHeadRecord::ATTNHOURLYYN},
    {"OT1YN", &AttHeadRecord::OT1YN},
    {"OT2YN", &AttHeadRecord::OT2YN},
    {"OTHOURLYYN", &AttHeadRecord::OTHOURLYYN},
    {"NOSAL", &AttHeadRecord::NOSAL},
    {"HALFSAL", &AttHeadRecord::HALFSAL},
    {"FULLSAL", &AttHeadRecord::FULLSAL},
    {"NOATTOTYN", &AttHeadRecord::NOATTOTYN},
    {"HALFDAYOTYN", &AttHeadRecord::HALFDAYOTYN},
    {"FULLDAYOTYN", &AttHeadRecord::FULLDAYOTYN},
    {"HALFDAYDEDYN", &AttHeadRecord::HALFDAYDEDYN},
    {"FullDAYDEDYN", &AttHeadRecord::FULLDAYDEDYN},
    {"MORETHANNODYN", &AttHeadRecord::MORETHANNODYN},
    {"INACTIVEYN", &AttHeadRecord::INACTIVEYN},
};

constexpr RecordColumn<AttHeadRecord, double> kHeadHours[] = {
    {"MINHALFDAY", &AttHeadRecord::MINHALFDAY},
    {"MAXHALFDAY", &AttHeadRecord::MAXHALFDAY},
    {"MINFULLDAY", &AttHeadRecord::MINFULLDAY},
    {"MAXFULLDAY", &AttHeadRecord::MAXFULLDAY},
    {"CUTOFFFullDAY", &AttHeadRecord::CUTOFFFULLDAY},
    {"CUTOFFHALFDAY", &AttHeadRecord::CUTOFFHALFDAY},
    {"OTHOURMIN", &AttHeadRecord::OTHOURMIN},
    {"ATTUPPERLIMIT", &AttHeadRecord::ATTUPPERLIMIT},
};

std::string leaveKey(int32_t intLevId, int32_t intAttHeadId) {
    return Sql() << "ATTHEADID=" << intAttHeadId << " AND LEVID=" << intLevId;
}

}  // namespace

void SetAttHeadDefaults(Session& session) {
    session.gAtt = AttHeadRecord{};
}

void LoadAttHead(Session& session, int32_t intAttHeadId) {
    SetAttHeadDefaults(session);
    Recordset rs(
        session.gConn,
        Sql() << "SELECT ATTHEADNAME, ISNULL(ATTMENUNAME, SubString(ATTHEADNAME,1,10)) AS "
                 "MENUNAME, ATTDESC AS DESCR, ATTNTIGHTYN AS TIGHTYN, ATTNTYPE, NODFORCALC, CASE "
                 "ATTNTYPE WHEN 1 THEN 'Leave Register' WHEN 2 THEN 'Attendance - Daily' WHEN 3 "
                 "THEN 'Attendance - Hourly' ELSE 'Attendance - Monthly' END AS ATTCAP, "
                 "ATTNDTODYN, ATTNHOURLYYN, OT1YN, OT2YN, OTHOURLYYN, MINHALFDAY, MAXHALFDAY, "
                 "MINFULLDAY, MAXFULLDAY, CUTOFFFullDAY, CUTOFFHALFDAY, OTHOURMIN, ATTUPPERLIMIT, "
                 "NOATTSALAFFYN AS NOSAL, HALFATTSALAFFYN AS HALFSAL, FULLATTSALAFFYN AS FULLSAL, "
                 "NOATTOTYN, HALFDAYOTYN, FULLDAYOTYN, HALFDAYDEDYN, FullDAYDEDYN, MORETHANNODYN, "
                 "INACTIVEYN FROM MAS_ATTHEAD WHERE ATTHEADID = "
              << intAttHeadId);
    if (rs.IsEOF()) return;
    AttHeadRecord& head = session.gAtt;
    head.ATTHEADID = intAttHeadId;
    head.ATTHEADNAME = rs.Fields("ATTHEADNAME").toText();
    head.MENUNAME = rs.Fields("MENUNAME").toText();
    head.DESCR = rs.Fields("DESCR").toText();
    head.ATTCAP = rs.Fields("ATTCAP").toText();
    head.ATTNTYPE = numberField(rs, "ATTNTYPE");
    head.NODFORCALC = numberField(rs, "NODFORCALC", head.NODFORCALC);
    readFlags(rs, head, kHeadFlags);
    for (const auto& hours : kHeadHours) head.*hours.member = rs.Fields(hours.name).toDouble();
}

int32_t FnIntOptionHead(Session& session, int32_t intAttHeadId) {
    if (intAttHeadId == 0) return 0;
    const bool common =
        FnVarValueOrThrow(session, "SELECT COMMONYN FROM ATT_OPTSETTINGS WHERE ATTHEADID=0", 0)
            .toBool();
    return common ? 0 : intAttHeadId;
}

AttOptionsRecord FnReadAttOptions(Session& session, int32_t intAttHeadId) {
    AttOptionsRecord options;
    Recordset rs(session.gConn,
                 Sql() << "SELECT * FROM ATT_OPTSETTINGS WHERE ATTHEADID=" << intAttHeadId);
    if (rs.IsEOF()) return options;
    readFlags(rs, options, kOptionFlags);
    options.DEFVAL = numberField(rs, "DEFVAL", options.DEFVAL);
    return options;
}

void LoadAttOptions(Session& session, int32_t intAttHeadId) {
    session.gOpt = FnReadAttOptions(session, FnIntOptionHead(session, intAttHeadId));
}

LeaveSettingsRecord FnReadLeaveSettings(Session& session, int32_t intLevId, int32_t intAttHeadId,
                                        int32_t lngMonthYear, bool& found) {
    if (lngMonthYear == 0)
        lngMonthYear = static_cast<int32_t>(
            FnVarValueOrThrow(session, "SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR", 0).toInt());
    const std::string key = leaveKey(intLevId, intAttHeadId);
    Recordset rs(session.gConn,
                 Sql() << "SELECT * FROM LEV_SETTINGS WHERE " << key
                       << " AND MONTHYEAR = (Select Max(MONTHYEAR) From LEV_SETTINGS Where " << key
                       << " And MONTHYEAR <= " << lngMonthYear << ")");
    LeaveSettingsRecord settings;
    found = !rs.IsEOF();
    if (!found) return settings;
    readFlags(rs, settings, kLeaveFlags);
    for (const auto& c : kLeaveNumbers)
        settings.*c.member = numberField(rs, c.name, settings.*c.member);
    for (const auto& c : kLeaveAmounts) settings.*c.member = rs.Fields(c.name).toDouble();
    settings.REMARKS = rs.Fields("REMARKS").toText();
    settings.MONTHYEAR = numberField(rs, "MONTHYEAR");
    if (settings.COTYPE == 0) {
        settings.LOWERLIMITYN = settings.UPPERLIMITYN = false;
        settings.COLOWERLIMIT = settings.COLIMIT = 0;
    }
    return settings;
}

void LoadLeaveSettings(Session& session, int32_t intLevId, int32_t intAttHeadId,
                       int32_t lngMonthYear) {
    bool found = false;
    session.gLev = FnReadLeaveSettings(session, intLevId, intAttHeadId, lngMonthYear, found);
}

std::string SaveAttOptionsSql(const std::string& attHeadId, const AttOptionsRecord& options) {
    RowText row;
    assignColumns(row, options, kOptionFlags);
    row.set("DEFVAL", Value(options.DEFVAL));
    return row.updateOrInsert("ATT_OPTSETTINGS", RowText().setSql("ATTHEADID", attHeadId));
}

void SaveAttOptions(Session& session, int32_t intAttHeadId, const AttOptionsRecord& options) {
    session.gConn.Execute(SaveAttOptionsSql(std::to_string(intAttHeadId), options));
}

std::string SaveLeaveSettingsSql(int32_t intLevId, const std::string& attHeadId,
                                 int32_t lngMonthYear, const LeaveSettingsRecord& settings) {
    RowText row;
    assignColumns(row, settings, kLeaveFlags);
    assignColumns(row, settings, kLeaveNumbers);
    assignColumns(row, settings, kLeaveAmounts);
    row.set("REMARKS", Value(settings.REMARKS));
    return row.updateOrInsert("LEV_SETTINGS", RowText()
                                                  .set("LEVID", Value(intLevId))
                                                  .setSql("ATTHEADID", attHeadId)
                                                  .set("MONTHYEAR", Value(lngMonthYear)));
}

void SaveLeaveSettings(Session& session, int32_t intLevId, int32_t intAttHeadId,
                       int32_t lngMonthYear, const LeaveSettingsRecord& settings) {
    session.gConn.Execute(
        SaveLeaveSettingsSql(intLevId, std::to_string(intAttHeadId), lngMonthYear, settings));
}

std::vector<RoundingType> LoadHeadList(Session& session, int selection) {
    std::string sql =
        "SELECT 0 AS RNDTYPEID, 'None' AS RNDTYPE UNION SELECT 3, 'Lower Full Day' UNION SELECT 4, "
        "'Higher Full Day' UNION SELECT 6, 'Nearest Full Day'";
    if (selection >= 2)
        sql +=
            " UNION SELECT 1, 'Lower Half Day' UNION SELECT 2, 'Higher Half Day' UNION SELECT 5, "
            "'Nearest Half Day'";
    if (selection >= 3)
        sql +=
            " UNION SELECT 7, 'Lower Quarter Day' UNION SELECT 8, 'Higher Quarter Day' UNION "
            "SELECT 9, 'Nearest Quarter Day'";
    std::vector<RoundingType> list;
    for (Recordset rs(session.gConn, sql); !rs.IsEOF(); rs.MoveNext())
        list.push_back({numberField(rs, "RNDTYPEID"), rs.Fields("RNDTYPE").toText()});
    return list;
}

bool FnBlnCommonExcessLeave(Session& session, int32_t value) {
    return FnVarValueOrThrow(session, "SELECT EXCESSLEVYN FROM ATT_OPTSETTINGS WHERE ATTHEADID=0",
                             0)
               .toInt() == value;
}

std::string FnStrLeaveSummaryView(const Session& session) {
    return "[" + session.gHostPrefix + "_vw_LeaveSummary]";
}

}  // namespace owb
