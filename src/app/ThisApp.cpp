#include "app/ThisApp.h"

#include <charconv>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <vector>

#include "base/number_text.h"
#include "base/utf8.h"
#include "db/recordset.h"
#include "session/modFiles.h"
#include "session/queries.h"

namespace owb {

namespace {

template <typename Int>
Int wholeNumber(const std::string& text, const char* what) {
    const double value = roundHalfEven(textToNumber(text));
    if (value < std::numeric_limits<Int>::min() || value > std::numeric_limits<Int>::max())
        throw std::runtime_error(std::string("Command line: the ") + what + " '" + text +
                                 "' is out of range");
    return static_cast<Int>(value);
}

bool flag(const std::string& text) {
    if (equalsIgnoreCaseAscii(text, "True")) return true;
    if (equalsIgnoreCaseAscii(text, "False")) return false;
    const std::string number = trim(text);
    double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc() || end != number.data() + number.size())
        throw std::runtime_error("Command line: the flag '" + text +
                                 "' is neither True, False nor a number");
    return value != 0;
}

std::string trustedConnection(const std::string& server, const std::string& database) {
    return "Provider=SQLNCLI;Server=" + server + ";Database=" + database +
           ";Trusted_Connection=yes;";
}

[[noreturn]] void endWithoutConnection(Session& session) {
    session.boxes.warning("Please open the Orvane Wagebook file.");
    throw EndOfProgram{1};
}

// The shell writes the file in the ANSI code page.
std::string fromAnsi(const std::string& bytes) {
    if (validUtf8(bytes)) return bytes;
    std::string text;
    for (const char byte : bytes) appendCodePoint(text, ansiCodePoint(static_cast<uint8_t>(byte)));
    return text;
}

// First line: <ignored>:<server>:<database>[:<user>:<password>], the last two scrambled.
std::string connectionOfFile(Session& session, const std::string& path) {
    std::ifstream file(path);
    std::string line;
    if (!FnBlnFileExists(path) || !file)
        throw std::runtime_error("The connection file '" + path + "' cannot be read");
    std::getline(file, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();  // of Windows' line ends
    line = fromAnsi(trim(line));
    if (line.empty()) endWithoutConnection(session);
    std::vector<std::string> fields = split(line, ':');
    if (fields.size() == 3) fields.insert(fields.end(), 2, "");
    if (fields.size() < 5)
        throw std::runtime_error("The connection file '" + path + "' lacks a field");
    const std::string &server = fields[1], &database = fields[2];
    const std::string user = session.gGenCmn.FnStrEncryptWord(fields[3]),
                      password = session.gGenCmn.FnStrEncryptWord(fields[4]);
    if (server == "(embedded)") return "Provider=OWBEmbedded;Data Source=" + database;
    if (user.empty() && password.empty()) return trustedConnection(server, database);
    return "Provider=SQLOLEDB.1;Persist Security Info=True;User ID=" + user + ";PWD=" + password +
           ";Initial Catalog=" + database + ";Data Source=" + server;
}

std::string connectionOfSettings(Session& session) {
    const SettingsStore& store = session.settings;
    const std::string scrambled = store.GetSetting("Settings", "DefLnk");
    if (trim(scrambled).empty()) endWithoutConnection(session);
    auto upper = [&](const char* key) { return upperCase(store.GetSetting("SETTINGS", key, "A")); };
    if (upper("CONNECTION") == "TRUST")
        return trustedConnection(upper("DBService"), upper("DBName"));
    return session.gGenCmn.FnStrEncryptWord(scrambled);
}

int seconds(const Session& session, const char* key) {
    return static_cast<int>(textToNumber(session.settings.GetSetting("Settings", key, "600")));
}

}  // namespace

void InitCommandLine(Session& session, const std::string& commandLine) {
    const std::vector<std::string> fields = split(commandLine, '#');
    if (fields.size() < 3)
        throw std::runtime_error(
            "Command line: expected <menu id>#<flag>#<option>#<attendance head>[#<connection "
            "file>]. This program is started by the family's shell, or by OWBShell.");
    session.gFileLaunch = fields.size() != 4 && session.exeName == "OWBLeaveMgmt";
    session.gMenuId = wholeNumber<int32_t>(fields[0], "menu identifier");
    session.gLaunchFlag = flag(fields[1]);
    session.gLaunchOption = wholeNumber<int16_t>(fields[2], "option");
    session.gAttHeadId = wholeNumber<int32_t>(fields[fields.size() - (session.gFileLaunch ? 2 : 1)],
                                              "attendance head");
    if (session.gFileLaunch)
        OpenDatabase(session, connectionOfFile(session, fields.back()));
    else
        OpenSettingsDatabase(session);
}

void OpenSettingsDatabase(Session& session) {
    OpenDatabase(session, connectionOfSettings(session));
}

void OpenDatabase(Session& session, const std::string& connectionString) {
    session.gConn.Close();
    session.gConn.ConnectionTimeout = seconds(session, "CONNTIME");
    session.gConn.Open(connectionString);
    RequireCompany(session.gConn);
    session.gConn.setCommandTimeout(seconds(session, "COMDTIME"));
    session.gMultiLogin =
        FnVarValueOrThrow(session,
                          "SELECT MULTILOGIN FROM SEC_USERLIST WHERE UPPER(USERNAME) = 'ADMIN'", 0)
            .toBool();
}

void RequireCompany(Connection& connection) {
    Recordset tables(connection,
                     "SELECT COUNT(*) FROM INFORMATION_SCHEMA.TABLES WHERE TABLE_NAME IN "
                     "('MAS_COMPANY', 'MAS_ATTHEAD', 'MAS_EMPLOYEE', 'SEC_USERLIST')");
    if (tables.Fields(0).toInt() == 4) return;
    const std::string file = connectionEntry(connection.ConnectionString(), "Data Source");
    throw std::runtime_error("The database " + (file.empty() ? "" : file + " ") +
                             "holds no Orvane Wagebook company.");
}

void SetHelpFile(Session& session) {
    const std::string path = session.settings.GetSetting("ExeTalk", "HelpFile");
    if (FnBlnFileExists(path)) session.gHelpFile = path;
}

void ExitToShell(Session& session, bool stayAlive) {
    try {
        if (session.shell != nullptr) session.shell->programEnded();
    } catch (const std::exception& e) {
        session.boxes.critical(e.what());
    }
    if (!stayAlive) throw EndOfProgram{0};
}

}  // namespace owb
