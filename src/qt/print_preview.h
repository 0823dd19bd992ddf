// The preview of a grid on paper, from which it goes to a printer or into a PDF file.
#pragma once

#include "screen/print_pages.h"

class QWidget;

namespace owb {

// Modal. Gives the paper that the user chose last; at first it is `paper`. A word says so when
// there is nothing to print.
PaperSize previewPrint(QWidget& above, const Grid& grid, const PrintHeading& heading,
                       PaperSize paper);

}  // namespace owb
