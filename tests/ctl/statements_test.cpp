// Every statement that the system sends, on the database that owbctl makes with what the program's
// start puts beside it: none may fail, neither on a company's rows nor on empty tables.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "ctl/command.h"
#include "sample/sample.h"
#include "schema/modSQLFunction.h"
#include "session/modEmployeeViews.h"
#include "support/company.h"

namespace owb {
namespace {

struct Sent {
    int line = 0;
    char mark = ' ';  // '+' in the transaction of the one before, '!' in none
    std::string text;
};

std::vector<Sent> sentStatements(const std::string& prefix) {
    std::ifstream in(OWB_SOURCE_DIR "/tests/ctl/statements.sql");
    std::vector<Sent> all;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        const std::string host = "<prefix>";
        for (size_t at; (at = line.find(host)) != std::string::npos;)
            line.replace(at, host.size(), prefix);
        if (line.empty() || line.starts_with("--")) continue;
        if (line[0] == ' ')
            all.back().text += "\n" + line;
        else if (line[0] == '+' || line[0] == '!')
            all.push_back({number, line[0], line.substr(2)});
        else
            all.push_back({number, ' ', line});
    }
    return all;
}

class Statements : public testing::TestWithParam<bool> {};

TEST_P(Statements, AllRun) {
    test::Company company;
    Session& session = company.session;
    if (GetParam()) {
        sample::SampleOptions options;
        options.employees = 12;
        options.months = 3;
        NoProgress progress;
        sample::makeSample(session.gConn, options, progress);
        std::stringstream none;
        ctl::Streams io{none, none, none};
        ASSERT_EQ(ctl::runOwbctl({"process", company.folder.file("company.db")}, io), 0);
    }
    InstallServerObjects(session);
    CreateFilterObjects(session);
    CreateEmployeeDetailView(session, 0, "");
    CreatePeriodViews(session);
    CreateLeaveSummaryView(session);

    const std::vector<Sent> all = sentStatements(session.gHostPrefix);
    ASSERT_GT(all.size(), 490u);
    for (size_t i = 0; i < all.size(); ++i) {
        const Sent& s = all[i];
        if (s.mark == ' ') session.gConn.BeginTrans();
        for (const DbError& e : session.gConn.RunCollecting(s.text).errors)
            ADD_FAILURE_AT("statements.sql", s.line)
                << s.text << "\n  " << e.number << " " << e.what();
        const bool goesOn = i + 1 < all.size() && all[i + 1].mark == '+';
        if (s.mark != '!' && !goesOn) session.gConn.RollbackTrans();
    }
}

INSTANTIATE_TEST_SUITE_P(Owbctl, Statements, testing::Bool(), [](const auto& info) {
    return info.param ? "OnACompany" : "OnEmptyTables";
});

}  // namespace
}  // namespace owb
