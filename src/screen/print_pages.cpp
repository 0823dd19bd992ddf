#include "screen/print_pages.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "base/number_text.h"
#include "base/utf8.h"

namespace owb {

namespace {

constexpr double kLeastScale = 0.6;   // smaller than that nobody reads it
constexpr size_t kWidestDigits = 40;  // of a column; longer texts end with an ellipsis
constexpr double kLineSpacing = 1.3;  // of rows, to the line of the font
constexpr double kGap = 12;           // between entries of the legend

struct Shown {
    std::vector<size_t> rows, columns;
    size_t frozen = 0;
};

Shown shownOf(const Grid& grid) {
    Shown shown{grid.sight.rows(), grid.sight.columns(), grid.sight.frozen()};
    const bool hasTotals = std::any_of(shown.columns.begin(), shown.columns.end(),
                                       [&](size_t c) { return grid.column(c).total; });
    if (hasTotals && !shown.rows.empty()) shown.rows.push_back(kTotals);
    return shown;
}

// "Department: Stores, Works", "214 of 2,000 shown".
std::vector<std::string> filtersOf(const Grid& grid) {
    std::vector<std::string> told;
    for (const auto& [column, texts] : grid.sight.filters()) {
        std::string line;
        for (const std::string& text : texts)
            line += (line.empty() ? "" : ", ") + (text.empty() ? "(empty)" : text);
        told.push_back(grid.column(column).caption + ": " + line);
    }
    if (const std::string summary = grid.sight.summary(); !summary.empty()) told.push_back(summary);
    return told;
}

std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> found(1);
    for (const char c : text)
        if (c != ' ' && c != '\n')
            found.back() += c;
        else if (!found.back().empty())
            found.emplace_back();
    if (found.size() > 1 && found.back().empty()) found.pop_back();
    return found;
}

// As wide as its longest text or word of its header needs it.
double columnWidth(const Grid& grid, size_t c, const std::vector<size_t>& rows,
                   const PrintFont& font) {
    double widest = 0;
    for (const size_t row : rows)
        if (const std::string text = printedText(grid, row, c); !text.empty())
            widest = std::max(widest, font.width(text));
    widest = std::min(widest, font.width(std::string(kWidestDigits, '0')));
    for (const std::string& line : headerLines(grid.column(c), 0, font))
        widest = std::max(widest, font.width(line));
    return widest + 2 * kPrintPadding;
}

double sum(const std::vector<double>& widths, size_t from) {
    double all = 0;
    for (size_t i = from; i < widths.size(); ++i) all += widths[i];
    return all;
}

using Strip = std::vector<PrintedColumn>;

constexpr double kRoundingRoom = 0.01;

std::vector<Strip> cut(const Shown& shown, const std::vector<double>& widths, double width) {
    Strip repeated;
    double left = 0;
    for (size_t i = 0; i < shown.frozen; ++i) {
        repeated.push_back({shown.columns[i], left, widths[i]});
        left += widths[i];
    }
    std::vector<Strip> strips{repeated};
    double at = left;
    for (size_t i = shown.frozen; i < widths.size(); ++i) {
        if (at + widths[i] > width + kRoundingRoom && strips.back().size() > shown.frozen) {
            strips.push_back(repeated);
            at = left;
        }
        strips.back().push_back({shown.columns[i], at, widths[i]});
        at += widths[i];
    }
    return strips;
}

// How wide strips must be at least so that there are no more of them than this.
double stripWidth(const Shown& shown, const std::vector<double>& widths, size_t strips) {
    const double repeated = sum(widths, 0) - sum(widths, shown.frozen);
    double tooNarrow = 0, enough = sum(widths, 0);
    for (size_t i = shown.frozen; i < widths.size(); ++i)
        tooNarrow = std::max(tooNarrow, repeated + widths[i]);
    if (strips == 1) return enough;
    if (cut(shown, widths, tooNarrow).size() <= strips) return tooNarrow;
    while (enough - tooNarrow > kRoundingRoom) {
        const double middle = (tooNarrow + enough) / 2;
        (cut(shown, widths, middle).size() <= strips ? enough : tooNarrow) = middle;
    }
    return enough;
}

// Puts texts one behind the other, as many on a line as fit.
class HeadLines {
  public:
    HeadLines(double width, const PrintFont& font) : width_(width), font_(font) {}

    void line(const std::string& text, const std::string& right, PrintedText::Kind kind) {
        if (text.empty() && right.empty()) return;
        const double room = right.empty() ? 0 : font_.width(right) + kGap;
        if (!text.empty())
            pieces_.push_back({.kind = kind, .top = top_, .width = width_ - room, .text = text});
        if (!right.empty())
            pieces_.push_back({.top = top_, .width = width_, .text = right, .atRight = true});
        endLine();
    }
    void flow(PrintedText piece) {
        piece.width = font_.width(piece.text);
        if (piece.kind == PrintedText::Chip) piece.width += chipRoom(font_);
        if (left_ > 0 && left_ + piece.width > width_) endLine();
        piece.left = left_;
        piece.top = top_;
        piece.width = std::min(piece.width, width_);
        left_ += piece.width + kGap;
        pieces_.push_back(std::move(piece));
    }
    void endFlow() {
        if (left_ > 0) endLine();
    }
    double height() const { return top_ > 0 ? top_ + font_.line / 2 : 0; }
    std::vector<PrintedText> take() { return std::move(pieces_); }

