// The configuration pass of every normal start: loads the options, installs the server objects and
// brings the leave tables in step with the masters. It works by itself and closes when done.
#pragma once

#include "screen/screen.h"

namespace owb {

struct Session;

class frmConfiguring final : public Screen {
  public:
    frmConfiguring(Session& session, FrontEnd& frontEnd);

    Label lblProgress{*this, "lblProgress"};
    ProgressBar barProgress{*this, "barProgress"};  // steps done

  private:
    void onActivate() override;
    void status(const std::string& text);

    void LoadOptions();
    void AllotmentMethods();
    void ClearRecords();
    void UpdateNullValues();
    void UpdateOptionSettings();
    void UpdateMonthDates();
    void UpdateOpeningBalance();
    void UpdateAllotmentDates();
    void UpdateAvailFromDates();
    void UpdateMonthlyRecords();
    void UpdateLedgerRows();
    void FillDefaultValues();
    void DateAdjustments();

    Session& session_;
};

}  // namespace owb
