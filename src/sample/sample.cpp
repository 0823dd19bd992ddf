#include "sample/sample.h"

#include "db/new_database.h"
#include "db/recordset.h"
#include "sample/attendance.h"
#include "sample/rules.h"
#include "schema/modSQLFunction.h"

namespace owb::sample {

namespace {

bool fillDatabase(Connection& connection, const SampleOptions& options, Progress& progress) {
    progress.status("Rules and calendar");
    writeSampleRules(connection, options);
    const SampleCalendar calendar(options);
    calendar.writeRules(connection);

    SampleAttendance attendance(connection, options, calendar);
    progress.status("Employees");
    const auto total = static_cast<size_t>(options.employees);
    for (int id = 1; id <= options.employees; ++id) {
        if (progress.cancelled()) return false;
        attendance.write(makeEmployee(id, options));
        progress.step(static_cast<size_t>(id), total);
    }
    attendance.finish();
    return true;
}

}  // namespace

SampleOptions optionsUpTo(int32_t lastMonth) {
    constexpr int kTwoYears = 24, kApril = 4, kYear = 12;
    SampleOptions options;
    const int32_t latestStart = lastMonth - kTwoYears + 1;
    options.fromMonth = latestStart - (latestStart - kApril) % kYear;
    options.months = lastMonth - options.fromMonth + 1;
    return options;
}

void makeSample(Connection& connection, const SampleOptions& options, Progress& progress) {
    Recordset employees(connection, "SELECT COUNT(*) FROM MAS_EMPLOYEE");
    if (employees.Fields(0).toInt() > 0)
        throw DbError(50000, 16, 1, 0, "The database already holds employees.");
    connection.BeginTrans();
    try {
        if (fillDatabase(connection, options, progress))
            connection.CommitTrans();
        else
            connection.RollbackTrans();
    } catch (...) {
        connection.RollbackTrans();
        throw;
    }
}

void makeSampleFile(const std::string& file, const SampleOptions& options, Progress& progress) {
    makeDatabaseFile(file, [&](Connection& connection) {
        createFamilyDatabase(connection);
        makeSample(connection, options, progress);
    });
}

}  // namespace owb::sample
