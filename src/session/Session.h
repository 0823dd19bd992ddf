// Everything that the program keeps for the life of one process: the connection, the launch
// values, the records of options, and the outside world (clock, settings store, boxes, folder).
// Created by start-up and passed by reference; nothing of it is global.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/date_time.h"
#include "db/connection.h"
#include "family/SettingsStore.h"
#include "family/clsGenCmn.h"
#include "family/clsSPChar.h"
#include "screen/message_boxes.h"
#include "screen/progress.h"

namespace owb {

class clsEvalFormula;
class clsNODNDPCalc;
class clsOTDetCalc;
class SiblingLauncher;

// MAS_COMPANY: which statutory matters the company keeps.
struct CompanyRecord {
    bool PFYN = false, PFVOLYN = false, PFMULTIGROUPYN = false, ESIYN = false,
         ESIMULTIGROUPYN = false, PTYN = false, PTMULTILOCYN = false, PTMULTIGROUPYN = false,
         SUPSALARYYN = false, BONUSYN = false, GRATUITYYN = false, TDSYN = false, ITRYN = false;
};

// MAS_OPTSET. Month keys are year * 12 + month, 0 none.
struct OptSetRecord {
    std::string EMPIDCAP = "Emp ID", REFNOCAP = "Ref. No.", SALSTRUCTCAP = "Sal Structure",
                DERIVABLETOTCAP = "Derivable Total", EFFFRMSET;
    int32_t STARTMONTHYEAR = 0, ENDMONTHYEAR = 22800, DEFMONTHYEAR = 0;
    int32_t DEFSTRUCTID = 1, DEFREPORTTYPE = 1, ROUNDTYPE = 1, LEVMINDAYS = 0;
    bool EMPREFNOYN = false, COMPPFESIPERYN = false, CARRYOVERROUNDYN = false,
         PF510PREVIOUSYN = false, PF5PREVIOUSYN = false, EVRYMNTHFORMYN = false,
         EXCESSLEVLOPYN = false, PFVOLINSEPCOLYN = false, LEVMINDAYSYN = false,
         SALCOMPNEGYN = false, PFCMPRESTEMPYN = false, PFSHOWCMPGRSYN = false,
         PFACC02ONEDLIYN = false, PFGRPRATEYN = false, TDSMAR2FEB = false, REJOININGYN = false,
         CLASSSECURITYN = false;
};

// MAS_OPTSETFEATURE.
struct OptSetFeatureRecord {
    bool ATTNIMPORTYN = false, SIEARNINGYN = false, ADVANCEYN = false, LOANYN = false,
         INSURANCEYN = false, SSSYN = false, GRPINSURANCEYN = false, ARREARSYN = false,
         ADVBANKYN = false, BAREACTSYN = false, LOCKMONTHYN = false, HRDETAILSYN = false,
         JVEXPORTYN = false, HIDDENCOMPYN = false, HOLDSALARYYN = false, PTONHEADYN = false,
         THEOSALYN = false, CALCINMIDYN = false, LTAYN = false, MEDREIMYN = false,
         SPLCALCBASISYN = false, ATTDETDEFYN = false, ADVMGALYN = false, DATEWISEINCRYN = false,
         FLEXIPAYYN = false, FOODCOUPONYN = false, OTOPENESIYN = false, REMINDERYN = false,
         EXTOTSETYN = false, AUTOLEAVEYN = false, ROTATEWEEKHOLYN = false, REIMBURSEMENTYN = false,
         BANKSTATEMENTYN = false, DOSREPORTYN = false, ADVPAYSLIPYN = false, SALPREDATEYN = false,
         FAVCONFIGYN = false, QRYBUILDERYN = false, ADVMGTYN = false, AUTOPFNOYN = false,
         ATTNINTGRYN = false, RETIREYN = false, SPLEARNINGYN = false, SPLDEDUCTIONYN = false,
         ADVLEAVEYN = false, WEBUPDATESYN = false, EMPLOCKYN = false, PRINTDATEYN = false,
         RESTRICTSALCALCYN = false, ESIONLINEYN = false;
    int32_t AUTOPFTYPE = 1, ATTNCALCTYPE = 0, RETIREAGEON = 0;
    std::string PFSEPARATOR;
    int32_t LVSTARTMNYEAR = 0;  // month key: first month of advanced leave management
    int32_t ESIONMNYR = 0;      // month key
    bool attnCalcType1 = false, attnCalcType2 = false;
};

// MAS_ATTHEAD, the head that the session works on. Hours are decimal unless a member says
// hh.mm (the bands MINHALFDAY to MAXFULLDAY are compared with raw hh.mm figures).
struct AttHeadRecord {
    int32_t ATTHEADID = 0;
    std::string ATTHEADNAME = "General", MENUNAME, DESCR, ATTCAP;
    bool TIGHTYN = true;     // attendance feeds the salary
    int32_t ATTNTYPE = 0;    // 1 register, 2 daily, 3 hourly, 4 monthly
    int32_t NODFORCALC = 2;  // 1 to 6: what the month's days for salary are
    bool ATTNDTODYN = false, ATTNHOURLYYN = false, OT1YN = false, OT2YN = false, OTHOURLYYN = false;
    double MINHALFDAY = 2, MAXHALFDAY = 5.99, MINFULLDAY = 6, MAXFULLDAY = 10, CUTOFFFULLDAY = 8,
           CUTOFFHALFDAY = 4, OTHOURMIN = 120, ATTUPPERLIMIT = 10;
    bool NOSAL = false, HALFSAL = false, FULLSAL = false;  // the band affects salary
    bool NOATTOTYN = false, HALFDAYOTYN = false, FULLDAYOTYN = false, HALFDAYDEDYN = false,
         FULLDAYDEDYN = false, MORETHANNODYN = false, INACTIVEYN = false;
};

// ATT_OPTSETTINGS of one head, or of head 0, the common row.
struct AttOptionsRecord {
    bool EXCESSLEVYN = false, LOADDEFYN = false, SPLOTYN = false, WHOT2YN = false, GHOT2YN = false,
         FULLDAYOT2 = false, PRIORITYYN = false, HOLPRIORITY = false, ROTWHYN = false,
         AUTOALLOTYN = false, LEVPRIORITYYN = false, AFFECTSALYN = false, INDLEVSETYN = false,
         INDWHYN = false, COCWYN = false, COMMONYN = false, EDITEDYN = false;
    int32_t DEFVAL = 2;  // 0 Present, 1 Absent
};

// LEV_SETTINGS, the version in force in a month.
struct LeaveSettingsRecord {
    int32_t MINDATETYPE = 0, MINMONTH = 0, MINDAYS = 0, MINAVAILDATETYPE = 0, MINAVAILMONTH = 0,
            MINAVAILDAYS = 0, ALLOTTYPE = 0, ALLOTON = 0, ALLOTASPER = 0, ALLOTFOR = 0, COTYPE = 0,
            LAPSEMONTH = 0, RNDTYPE = 0, ALLOTRNDTYPE = 0, PRIORITY = 1, MONTHYEAR = 0;
    double MINLEVDAYS = 0, COLOWERLIMIT = 0, COLIMIT = 0, LAPSELIMIT = 0, ENCASHMINBAL = 0;
    bool AUTOALLOTYN = false, COYN = false, LOWERLIMITYN = false, UPPERLIMITYN = false,
         LAPSEYN = false, LAPSENEGATIVE = false, LEAVEENCASHYN = false, RNDOFFYN = false,
         EDITEDYN = false, EXCLDOLYN = false, EXCLDOJYN = false;
    std::string REMARKS;
};

// Told when a screen opens and when the program has ended; the shell is at the other end.
class ShellTalk {
  public:
    virtual ~ShellTalk() = default;
    virtual void screenOpened(const std::string& screenName) = 0;
    virtual void screenClosed() = 0;  // writes "0" to the screen's handle entry
    virtual void programEnded() = 0;
};

struct Session {
    // --- the outside world, injected ---
    SettingsStore& settings;
    MessageBoxes& boxes;
    std::function<DateTime()> now;        // wall clock
    std::string programFolder;            // where marker files are looked for
    std::string windowsUser;              // the environment's USERNAME, for the audit trail
    ShellTalk* shell = nullptr;           // null: nobody listens
    SiblingLauncher* siblings = nullptr;  // null: no other program can be opened

