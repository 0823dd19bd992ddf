#include <gtest/gtest.h>

#include "formula/CustomQuery.h"
#include "formula/VerifyCusQuery.h"
#include "formula/screens/frmFormulacustom.h"
#include "support/company.h"
#include "support/rehearsal.h"
#include "support/scripted.h"

namespace owb {
namespace {

using test::Company;
using test::drive;

const std::string kForbidden = "Data Manupulation Query is not allowed in this window";

std::string counted(Company& company) {
    return company.rows("SELECT COUNT(*), SUM(BRANCHID) FROM MAS_BRANCH");
}

TEST(CustomQuery, VerifyTellsWhatIsWrong) {
    const std::pair<const char*, std::string> cases[] = {
        {"SELECT 5", ""},
        {"SELECT NOD * 1.5 FROM SLC_SALARYCALC_E WHERE EMPID = $EMPID$ AND EMPDETID = $empdetid$ "
         "AND "
         "MONTHYEAR = $MONTHYEAR$",
         ""},
        {"SELECT $LEVID$ + $ATTHEADID$ WHERE '$HOSTNAME$' = 'x'", ""},
        {"DECLARE @n int SET @n = 3 SELECT @n", ""},
        {"SELECT 1, 'x'", "Query Contains More than one fields, can't save details "},
        {"SELECT 'x'", "Query Should return only Numeric value "},
        {"SELECT GETDATE()", "Query Should return only Numeric value "},
        {"SELECT * FROM NOWHERE", "208 : Invalid object name 'NOWHERE'."},
        {"SELECT 1 / 0", "8134 : Divide by zero error encountered."},
        {"DECLARE @n int", "3704 : Operation is not allowed when the object is closed."},
        {"drop table MAS_BRANCH", kForbidden},
        {"Delete FROM MAS_BRANCH", kForbidden},
        {"SELECT 1 AS LASTUPDATED", kForbidden},
        {"ALTER TABLE MAS_BRANCH ADD X int", kForbidden},
        {"SELECT 1 COMMIT", kForbidden},
        {"ROLLBACK INSERT INTO MAS_BRANCH VALUES (9, 'x', 1)", kForbidden},
        {"BEGIN TRAN SELECT 5", kForbidden},
        {"EXEC ('COM' + 'MIT')", kForbidden},
        {"EXEC/**/('COM' + 'MIT')", kForbidden},
        {"exec sp_executesql N'x'", kForbidden},
    };
    Company company;
    company.run("INSERT INTO MAS_BRANCH VALUES (1, 'Pune', 1)");
    for (const auto& [query, told] : cases) {
        company.boxes.shown.clear();
        EXPECT_EQ(VerifyCusQuery(company.session, company.boxes, query), told.empty()) << query;
        ASSERT_EQ(company.boxes.shown.size(), told.empty() ? 0u : 1u) << query;
        if (!told.empty()) {
            EXPECT_EQ(company.boxes.shown[0].text, told) << query;
        }
        EXPECT_EQ(counted(company), "1,1") << query;
    }
}

TEST(CustomQuery, VerifyLeavesNoTrace) {
    const char* changes[] = {
        "INSERT INTO MAS_BRANCH VALUES (2, 'New', 1) SELECT 5",
        "INSERT INTO MAS_BRANCH VALUES (2, 'New', 1) SELECT 1 / 0",
        "TRUNCATE TABLE MAS_BRANCH SELECT 5",
        "SELECT 7 AS N INTO MADE SELECT 5",
    };
    Company company;
    company.run("INSERT INTO MAS_BRANCH VALUES (1, 'Pune', 1)");
    for (const bool inside : {false, true}) {
        if (inside) {
            company.session.gConn.BeginTrans();
            company.run("INSERT INTO MAS_BRANCH VALUES (3, 'Held', 1)");
        }
        for (const char* query : changes) {
            VerifyCusQuery(company.session, company.boxes, query);
            EXPECT_EQ(counted(company), inside ? "2,4" : "1,1") << query;
            EXPECT_EQ(company.value("SELECT OBJECT_ID('MADE')"), "") << query;
        }
    }
    company.session.gConn.CommitTrans();
    EXPECT_EQ(counted(company), "2,4");
}

TEST(CustomQuery, AnEvaluationLeavesNoTrace) {
    struct Case {
        const char* query;
        const char* value;  // "error N" for one that fails
        bool keepsCaller;   // the transaction it is evaluated in goes on
    };
    const Case cases[] = {
        {"SELECT COUNT(*) FROM MAS_BRANCH", "1", true},
        {"DECLARE @n int SET @n = 3 IF @n > 2 SELECT @n", "3", true},
        {"SELECT BRANCHID FROM MAS_BRANCH WHERE 1 = 0", "7", true},
        {"INSERT INTO MAS_BRANCH VALUES (2, 'New', 1) SELECT COUNT(*) FROM MAS_BRANCH", "2", true},
        {"SELECT BRANCHID INTO #made FROM MAS_BRANCH SELECT COUNT(*) FROM #made", "1", true},
        {"adds", "2", true},
        {"INSERT INTO MAS_BRANCH VALUES (2, 'New', 1) SELECT 1 / 0", "error 8134", true},
        {"DELETE FROM MAS_BRANCH SELECT CAST('x' AS int)", "error 245", false},
        {"INSERT INTO MAS_BRANCH VALUES (2, 'New', 1) COMMIT SELECT 1", "error -3", true},
        {"EXEC ('INSERT INTO MAS_BRANCH VALUES (2, ''New'', 1)')", "error -3", true},
    };
    Company company;
    company.run("INSERT INTO MAS_BRANCH VALUES (1, 'Pune', 1)");
    company.run(
        "CREATE PROCEDURE adds AS INSERT INTO MAS_BRANCH VALUES (2, 'New', 1) "
        "SELECT COUNT(*) FROM MAS_BRANCH");
    const auto evaluate = [&](const char* query) {
        try {
            return FnVarCustomQuery(company.session, query, 7).toText();
        } catch (const DbError& e) {
            return "error " + std::to_string(e.number);
        }
    };
    for (const Case& c : cases) {
        for (int again = 0; again < 2; ++again) EXPECT_EQ(evaluate(c.query), c.value) << c.query;
        EXPECT_EQ(counted(company), "1,1") << c.query;
        EXPECT_EQ(company.value("SELECT @@TRANCOUNT"), "0") << c.query;
        company.session.gConn.BeginTrans();
        company.run("UPDATE MAS_BRANCH SET BRANCHID = 3");
        evaluate(c.query);
        EXPECT_EQ(company.value("SELECT @@TRANCOUNT"), c.keepsCaller ? "1" : "0") << c.query;
        if (!c.keepsCaller) continue;
        EXPECT_EQ(counted(company), "1,3") << c.query;
        company.session.gConn.RollbackTrans();
    }
}

struct Queries : Company {
    Queries() {
        run("INSERT INTO MAS_FORMULACUSTOM VALUES (1, 'Salary', '', 'SELECT 1', 1), (2, 'Bonus', "
            "'N', 'SELECT 2', 2), (4, 'Used', 'N', 'SELECT 4', 2) INSERT INTO LEV_ALLOTCONFIG "
            "(EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, FID) VALUES (24000, 5, 1, 1, 4) INSERT INTO "
            "MAS_FORMULA (FORMULAID, FORMULA, FORMULAFLDREP) VALUES (1, "
            "'(CustQry{Bonus}) + 1', '[(CustQry{Bonus})]'), (2, 'CustQry{Bonus}', '')");
    }
    std::string stored() {
        return rows(
            "SELECT FID, FNAME, FTYPE, FQUERY FROM MAS_FORMULACUSTOM WHERE MODULEID = 2 "
            "ORDER BY FID");
    }
};

TEST(CustomQuery, ScreenChecksInOrder) {
    const std::pair<const char*, const char*> cases[] = {
        {"click cmdverify\n", "Enter Query\n"},
        {"set txtFquery SELECT 3\nclick cmdverify\n", "Query is Correct\n"},
        {"click cmdSave\n", "Enter Name\n"},
        {"set txtFname salary\nclick cmdSave\n", "Specified Name already exist\n"},
        {"set txtFname New\nclick cmdSave\n", "Please Write the Query\n"},
        {"set txtFname New\nset txtFquery SELECT 1, 2\nclick cmdSave\n",
         "Query Contains More than one fields, can't save details \n"},
        {"click cmdDelete\n", "Select query to Delete\n"},
        {"cell fpgFormulaQry 2 1\nclick cmdDelete\n",
         "Query already assigned. Cannot be deleted.\n"},
    };
    Queries company;
    const std::string before = company.stored();
    for (const auto& [script, boxes] : cases) {
        const auto result = drive<frmFormulacustom>(company, script);
        EXPECT_EQ(result.boxes, boxes) << script;
        EXPECT_EQ(result.errors, "") << script;
        EXPECT_EQ(company.stored(), before) << script;
    }
}

TEST(CustomQuery, ScreenSavesRenamesAndDeletes) {
    Queries company;
    // Count and one is 4, which is taken.
    EXPECT_EQ(drive<frmFormulacustom>(
                  company, "set txtFname It's\nset txtFquery SELECT $EMPID$\nclick cmdSave\n")
                  .boxes,
              "");
    EXPECT_EQ(
        company.rows("SELECT FID, FNAME, FQUERY, MODULEID FROM MAS_FORMULACUSTOM WHERE FID = 5"),
        "5,It's,SELECT $EMPID$,2");
    const auto renamed = drive<frmFormulacustom>(
        company, "cell fpgFormulaQry 1 1\nshow txtFquery\nset txtFname Reward\nclick cmdSave\n");
    EXPECT_EQ(renamed.boxes, "");
    EXPECT_EQ(renamed.shown.rfind("txtFquery: SELECT 2 |", 0), 0u) << renamed.shown;
    EXPECT_EQ(company.rows("SELECT FORMULA, FORMULAFLDREP FROM MAS_FORMULA ORDER BY FORMULAID"),
              "(CustQry{Reward}) + 1,[(CustQry{Reward})] CustQry{Bonus},");
    EXPECT_EQ(drive<frmFormulacustom>(company, "cell fpgFormulaQry 1 1\nclick cmdDelete\n").boxes,
              "");
    EXPECT_EQ(company.stored(), "4,Used,N,SELECT 4 5,It's,,SELECT $EMPID$");
}

TEST(CustomQuery, ScreenSavesAndDeletesWholeOrNotAtAll) {
    const std::string first = "cell fpgFormulaQry 1 1\n";
    for (const std::string& script :
         {first + "set txtFname Reward\nclick cmdSave\n",
          std::string("set txtFname New\nset txtFquery SELECT 3\n") + "click cmdSave\n",
          first + "click cmdDelete\n"}) {
        Queries company;
        test::Rehearsal rehearsal(
            company, [&] { test::act<frmFormulacustom>(company, script); }, test::kPlaces);
        rehearsal.failsAnywhere();
        // A save holds a transaction of its own while it tries the query: nobody else can write.
        if (script.find("cmdDelete") == std::string::npos) continue;
        rehearsal.othersWorkAnywhere([](Session& other) {
            other.gConn.Execute("UPDATE MAS_FORMULACUSTOM SET FQUERY = 'SELECT 7'");
        });
    }
}

}  // namespace
}  // namespace owb
