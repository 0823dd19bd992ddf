// Small tools that the benchmarks share: a clock, a folder of their own, prepared statements for
// the floors, and the line in which a result is told.
#pragma once

#include <sqlite3.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

namespace owb::bench {

inline double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class Folder {
  public:
    Folder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "owb-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
        path_ = pattern;
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string file(const std::string& name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

// A database file opened without the engine, for floors.
class PlainDatabase {
  public:
    explicit PlainDatabase(const std::string& path) {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK)
            throw std::runtime_error("cannot open " + path);
        run("PRAGMA synchronous = NORMAL");  // as the engine has it
    }
    ~PlainDatabase() { sqlite3_close(db_); }
    PlainDatabase(const PlainDatabase&) = delete;

    void run(const char* sql) const {
        if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + ": " + sql);
    }
    sqlite3* handle() const { return db_; }

  private:
    sqlite3* db_ = nullptr;
};

class Prepared {
  public:
    Prepared(const PlainDatabase& db, const std::string& sql) {
        if (sqlite3_prepare_v2(db.handle(), sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK)
            throw std::runtime_error(std::string(sqlite3_errmsg(db.handle())) + ": " + sql);
    }
    ~Prepared() { sqlite3_finalize(statement_); }
    Prepared(const Prepared&) = delete;

    // Starts it anew with these whole numbers as parameters.
    template <typename... Numbers>
    Prepared& with(Numbers... numbers) {
        sqlite3_reset(statement_);
        int at = 0;
        (sqlite3_bind_int64(statement_, ++at, numbers), ...);
        return *this;
    }
    bool next() { return sqlite3_step(statement_) == SQLITE_ROW; }
    int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }
    std::string text(int column) const {
        return reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    }
    bool isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
    void reset() { sqlite3_reset(statement_); }
    // Runs to the end.
    void run() {
        while (next()) {
        }
        sqlite3_reset(statement_);
    }

  private:
    sqlite3_stmt* statement_ = nullptr;
};

// The best of several rounds of each side, one after the other so that both meet the same weather.
struct Race {
    double engine = 1e9, floor = 1e9;
    Race(int rounds, const std::function<void()>& engineWork,
         const std::function<void()>& floorWork) {
        for (int i = 0; i < rounds; ++i) {
            engine = std::min(engine, seconds(engineWork));
            floor = std::min(floor, seconds(floorWork));
        }
    }
};

inline void report(const char* what, size_t count, double engine, double floor) {
    std::printf("%-44s %9.2f us each, floor %7.2f us, ratio %5.2f\n", what, engine / count * 1e6,
                floor / count * 1e6, engine / floor);
}

}  // namespace owb::bench