    // --- the launch ---
    Connection gConn;
    int32_t gMenuId = 0;
    int32_t gAttHeadId = 0;
    bool gLaunchFlag = false;
    int32_t gLaunchOption = 0;
    bool gFileLaunch = false;
    std::string exeName = "OWBLeaveMgmt";  // the executable's own name without extension
    std::string gProductPath;
    std::string gHelpFile;  // "" none
    bool gExtendedYN = false;
    std::string gWinUserId;
    std::string gUser = "ADMIN";  // the family's logged-in user
    bool gMultiLogin = false;
    bool gReadOnly = false;
    bool gRecalcPending = false;
    bool gConsultantMode = false;
    std::string gEmployeeCaption = "Employee";
    int32_t gRestrictedLeaveId = 0;
    bool gRestrictedHolidayOn = false;
    int32_t gFirstLeaveMonth = 0, gLastMonth = 0, gMonthYear = 0;  // month keys
    bool gPeriodLocked = false;
    std::string gHostPrefix;          // host name, and the Windows user in an extended session
    std::string gEmployeeView;        // in brackets
    std::string gFilterTable;         // in brackets
    std::string gEmployeeDetView;     // in brackets
    std::string gLeaveSummaryView;    // in brackets
    bool gFilterActive = false;       // the filter program has left somebody out
    bool gLeaveCalcFlag = false;      // the user cancelled the running pass
    bool gFullPassAutoClose = false;  // menu 1600: full pass, the closing message goes by itself
    bool gOpenedFromMenu = false;
    int gRecalculating = 0;        // RecalculationLocks that the session holds
    std::string gEmpFilter = "0";  // employee numbers "1,2" that a pass is limited to; "0" none

    // --- records ---
    CompanyRecord gCompany;
    OptSetRecord gOptSet;
    OptSetFeatureRecord gFeature;
    AttHeadRecord gAtt;
    AttOptionsRecord gOpt;
    LeaveSettingsRecord gLev;
    std::array<std::string, 6> gComponentCaption{
        "Periodic Incentive", "Advance", "Loan", "Insurance", "SSS", "Group Insurance"};
    std::array<std::string, 7> gClassCaption{"Designation", "Occupation", "Department", "Division",
                                             "Grade",       "Branch",     "Attendance"};
    std::array<std::string, 14> gExtCaption;
    std::array<bool, 6> gExtCaptionUsed{};
    bool gHasOt1Head = false, gHasOt2Head = false;
    int gAuditTrailOn = -1;  // -1 not asked yet

    // --- shared instances ---
    clsSPChar gSpChar;
    clsGenCmn gGenCmn;
    std::shared_ptr<clsNODNDPCalc> gNodNdp;        // made by its first user
    std::shared_ptr<clsOTDetCalc> gOtDetCalc;      // made by its first user
    std::shared_ptr<clsEvalFormula> gEvalFormula;  // made by its first user

    Session(SettingsStore& settings, MessageBoxes& boxes, std::function<DateTime()> now,
            std::string programFolder);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
};

}  // namespace owb
