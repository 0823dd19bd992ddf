// Formulas: a salary formula of 200 characters with five keywords whose values change with each
// evaluation, and a stored formula over many employees with the shares of its time. The floor of
// the first is the replacement of the keywords alone, in the plainest way: what any evaluator that
// replaces texts must do. The floor of the second is the same queries with nothing done about them.
//
//   bench_formula [EMPLOYEES]
#include <cstdlib>

#include "bench.h"
#include "formula/clsEvalFormula.h"
#include "sample/sample.h"
#include "schema/modSQLFunction.h"
#include "session/modOWBSetting.h"
#include "work.h"

namespace {

using namespace owb;
using bench::seconds;

constexpr const char* kFormula =
    "OWRound(OWIF(Component{BASIC} + Component{DA} > 15000, 15000, Component{BASIC} + "
    "Component{DA}) * 0.12 * Days{Pay Days} / Days{Salary Calendar Days}, 1, \"n\") + "
    "OWSubjectToMax(Component{HRA} * 0.05, 500)";

// The replacement alone, each keyword searched in the text as it stands.
std::string replacedOnly(const KeywordTable& keywords) {
    std::string text = kFormula;
    for (const Keyword& entry : keywords)
        for (size_t at = 0; (at = text.find(entry.keyword, at)) != std::string::npos;
             at += entry.value.size())
            text.replace(at, entry.keyword.size(), entry.value);
    return text;
}

void benchExpression() {
    constexpr int kCount = 200000;
    std::vector<KeywordTable> tables;
    for (int i = 0; i < 1000; ++i)
        tables.push_back({{"Component{BASIC}", std::to_string(8000 + i * 7)},
                          {"Component{DA}", std::to_string(1000 + i) + ".5"},
                          {"Days{Pay Days}", std::to_string(15 + i % 15) + ".5"},
                          {"Days{Salary Calendar Days}", "30"},
                          {"Component{HRA}", std::to_string(2000 + i)}});
    clsExprEval eval(wallClock);
    double sum = 0;
    size_t length = 0;
    const bench::Race race(
        5,
        [&] {
            for (int i = 0; i < kCount; ++i)
                sum += eval.EvaluateExpression(kFormula, &tables[i % 1000]).toNumber();
        },
        [&] {
            for (int i = 0; i < kCount; ++i) length += replacedOnly(tables[i % 1000]).size();
        });
    bench::report("formula of 200 characters, five keywords", kCount, race.engine, race.floor);
    std::printf("%44s %9.0f evaluations a second (sum %.0f, %zu)\n", "", kCount / race.engine, sum,
                length);
}

// Counts the time below the connection.
class TimedDriver final : public Driver {
  public:
    TimedDriver(std::unique_ptr<Driver> inner, double& spent, std::vector<std::string>& batches)
        : inner_(std::move(inner)), spent_(spent), batches_(batches) {}
    BatchResult run(std::string_view batch) override {
        BatchResult result;
        batches_.emplace_back(batch);
        spent_ += seconds([&] { result = inner_->run(batch); });
        return result;
    }
    BatchResult runCollecting(std::string_view batch) override {
        return inner_->runCollecting(batch);
    }
    void begin() override { inner_->begin(); }
    void commit() override { inner_->commit(); }
    void rollback() override { inner_->rollback(); }
    void setCommandTimeout(int timeout) override { inner_->setCommandTimeout(timeout); }
    void cancel() override { inner_->cancel(); }

  private:
    std::unique_ptr<Driver> inner_;
    double& spent_;
    std::vector<std::string>& batches_;
};

void benchCompany(int employees) {
    const bench::Folder folder;
    const std::string path = folder.file("company.owb");
    sample::SampleOptions options;
    options.employees = employees;
    options.months = 1;
    ctl::makeDatabase(path, [&](Connection& connection) {
        createFamilyDatabase(connection);
        NoProgress quiet;
        sample::makeSample(connection, options, quiet);
    });
    bench::Work work(path);
    Session& session = work.session;
    session.gConn.Execute(
        "INSERT INTO MAS_FORMULA (FORMULAID, FORMULA) VALUES (90, 'OWIF((PTGroup) = "
        "\"Maharashtra\", OWRound(Component{BASIC} * 0.4, 1, \"n\"), Component{HRA}) + "
        "OWYearDiff(Emp{DOJ}, Emp{DOL})')");
    LoadOptSet(session);
    LoadCaptions(session);
    double queries = 0;
    std::vector<std::string> batches;
    session.gConn.Wrap([&](std::unique_ptr<Driver> inner) {
        return std::make_unique<TimedDriver>(std::move(inner), queries, batches);
    });
    const DateTime from = DateTime::fromCivil(2024, 4, 1), to = DateTime::fromCivil(2024, 4, 30);
    std::vector<FormulaTrace> traces(static_cast<size_t>(employees));
    const double all = seconds([&] {
        for (int i = 1; i <= employees; ++i)
            FnEvalFormula(session).FnDblEvalFormula(90, i, 1, options.fromMonth, from, to, false,
                                                    "", &traces[static_cast<size_t>(i - 1)]);
    });
    // The expressions once more by themselves; the very first one is parsed.
    clsExprEval eval(wallClock);
    const double evaluating = seconds([&] {
        for (const FormulaTrace& trace : traces)
            eval.EvaluateExpression(trace.strFormula, &trace.vOther, &trace.vSalary);
    });
    const double parsing = seconds([&] {
                               for (const FormulaTrace& trace : traces)
                                   clsExprEval(wallClock).EvaluateExpression(
                                       trace.strFormula, &trace.vOther, &trace.vSalary);
                           }) -
                           evaluating;
    Connection plain;
    ctl::openDatabase(plain, path);
    const double floor = seconds([&] {
        for (const std::string& batch : batches) plain.Run(batch);
    });
    bench::report("stored formula, an employee", static_cast<size_t>(employees), all, floor);
    std::printf("%44s of the time: queries %.1f %%, expressions %.1f %%, the rest %.1f %%;\n", "",
                queries / all * 100, evaluating / all * 100,
                (all - queries - evaluating) / all * 100);
    std::printf("%44s parsing each text anew would add %.1f %%\n", "", parsing / all * 100);
}

}  // namespace

int main(int argc, char** argv) {
    benchExpression();
    benchCompany(argc > 1 ? std::atoi(argv[1]) : 10000);
    return 0;
}
