#include "support/rehearsal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "app/modInitialize.h"
#include "db/embedded/embedded_driver.h"
#include "db/recordset.h"
#include "schema/modSQLFunction.h"
#include "support/disturbed.h"
#include "support/screens.h"

namespace owb::test {

namespace {

std::string fileOf(const Session& session) {
    return connectionEntry(session.gConn.ConnectionString(), "Data Source");
}

}  // namespace

std::string difference(const std::string& found, const std::string& expected) {
    std::multiset<std::string> lines[2];
    for (int side : {0, 1}) {
        std::istringstream in(side == 0 ? found : expected);
        for (std::string line; std::getline(in, line);) lines[side].insert(line);
    }
    std::string text;
    for (int side : {0, 1}) {
        int told = 0;
        for (const std::string& line : lines[side])
            if (lines[1 - side].count(line) < lines[side].count(line) && ++told <= 6)
                text += (side == 0 ? "\n  found    " : "\n  expected ") + line;
    }
    return text;
}

Rehearsal::Rehearsal(Company& company, Act act, size_t places)
    : company_(company),
      act_(std::move(act)),
      places_(places),
      kept_(company.folder.file("kept.db")) {
    std::filesystem::remove(kept_);
    backupEmbedded(fileOf(company.session), kept_);
}

void Rehearsal::reconnect() {
    Session& session = company_.session;
    const std::string text = session.gConn.ConnectionString();
    session.gConn.Close();
    session.gNodNdp.reset();
    session.gOtDetCalc.reset();
    session.gEvalFormula.reset();
    session.gConn.Open(text);
}

void Rehearsal::restore() {
    Session& session = company_.session;
    const std::string file = fileOf(session);
    session.gConn.Close();
    for (const char* beside : {"", "-wal", "-shm"}) std::filesystem::remove(file + beside);
    std::filesystem::copy_file(kept_, file);
    session.gConn.Open("Provider=OWBEmbedded;Data Source=" + file);
    reconnect();
    company_.boxes.shown.clear();
    session.gLeaveCalcFlag = false;
}

void Rehearsal::heal() {
    Session& session = company_.session;
    const int32_t menu = session.gMenuId;
    const bool extended = session.gExtendedYN;
    session.gMenuId = 1600;
    TestFrontEnd frontEnd(company_.boxes);
    StartOnConnection(session, frontEnd);
    FreeLeaveTables(session);
    session.gMenuId = menu;
    session.gExtendedYN = extended;
    session.gOpenedFromMenu = session.gFullPassAutoClose = false;
}

std::string Rehearsal::tables() {
    static const std::set<std::string> kNumbers = {"ALLOTID", "ATTTRANNO", "SALID"};
    std::string all;
    Recordset names(company_.session.gConn,
                    "SELECT NAME FROM SYS.TABLES WHERE NAME NOT LIKE 'TMP%' AND NAME NOT IN "
                    "('SEC_AUDITTRAIL', 'SEC_MONTHLOCKHISTORY', 'LEV_CONFIGURED', "
                    "'LEV_RECALCULATION') ORDER BY NAME");
    for (; !names.IsEOF(); names.MoveNext()) {
        const std::string table = names.Fields(0).toText();
        std::vector<std::string> lines;
        for (Recordset rs(company_.session.gConn, "SELECT * FROM [" + table + "]"); !rs.IsEOF();
             rs.MoveNext()) {
            std::string line = table;
            for (size_t i = 0; i < rs.FieldCount(); ++i)
                if (!kNumbers.count(rs.Fields(i).name()) && !rs.Fields(i).isNull())
                    line += " " + rs.Fields(i).name() + "=" + rs.Fields(i).toText();
            lines.push_back(line + "\n");
        }
        std::sort(lines.begin(), lines.end());
        for (const std::string& line : lines) all += line;
    }
    return all;
}

Rehearsal::Outcome Rehearsal::tryOut(const std::function<void()>& disturbance) {
    restore();
    if (disturbance) disturbance();
    bool thrown = false;
    try {
        act_();
    } catch (const DbError&) {
        thrown = true;
    }
    const size_t told = company_.boxes.shown.size();
    reconnect();
    heal();
    Outcome outcome{tables(), thrown || told > toldUndisturbed_};
    if (!disturbance) toldUndisturbed_ = told;
    return outcome;
}

size_t Rehearsal::countBatches() {
    restore();
    size_t batches = 0;
    disturb(company_.session.gConn, [&](size_t batch, bool) { batches = batch; });
    act_();
    return batches;
}

std::vector<size_t> Rehearsal::chosen(size_t batches) const {
    const size_t step = std::getenv("OWB_EVERY") ? 1 : batches / places_ + 1;
    std::vector<size_t> places;
    for (size_t at = 1; at <= batches; at += step) places.push_back(at);
    return places;
}

void Rehearsal::failsAnywhere() {
    const std::string done = tryOut({}).tables;
    restore();
    heal();
    const std::string untouched = tables();
    const size_t batches = countBatches();
    Connection& connection = company_.session.gConn;
    for (const bool answerLost : {false, true})
        for (const size_t at : chosen(batches)) {
            const Outcome outcome = tryOut([&] {
                const auto fail = [at](size_t batch) {
                    if (batch == at)
                        throw DbError(1205, 13, 51, 1,
                                      "Transaction was deadlocked on lock resources with another "
                                      "process and has been chosen as the deadlock victim. Rerun "
                                      "the transaction.");
                };
                const auto lose = [at](size_t batch) {
                    if (batch == at)
                        throw DbError(-2147467259, 20, 0, 0, "Communication link failure");
                };
                if (answerLost)
                    disturb(connection, {}, lose);
                else
                    disturb(connection, [fail](size_t batch, bool) { fail(batch); });
            });
            const bool good =
                outcome.tables == done || (outcome.tables == untouched && outcome.told);
            EXPECT_TRUE(good) << (answerLost ? "answer of batch " : "batch ") << at << " of "
                              << batches << (outcome.told ? ", told:" : ", nothing told:")
                              << difference(outcome.tables, done);
        }
}

void Rehearsal::runOther(const OtherWork& work) {
    MemorySettingsStore settings;
    RecordedBoxes boxes;
    Session other(settings, boxes, company_.session.now, company_.session.programFolder);
    other.gConn.Open(company_.session.gConn.ConnectionString());
    other.gConn.setCommandTimeout(1);
    work(other);
}

Rehearsal::Outcome Rehearsal::withOtherWork(const OtherWork& work, bool before) {
    restore();
    if (before) runOther(work);
    act_();
    if (!before) runOther(work);
    reconnect();
    heal();
    return {tables(), false};
}

void Rehearsal::othersWorkAnywhere(const OtherWork& work) {
    const std::string first = withOtherWork(work, true).tables;
    const std::string last = withOtherWork(work, false).tables;
    restore();
    runOther(work);
    heal();
    const std::string alone = tables();
    toldUndisturbed_ = 0;
    tryOut({});
    for (const size_t at : chosen(countBatches())) {
        const Outcome outcome = tryOut([&] {
            // Where the session holds a transaction the others wait until it has ended.
            disturb(company_.session.gConn,
                    [&, at, waiting = true](size_t batch, bool inTransaction) mutable {
                        if (batch < at || inTransaction || !waiting) return;
                        waiting = false;
                        runOther(work);
                    });
        });
        const bool good = outcome.tables == first || outcome.tables == last ||
                          (outcome.tables == alone && outcome.told);
        EXPECT_TRUE(good) << "somebody else before batch " << at
                          << (outcome.told ? ", told:" : ", nothing told:")
                          << difference(outcome.tables, last);
    }
}

}  // namespace owb::test
