// A grid as a spreadsheet file in the one layout of the family: company and address, title, header,
// the visible columns with the colours of their cells; header and frozen columns stay in sight. The
// user says where it goes; it then opens in the desktop's own program.
#pragma once

#include <string>

#include "screen/grid.h"
#include "screen/progress.h"

namespace owb {

struct Session;
class FrontEnd;

// Hidden columns are left out, hidden rows too, and the first `rowsToSkip` rows. False when there
// is nothing to export ("No record found for Excel export."), the user gives no file, or a message
// told what went wrong.
bool ExportGridToExcel(Session& session, FrontEnd& frontEnd, const Grid& grid,
                       const std::string& title, Progress& progress, size_t rowsToSkip = 0,
                       bool showHeader = true);

// The file that the user picks to import from; "" for none. Both remember the folder.
std::string AskImportFile(Session& session, FrontEnd& frontEnd, const std::string& title);

}  // namespace owb
