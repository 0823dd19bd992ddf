#include "session/modOWBSetting.h"

#include <array>

#include "base/utf8.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/lenient_queries.h"
#include "session/queries.h"
#include "session/record_columns.h"

namespace owb {

namespace {

constexpr RecordColumn<CompanyRecord, bool> kCompanyFlags[] = {
    {"PFYN", &CompanyRecord::PFYN},
    {"PFVOLYN", &CompanyRecord::PFVOLYN},
    {"PFMULTIGROUPYN", &CompanyRecord::PFMULTIGROUPYN},
    {"ESIYN", &CompanyRecord::ESIYN},
    {"ESIMULTIGROUPYN", &CompanyRecord::ESIMULTIGROUPYN},
    {"PTYN", &CompanyRecord::PTYN},
    {"PTMULTILOCYN", &CompanyRecord::PTMULTILOCYN},
    {"PTMULTIGROUPYN", &CompanyRecord::PTMULTIGROUPYN},
    {"SUPSALARYYN", &CompanyRecord::SUPSALARYYN},
    {"BONUSYN", &CompanyRecord::BONUSYN},
    {"GRATUITYYN", &CompanyRecord::GRATUITYYN},
    {"TDSYN", &CompanyRecord::TDSYN},
};

constexpr RecordColumn<OptSetRecord, bool> kOptSetFlags[] = {
    {"EMPREFNOYN", &OptSetRecord::EMPREFNOYN},
    {"COMPPFESIPERYN", &OptSetRecord::COMPPFESIPERYN},
    {"CARRYOVERROUNDYN", &OptSetRecord::CARRYOVERROUNDYN},
    {"PF510PREVIOUSYN", &OptSetRecord::PF510PREVIOUSYN},
    {"PF5PREVIOUSYN", &OptSetRecord::PF5PREVIOUSYN},
    {"EVRYMNTHFORMYN", &OptSetRecord::EVRYMNTHFORMYN},
    {"EXCESSLEVLOPYN", &OptSetRecord::EXCESSLEVLOPYN},
    {"PFVOLINSEPCOLYN", &OptSetRecord::PFVOLINSEPCOLYN},
    {"LEVMINDAYSYN", &OptSetRecord::LEVMINDAYSYN},
    {"SALCOMPNEGYN", &OptSetRecord::SALCOMPNEGYN},
    {"PFCMPRESTEMPYN", &OptSetRecord::PFCMPRESTEMPYN},
    {"PFSHOWCMPGRSYN", &OptSetRecord::PFSHOWCMPGRSYN},
    {"PFACC02ONEDLIYN", &OptSetRecord::PFACC02ONEDLIYN},
    {"PFGRPRATEYN", &OptSetRecord::PFGRPRATEYN},
    {"TDSMAR2FEB", &OptSetRecord::TDSMAR2FEB},
    {"REJOININGYN", &OptSetRecord::REJOININGYN},
    {"CLASSSECURITYN", &OptSetRecord::CLASSSECURITYN},
};

using Feature = OptSetFeatureRecord;
constexpr RecordColumn<Feature, bool> kFeatureFlags[] = {
    {"ATTNIMPORTYN", &Feature::ATTNIMPORTYN},
    {"SIEARNINGYN", &Feature::SIEARNINGYN},
    {"ADVANCEYN", &Feature::ADVANCEYN},
    {"LOANYN", &Feature::LOANYN},
    {"INSURANCEYN", &Feature::INSURANCEYN},
    {"SSSYN", &Feature::SSSYN},
    {"GRPINSURANCEYN", &Feature::GRPINSURANCEYN},
    {"ARREARSYN", &Feature::ARREARSYN},
    {"ADVBANKYN", &Feature::ADVBANKYN},
    {"BAREACTSYN", &Feature::BAREACTSYN},
    {"LOCKMONTHYN", &Feature::LOCKMONTHYN},
    {"HRDETAILSYN", &Feature::HRDETAILSYN},
    {"JVEXPORTYN", &Feature::JVEXPORTYN},
    {"HIDDENCOMPYN", &Feature::HIDDENCOMPYN},
    {"HOLDSALARYYN", &Feature::HOLDSALARYYN},
    {"PTONHEADYN", &Feature::PTONHEADYN},
    {"THEOSALYN", &Feature::THEOSALYN},
    {"CALCINMIDYN", &Feature::CALCINMIDYN},
    {"LTAYN", &Feature::LTAYN},
    {"MEDREIMYN", &Feature::MEDREIMYN},
    {"SPLCALCBASISYN", &Feature::SPLCALCBASISYN},
    {"ATTDETDEFYN", &Feature::ATTDETDEFYN},
    {"ADVMGALYN", &Feature::ADVMGALYN},
    {"DATEWISEINCRYN", &Feature::DATEWISEINCRYN},
    {"FLEXIPAYYN", &Feature::FLEXIPAYYN},
    {"FOODCOUPONYN", &Feature::FOODCOUPONYN},
    {"OTOPENESIYN", &Feature::OTOPENESIYN},
    {"REMINDERYN", &Feature::REMINDERYN},
    {"EXTOTSETYN", &Feature::EXTOTSETYN},
    {"AUTOLEAVEYN", &Feature::AUTOLEAVEYN},
    {"ROTATEWEEKHOLYN", &Feature::ROTATEWEEKHOLYN},
    {"REIMBURSEMENTYN", &Feature::REIMBURSEMENTYN},
    {"BANKSTATEMENTYN", &Feature::BANKSTATEMENTYN},
    {"DOSREPORTYN", &Feature::DOSREPORTYN},
    {"ADVPAYSLIPYN", &Feature::ADVPAYSLIPYN},
    {"SALPREDATEYN", &Feature::SALPREDATEYN},
    {"FAVCONFIGYN", &Feature::FAVCONFIGYN},
    {"QRYBUILDERYN", &Feature::QRYBUILDERYN},
    {"ADVMGTYN", &Feature::ADVMGTYN},
    {"AUTOPFNOYN", &Feature::AUTOPFNOYN},
    {"ATTNINTGRYN", &Feature::ATTNINTGRYN},
    {"RETIREYN", &Feature::RETIREYN},
    {"SPLEARNINGYN", &Feature::SPLEARNINGYN},
    {"SPLDEDUCTIONYN", &Feature::SPLDEDUCTIONYN},
    {"ADVLEAVEYN", &Feature::ADVLEAVEYN},
    {"WEBUPDATESYN", &Feature::WEBUPDATESYN},
    {"EMPLOCKYN", &Feature::EMPLOCKYN},
    {"PRINTDATEYN", &Feature::PRINTDATEYN},
    {"RESTRICTSALCALCYN", &Feature::RESTRICTSALCALCYN},
    {"ESIONLINEYN", &Feature::ESIONLINEYN},
};

// Fills captions from rows (number from 1, text); rows without a text leave the caption.
template <size_t N>
void readCaptions(Session& session, const std::string& sql, const char* key, const char* column,
                  int firstKey, size_t count, std::array<std::string, N>& captions) {
    for (Recordset rs(session.gConn, sql); !rs.IsEOF(); rs.MoveNext()) {
        const int64_t at = rs.Fields(key).toInt() - firstKey;
        const std::string caption = rs.Fields(column).toText();
        if (at >= 0 && at < static_cast<int64_t>(count) && !caption.empty())
            captions[static_cast<size_t>(at)] = caption;
    }
}

}  // namespace

void LoadOptSetDefaults(Session& session) {
    session.gOptSet = OptSetRecord{};
}

void LoadOptSet(Session& session) {
    LoadOptSetDefaults(session);
    OptSetRecord& o = session.gOptSet;
    Recordset rs(session.gConn, "SELECT * FROM MAS_OPTSET");
    if (!rs.IsEOF()) {
        readFlags(rs, o, kOptSetFlags);
        o.EMPIDCAP = textField(rs, "EMPIDCAP", o.EMPIDCAP);
        o.REFNOCAP = textField(rs, "REFNOCAP", o.REFNOCAP);
        o.SALSTRUCTCAP = textField(rs, "SALSTRUCTCAP", o.SALSTRUCTCAP);
        if (FnBlnRecordExists(session,
                              "SELECT * FROM INFORMATION_SCHEMA.COLUMNS WHERE COLUMN_NAME = "
                              "'DERIVABLETOTCAP' AND TABLE_NAME = 'MAS_OPTSET'"))
            o.DERIVABLETOTCAP = textField(rs, "DERIVABLETOTCAP", o.DERIVABLETOTCAP);
        o.EFFFRMSET = textField(rs, "EFFFRMSET");
        o.STARTMONTHYEAR = numberField(rs, "STARTMONTHYEAR", o.STARTMONTHYEAR);
        o.ENDMONTHYEAR = numberField(rs, "ENDMONTHYEAR", o.ENDMONTHYEAR);
        o.DEFMONTHYEAR = numberField(rs, "DEFMONTHYEAR", o.DEFMONTHYEAR);
        o.DEFSTRUCTID = numberField(rs, "DEFSTRUCTID", o.DEFSTRUCTID);
        o.DEFREPORTTYPE = numberField(rs, "DEFREPORTTYPE", o.DEFREPORTTYPE);
        o.ROUNDTYPE = numberField(rs, "ROUNDTYPE", o.ROUNDTYPE);
        o.LEVMINDAYS = numberField(rs, "LEVMINDAYS");
        if (upperCase(session.settings.GetSetting("Settings", "User", "ADMIN")) == "ADMIN")
            o.CLASSSECURITYN = false;
    }
    session.gHasOt1Head =
        FnBlnExistsOrThrow(session, "SELECT ATTHEADID FROM MAS_ATTHEAD WHERE OT1YN = 1");
    session.gHasOt2Head =
        FnBlnExistsOrThrow(session, "SELECT ATTHEADID FROM MAS_ATTHEAD WHERE OT2YN = 1");
    LoadOptSetFeature(session);
}

void LoadOptSetFeature(Session& session) {
    session.gFeature = OptSetFeatureRecord{};
    OptSetFeatureRecord& f = session.gFeature;
    Recordset rs(session.gConn, "SELECT * FROM MAS_OPTSETFEATURE");
    if (rs.IsEOF()) return;
    readFlags(rs, f, kFeatureFlags);
    f.AUTOPFTYPE = numberField(rs, "AUTOPFTYPE", f.AUTOPFTYPE);
    f.PFSEPARATOR = textField(rs, "PFSEPARATOR");
    f.ATTNCALCTYPE = numberField(rs, "ATTNCALCTYPE");
    f.attnCalcType1 = f.ATTNCALCTYPE == 1;
    f.attnCalcType2 = f.ATTNCALCTYPE == 2;
    f.RETIREAGEON = numberField(rs, "RETIREAGEON");
    f.LVSTARTMNYEAR = numberField(rs, "LVSTARTMNYEAR");
    f.ESIONMNYR = numberField(rs, "ESIONMNYR");
}

void LoadCompany(Session& session) {
    session.gCompany = CompanyRecord{};
    Recordset rs(
        session.gConn,
        "SELECT PFYN, PFVOLYN, PFMULTIGROUPYN, ESIYN, ESIMULTIGROUPYN, PTYN, PTMULTILOCYN, "
        "PTMULTIGROUPYN, SUPSALARYYN,BONUSYN,GRATUITYYN,TDSYN,ITRYN FROM MAS_COMPANY");
    if (rs.IsEOF()) return;
    readFlags(rs, session.gCompany, kCompanyFlags);
    session.gCompany.ITRYN = rs.Fields("ITRYN").toInt() == 1;
}

void LoadCaptions(Session& session) {
    session.gComponentCaption = {"Periodic Incentive", "Advance", "Loan",
                                 "Insurance",          "SSS",     "Group Insurance"};
    readCaptions(session, "Select * From MAS_PULLDOWNVALUES Where REFID = 5", "PDID", "PDLISTDESC",
                 1, 6, session.gComponentCaption);
    session.gClassCaption = {"Designation", "Occupation", "Department", "Division",
                             "Grade",       "Branch",     "Attendance"};
    readCaptions(session, "Select * From MAS_PULLDOWNVALUES Where REFID = 26", "PDID", "PDLISTDESC",
                 1, 7, session.gClassCaption);
    readCaptions(session, "Select * From MAS_EXTCAPTION Where Transfered = 1 ", "Masterid",
                 "Caption", 1, 5, session.gClassCaption);
    session.gExtCaption.fill("");
    readCaptions(session, "SELECT * FROM MAS_EXTCAPTION WHERE MASTERID BETWEEN 6 AND 19",
                 "MASTERID", "CAPTION", 6, 14, session.gExtCaption);
    LoadExtCaptionFlags(session);
}

void LoadExtCaptionFlags(Session& session) {
    session.gExtCaptionUsed.fill(false);
    for (Recordset rs(session.gConn, "Select * From MAS_EXTCAPTION Where Transfered = 1 ");
         !rs.IsEOF(); rs.MoveNext()) {
        const int64_t master = rs.Fields("Masterid").toInt();
        if (master >= 1 && master <= 6) session.gExtCaptionUsed[master - 1] = true;
    }
}

EmployeeDisplay LoadEmployeeDisplay(Session& session, int64_t lngEmpId, int32_t lngEmpDetId) {
    Recordset rs(
        session.gConn,
        Sql() << "Select ED.*,BRANCHNAME, ATTHEADNAME, STRUCTDESC From MAS_EMPLOYEEDET ED INNER "
                 "JOIN MAS_BRANCH MB ON ED.BRANCHID = MB.BRANCHID INNER JOIN MAS_ATTHEAD MA ON "
                 "MA.ATTHEADID = ED.ATTHEADID INNER JOIN MAS_SALSTRUCT MS ON MS.STRUCTID = "
                 "ED.STRUCTID Where EMPID = "
              << lngEmpId << " And EMPDETID = " << lngEmpDetId);
    if (rs.IsEOF()) return {};
    return {textField(rs, "DESIGNATION"), textField(rs, "OCCUPATION"), textField(rs, "DEPARTMENT"),
            textField(rs, "DIVISION"),    textField(rs, "GRADE"),      textField(rs, "BRANCHNAME"),
            textField(rs, "ATTHEADNAME"), textField(rs, "STRUCTDESC")};
}

EmployeeDates LoadEmployeeDates(Session& session, int64_t lngEmpId) {
    Recordset rs(session.gConn,
                 Sql() << "Select DOJ, DOL, DOB, SALCALCFROM, RETIREMENTDATE, RESIGNATIONDATE, "
                          "CONFIRMATIONDATE From MAS_EMPLOYEE Where EMPID = "
                       << lngEmpId);
    if (rs.IsEOF()) return {};
    auto date = [&rs](const char* name) {
        return rs.Fields(name).isNull() ? "" : FnStrSqlDate(rs.Fields(name).toDate());
    };
    return {date("DOJ"),
            date("DOL"),
            date("DOB"),
            date("SALCALCFROM"),
            date("RETIREMENTDATE"),
            date("RESIGNATIONDATE"),
            date("CONFIRMATIONDATE")};
}

}  // namespace owb
