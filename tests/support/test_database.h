// A connection to a fresh embedded database in a folder of its own.
#pragma once

#include <string>

#include "db/connection.h"
#include "db/embedded/embedded_driver.h"
#include "support/temp_dir.h"

namespace owb::test {

class TestDatabase {
  public:
    // With the script run on it, one batch.
    explicit TestDatabase(const std::string& script = "") {
        createEmbedded(path());
        connection.Open("Provider=OWBEmbedded;Data Source=" + path());
        if (!script.empty()) connection.Execute(script);
    }

    std::string path() const { return dir_.file("test.owb"); }
    // The first cell of a query, as text.
    std::string value(const std::string& sql) {
        const BatchResult result = connection.Run(sql);
        return result.sets.front().rows ? result.sets.front().at(0, 0).toText() : "no row";
    }

  private:
    TempDir dir_;

  public:
    Connection connection;
};

}  // namespace owb::test
