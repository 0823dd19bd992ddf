#include "siblings/Companies.h"

#include <algorithm>
#include <filesystem>

#include "app/ThisApp.h"
#include "base/utf8.h"

namespace owb {

namespace {

constexpr size_t kRemembered = 8;

std::string keyOf(size_t place) {
    return "Recent" + std::to_string(place + 1);
}

}  // namespace

std::string Companies::connectionOf(const std::string& company) {
    if (!connectionEntry(company, "Provider").empty()) return company;
    return "Provider=OWBEmbedded;Data Source=" + std::filesystem::absolute(company).string();
}

std::string Companies::inWords(const std::string& connection) {
    const std::string source = connectionEntry(connection, "Data Source");
    if (equalsIgnoreCaseAscii(connectionEntry(connection, "Provider"), "OWBEmbedded"))
        return std::filesystem::path(source).filename().string() + " - " + source;
    const std::string server = source.empty() ? connectionEntry(connection, "Server") : source;
    const std::string catalog = connectionEntry(connection, "Initial Catalog");
    return server + ": " + (catalog.empty() ? connectionEntry(connection, "Database") : catalog);
}

std::vector<std::string> Companies::recent() const {
    std::vector<std::string> all;
    for (size_t place = 0; place < kRemembered; ++place) {
        const std::string scrambled = session_.settings.GetSetting("OWBShell", keyOf(place));
        if (!scrambled.empty()) all.push_back(session_.gGenCmn.FnStrEncryptWord(scrambled));
    }
    return all;
}

std::string Companies::last() const {
    const std::vector<std::string> all = recent();
    return all.empty() ? session_.gGenCmn.FnStrEncryptWord(
                             session_.settings.GetSetting("Settings", "DefLnk"))
                       : all.front();
}

void Companies::open(const std::string& connection) {
    try {
        OpenDatabase(session_, connection);
    } catch (...) {
        session_.gConn.Close();
        throw;
    }
    remember(connection);
    announce();
}

void Companies::remember(const std::string& connection) {
    std::vector<std::string> all = recent();
    std::erase(all, connection);
    all.insert(all.begin(), connection);
    all.resize(std::min(all.size(), kRemembered));
    for (size_t place = 0; place < all.size(); ++place)
        session_.settings.SaveSetting("OWBShell", keyOf(place),
                                      session_.gGenCmn.FnStrEncryptWord(all[place]));
}

void Companies::announce() {
    session_.settings.SaveSetting(
        "Settings", "DefLnk", session_.gGenCmn.FnStrEncryptWord(session_.gConn.ConnectionString()));
    session_.settings.SaveSetting("SETTINGS", "CONNECTION", "A");
    session_.settings.SaveSetting("Settings", "DBType", "SQL");
}

}  // namespace owb
