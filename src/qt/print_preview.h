// The preview of a grid on paper, from which it goes to a printer or into a PDF file.
#pragma once

#include "screen/print_pages.h"

class QWidget;

namespace owb {

// Modal. The user picks the paper there; a word says so when there is nothing to print.
void previewPrint(QWidget& above, const Grid& grid, const PrintHeading& heading);

}  // namespace owb
