#include <gtest/gtest.h>

#include "attendance/clsOTDetCalc.h"
#include "session/MemorySettingsStore.h"
#include "session/Session.h"
#include "support/company.h"

namespace owb {
namespace {

using test::RecordedBoxes;

struct Session1 {
    MemorySettingsStore settings;
    RecordedBoxes boxes;
    Session session{settings, boxes, [] { return DateTime{}; }, ""};
    clsOTDetCalc calc{session, {}};
};

TEST(HoursAndMinutes, ConvertOnTheDigitsAfterThePoint) {
    struct Case {
        double hoursMinutes, decimal;
    };
    for (const Case& c : {Case{7.45, 7.75}, {9.3, 9.5}, {0.15, 0.25}, {8, 8}, {12.06, 12.1}}) {
        EXPECT_NEAR(clsOTDetCalc::FnDblToDecimal(c.hoursMinutes), c.decimal, 1e-9)
            << c.hoursMinutes;
        EXPECT_NEAR(clsOTDetCalc::FnDblToHoursMinutes(c.decimal), c.hoursMinutes, 1e-9)
            << c.decimal;
    }
}

// Bands: half day 2 to 5.59, full day from 6; full day is 8 hours, half day 4.
TEST(HourlyOvertime, FollowsTheBandsOfTheHead) {
    struct Case {
        const char* what;
        double hours;
        bool firstLeave, secondLeave;
        bool allowed, affects, deduct;  // of the band that the hours fall in
        double minimum;                 // minutes
        double ot, adj;
    };
    const Case cases[] = {
        {"full day, an hour and a half over", 9.3, 0, 0, 1, 0, 0, 0, 1.5, 0},
        {"exactly the full day", 8, 0, 0, 1, 1, 1, 0, 0, 0},
        {"an hour short, salary affected", 7, 0, 0, 1, 1, 0, 0, 0, -1},
        {"an hour short, deducted", 7, 0, 0, 1, 0, 1, 0, -1, 0},
        {"an hour short, neither", 7, 0, 0, 1, 0, 0, 0, 0, 0},
        {"no overtime allowed, salary affected: the surplus is an adjustment", 9, 0, 0, 0, 1, 1, 0,
         0, 1},
        {"no overtime allowed", 9, 0, 0, 0, 0, 1, 0, 0, 0},
        {"a quarter of an hour is not more than the minimum of 15 minutes", 8.15, 0, 0, 1, 0, 0, 15,
         0, 0},
        {"a minute more is", 8.16, 0, 0, 1, 0, 0, 15, 0.27, 0},
        {"half day with the other half on leave", 4.3, 1, 0, 1, 0, 0, 0, 0.5, 0},
        {"half day alone is measured against the full day", 4.3, 0, 0, 1, 1, 0, 0, 0, -3.5},
        {"worked a full day on a whole day's leave", 6.3, 1, 1, 1, 0, 0, 0, 6.5, 0},
        {"below the half day, short: always deducted", 1.3, 0, 0, 1, 0, 0, 0, -6.5, 0},
        {"below the half day, salary affected", 1.3, 0, 0, 1, 1, 0, 0, 0, -6.5},
        {"below the half day on leave: credit as decimal hours", 1.3, 1, 1, 1, 0, 0, 0, 1.5, 0},
    };
    Session1 s;
    AttHeadRecord& att = s.session.gAtt;
    att.MINHALFDAY = 2;
    att.MAXHALFDAY = 5.59;
    att.MINFULLDAY = 6;
    att.CUTOFFFULLDAY = 8;
    att.CUTOFFHALFDAY = 4;
    for (const Case& c : cases) {
        att.FULLDAYOTYN = att.HALFDAYOTYN = att.NOATTOTYN = c.allowed;
        att.FULLSAL = att.HALFSAL = att.NOSAL = c.affects;
        att.FULLDAYDEDYN = att.HALFDAYDEDYN = c.deduct;
        att.OTHOURMIN = c.minimum;
        double ot1 = 99, ot2 = 99, adj = 99;
        s.calc.HourlyOTDet(c.hours, ot1, ot2, adj, c.firstLeave, c.secondLeave);
        EXPECT_NEAR(ot1, c.ot, 1e-9) << c.what;
        EXPECT_NEAR(adj, c.adj, 1e-9) << c.what;
        EXPECT_EQ(ot2, 0) << c.what;
    }
}

// Below the half day nothing counts, in the half day the salary, in the full day overtime.
TEST(HourlyOvertime, BandsBeginAndEndWithTheirLimits) {
    struct Case {
        double hours, ot, adj;
    };
    Session1 s;
    AttHeadRecord& att = s.session.gAtt;
    att.MINHALFDAY = 2;
    att.MAXHALFDAY = 5.3;
    att.MINFULLDAY = 6;
    att.CUTOFFFULLDAY = 8;
    att.OTHOURMIN = 0;
    att.HALFSAL = true;
    att.FULLDAYOTYN = att.FULLDAYDEDYN = true;
    for (const Case& c : {Case{1.59, 0, 0},
                          {2, 0, -6},
                          {5.3, 0, -2.5},
                          {5.31, 0, 0},
                          {5.59, 0, 0},
                          {6, -2, 0},
                          {8, 0, 0},
                          {8.01, 0.02, 0}}) {
        double ot1 = 99, ot2 = 99, adj = 99;
        s.calc.HourlyOTDet(c.hours, ot1, ot2, adj, false, false);
        EXPECT_NEAR(ot1, c.ot, 1e-9) << c.hours;
        EXPECT_NEAR(adj, c.adj, 1e-9) << c.hours;
    }
}

}  // namespace
}  // namespace owb
