#include "config/screens/modAttHeadSet.h"

#include "base/number_text.h"
#include "session/locks.h"
#include "session/modAttSetting.h"
#include "session/modAuditTrail.h"
#include "session/modOWBSetting.h"
#include "session/queries.h"

namespace owb {

namespace {

enum BandIndex { kNoAttendance, kHalfDay, kFullDay, kLimits };

}  // namespace

modAttHeadSet::modAttHeadSet(Session& session, FrontEnd& frontEnd, int32_t intAttHeadId)
    : SessionScreen(session, frontEnd, "modAttHeadSet", "Day to Day Hourly Setting"),
      attHeadId_(intAttHeadId) {
    const char *min = "Min. Value", *max = "Max. Value", *cutoff = "Cutoff",
               *overtime = "OverTime Applicability", *deduct = "OT Deduct",
               *salary = "Affect Salary Applicability";
    bands_ = {{":No Attendance Settings Changed",
               {{"MINNOATT", min, &txtNoAttMin, nullptr,
                 "Attendance - no attendance minimum can't be greater than 24"},
                {"MAXNOATT", max, &txtNoAttMax, nullptr,
                 "Attendance - no attendance maximum can't be greater than 24"},
                {"NOATTOTYN", overtime, nullptr, &chkNoAttOT},
                {"NOATTSALAFFYN", salary, nullptr, &chkNoAffectSal}}},
              {":Half Day Attendance Settings Changed",
               {{"MINHALFDAY", min, &txtHalfMin, nullptr,
                 "Attendance - half day minimum can't be greater than 24"},
                {"MAXHALFDAY", max, &txtHalfMax, nullptr,
                 "Attendance - half day maximum can't be greater than 24"},
                {"CUTOFFHALFDAY", cutoff, &txtHalfCutoff, nullptr,
                 "Attendance - half day cutoff can't be greater than 24"},
                {"HALFDAYOTYN", overtime, nullptr, &chkHalfOT},
                {"HALFDAYDEDYN", deduct, nullptr, &chkHalfDed},
                {"HALFATTSALAFFYN", salary, nullptr, &chkHalfAffectSal}}},
              {":Full Day Attendance Settings Changed",
               {{"MINFULLDAY", min, &txtFullMin, nullptr,
                 "Attendance - full day minimum can't be greater than 24"},
                {"MAXFULLDAY", max, &txtFullMax, nullptr,
                 "Attendance - full day maximum can't be greater than 24"},
                {"CUTOFFFullDAY", cutoff, &txtFullCutOff, nullptr,
                 "Attendance - full day cutoff can't be greater than 24"},
                {"FULLDAYOTYN", overtime, nullptr, &chkFullOT},
                {"FullDAYDEDYN", deduct, nullptr, &chkFullDed},
                {"FULLATTSALAFFYN", salary, nullptr, &chkFullAffectSal}}},
              {"",
               {{"AttUpperLimit", "Attendance Upper Limit", &txtAttUpperLimit, nullptr,
                 "Attendance - upper limit can't be greater than 24"},
                {"OTHOURMIN", "Over Time Min. Limit", &txtOTMinLimit, nullptr,
                 "Over Time minimum limit can't be greater than 1440", 1440}}}};
    for (const Band& band : bands_)
        for (const Field& field : band.fields) {
            if (field.box == nullptr) continue;
            field.box->maxLength = 5;
            field.box->filter = [this](int key, const std::string& before) {
                return session_.gGenCmn.FnIntAllowDoubleOnly(key, before);
            };
            field.box->onLeave = [this, &field] { withinLimit(field); };
        }
    txtAttUpperLimit.toolTip = "Maximum working hour in a day.";
    txtOTMinLimit.toolTip = "Minimum working minutes for OT consideration.";
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout modAttHeadSet::layout() {
    return column(
        {row({group(lblNoAtt.caption, {form({item("Min.", txtNoAttMin), item("Max.", txtNoAttMax),
                                             item("", chkNoAttOT), item("", chkNoAffectSal)}),
                                       space()}),
              group(lblHalf.caption, {form({item("Min.", txtHalfMin), item("Max.", txtHalfMax),
                                            item("Cutoff", txtHalfCutoff), item("", chkHalfOT),
                                            item("", chkHalfDed), item("", chkHalfAffectSal)}),
                                      space()}),
              group(lblFull.caption, {form({item("Min.", txtFullMin), item("Max.", txtFullMax),
                                            item("Cutoff", txtFullCutOff), item("", chkFullOT),
                                            item("", chkFullDed), item("", chkFullAffectSal)}),
                                      space()})}),
         form({item("Attendance Upper Limit", txtAttUpperLimit),
               item("Over Time Min. Limit", txtOTMinLimit), item("", lblHint)}),
         space(), row({space(), item(cmdSave), item(cmdClose)})});
}

void modAttHeadSet::onLoad() {
    applyRights({&cmdSave});
    stored_.clear();
    std::string columns;
    for (const Band& band : bands_)
        for (const Field& field : band.fields)
            columns += (columns.empty() ? "" : ", ") + std::string(field.column);
    shown_ =
        ShownRow(session_, "MAS_ATTHEAD", columns, "ATTHEADID = " + std::to_string(attHeadId_));
    for (const Band& band : bands_) {
        std::vector<double>& values = stored_.emplace_back();
        for (const Field& field : band.fields) {
            if (field.box != nullptr)
                field.box->value = numberText(shown_.value(field.column).toDouble());
            else
                field.check->value = shown_.value(field.column).toBool();
            values.push_back(valueOf(field));
        }
    }
}

// As the row holds it: figures with two decimals.
double modAttHeadSet::valueOf(const Field& field) const {
    if (field.box == nullptr) return field.check->value ? 1 : 0;
    return roundHalfAway(textToNumber(field.box->value), 2);
}

bool modAttHeadSet::withinLimit(const Field& field) {
    if (valueOf(field) <= field.largest) return true;
    refuse(field.tooLarge, *field.box);
    return false;
}

bool modAttHeadSet::bandsAccepted() {
    const std::vector<Field>& limits = bands_[kLimits].fields;
    for (const BandIndex band : {kNoAttendance, kHalfDay, kFullDay})
        for (const Field& field : bands_[band].fields)
            if (field.box != nullptr && !withinLimit(field)) return false;

    const auto value = [&](BandIndex band, size_t field) {
        return valueOf(bands_[band].fields[field]);
    };
    constexpr size_t kMin = 0, kMax = 1, kCutoff = 2;
    struct Rule {
        bool broken;
        const char* text;
        TextBox& field;
    };
    const auto cutoffOutside = [&](BandIndex band) {
        return value(band, kCutoff) < value(band, kMin) || value(band, kCutoff) > value(band, kMax);
    };
    for (const Rule& rule :
         {Rule{value(kNoAttendance, kMax) < value(kNoAttendance, kMin),
               "No attendance Maximum can't be lesser than Minimum", txtNoAttMax},
          {value(kHalfDay, kMin) <= value(kNoAttendance, kMax),
           "Half day Minimum can't be lesser than or equal to no attendance maximum.", txtHalfMin},
          {value(kHalfDay, kMax) < value(kHalfDay, kMin),
           "Half day Maximum can't be lesser than Minimum", txtHalfMax},
          {cutoffOutside(kHalfDay), "Half day cutoff has to be between Minimum and Maximum",
           txtHalfCutoff},
          {value(kFullDay, kMin) <= value(kHalfDay, kMax),
           "Full day Minimum can't be lesser than or equal to half day maximum.", txtFullMin},
          {value(kFullDay, kMax) < value(kFullDay, kMin),
           "Full day Maximum can't be lesser than Minimum", txtFullMax},
          {cutoffOutside(kFullDay), "Full day cutoff has to be between Minimum and Maximum",
           txtFullCutOff}}) {
        if (!rule.broken) continue;
        refuse(rule.text, rule.field);
        return false;
    }
    return withinLimit(limits[0]) && withinLimit(limits[1]);
}

bool modAttHeadSet::changeAccepted(SaveBatch& batch) {
    if (!FnBlnExistsOrThrow(
            session_,
            "Select SE.SALID From SLC_SALARYCALC_E SE, MAS_EMPLOYEEDET ED  Where "
            "SE.EMPID = ED.EMPID AND SE.EMPDETID = ED.EMPDETID AND ED.ATTHEADID = " +
                std::to_string(attHeadId_)))
        return true;
    // Where employees can be locked, a locked one counts as a locked month does.
    const bool employees = session_.gFeature.EMPLOCKYN;
    const std::string locked =
        employees ? "One or more " + session_.gEmployeeCaption +
                        " (s) record/Month(s) locked, unlock to change attendance setting."
                  : "Months locked, unlock locked months to change attendance setting.";
    if (FnBlnMonthRangeLocked(session_, 0, 99999, employees, 0)) {
        inform(locked, "Permission Denied");
        return false;
    }
    batch.refuseUnless(FnStrMonthRangeOpenSql(0, 99999, employees, 0), locked);
    return ask("By changing these values, salary will be recalculated.\nDo you want to proceed?");
}

bool modAttHeadSet::changed() const {
    for (size_t b = 0; b < bands_.size(); ++b)
        for (size_t f = 0; f < bands_[b].fields.size(); ++f)
            if (valueOf(bands_[b].fields[f]) != stored_[b][f]) return true;
    return false;
}

void modAttHeadSet::cmdSave_Click() {
    if (denied(cmdSave)) return;
    const std::string what = "The attendance head";
    if (!stillAsShown(shown_, what, [this] { onLoad(); })) return;
    if (!bandsAccepted()) return;
    if (changed()) {
        SaveBatch batch;
        if (!changeAccepted(batch)) return;
        RowText row;
        for (const Band& band : bands_)
            for (const Field& field : band.fields) row.set(field.column, Value(valueOf(field)));
        batch.requireShown(shown_, what)
            .add(row.update("MAS_ATTHEAD", shown_.key()))
            .add(" UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE ATTHEADID = " +
                 std::to_string(attHeadId_));
        if (!save(batch, [this] { onLoad(); })) return;
        if (FnBlnAuditTrailOn(session_)) audit();
        LoadAttHead(session_, session_.gAttHeadId);
        onLoad();
    }
    session_.gGenCmn.ShowSavedMessage();
}

void modAttHeadSet::audit() {
    std::string detail = "Day to Day Hourly Setting Updated:";
    for (size_t b = 0; b < bands_.size(); ++b) {
        std::string changes;
        for (size_t f = 0; f < bands_[b].fields.size(); ++f) {
            const Field& field = bands_[b].fields[f];
            const double before = stored_[b][f], now = valueOf(field);
            if (before == now) continue;
            const auto text = [&](double value) -> std::string {
                if (field.check != nullptr) return value != 0 ? "Yes" : "No";
                const char* unit = b != kLimits          ? ""
                                   : field.largest == 24 ? " hours(s)"
                                                         : " minutes(s)";
                return numberText(value) + unit;
            };
            changes += std::string(":->") + field.label + " Changed from " + text(before) + " to " +
                       text(now);
        }
        if (!changes.empty()) detail += bands_[b].title + changes;
    }
    UpdateAuditTrail(session_, kAuditModule, 0, "Attendance Configuration Updated", detail);
}

}  // namespace owb
