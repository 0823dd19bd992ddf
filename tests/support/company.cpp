#include "support/company.h"

#include <filesystem>

#include "db/embedded/embedded_driver.h"
#include "db/recordset.h"
#include "family/modCommon.h"
#include "schema/modSQLFunction.h"

namespace owb::test {

namespace {

std::string connectionString(const std::string& path) {
    return "Provider=OWBEmbedded;Data Source=" + path;
}

// Made once for all tests of the process: creating the tables takes longer than most tests.
const std::string& templateFile() {
    static const TempDir folder;
    static const std::string path = [] {
        const std::string file = folder.file("template.db");
        createEmbedded(file);
        Connection connection;
        connection.Open(connectionString(file));
        createFamilyDatabase(connection);
        connection.Close();
        return file;
    }();
    return path;
}

}  // namespace

Company::Company()
    : session(
          settings, boxes, [] { return DateTime::fromCivil(2024, 8, 15); }, folder.file("")) {
    settings.SaveSetting("Settings", "DBType", "SQL");
    const std::string file = folder.file("company.db");
    std::filesystem::copy_file(templateFile(), file);
    session.gConn.Open(connectionString(file));
}

std::string Company::value(const std::string& sql) {
    Recordset rs(session.gConn, sql);
    return rs.IsEOF() ? "" : rs.Fields(0).toText();
}

std::string Company::rows(const std::string& sql) {
    std::string out;
    for (Recordset rs(session.gConn, sql); !rs.IsEOF(); rs.MoveNext()) {
        if (!out.empty()) out += ' ';
        for (size_t i = 0; i < rs.FieldCount(); ++i) out += (i ? "," : "") + rs.Fields(i).toText();
    }
    return out;
}

void Company::addMonths(int32_t from, int32_t to) {
    for (int32_t key = from; key <= to; ++key) {
        const DateTime first = DateTime::fromCivil((key - 1) / 12, (key - 1) % 12 + 1, 1);
        run("INSERT INTO MAS_MONTHYEAR (MONTHYEAR, CALCSTARTDATE, CALCENDDATE) VALUES (" +
            std::to_string(key) + ", '" + FnStrIsoDate(first) + "', '" +
            FnStrIsoDate(first.plusMonths(1).plusDays(-1)) + "')");
    }
}

}  // namespace owb::test