  private:
    void endLine() {
        left_ = 0;
        top_ += font_.line * kLineSpacing;
    }

    double width_, left_ = 0, top_ = 0;
    const PrintFont& font_;
    std::vector<PrintedText> pieces_;
};

void layHead(const Grid& grid, const PrintHeading& heading, const PrintPaper& paper,
             const PrintFont& font, PrintPages& into) {
    HeadLines lines(paper.width, font);
    lines.line(heading.company, heading.printed, PrintedText::Bold);
    lines.line(heading.title, "", PrintedText::Bold);
    for (const std::string& filter : heading.filters) lines.flow({.text = filter});
    for (const std::string& filter : filtersOf(grid)) lines.flow({.text = filter});
    lines.endFlow();
    for (const LegendEntry& entry : grid.legend)
        lines.flow({.kind = PrintedText::Chip, .text = entry.caption, .color = entry.color});
    lines.endFlow();
    into.headHeight = lines.height();
    into.head = lines.take();
}

}  // namespace

std::optional<PaperSize> paperNamed(const std::string& name) {
    if (equalsIgnoreCaseAscii(name, "A4")) return PaperSize::A4;
    if (equalsIgnoreCaseAscii(name, "A3")) return PaperSize::A3;
    return std::nullopt;
}

std::string paperName(PaperSize size) {
    return size == PaperSize::A3 ? "A3" : "A4";
}

PrintPages layPages(const Grid& grid, const PrintHeading& heading, const PrintPaper& paper,
                    const PrintFont& font) {
    PrintPages laid;
    layHead(grid, heading, paper, font, laid);
    Shown shown = shownOf(grid);
    if (shown.rows.empty() || shown.columns.empty()) return laid;

    std::vector<double> widths;
    for (const size_t c : shown.columns) widths.push_back(columnWidth(grid, c, shown.rows, font));
    // Columns that would take half of every strip are not repeated.
    if (sum(widths, 0) - sum(widths, shown.frozen) > paper.width / kLeastScale / 2 ||
        shown.frozen == widths.size())
        shown.frozen = 0;
    const size_t most = widths.size() - shown.frozen;
    size_t strips = 1;
    double width = stripWidth(shown, widths, strips);
    while (strips < most && paper.width / width < kLeastScale)
        width = stripWidth(shown, widths, ++strips);
    laid.scale = std::min(1.0, paper.width / width);

    size_t lines = 1;
    for (size_t i = 0; i < widths.size(); ++i)
        lines = std::max(lines, headerLines(grid.column(shown.columns[i]), widths[i], font).size());
    laid.rowHeight = font.line * kLineSpacing;
    laid.headerHeight = font.line * (static_cast<double>(lines) + kLineSpacing - 1);
    const double foot = font.line * kLineSpacing;
    const double room = (paper.height - laid.headHeight - foot) / laid.scale - laid.headerHeight;
    const size_t perPage = static_cast<size_t>(std::max(1.0, std::floor(room / laid.rowHeight)));

    const std::vector<Strip> cuts = cut(shown, widths, width);
    for (size_t first = 0; first < shown.rows.size(); first += perPage) {
        const auto begin = shown.rows.begin() + static_cast<std::ptrdiff_t>(first);
        const size_t count = std::min(perPage, shown.rows.size() - first);
        for (const Strip& strip : cuts)
            laid.pages.push_back(
                {strip, shown.frozen, {begin, begin + static_cast<std::ptrdiff_t>(count)}});
    }
    return laid;
}

std::vector<std::string> headerLines(const GridColumn& column, double width,
                                     const PrintFont& font) {
    std::vector<std::string> lines;
    if (!column.heading.empty()) {
        std::istringstream text(column.heading);
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    for (const std::string& word : words(column.caption)) {
        const double room = width - 2 * kPrintPadding;
        if (!lines.empty() && font.width(lines.back() + " " + word) <= room)
            lines.back() += " " + word;
        else
            lines.push_back(word);
    }
    return lines;
}

std::string printedText(const Grid& grid, size_t row, size_t c) {
    const GridColumn& column = grid.column(c);
    if (row == kTotals) return column.total ? grid.totalText(c) : "";
    if (grid.cellType(row, c) == CellType::Check) return grid.checked(row, c) ? "Yes" : "No";
    const std::string& text = grid.cell(row, c);
    return column.amount && !text.empty() ? groupIndian(text) : text;
}

std::optional<uint32_t> paperColor(Color color) {
    switch (color) {
        case kDefaultColor:
            return std::nullopt;
        case kButtonFaceColor:
            return 0xF0F0F0;
        case kToolTipColor:
            return 0xFFFFE1;
        default:
            return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
    }
}

double chipRoom(const PrintFont& font) {
    return font.line + kPrintPadding;
}

std::string pageNumber(size_t page, size_t pages) {
    return "Page " + std::to_string(page + 1) + " of " + std::to_string(pages);
}

}  // namespace owb
