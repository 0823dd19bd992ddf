#include "config/screens/modAttHeadSet.h"

#include "base/number_text.h"
#include "config/screens/paid_heads.h"
#include "db/sql_text.h"
#include "marks/marks.h"
#include "session/modAttSetting.h"
#include "session/queries.h"

namespace owb {

modAttHeadSet::modAttHeadSet(Session& session, FrontEnd& frontEnd, int32_t intAttHeadId)
    : SessionScreen(session, frontEnd, "modAttHeadSet", "Day to Day Hourly Setting"),
      attHeadId_(intAttHeadId) {
    declareRow();
    for (const auto& [box, what] :
         {std::pair<NumberBox&, const char*>{txtNoAttMin, "no attendance minimum"},
          {txtNoAttMax, "no attendance maximum"},
          {txtHalfMin, "half day minimum"},
          {txtHalfMax, "half day maximum"},
          {txtHalfCutoff, "half day cutoff"},
          {txtFullMin, "full day minimum"},
          {txtFullMax, "full day maximum"},
          {txtFullCutOff, "full day cutoff"},
          {txtAttUpperLimit, "upper limit"}})
        limits_.push_back(
            {box, 24, std::string("Attendance - ") + what + " can't be greater than 24"});
    limits_.push_back({txtOTMinLimit, 1440, "Over Time minimum limit can't be greater than 1440"});
    for (const Limit& limit : limits_) {
        limit.box.maxLength = 5;
        limit.box.onLeave = [this, &limit] { refused(aboveLimit(limit)); };
    }
    txtAttUpperLimit.toolTip = "Maximum working hour in a day.";
    txtOTMinLimit.toolTip = "Minimum working minutes for OT consideration.";
}

// In the order of the audit line, where a band's first change begins with the band's title.
void modAttHeadSet::declareRow() {
    const auto figure = [&](const char* column, NumberBox& box, const char* label,
                            const char* unit = "") {
        hours_.number(column, box, label).words = [unit](const Value& v) {
            return numberText(v.toDouble()) + unit;
        };
    };
    const char *min = "Min. Value", *max = "Max. Value", *cutoff = "Cutoff",
               *overtime = "OverTime Applicability", *deduct = "OT Deduct",
               *salary = "Affect Salary Applicability";
    hours_.section(":No Attendance Settings Changed");
    figure("MINNOATT", txtNoAttMin, min);
    figure("MAXNOATT", txtNoAttMax, max);
    hours_.check("NOATTOTYN", chkNoAttOT, overtime);
    hours_.check("NOATTSALAFFYN", chkNoAffectSal, salary);
    hours_.section(":Half Day Attendance Settings Changed");
    figure("MINHALFDAY", txtHalfMin, min);
    figure("MAXHALFDAY", txtHalfMax, max);
    figure("CUTOFFHALFDAY", txtHalfCutoff, cutoff);
    hours_.check("HALFDAYOTYN", chkHalfOT, overtime);
    hours_.check("HALFDAYDEDYN", chkHalfDed, deduct);
    hours_.check("HALFATTSALAFFYN", chkHalfAffectSal, salary);
    hours_.section(":Full Day Attendance Settings Changed");
    figure("MINFULLDAY", txtFullMin, min);
    figure("MAXFULLDAY", txtFullMax, max);
    figure("CUTOFFFullDAY", txtFullCutOff, cutoff);
    hours_.check("FULLDAYOTYN", chkFullOT, overtime);
    hours_.check("FullDAYDEDYN", chkFullDed, deduct);
    hours_.check("FULLATTSALAFFYN", chkFullAffectSal, salary);
    hours_.section("");
    figure("AttUpperLimit", txtAttUpperLimit, "Attendance Upper Limit", " hours(s)");
    figure("OTHOURMIN", txtOTMinLimit, "Over Time Min. Limit", " minutes(s)");
}

Layout modAttHeadSet::layout() {
    return column(
        {row({group(lblNoAtt.caption,
                    {form({item("Min.", txtNoAttMin, "hours"), item("Max.", txtNoAttMax, "hours"),
                           item("", chkNoAttOT), item("", chkNoAffectSal)}),
                     space()}),
              group(lblHalf.caption,
                    {form({item("Min.", txtHalfMin, "hours"), item("Max.", txtHalfMax, "hours"),
                           item("Cutoff", txtHalfCutoff, "hours"), item("", chkHalfOT),
                           item("", chkHalfDed), item("", chkHalfAffectSal)}),
                     space()}),
              group(lblFull.caption,
                    {form({item("Min.", txtFullMin, "hours"), item("Max.", txtFullMax, "hours"),
                           item("Cutoff", txtFullCutOff, "hours"), item("", chkFullOT),
                           item("", chkFullDed), item("", chkFullAffectSal)}),
                     space()})}),
         form({item("Attendance Upper Limit", txtAttUpperLimit, "hours"),
               item("Over Time Min. Limit", txtOTMinLimit, "minutes"), item("", lblHint)}),
         space(), row({space(), item(cmdSave), item(cmdClose)})});
}

void modAttHeadSet::load() {
    headName_ = FnVarValueOrThrow(session_, Sql() << "SELECT ATTHEADNAME FROM MAS_ATTHEAD WHERE "
                                                     "ATTHEADID = "
                                                  << attHeadId_)
                    .toText();
    hours_.readKey(session_, attHeadId_);
}

std::optional<Refusal> modAttHeadSet::aboveLimit(const Limit& limit) {
    if (limit.box.number() <= limit.largest) return {};
    return Refusal{limit.text, &limit.box};
}

// The bands' own limits, the bands among each other, then the two limits.
std::optional<Refusal> modAttHeadSet::check() {
    const size_t bands = limits_.size() - 2;
    for (size_t i = 0; i < bands; ++i)
        if (auto refusal = aboveLimit(limits_[i])) return refusal;
    struct Rule {
        bool broken;
        const char* text;
        NumberBox& field;
    };
    const auto outside = [](const NumberBox& cutoff, const NumberBox& min, const NumberBox& max) {
        return cutoff.number() < min.number() || cutoff.number() > max.number();
    };
    for (const Rule& rule :
         {Rule{txtNoAttMax.number() < txtNoAttMin.number(),
               "No attendance Maximum can't be lesser than Minimum", txtNoAttMax},
          {txtHalfMin.number() <= txtNoAttMax.number(),
           "Half day Minimum can't be lesser than or equal to no attendance maximum.", txtHalfMin},
          {txtHalfMax.number() < txtHalfMin.number(),
           "Half day Maximum can't be lesser than Minimum", txtHalfMax},
          {outside(txtHalfCutoff, txtHalfMin, txtHalfMax),
           "Half day cutoff has to be between Minimum and Maximum", txtHalfCutoff},
          {txtFullMin.number() <= txtHalfMax.number(),
           "Full day Minimum can't be lesser than or equal to half day maximum.", txtFullMin},
          {txtFullMax.number() < txtFullMin.number(),
           "Full day Maximum can't be lesser than Minimum", txtFullMax},
          {outside(txtFullCutOff, txtFullMin, txtFullMax),
           "Full day cutoff has to be between Minimum and Maximum", txtFullCutOff}})
        if (rule.broken) return Refusal{rule.text, &rule.field};
    for (size_t i = bands; i < limits_.size(); ++i)
        if (auto refusal = aboveLimit(limits_[i])) return refusal;
    return {};
}

// Where employees can be locked, a locked one counts as a locked month does.
bool modAttHeadSet::changeAccepted(SaveBatch& batch) {
    if (!FnBlnHeadPaid(session_, attHeadId_)) return true;
    const bool employees = session_.gFeature.EMPLOCKYN;
    const Lock lock =
        ConfigurationLock(0, attHeadId_, employees, FnStrHoursLocked(session_, employees));
    batch.requireOpen(lock);
    if (lock.holds(session_)) {
        inform(lock.text, lock.title);
        return false;
    }
    return ask("By changing these values, salary will be recalculated.\nDo you want to proceed?");
}

void modAttHeadSet::cmdSave_Click() {
    const auto showAgain = [this] { load(); };
    if (!stillAsShown(hours_.shown(), hours_.what(), showAgain)) return;
    if (refused(check())) return;
    if (hours_.changed()) {
        SaveBatch batch;
        if (!changeAccepted(batch)) return;
        hours_.writeInto(batch);
        AuditText detail("Day to Day Hourly Setting Updated:", ":->");
        hours_.tellChanges(detail);
        batch.add(MarkHeadHoursSql(attHeadId_)).audit({"Attendance Configuration Updated", detail});
        if (!save(batch, showAgain)) return;
        LoadAttHead(session_, session_.gAttHeadId);
        load();
    }
    session_.gGenCmn.ShowSavedMessage();
}

}  // namespace owb
