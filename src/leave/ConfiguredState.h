// What the last complete configuration pass has seen, as one text of sums over the masters and
// counts of the program's own rows (LEV_CONFIGURED). A start that finds the same text has nothing
// to bring in step, whoever may have changed a master meanwhile: both databases sum them up in one
// query.
//
// What is remembered was read before the pass worked on it, so that a change during the pass is
// seen by the next start: the masters before the first step and again when they have been repaired
// (when the two differ nothing is remembered), the from-dates behind the step that makes them. Only
// the counts of rows that the pass itself makes are read behind it.
#pragma once

#include <string>

namespace owb {

struct Session;

// LEV_CONFIGURED, LEV_CONFIGUREDDET and LEV_RECALCULATION, where a database lacks them.
void InstallPassTables(Session& session);

class ConfiguredState {
  public:
    explicit ConfiguredState(Session& session);

    // Is there anything that the last pass has not seen?
    bool Changed() const;
    // The masters are as they will stay: months have dates, heads options, leaves settings.
    void MastersRepaired();
    // From-dates are made; ledger rows are not.
    void DatesMade();
    void Remember();

  private:
    std::string Masters() const;
    std::string Dates() const;
    std::string OwnRows() const;

    Session& session_;
    std::string masters_, dates_;
    bool settled_ = true;  // the masters were the same all the time
};

// The sweep ClearLeaveRecords, and it again at the end of the program only where rows have come or
// gone since, or a row stands that it takes out.
void SweepLeaveTables(Session& session);
void SweepChangedLeaveTables(Session& session);

}  // namespace owb
