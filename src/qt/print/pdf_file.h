// A grid as a PDF file.
#pragma once

#include <QPageLayout>
#include <string>

#include "screen/print_pages.h"

namespace owb {

// Landscape, with our margins.
QPageLayout pageLayout(PaperSize size);
PrintPaper paperOf(const QPageLayout& layout);

// Writes the file whole, in place of an older one, and gives its number of pages. Throws
// std::runtime_error and leaves the older one as it was when there is nothing to print or the file
// cannot be written. Where no application of the toolkit runs, one is made that needs no display;
// it lives to the program's end.
size_t printToPdf(const Grid& grid, const PrintHeading& heading, PaperSize paper,
                  const std::string& path);
// The same on pages that the user has set up.
size_t printOnPages(const Grid& grid, const PrintHeading& heading, const QPageLayout& layout,
                    const std::string& path);

}  // namespace owb
