#include "sample/rules.h"

#include "sample/people.h"
#include "sample/rows.h"

namespace owb::sample {

namespace {

// Everything that does not depend on the options.
constexpr const char* kMasters = R"sql(
DELETE FROM MAS_ATTHEAD
DELETE FROM ATT_OPTSETTINGS
DELETE FROM SEC_USERLIST

INSERT INTO MAS_ATTHEAD (ATTHEADID, ATTHEADNAME, ATTMENUNAME, ATTDESC, ATTNTIGHTYN, ATTNTYPE,
    NODFORCALC, ATTNDTODYN, ATTNHOURLYYN, ATTNALLOTTYPE, OT1YN, OT2YN, OTHOURLYYN, MORETHANNODYN,
    INACTIVEYN, MINNOATT, MAXNOATT, MINHALFDAY, MAXHALFDAY, CUTOFFHALFDAY, MINFULLDAY, MAXFULLDAY,
    CUTOFFFULLDAY, ATTUPPERLIMIT, OTHOURMIN, NOATTOTYN, HALFDAYOTYN, FULLDAYOTYN, HALFDAYDEDYN,
    FULLDAYDEDYN, NOATTSALAFFYN, HALFATTSALAFFYN, FULLATTSALAFFYN) VALUES
(1, 'Office', 'Office', 'Leave register, days of the month', 1, 1, 2, 0, 0, 2, 0, 0, 0, 0, 0,
    0, 1.59, 2, 5.59, 4, 6, 10, 8, 10, 120, 0, 0, 0, 0, 0, 0, 0, 0),
(2, 'Plant', 'Plant', 'Daily register, fixed 30 days', 1, 2, 1, 1, 0, 2, 1, 0, 1, 0, 0,
    0, 1.59, 2, 5.59, 4, 6, 10, 8, 10, 120, 0, 0, 0, 0, 0, 0, 0, 0),
(3, 'Workshop', 'Workshop', 'Hours per day, working days', 1, 3, 4, 1, 1, 2, 1, 1, 1, 0, 0,
    0, 1.59, 2, 5.59, 4, 6, 16, 8, 16, 15, 0, 0, 1, 0, 0, 1, 1, 0),
(4, 'Field Sales', 'Sales', 'Monthly figures, days edited by hand', 1, 4, 3, 0, 0, 2, 0, 0, 0, 0,
    0, 0, 1.59, 2, 5.59, 4, 6, 10, 8, 10, 120, 0, 0, 0, 0, 0, 0, 0, 0),
(5, 'Stores', 'Stores', 'Daily register, working days and weekly holidays', 1, 2, 5, 1, 0, 2, 1, 0,
    1, 0, 0, 0, 1.59, 2, 5.59, 4, 6, 10, 8, 10, 120, 0, 0, 0, 0, 0, 0, 0, 0),
(6, 'Security', 'Security', 'Daily register, working days and holidays, rotating weekly off',
    0, 2, 6, 1, 0, 2, 0, 0, 0, 0, 0, 0, 1.59, 2, 5.59, 4, 6, 10, 8, 10, 120, 0, 0, 0, 0, 0, 0, 0, 0)

INSERT INTO ATT_OPTSETTINGS (ATTHEADID, EXCESSLEVYN, LOADDEFYN, DEFVAL, SPLOTYN, WHOT2YN, GHOT2YN,
    FULLDAYOT2, PRIORITYYN, HOLPRIORITY, ROTWHYN, AUTOALLOTYN, LEVPRIORITYYN, AFFECTSALYN,
    INDLEVSETYN, INDWHYN, COCWYN, COMMONYN, EDITEDYN) VALUES
(0, 1, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 1, 1, 0, 0, 0),
(1, 1, 0, 2, 0, 0, 0, 0, 1, 1, 0, 1, 1, 0, 1, 1, 0, 0, 1),
(2, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 1, 1, 1, 0, 1),
(3, 1, 0, 2, 1, 1, 1, 0, 1, 1, 0, 1, 1, 1, 1, 1, 1, 0, 1),
(4, 1, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 1, 1, 0, 0, 0),
(5, 1, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 1, 1, 0, 0, 0),
(6, 1, 0, 2, 0, 0, 0, 0, 0, 0, 1, 1, 1, 0, 1, 1, 0, 0, 1)

INSERT INTO ATT_DEFINITION (LEVID, LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, ALLOTMENTYN) VALUES
(5, 'Casual Leave', 'CL', 1, 0, 1), (6, 'Sick Leave', 'SL', 1, 0, 1),
(7, 'Earned Leave', 'EL', 1, 0, 1), (8, 'Restricted Holiday', 'RH', 1, 0, 1)

INSERT INTO MAS_BRANCH (BRANCHID, BRANCHNAME, PTGROUPID) VALUES (1, 'Pune', 1), (2, 'Bengaluru', 2)
INSERT INTO MAS_PTGRP (PTGRPID, PTGRPNAME) VALUES (1, 'Maharashtra'), (2, 'Karnataka')
INSERT INTO MAS_DEPARTMENT (DEPARTMENTID, DEPARTMENT) VALUES
(1, 'Administration'), (2, 'Production'), (3, 'Workshop'), (4, 'Sales'), (5, 'Stores'),
(6, 'Security')
INSERT INTO MAS_DESIGNATION (DESIGNATIONID, DESIGNATION) VALUES
(1, 'Assistant'), (2, 'Operator'), (3, 'Fitter'), (4, 'Executive'), (5, 'Storekeeper'), (6, 'Guard')
INSERT INTO MAS_INSTITUTION (INSTID, INSTNAME, TYPEID) VALUES
(1, 'Cash', 6), (2, 'Not Stated', 6), (3, 'First Sample Bank', 6), (4, 'Second Sample Bank', 6)

INSERT INTO MAS_SALSTRUCT (STRUCTID, STRUCTDESC) VALUES (1, 'Staff')
INSERT INTO MAS_SALARYHEAD (SALHEADROWID, PAYTYPEYN, SALHEADING, CALCFLDTYPE) VALUES
(0, 0, 'Basic', 'E'), (1, 0, 'HRA', 'E'), (100, 0, 'Overtime 1', 'E'), (101, 0, 'Overtime 2', 'E'),
(1, 1, 'PF', 'E')
INSERT INTO SLC_SALSTRUCTDET (STRUCTID, SALHEADROWID, PAYTYPEYN, PRINTNAME, FORMULAID, CALCTYPE,
    VALIDFROM, VALIDTO, OTTYN) VALUES
(1, 0, 0, 'Basic', 0, 1, 24000, 'TILL.DATE', 0), (1, 1, 0, 'HRA', 0, 1, 24000, 'TILL.DATE', 0),
(1, 100, 0, 'Overtime 1', 0, 1, 24000, 'TILL.DATE', 0),
(1, 101, 0, 'Overtime 2', 0, 1, 24000, 'TILL.DATE', 0),
(1, 1, 1, 'PF', 0, 1, 24000, 'TILL.DATE', 0)
INSERT INTO MAS_FORMULA (FORMULAID, FORMULANAME, FORMULA, FORMULAFLDREP) VALUES
(1, 'Day rate', 'Component{BASIC} / 26', ''),
(2, 'EL by presence', 'Days{PRESENT DAYS} / 20', '')

INSERT INTO SEC_USERLIST (USERID, USERNAME, GROUPID, READONLYYN, MULTILOGIN) VALUES
(1, 'ADMIN', 1, 0, 1), (2, 'CLERK', 2, 0, 1), (3, 'AUDITOR', 3, 1, 1)

UPDATE MAS_COMPANY SET CMPNAME = 'Sample Engineering Works', ADDRESS = 'Pune and Bengaluru'
)sql";

// Commands by screen that rights are kept for. The stars belong to the stored names: the rights
// test looks for the caption between them.
struct ScreenCommand {
    int form;
    const char* caption;
    bool clerkMay;
};
constexpr ScreenCommand kCommands[] = {
    {1500, "Save", false},   {1500, "Delete", false}, {1501, "Save", false},
    {1501, "Delete", false}, {1503, "Save", false},   {1503, "Delete", false},
    {1511, "Save", false},   {1512, "Save", true},    {1512, "Delete", false},
    {1514, "Save", true},    {1514, "Delete", false}, {1515, "Save", true},
    {1516, "Save", true},    {1517, "Save", false},   {1521, "Save", false},
    {1521, "Delete", false},
};

// How one leave is given and carried, in the codes of LEV_SETTINGS.
struct LeaveRule {
    int leave;
    const char* number = nullptr;  // of leaves given (NOL); none: not given automatically
    int allotType = 0, allotOn = 0, asPer = 0, allotFor = 0, allotRounding = 0, minDays = 0;
    bool carried = false;
    int lapseMonth = 0, lapseLimit = 0;  // what is above the limit lapses at that month's end
    bool encashed = false;
    int keptBalance = 0;  // is never encashed
    int rounding = 0;     // of the balance
    int availFrom = 0;    // 0 joining, 2 confirmation
};
constexpr int kMonthly = 1, kYearly = 2;              // allotType
constexpr int kCalendarYear = 1, kFinancialYear = 2;  // allotOn of yearly leave
constexpr LeaveRule kLeaveRules[] = {
    // Credited by days worked, carried without end.
    {.leave = kCompOff, .carried = true, .rounding = 1},
    {.leave = kCompWork},
    // One day a month, whatever was worked; what is left in March lapses.
    {.leave = kCasual,
     .number = "1",
     .allotType = kMonthly,
     .allotOn = 3,
     .carried = true,
     .lapseMonth = 3,
     .rounding = 1},
    // Seven days in April, pro rata for joiners; the rest lapses in March.
    {.leave = kSick,
     .number = "7",
     .allotType = kYearly,
     .allotOn = kFinancialYear,
     .allotRounding = 5,
     .carried = true,
     .lapseMonth = 3,
     .rounding = 1},
    // One day for every 20 days present in the calendar year before (18.25 for 365), from 240 days
    // on, fractions of half a day and more as a day; 30 days are carried into January.
    {.leave = kEarned,
     .number = "18.25",
     .allotType = kYearly,
     .allotOn = kCalendarYear,
     .asPer = 1,
     .allotFor = 2,
     .allotRounding = 6,
     .minDays = 240,
     .carried = true,
     .lapseMonth = 12,
     .lapseLimit = 30,
     .encashed = true,
     .keptBalance = 15,
     .rounding = 1,
     .availFrom = 2},
    // Two a year, not carried.
    {.leave = kRestricted,
     .number = "2",
     .allotType = kYearly,
     .allotOn = kCalendarYear,
     .allotRounding = 4,
     .carried = true,
     .lapseMonth = 12},
};

void writeMonths(Connection& connection, const SampleOptions& options) {
    // A payroll locks a month when it is paid: all but the last two are.
    RowWriter months(connection, "MAS_MONTHYEAR",
                     "MONTHYEAR, CALCSTARTDATE, CALCENDDATE, LOCKEDYN, ATTLOCKYN, TDSPORTYN");
    RowWriter editedDays(connection, "SLC_ATTHEADNOD", "ATTHEADID, MONTHYEAR, NOD, REMARKS");
    for (int n = 0; n < options.months; ++n) {
        const int32_t key = options.fromMonth + n;
        const bool locked = key < options.firstOpenMonth();
        months.add(key, firstDayOf(key), lastDayOf(key), locked, locked, false);
        editedDays.add(int{kSales}, key, 26, std::nullopt);
    }
    months.flush();
    editedDays.flush();
    const std::string first = std::to_string(options.fromMonth),
                      last = std::to_string(options.lastMonth());
    connection.Execute("UPDATE MAS_OPTSET SET STARTMONTHYEAR = " + first +
                       ", ENDMONTHYEAR = " + last + ", DEFMONTHYEAR = " + last);
    connection.Execute("UPDATE MAS_OPTSETFEATURE SET AUDITTRAILYN = 1, LVSTARTMNYEAR = " + first);
}

void writeLeaveRules(Connection& connection, const SampleOptions& options) {
    RowWriter settings(
        connection, "LEV_SETTINGS",
        "LEVID, ATTHEADID, MONTHYEAR, PRIORITY, EDITEDYN, MINDATETYPE, MINMONTH, MINDAYS, "
        "MINAVAILDATETYPE, MINAVAILMONTH, MINAVAILDAYS, AUTOALLOTYN, ALLOTTYPE, ALLOTON, "
        "ALLOTASPER, "
        "ALLOTFOR, ALLOTRNDTYPE, MINLEVDAYS, EXCLDOJYN, EXCLDOLYN, COYN, COTYPE, LOWERLIMITYN, "
        "COLOWERLIMIT, UPPERLIMITYN, COLIMIT, LAPSEYN, LAPSENEGATIVE, LAPSEMONTH, LAPSELIMIT, "
        "LEAVEENCASHYN, ENCASHMINBAL, RNDOFFYN, RNDTYPE, REMARKS");
    RowWriter figures(connection, "LEV_ALLOTCONFIG",
                      "EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, ALLOTON, PERIOD, NOL, FID, QUERYYN");
    const int year = (options.fromMonth - 1) / 12;
    const int financialYear = (options.fromMonth - 1) % 12 + 1 < 4 ? year - 1 : year;
    for (int head = 0; head <= kHeads; ++head) {
        for (const LeaveRule& r : kLeaveRules) {
            settings.add(r.leave, head, options.fromMonth, r.leave, false, 0, 0, 0, r.availFrom, 0,
                         0, r.number != nullptr, r.allotType, r.allotOn, r.asPer, r.allotFor,
                         r.allotRounding, r.minDays, false, false, r.carried, r.carried, false, 0,
                         false, 0, r.lapseMonth != 0, false, r.lapseMonth, r.lapseLimit, r.encashed,
                         r.keptBalance, r.rounding != 0, r.rounding, "");
            if (head == 0 || !r.number) continue;
            // The figures of yearly leaves start in a year, of the others in a month.
            const int from = r.allotType != kYearly        ? options.fromMonth
                             : r.allotOn == kFinancialYear ? financialYear
                                                           : year;
            figures.add(from, r.leave, head, r.allotType, r.allotOn, 30, r.number, 0, 0);
        }
    }
    // From the seventh month on the workshop earns casual leave faster.
    if (options.months > 6)
        figures.add(options.fromMonth + 6, int{kCasual}, int{kWorkshop}, kMonthly, 3, 30, "1.25", 0,
                    0);
    settings.flush();
    figures.flush();
}

// Assessment years, each a year behind the financial year that it taxes.
void writeTaxYears(Connection& connection, const SampleOptions& options) {
    RowWriter years(connection, "ITSETTING",
                    "ASSYEAR, SLIMIT1, SLIMIT2, SLIMIT3, SADD1, SADD2, MLIMIT1, MLIMIT2, MLIMIT3, "
                    "MADD1, MADD2, FLIMIT1, FLIMIT2, FLIMIT3, FADD1, FADD2, CESS");
    const int first = (options.fromMonth - 1) / 12, last = (options.lastMonth() - 1) / 12;
    for (int year = first + 1; year <= last + 1; ++year)
        years.add(year, 300000, 500000, 1000000, 10000, 110000, 250000, 500000, 1000000, 12500,
                  112500, 250000, 500000, 1000000, 12500, 112500, 4);
    years.flush();
}

void writeRights(Connection& connection) {
    RowWriter commands(connection, "SEC_BUTDET", "BUTID, FORMID, BUTNAME");
    RowWriter grants(connection, "SEC_BUTPER", "BUTID, GROUPID, BUTALLOWYN");
    int id = 0;
    for (const ScreenCommand& command : kCommands) {
        commands.add(++id, command.form, "*" + std::string(command.caption) + "*");
        grants.add(id, 1, true);
        grants.add(id, 2, command.clerkMay);
        grants.add(id, 3, false);
    }
    commands.flush();
    grants.flush();
}

}  // namespace

const char* leaveShort(int leave) {
    constexpr const char* names[] = {"", "LOP", "CO", "CW", "RES", "CL", "SL", "EL", "RH"};
    return names[leave];
}

void writeSampleRules(Connection& connection, const SampleOptions& options) {
    connection.Execute(kMasters);
    writeMonths(connection, options);
    writeLeaveRules(connection, options);
    writeTaxYears(connection, options);
    writeRights(connection);
}

}  // namespace owb::sample
