#include <gtest/gtest.h>

#include "run_owbctl.h"
#include "support/payroll.h"

namespace owb::ctl {
namespace {

TEST(OwbctlEval, ALineForEachLine) {
    const Outcome good =
        owbctl({"eval"},
               "{\"expr\": \"1 + Leave{CL}\", \"keywords\": [[\"leave{cl}\", "
               "\"2.5\"]]}\n\n{\"expr\": \"1 +\"}\n{\"expr\": \"A\", \"keywords\": "
               "[[\"A\", \"B\"]], \"keywords2\": [[\"B\", \"\\\"x\\\"\"]]}\n");
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.out,
              "{\"text\":\"3.5\"}\n{\"text\":\"ERROR: Invalid expression\"}\n{\"text\":\"X\"}\n");
    const Outcome bad = owbctl({"eval"}, "nonsense\n{\"expr\": 5}\n{\"expr\": \"2\"}\n");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.out.rfind("{\"error\":", 0), 0u);
    EXPECT_NE(bad.out.find("{\"text\":\"2\"}\n"), std::string::npos);
}

TEST(OwbctlFormula, ValueStepsAndFailures) {
    test::Payroll company(24250, 24260);
    company.employee(1, "2020-01-15");
    company.salary(1, 1, 24256, 24256);
    company.run(
        "INSERT INTO SLC_SALARYRATE_E (SALRATEID, EMPID, EMPDETID, MONTHYEAR, BASIC) VALUES "
        "(1, 1, 1, 24256, 10000) INSERT INTO MAS_SALARYHEAD VALUES (0, 0, 'Basic', 'E') "
        "INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (1, 'owRound(Component{Basic} "
        "/ 3, 1, \"n\")'), (2, 'Component{Basic} +'), (3, 'CustQry{X}') INSERT INTO "
        "MAS_FORMULACUSTOM VALUES (1, 'X', '', 'SELECT * FROM NOWHERE', 1)");
    const std::string db = company.session.gConn.ConnectionString();
    EXPECT_EQ(owbctl({"formula", db, "1", "1", "1", "24256"}).out, "3333\n");
    EXPECT_EQ(owbctl({"formula", db, "1", "1", "0", "Apr/2021"}).out, "3333\n");
    EXPECT_EQ(owbctl({"formula", db, "2", "1", "1", "24256"}).out, "0\n");
    const std::string told = owbctl({"formula", db, "1", "1", "1", "24256", "--explain"}).out;
    for (const char* line :
         {"Formula: owRound(Component{Basic} / 3, 1, \"n\")\n", "Component{BASIC}  10000\n",
          "After the first table:  owRound(Component{Basic} / 3, 1, \"n\")\n",
          "After the second table: owRound(10000 / 3, 1, \"n\")\n",
          "Function names:         FnDblOWRound(10000 / 3, 1, \"n\")\n",
          "Capitals:               FNDBLOWROUND(10000 / 3, 1, \"N\")\n",
          "Result:                 3333 (Double)\n"})
        EXPECT_NE(told.find(line), std::string::npos) << line << told;
    const std::string json =
        owbctl({"formula", db, "1", "1", "1", "24256", "--explain", "--json"}).out;
    for (const char* part : {"{\"value\":3333.0,", "\"secondTable\":[",
                             "{\"keyword\":\"Component{BASIC}\",\"value\":\"10000\"}",
                             "\"afterSecondTable\":\"owRound(10000 / 3, 1, \\\"n\\\")\"",
                             "\"result\":\"3333\",\"type\":\"Double\""})
        EXPECT_NE(json.find(part), std::string::npos) << part << json;
    EXPECT_NE(owbctl({"formula", db, "2", "1", "1", "24256", "--explain"})
                  .out.find("Result:                 ERROR: Invalid expression"),
              std::string::npos);
    const Outcome failed = owbctl({"formula", db, "3", "1", "1", "24256"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, "error: Invalid object name 'NOWHERE'.\n");
    EXPECT_EQ(owbctl({"formula", db, "1", "1", "1", "someday"}).status, 1);
}

}  // namespace
}  // namespace owb::ctl
