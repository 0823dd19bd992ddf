#include "session/FileSettingsStore.h"

#include <cstdlib>
#include <filesystem>

#include "db/embedded/embedded_driver.h"
#include "db/recordset.h"

namespace owb {

namespace {

std::string keyCondition(const std::string& section, const std::string& key) {
    return " WHERE SECTION = " + sqlLiteral(section) + " AND SETTINGKEY = " + sqlLiteral(key);
}

}  // namespace

std::string FileSettingsStore::defaultPath() {
    if (const char* path = std::getenv("OWB_SETTINGS")) return path;
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    const std::filesystem::path base = config && *config
                                           ? std::filesystem::path(config)
                                           : std::filesystem::path(home ? home : ".") / ".config";
    return (base / "orvane-wagebook" / "settings.db").string();
}

FileSettingsStore::FileSettingsStore(const std::string& path) {
    const std::filesystem::path file(path);
    std::error_code ignored;  // what is wrong with the place, opening the file says
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), ignored);
    if (!std::filesystem::exists(file, ignored)) {
        try {
            createEmbedded(path);
        } catch (const DbError&) {
            // Another process may have made it just now; if not, the next line throws.
            if (!std::filesystem::exists(file, ignored)) throw;
        }
    }
    connection_.ConnectionTimeout = 30;
    connection_.Open("Provider=OWBEmbedded;Data Source=" + path);
    connection_.Execute(
        "IF NOT EXISTS (SELECT * FROM SYS.TABLES WHERE NAME = 'SETTING') CREATE TABLE SETTING "
        "(SECTION nvarchar(60) NOT NULL, SETTINGKEY nvarchar(200) NOT NULL, VALUE nvarchar(MAX) "
        "NOT "
        "NULL, CONSTRAINT PK_SETTING PRIMARY KEY (SECTION, SETTINGKEY))");
}

std::string FileSettingsStore::GetSetting(const std::string& section, const std::string& key,
                                          const std::string& defaultValue) const {
    Recordset rs(connection_, "SELECT VALUE FROM SETTING" + keyCondition(section, key));
    return rs.IsEOF() ? defaultValue : rs.Fields(0).toText();
}

// One batch, so that two writers of a new key cannot both insert it.
void FileSettingsStore::SaveSetting(const std::string& section, const std::string& key,
                                    const std::string& value) {
    const std::string where = keyCondition(section, key);
    connection_.ExecuteAtomic("IF EXISTS (SELECT * FROM SETTING" + where +
                              ") UPDATE SETTING SET VALUE = " + sqlLiteral(value) + where +
                              " ELSE INSERT INTO SETTING VALUES (" + sqlLiteral(section) + ", " +
                              sqlLiteral(key) + ", " + sqlLiteral(value) + ")");
}

}  // namespace owb
