#include "db/new_database.h"

#include <filesystem>

#include "db/embedded/embedded_driver.h"

namespace owb {

void makeDatabaseFile(const std::string& file, const std::function<void(Connection&)>& fill) {
    createEmbedded(file);
    try {
        Connection connection;
        connection.Open("Provider=OWBEmbedded;Data Source=" + file);
        fill(connection);
    } catch (...) {
        std::error_code ignored;
        for (const char* part : {"", "-wal", "-shm"}) std::filesystem::remove(file + part, ignored);
        throw;
    }
}

}  // namespace owb
