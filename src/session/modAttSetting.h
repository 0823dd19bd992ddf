// Options of one attendance head and the leave settings in force in a month: loads them into
// session.gAtt, gOpt and gLev, and writes ATT_OPTSETTINGS and LEV_SETTINGS rows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "session/Session.h"

namespace owb {

void SetAttHeadDefaults(Session& session);
// MAS_ATTHEAD into gAtt. Defaults stand when there is no such head.
void LoadAttHead(Session& session, int32_t intAttHeadId);
// The head whose ATT_OPTSETTINGS row counts for a head: 0, the common row, while COMMONYN of the
// common row is set; otherwise the head itself.
int32_t FnIntOptionHead(Session& session, int32_t intAttHeadId);
// ATT_OPTSETTINGS into gOpt: the row that counts for the head (FnIntOptionHead); 0 loads the
// common row.
void LoadAttOptions(Session& session, int32_t intAttHeadId);
// The head's own row, whatever COMMONYN says; defaults stand where there is none. Throws DbError.
AttOptionsRecord FnReadAttOptions(Session& session, int32_t intAttHeadId);
// LEV_SETTINGS into gLev: the version of (leave, head) with the greatest MONTHYEAR not after the
// month; month 0 is the last payroll month. Defaults stand when there is none.
void LoadLeaveSettings(Session& session, int32_t intLevId, int32_t intAttHeadId,
                       int32_t lngMonthYear);
// The same row without touching gLev; found tells whether there is one.
LeaveSettingsRecord FnReadLeaveSettings(Session& session, int32_t intLevId, int32_t intAttHeadId,
                                        int32_t lngMonthYear, bool& found);

// Writers: the row of the key is added when absent, every column is assigned.
void SaveAttOptions(Session& session, int32_t intAttHeadId, const AttOptionsRecord& options);
void SaveLeaveSettings(Session& session, int32_t intLevId, int32_t intAttHeadId,
                       int32_t lngMonthYear, const LeaveSettingsRecord& settings);
// The same as text for a batch; the head is a number or a variable of the batch.
std::string SaveAttOptionsSql(const std::string& attHeadId, const AttOptionsRecord& options);
std::string SaveLeaveSettingsSql(int32_t intLevId, const std::string& attHeadId,
                                 int32_t lngMonthYear, const LeaveSettingsRecord& settings);

// Rounding types offered by a list: 1 full days, 2 half days too, 3 quarter days too.
struct RoundingType {
    int32_t RNDTYPEID;
    std::string RNDTYPE;
};
std::vector<RoundingType> LoadHeadList(Session& session, int selection);

// Does EXCESSLEVYN of the common row hold this value?
bool FnBlnCommonExcessLeave(Session& session, int32_t value);
// "[<prefix>_vw_LeaveSummary]".
std::string FnStrLeaveSummaryView(const Session& session);

}  // namespace owb
