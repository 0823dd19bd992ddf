// The rules of all leaves as one pass reads them: the versions of LEV_SETTINGS and the figures of
// LEV_ALLOTCONFIG. Read once; a pass that finds them changed reads them anew.
#pragma once

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

#include "session/Session.h"

namespace owb {

// A row of LEV_ALLOTCONFIG.
struct AllotFigure {
    int32_t EFFFROM = 0;  // month key; of the yearly type the plain year
    int ALLOTON = 0;
    double PERIOD = 0;  // days in which NOL is earned
    double NOL = 0;     // number of leaves
    int64_t FID = 0;    // of a custom query or formula
    int QUERYYN = 0;    // 1 custom query, 2 formula, else the number NOL
};

// Caption of a RNDTYPE or ALLOTRNDTYPE; "None" of a number that is no type.
const char* FnStrRoundingType(int intType);

class LeaveRules {
  public:
    explicit LeaveRules(Session& session);

    // The version with the greatest MONTHYEAR not after the month; null when there is none.
    const LeaveSettingsRecord* inForce(int intLevId, int intAttHeadId, int32_t lngMonthYear) const;
    // The figure with the greatest EFFFROM not after the key (a month key, or a year for the yearly
    // type). Of the yearly and half-yearly type only figures of the year type intAllotOn count.
    const AllotFigure* figure(int intLevId, int intAttHeadId, int intAllotType, int intAllotOn,
                              int32_t lngKey) const;

  private:
    // Each in ascending order of its month or year.
    std::map<std::pair<int, int>, std::vector<LeaveSettingsRecord>> settings_;  // leave, head
    std::map<std::tuple<int, int, int>, std::vector<AllotFigure>> figures_;     // and allot type
};

}  // namespace owb
