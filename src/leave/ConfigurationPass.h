// Brings the leave tables in step with the masters: what every normal start does before anything
// else. Each step may be run again over its own result, so that a pass that was broken off is made
// good by the next.
//
// The order counts, and leaves no row unmarked that needs a mark:
//  - leaves that are not allotted lose their rows before anything is made for the others; the sweep
//    of "Clearing Records ... " gives every allotted leave its settings;
//  - rows are repaired before what cannot be repaired is deleted; registers get their version's
//    head before the sweep takes out those that differ; months have dates before rows are made;
//  - what the masters have changed since the last pass marks the rows that stand, before rows come
//    and go; it is forgotten only together with setting the marks;
//  - from-dates come before the ledger rows that begin with them, and mark before they change;
//  - a ledger row is changed in place where its month goes on; encashments are judged when all rows
//    are there;
//  - defaults of the registers come last, since they mark months, salaries and ledger rows that
//    must be there to be marked;
//  - what the pass has seen (ConfiguredState.h) is remembered last of all. A start that finds the
//    same again has nothing to do but to look at rows that anybody may write.
#pragma once

#include <functional>
#include <string>

#include "screen/progress.h"

namespace owb {

class ConfiguredState;
struct Session;

class ConfigurationPass {
  public:
    ConfigurationPass(Session& session, Progress& frm) : session_(session), frm_(frm) {}

    // Throws DbError. False when the user cancelled, while it waited for another recalculation or
    // between two steps; the next pass does what is left.
    bool Run();
    // Are the options of the company in the session's records?
    bool OptionsLoaded() const { return optionsLoaded_; }

  private:
    void LoadOptions();
    void UpdateSchema();
    void ClearIdleMarks();
    void RepairVersions();

    void AllotmentMethods();
    void ClearRecords();
    void UpdateNullValues();
    void UpdateOptionSettings();
    void UpdateMonthDates();
    void UpdateVersionChanges();
    void UpdateOpeningBalance();
    void UpdateAllotmentDates();
    void UpdateAvailFromDates();
    void UpdateMonthlyRecords();
    void UpdateLedgerRows();
    void FillDefaultValues();
    void DateAdjustments();

    Session& session_;
    Progress& frm_;
    ConfiguredState* state_ = nullptr;  // while the steps run
    bool optionsLoaded_ = false;
};

}  // namespace owb
