#include <gtest/gtest.h>

#include "calendar/clsNODNDPCalc.h"
#include "session/modAttSetting.h"
#include "session/modOWBSetting.h"
#include "support/payroll.h"

namespace owb {
namespace {

using test::Head;
using test::Payroll;

constexpr int32_t kJune = 2024 * 12 + 6, kJuly = kJune + 1;
constexpr int kSunday = 1, kSaturday = 7;
constexpr const char* kEveryWeek = "FS FS FS FS FS";

// June 2024 begins on a Saturday. Off are the Sundays (2, 9, 16, 23, 30), Saturday the 8th, the
// second half of Saturday the 22nd: 6.5 days; and the holiday on Monday the 17th: 7.5 days in all.
// Leave 5 (CL) is paid, 6 (UL) is not; 7 is an entry that is no leave.
class June : public Payroll {
  public:
    June() : Payroll(kJune, kJuly) {
        weekly(10, kSunday, kEveryWeek);
        weekly(10, kSaturday, "-- FS -- -S --");
        holiday(1, "2024-06-17");
        leaveKind(5, "CL", false);
        leaveKind(6, "UL", true);
        leaveKind(7, "OD", false, false);
    }

    // "NODCALC NOD NDP" of a span, with the flags that the month's pass hands over.
    std::string days(DateTime from = DateTime::fromCivil(2024, 6, 1),
                     DateTime to = DateTime::fromCivil(2024, 6, 30), bool workingOnly = false,
                     bool prorate = true, int basis = 0) {
        double calc = -1, nod = -1, ndp = -1;
        bool alt = false;
        FnNodNdp(session).SetNODNDP(calc, nod, ndp, 1, 1, kJune, 10, from, to, workingOnly, alt,
                                    prorate, basis);
        return Value(calc).toText() + " " + Value(nod).toText() + " " + Value(ndp).toText();
    }
};

struct Taken {
    int leave;
    const char* date;
    const char* halves;
};

TEST(DaysPayable, OfAMonthByEveryBasisAndKindOfLeave) {
    struct Case {
        const char* what;
        std::vector<Taken> taken;
        std::vector<const char*> byBasis;  // NODFORCALC 1 to 6
    };
    const Case cases[] = {
        {"nothing taken",
         {},
         {"30 30 22.5", "30 30 22.5", "26 26 18.5", "22.5 22.5 22.5", "29 29 22.5",
          "23.5 23.5 22.5"}},
        {"a paid day and an unpaid half",
         {{5, "2024-06-04", "FS"}, {6, "2024-06-05", "F"}},
         {"30 29.5 21", "30 29.5 21", "26 25.5 17", "22.5 22 21", "29 28.5 21", "23.5 23 21"}},
        {"loss of pay on two days",
         {{1, "2024-06-04", "FS"}, {1, "2024-06-05", "FS"}},
         {"30 28 20.5", "30 28 20.5", "26 24 16.5", "22.5 20.5 20.5", "29 27 20.5",
          "23.5 21.5 20.5"}},
        // Leave and holiday both took the day off; presence gets it back, and pay where the basis
        // leaves that holiday out of the month.
        {"unpaid on a weekly holiday",
         {{6, "2024-06-09", "FS"}},
         {"30 29 22.5", "30 29 22.5", "26 25 18.5", "22.5 22.5 22.5", "29 28 22.5",
          "23.5 23.5 22.5"}},
        {"unpaid on the general holiday",
         {{6, "2024-06-17", "FS"}},
         {"30 29 22.5", "30 29 22.5", "26 25 18.5", "22.5 22.5 22.5", "29 29 22.5",
          "23.5 22.5 22.5"}},
        {"the first half of a day whose second half is off",
         {{6, "2024-06-22", "F"}},
         {"30 29.5 22", "30 29.5 22", "26 25.5 18", "22.5 22 22", "29 28.5 22", "23.5 23 22"}},
        {"the whole of a day whose second half is off",
         {{6, "2024-06-22", "FS"}},
         {"30 29 22", "30 29 22", "26 25 18", "22.5 22 22", "29 28 22", "23.5 23 22"}},
        {"two leaves in one day, and an entry that is no leave",
         {{5, "2024-06-04", "F"}, {6, "2024-06-04", "S"}, {7, "2024-06-05", "FS"}},
         {"30 29.5 21.5", "30 29.5 21.5", "26 25.5 17.5", "22.5 22 21.5", "29 28.5 21.5",
          "23.5 23 21.5"}},
        {"compensatory work and off do not count while the option is off",
         {{3, "2024-06-09", "FS"}, {2, "2024-06-12", "FS"}},
         {"30 30 22.5", "30 30 22.5", "26 26 18.5", "22.5 22.5 22.5", "29 29 22.5",
          "23.5 23.5 22.5"}},
    };
    June june;
    june.head({10, 2, 2});
    june.employee(1, "2020-01-01", 10);
    june.run("INSERT INTO SLC_ATTHEADNOD (ATTHEADID, MONTHYEAR, NOD) VALUES (10, 24294, 26)");
    for (const Case& c : cases) {
        june.run("DELETE FROM LEV_DETAILS");
        for (const Taken& t : c.taken) june.leave(1, 1, t.leave, t.date, t.halves);
        for (int basis = 1; basis <= 6; ++basis) {
            june.setHead(10, "NODFORCALC = " + std::to_string(basis));
            EXPECT_EQ(june.days(), c.byBasis[static_cast<size_t>(basis - 1)])
                << c.what << ", basis " << basis;
        }
    }
}

// A day that is both: Sunday the 16th becomes a general holiday too. The option says whose it is.
TEST(DaysPayable, OfAMonthWithADayThatIsBothHolidays) {
    struct Case {
        const char* what;
        int basis;
        bool generalFirst;
        const char* halves;  // unpaid leave on that day
        const char* days;
    };
    const Case cases[] = {
        {"one day off, never two", 4, false, "", "22.5 22.5 22.5"},
        {"the weekly holiday keeps it: the day stays in the base", 5, false, "", "29 29 22.5"},
        {"the general holiday takes it out of the base", 5, true, "", "28 28 22.5"},
        {"the weekly holiday takes it out of the base", 6, false, "", "23.5 23.5 22.5"},
        {"the general holiday keeps it in the base", 6, true, "", "24.5 24.5 22.5"},
        {"leave on it comes back once", 4, false, "FS", "22.5 22.5 22.5"},
        {"leave on it comes back once", 2, false, "FS", "30 29 22.5"},
        {"presence once, pay not: the day is the week's", 5, false, "FS", "29 28 22.5"},
        {"presence and pay once", 5, true, "FS", "28 28 22.5"},
        {"presence and pay once", 6, false, "FS", "23.5 23.5 22.5"},
        {"presence once, pay not: the day is the general holiday's", 6, true, "FS",
         "24.5 23.5 22.5"},
        {"half a day comes back as half a day's leave and half a weekly holiday", 6, false, "F",
         "23.5 23.5 23"},
    };
    for (const Case& c : cases) {
        June june;
        june.head({10, 2, c.basis});
        june.setOptions(10, std::string("HOLPRIORITY = ") + (c.generalFirst ? "1" : "0"));
        june.employee(1, "2020-01-01", 10);
        june.holiday(2, "2024-06-16");
        if (*c.halves) june.leave(1, 1, 6, "2024-06-16", c.halves);
        EXPECT_EQ(june.days(), c.days) << c.what << ", basis " << c.basis;
    }
}

TEST(DaysPayable, OfPartOfAMonthAndOfOtherHeads) {
    const DateTime first = DateTime::fromCivil(2024, 6, 1), last = DateTime::fromCivil(2024, 6, 30);
    {
        June june;
        june.head({10, 2, 1});
        june.employee(1, "2024-06-11", 10, "2024-06-25");
        // 15 days of service hold the Sundays 16 and 23, half the 22nd and the 17th.
        EXPECT_EQ(june.days(), "30 15 11.5") << "joining and leaving cut the span";
        EXPECT_EQ(june.days(first, last, true), "30 30 22.5") << "working days only: not cut";
        EXPECT_EQ(june.days(first, last, false, false), "30 30 26.5")
            << "fixed days without prorating";
    }
    {
        June june;
        june.head({10, 2, 2});
        june.employee(1, "2024-06-28", 10, "2024-06-28");
        EXPECT_EQ(june.days(), "30 1 1") << "one day of service";
        june.run("UPDATE MAS_EMPLOYEE SET SALCALCFROM = '2024-06-30', DOL = NULL");
        EXPECT_EQ(june.days(), "30 1 0") << "the last of the span, a Sunday";
        june.run("UPDATE MAS_EMPLOYEE SET SALCALCFROM = '2020-01-01', DOL = '2024-06-01'");
        EXPECT_EQ(june.days(), "30 1 1") << "the first";
        june.run("UPDATE MAS_EMPLOYEE SET DOL = '2024-05-31', SALCALCFROM = '2024-07-01'");
        EXPECT_EQ(june.days(), "30 30 22.5") << "days outside the span cut nothing";
    }
    {
        June june;
        june.head({10, 2, 2, false});
        june.employee(1, "2020-01-01", 10);
        june.leave(1, 1, 6, "2024-06-04", "FS");
        june.leave(1, 1, 1, "2024-06-05", "FS");
        EXPECT_EQ(june.days(first, last, false, false), "30 29 21.5")
            << "an independent head knows loss of pay only";
        EXPECT_EQ(june.days(), "30 28 20.5") << "prorated it is like any other";
    }
    {
        June june;
        june.head({10, 4, 2});
        june.employee(1, "2020-01-01", 10);
        june.leave(1, 1, 6, "2024-06-30", "2.5");
        june.run(
            "INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, MONTHYEAR, TAKEN, "
            "ASONDATE) VALUES (1, 1, 10, 6, 24294, 1, '2024-06-30'), (1, 1, 10, 6, 24294, 0.5, "
            "'2024-06-30'), (1, 1, 99, 6, 24294, 7, '2024-06-30')");
        EXPECT_EQ(june.days(), "30 26 18.5") << "month figures and all adjustments of the head";
    }
    {
        June june;
        june.head({10, 2, 2});
        june.setOptions(10, "COCWYN = 1");
        june.employee(1, "2020-01-01", 10);
        june.leave(1, 1, 3, "2024-06-09", "FS");
        june.leave(1, 1, 2, "2024-06-12", "F");
        EXPECT_EQ(june.days(), "30 30 23") << "a day worked less half a day taken for it";
    }
    {
        June june;
        june.head({10, 2, 2});
        june.employee(1, "2020-01-01", 10);
        for (int day = 1; day <= 30; ++day)
            june.leave(1, 1, 1, "2024-06-" + std::string(day < 10 ? "0" : "") + std::to_string(day),
                       "FS");
        june.run(
            "INSERT INTO LEV_ADJUSTMENT (EMPID, ATTHEADID, LEVID, TAKEN, ASONDATE) VALUES (1, "
            "10, 1, 5, '2024-06-30')");
        EXPECT_EQ(june.days(), "30 0 0") << "more taken than there is: none below zero";
    }
}

TEST(DaysPayable, AnotherBasisIsHandedOverLessThree) {
    June june;
    june.head({10, 2, 1});
    june.employee(1, "2020-01-01", 10);
    double calc = -1, nod = -1, ndp = -1;
    bool no = false, yes = true;
    int basis = 7;
    const DateTime first = DateTime::fromCivil(2024, 6, 1), last = DateTime::fromCivil(2024, 6, 30);
    EXPECT_TRUE(FnNodNdp(june.session)
                    .SetNODNDP(calc, nod, ndp, 1, 1, kJune, 10, first, last, no, no, yes, basis));
    EXPECT_EQ(basis, 4);
    EXPECT_EQ(nod, 22.5);

    june.run("DROP TABLE ATT_HOLEX");
    calc = nod = ndp = -1;
    basis = 0;
    EXPECT_FALSE(FnNodNdp(june.session)
                     .SetNODNDP(calc, nod, ndp, 1, 1, kJune, 10, first, last, no, no, yes, basis));
    EXPECT_EQ(calc, -1) << "an error leaves the outputs";
    ASSERT_EQ(june.boxes.shown.size(), 1U);
    EXPECT_EQ(june.boxes.shown[0].icon, BoxIcon::Critical);
}

// Salary months from the 26th to the 25th: the June row runs 26 May to 25 June.
TEST(DaysPayable, OfAMonthThatStartsInTheMiddle) {
    June june;
    june.head({10, 2, 4});
    june.employee(1, "2020-01-01", 10);
    june.run("UPDATE MAS_OPTSETFEATURE SET CALCINMIDYN = 1");
    june.run(
        "UPDATE MAS_MONTHYEAR SET CALCSTARTDATE = DATEADD(DAY, 25, DATEADD(MONTH, -1, "
        "CALCSTARTDATE)), CALCENDDATE = DATEADD(DAY, 24, CALCSTARTDATE)");
    june.run("UPDATE LEV_WEEKLYHLD SET EFFFROM = 24294");
    LoadOptSet(june.session);
    // 31 days; the Sundays 26 May and 2, 9, 16, 23 June, the 8th, half the 22nd, the 17th.
    EXPECT_EQ(june.days(DateTime::fromCivil(2024, 5, 26), DateTime::fromCivil(2024, 6, 25)),
              "23.5 23.5 23.5");
}

}  // namespace
}  // namespace owb
