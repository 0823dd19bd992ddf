// The part of the system that lives in the database: functions, procedures, the lock trigger and
// the per-host views, dropped and created anew at every start from the .sql files beside this one.
// Their names and parameter lists are a contract with the family's other programs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace owb {

class Connection;
struct Session;

enum class ServerObjectKind { Function, Procedure, Trigger };

// All functions and procedures, then the trigger, in their fixed order, after the per-host names
// have been computed again. In an extended session the trigger is only dropped.
void InstallServerObjects(Session& session);
// True when the object must be created: it is absent, or was dropped here because of `replace`.
bool FnBlnPrepareObject(Session& session, const std::string& name, ServerObjectKind kind,
                        bool replace);
// The settings of all leaves and heads in force in a month, UDF_LSET(month key); made once.
void InstallLeaveSettingsFunction(Session& session);

// [<prefix>_vw_Quarterly], [<prefix>_vw_CalHalfYear], [<prefix>_vw_FinHalfYear].
void CreatePeriodViews(Session& session);
// [<prefix>_vw_LeaveSummary], before each use by a screen.
void CreateLeaveSummaryView(Session& session);

// Takes duplicate register rows out and gives register rows their version's head. Needed when a
// head has ATTNTYPE 2 or 3.
void TidyAttendanceRows(Session& session);
// The sweep ClearLeaveRecords.
void FreeLeaveTables(Session& session);

// The batches of a T-SQL script, which lines GO separate; empty ones are left out.
std::vector<std::string> splitBatches(std::string_view script);

// The T-SQL text of one built-in file, by its name without ".sql" ("objects/FnDblRndOff").
std::string_view FnStrSchemaText(std::string_view name);
// Makes the family's tables, views, routines and delivered rows in an empty database, and installs
// the server objects, so that the database answers before the first start. All or nothing.
void createFamilyDatabase(Connection& connection);

}  // namespace owb
