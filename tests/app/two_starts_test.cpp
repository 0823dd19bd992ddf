// Several starts on one host at once: the tables are those of one.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/ThisApp.h"
#include "app/modInitialize.h"
#include "leave/ConfiguredState.h"
#include "leave/RecalculationLock.h"
#include "leave/ledger_checks.h"
#include "support/disturbed_company.h"
#include "support/rehearsal.h"
#include "support/screens.h"

namespace owb {
namespace {

using test::DisturbedCompany;
using test::Rehearsal;

// Starts the program with the full recalculation in a process of its own, and ends it.
pid_t startInAnotherProcess(DisturbedCompany& company, const std::string& connectionString) {
    const pid_t child = fork();
    if (child != 0) return child;
    int status = 1;
    try {
        Session& session = company.session;
        session.gConn.Open(connectionString);
        session.gMenuId = 1600;
        test::TestFrontEnd frontEnd(company.boxes);
        StartOnConnection(session, frontEnd);
        SweepChangedLeaveTables(session);
        session.gConn.Close();
        status = 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
    } catch (const EndOfProgram&) {
        for (const Box& box : company.boxes.shown) std::fprintf(stderr, "%s\n", box.text.c_str());
    }
    _exit(status);
}

TEST(TwoStarts, LeaveTheTablesOfOne) {
    DisturbedCompany company;
    Rehearsal rehearsal(company, [] {});
    rehearsal.heal();
    const std::string expected = rehearsal.tables();
    for (int round = 0; round < 4; ++round) {
        rehearsal.restore();
        const std::string text = company.session.gConn.ConnectionString();
        company.session.gConn.Close();
        std::vector<pid_t> children;
        for (int n = 0; n < 2 + round % 2; ++n)
            children.push_back(startInAnotherProcess(company, text));
        for (const pid_t child : children) {
            int status = 0;
            waitpid(child, &status, 0);
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        }
        company.session.gConn.Open(text);
        for (const char* table : {"LEV_ALLOTMENT", "LEV_MONTHDET", "ATT_DAYTODAY"})
            EXPECT_EQ(company.value(std::string("SELECT COUNT(*) FROM ") + table +
                                    " WHERE EDITMODEYN = 1"),
                      "0")
                << table;
        const std::string found = rehearsal.tables();
        EXPECT_TRUE(found == expected) << "round " << round << test::difference(found, expected);
        for (const LedgerCheck& check : FnLedgerChecks())
            EXPECT_EQ(company.value(check.count), "0") << check.what;
    }
}

TEST(TwoStarts, TheSecondWaitsIsToldForWhomAndMayCancel) {
    class Waiting final : public Progress {
      public:
        void status(const std::string& text) override { told.push_back(text); }
        void step(size_t, size_t) override {}
        bool cancelled() const override { return told.size() == 2; }
        std::vector<std::string> told;
    };
    DisturbedCompany company;
    Rehearsal(company, [] {}).heal();
    MemorySettingsStore settings;
    test::RecordedBoxes boxes;
    Session other(settings, boxes, company.session.now, company.session.programFolder);
    other.gConn.Open(company.session.gConn.ConnectionString());
    other.gHostPrefix = company.session.gHostPrefix;
    Waiting waiting;
    NoProgress quiet;
    company.session.gUser = "ASHA";
    {
        const RecalculationLock first(company.session, quiet), again(company.session, quiet);
        EXPECT_TRUE(first.Held() && again.Held());
        EXPECT_FALSE(RecalculationLock(other, waiting).Held());
        EXPECT_EQ(waiting.told,
                  std::vector<std::string>(2, "Waiting for the recalculation of ASHA ..."));
        other.gHostPrefix += "X";
        EXPECT_TRUE(RecalculationLock(other, quiet).Held()) << "another host";
        other.gHostPrefix = company.session.gHostPrefix;
    }
    EXPECT_TRUE(RecalculationLock(other, quiet).Held()) << "given back";
    {
        const RecalculationLock held(company.session, quiet);
        company.session.gConn.Close();
        EXPECT_TRUE(RecalculationLock(other, quiet).Held()) << "it ends with its connection";
    }
}

}  // namespace
}  // namespace owb
