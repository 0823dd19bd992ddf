#include "ctl/output_form.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "base/csv.h"

namespace owb::ctl {

namespace {

std::string fieldOf(const Json& value) {
    if (value.is_null()) return "";
    if (value.is_string()) return csvField(value.get<std::string>());
    if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
    if (!value.is_array()) return value.dump();
    std::string list;
    for (const Json& element : value) list += (list.empty() ? "" : " ") + element.dump();
    return list;
}

}  // namespace

void OutputForm::declare(CLI::App& app) {
    auto* jsonFlag = app.add_flag("--json", json, kJsonHelp);
    app.add_flag("--csv", csv, "CSV instead of text")->excludes(jsonFlag);
}

void printCsv(std::ostream& out, const std::vector<std::string>& columns, const Json& rows) {
    for (size_t c = 0; c < columns.size(); ++c) out << (c > 0 ? "," : "") << columns[c];
    out << '\n';
    for (const Json& row : rows) {
        for (size_t c = 0; c < columns.size(); ++c)
            out << (c > 0 ? "," : "") << fieldOf(row.value(columns[c], Json()));
        out << '\n';
    }
}

}  // namespace owb::ctl
