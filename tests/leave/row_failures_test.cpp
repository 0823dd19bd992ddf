// Which failures leave one row out, and how they are told.
#include "leave/RowFailures.h"

#include <gtest/gtest.h>

#include "base/db_error.h"
#include "support/company.h"

namespace owb {
namespace {

using test::Company;

TEST(RowFailures, KeepsARowThatFailsAndNoLostConnection) {
    struct Case {
        const char* what;
        int number, severity;
        bool extended, kept;
    };
    Company company;
    for (const Case& c : {Case{"an error of the row", 8134, 16, false, true},
                          {"the last severity before the connection ends", 8134, 19, false, true},
                          {"the connection ends", 8134, 20, false, false},
                          {"the client's own", -2, 16, false, false},
                          {"a number that is none", 0, 16, false, true},
                          {"start-up's transaction is lost with it", 8134, 16, true, false}}) {
        RowFailures failures(company.session);
        company.session.gExtendedYN = c.extended;
        const auto fail = [&] { throw DbError(c.number, c.severity, 1, 0, "no"); };
        if (c.kept) {
            EXPECT_FALSE(failures.Attempt(1, 7, fail)) << c.what;
        } else {
            EXPECT_THROW(failures.Attempt(1, 7, fail), DbError) << c.what;
        }
        EXPECT_EQ(failures.Has(7), c.kept) << c.what;
        EXPECT_TRUE(failures.Attempt(1, 8, [] {})) << c.what;
        EXPECT_FALSE(failures.Has(8)) << c.what;
    }
}

TEST(RowFailures, NamesTwentyEmployees) {
    for (const int employees : {0, 1, 20, 21}) {
        Company company;
        RowFailures failures(company.session);
        std::string names;
        for (int id = 1; id <= employees; ++id) {
            for (const int row : {100, 200})
                failures.Attempt(id, row + id, [] { throw DbError(8134, 16, 1, 0, "no"); });
            if (id <= 20) names += (id > 1 ? ", " : "") + std::to_string(id);
        }
        EXPECT_EQ(failures.Tell(), employees == 0);
        ASSERT_EQ(company.boxes.shown.size(), employees == 0 ? 0U : 1U);
        if (employees == 0) continue;
        EXPECT_EQ(company.boxes.shown[0].text, "8134: no\n\n" + company.session.gEmployeeCaption +
                                                   " " + names +
                                                   (employees > 20 ? " and 1 more" : ""));
    }
}

}  // namespace
}  // namespace owb
