#include <CLI/CLI.hpp>
#include <ostream>

#include "base/number_text.h"
#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/json_text.h"
#include "ctl/known_keys.h"
#include "ctl/text_table.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "formula/clsEvalFormula.h"
#include "session/MemorySettingsStore.h"
#include "session/Session.h"
#include "session/modOWBSetting.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb::ctl {

namespace {

// Boxes of engines are failures here: nobody sees them.
class FailureBoxes final : public MessageBoxes {
  public:
    BoxAnswer show(const Box& box) override {
        text += (text.empty() ? "" : "; ") + box.text;
        return box.defaultAnswer;
    }
    std::string text;
};

class FormulaCommand final : public Command {
  public:
    const char* name() const override { return "formula"; }
    const char* summary() const override {
        return "Evaluate a stored formula for an employee and month";
    }
    const char* contract() const override {
        return "Prints the number that the formula gives, 0 when it cannot be evaluated. "
               "MONTHYEAR\n"
               "is Mmm/YYYY or a month key (year * 12 + month). EMPDETID 0 takes the last version\n"
               "that has a salary row in the month. Leave and holidays are counted over the "
               "month,\n"
               "or from --from to --to. --explain shows the keywords that were filled with their\n"
               "values, the text after each step of replacement, and the result or the error.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("FORMULAID", formula_, "Formula (MAS_FORMULA)")->required();
        app.add_option("EMPID", employee_, "Employee")->required();
        app.add_option("EMPDETID", version_, "Version of the employee")->required();
        app.add_option("MONTHYEAR", month_, "Month")->required();
        app.add_option("--from", from_, "First day of the span (YYYY-MM-DD)");
        app.add_option("--to", to_, "Last day of the span (YYYY-MM-DD)");
        app.add_flag("--explain", explain_, "Tell step by step");
        app.add_flag("--json", json_, kJsonHelp);
    }

    int run(Streams& io) override {
        FailureBoxes boxes;
        MemorySettingsStore settings;
        Session session(settings, boxes, wallClock, ".");
        openCompany(session.gConn, db_);
        session.gHostPrefix = FnStrHostPrefix(session);
        LoadOptSet(session);
        LoadCaptions(session);

        requireKnown(session);
        const int32_t month = monthNamed(session.gConn, month_);
        FormulaTrace trace;
        double value = 0;
        if (version_ == 0) {
            value = FnEvalFormula(session).FnDblEvalSalFormula(formula_, employee_, month, &trace);
        } else {
            DateTime from, to;
            GetMonthPeriod(session, month, from, to);
            value = FnEvalFormula(session).FnDblEvalFormula(formula_, employee_, version_, month,
                                                            dateOr(from_, from), dateOr(to_, to),
                                                            false, "", &trace);
        }
        if (json_) {
            Json told = {{"value", value}};
            if (explain_) told["steps"] = jsonOfTrace(trace);
            printJson(io.out, told);
        } else {
            if (explain_) explain(io.out, trace);
            io.out << numberText(value) << '\n';
        }
        if (!boxes.text.empty()) throw CommandError(boxes.text);
        return 0;
    }

  private:
    void requireKnown(Session& session) const {
        if (!FnBlnExistsOrThrow(
                session,
                Sql() << "SELECT FORMULAID FROM MAS_FORMULA WHERE FORMULAID = " << formula_))
            throw CommandError("there is no formula " + std::to_string(formula_) +
                               "; MAS_FORMULA lists them");
        requireEmployee(session.gConn, employee_);
        const int64_t last =
            FnVarValueOrThrow(
                session,
                Sql() << "SELECT MAX(EMPDETID) FROM MAS_EMPLOYEEDET WHERE EMPID = " << employee_, 0)
                .toInt();
        if (version_ < 0 || version_ > last)
            throw CommandError("there is no version " + std::to_string(version_) + " of employee " +
                               std::to_string(employee_) + "; the last is " + std::to_string(last));
    }

    static DateTime dateOr(const std::string& text, DateTime otherwise) {
        if (text.empty()) return otherwise;
        const auto date = parseDate(text);
        if (!date) throw CommandError("\"" + text + "\" is no date (YYYY-MM-DD)");
        return *date;
    }

    static void explain(std::ostream& out, const FormulaTrace& trace) {
        const auto table = [&out](const char* title, const KeywordTable& keywords) {
            out << title << '\n';
            std::vector<std::vector<std::string>> rows = {{"Keyword", "Value"}};
            for (const Keyword& entry : keywords) rows.push_back({entry.keyword, entry.value});
            out << textTable(rows, {false, false}) << '\n';
        };
        out << "Formula: " << trace.strFormula << "\n\n";
        table("First table", trace.vOther);
        table("Second table", trace.vSalary);
        const ExpressionSteps steps =
            clsExprEval::Explain(trace.strFormula, &trace.vOther, &trace.vSalary);
        out << "After the first table:  " << steps.keywords1 << '\n'
            << "After the second table: " << steps.keywords2 << '\n'
            << "Function names:         " << steps.names << '\n'
            << "Capitals:               " << steps.capitals << '\n';
        if (trace.failure.empty())
            out << "Result:                 " << trace.result.display() << " ("
                << trace.result.typeName() << ")\n\n";
        else
            out << "Failed:                 " << trace.failure << "\n\n";
    }

    static Json jsonOfTrace(const FormulaTrace& trace) {
        const auto table = [](const KeywordTable& keywords) {
            Json rows = Json::array();
            for (const Keyword& entry : keywords)
                rows.push_back({{"keyword", entry.keyword}, {"value", entry.value}});
            return rows;
        };
        const ExpressionSteps steps =
            clsExprEval::Explain(trace.strFormula, &trace.vOther, &trace.vSalary);
        Json told = {{"formula", trace.strFormula},         {"firstTable", table(trace.vOther)},
                     {"secondTable", table(trace.vSalary)}, {"afterFirstTable", steps.keywords1},
                     {"afterSecondTable", steps.keywords2}, {"functionNames", steps.names},
                     {"capitals", steps.capitals}};
        if (!trace.failure.empty())
            told["failure"] = trace.failure;
        else
            told.update({{"result", trace.result.display()}, {"type", trace.result.typeName()}});
        return told;
    }

    std::string db_, month_, from_, to_;
    int32_t formula_ = 0, version_ = 0;
    int64_t employee_ = 0;
    bool explain_ = false, json_ = false;
};

}  // namespace

std::unique_ptr<Command> makeFormulaCommand() {
    return std::make_unique<FormulaCommand>();
}

}  // namespace owb::ctl
