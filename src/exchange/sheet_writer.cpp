// The layout of an exported table: headings merged and bold, borders around every cell of the
// block, columns as wide as their texts, what lies behind the last column out of sight.
#include <xlsxwriter.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "base/date_time.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "exchange/numeric_locale.h"
#include "exchange/sheet_file.h"

namespace owb {

namespace {

constexpr size_t kLongestName = 31;
constexpr lxw_col_t kLastOldColumn = 255;  // "IV"

// A sheet's name bears none of []:*?/\ and no quote at its ends.
std::string sheetName(const std::string& title) {
    std::string name;
    for (const char c : utf8Substr(title, 0, kLongestName))
        name += std::string_view("[]:*?/\\'").find(c) == std::string_view::npos ? c : ' ';
    return trim(name).empty() ? "Sheet1" : trim(name);
}

class Writer {
  public:
    Writer(const std::string& path, const SheetTable& table)
        : table_(table),
          book_(workbook_new(path.c_str())),
          sheet_(workbook_add_worksheet(book_, sheetName(table.name).c_str())) {}

    void write() {
        lxw_format* const heading = format();
        format_set_bold(heading);
        format_set_align(heading, LXW_ALIGN_CENTER);
        for (const std::string& text : table_.headings) {
            if (width() > 1)
                worksheet_merge_range(sheet_, row_, 0, row_, lastColumn(), text.c_str(), heading);
            else
                worksheet_write_string(sheet_, row_, 0, text.c_str(), heading);
            ++row_;
        }
        if (!table_.header.empty()) writeHeader();
        worksheet_freeze_panes(sheet_, table_.header.empty() ? 0 : row_,
                               static_cast<lxw_col_t>(table_.frozenColumns));
        for (size_t r = 0; r < table_.rows.size(); ++r) {
            for (size_t c = 0; c < width(); ++c)
                writeCell(c, table_.rows[r][c], cellFormat(c, lookOf(r, c)));
            ++row_;
        }
        writeLegend();
        fitColumns();
        if (const lxw_error error = workbook_close(book_); error != LXW_NO_ERROR)
            throw std::runtime_error(lxw_strerror(error));
    }

  private:
    size_t width() const { return table_.columns.size(); }
    lxw_col_t lastColumn() const { return static_cast<lxw_col_t>(width() - 1); }

    lxw_format* format() {
        lxw_format* const f = workbook_add_format(book_);
        format_set_font_name(f, "VERDANA");
        format_set_font_size(f, 10);
        return f;
    }

    SheetLook lookOf(size_t row, size_t c) const {
        const auto found = table_.looks.find({row, c});
        return found == table_.looks.end() ? SheetLook{} : found->second;
    }

    // Cells that look alike share a format: a file may hold few of them.
    lxw_format* cellFormat(size_t c, const SheetLook& look) {
        const char* const numbers = numberFormat(table_.columns[c]);
        lxw_format*& f = formats_[{numbers, look}];
        if (f != nullptr) return f;
        f = format();
        format_set_border(f, LXW_BORDER_THIN);
        format_set_num_format(f, numbers);
        if (look.back) format_set_bg_color(f, colorOf(*look.back));
        if (look.fore) format_set_font_color(f, colorOf(*look.fore));
        return f;
    }

    static const char* numberFormat(const SheetColumn& column) {
        if (column.kind == SheetColumn::Text) return "@";
        if (column.kind == SheetColumn::Date) return "dd/mm/yyyy";
        return column.decimals > 0 ? "0.00" : "0";
    }

    // Its library takes 0 for no colour.
    static lxw_color_t colorOf(SheetColor color) {
        return color == 0 ? lxw_color_t{LXW_COLOR_BLACK} : color;
    }

    void writeLegend() {
        if (table_.legend.empty()) return;
        ++row_;
        for (const SheetLegend& entry : table_.legend) {
            lxw_format* const f = format();
            format_set_border(f, LXW_BORDER_THIN);
            format_set_bg_color(f, colorOf(entry.color));
            worksheet_write_string(sheet_, row_++, 0, entry.text.c_str(), f);
        }
    }

    void writeHeader() {
        lxw_format* const f = format();
        format_set_bold(f);
        format_set_border(f, LXW_BORDER_THIN);
        for (size_t c = 0; c < width(); ++c)
            worksheet_write_string(sheet_, row_, static_cast<lxw_col_t>(c),
                                   table_.header[c].c_str(), f);
        ++row_;
    }

    // A text is always a string cell: what begins with "=" is never a formula.
    void writeCell(size_t c, const std::string& text, lxw_format* f) {
        const auto column = static_cast<lxw_col_t>(c);
        if (text.empty()) {
            worksheet_write_blank(sheet_, row_, column, f);
        } else if (table_.columns[c].kind == SheetColumn::Number && isNumber(text)) {
            std::string plain = text;
            std::erase(plain, ',');
            worksheet_write_number(sheet_, row_, column, textToNumber(plain), f);
        } else if (const auto date = dateIn(c, text)) {
            worksheet_write_number(sheet_, row_, column, date->day - kSheetDayZero, f);
        } else {
            worksheet_write_string(sheet_, row_, column, text.c_str(), f);
        }
    }

    std::optional<DateTime> dateIn(size_t c, const std::string& text) const {
        if (table_.columns[c].kind != SheetColumn::Date) return std::nullopt;
        return parseTypedDate(text);
    }

    static bool isNumber(const std::string& text) {
        return text.find_first_not_of("+-0123456789.,") == std::string::npos &&
               text.find_first_of("0123456789") != std::string::npos;
    }

    void fitColumns() {
        for (size_t c = 0; c < width(); ++c) {
            size_t longest = table_.header.empty() ? 0 : utf8Length(table_.header[c]);
            for (const std::vector<std::string>& cells : table_.rows)
                longest = std::max(longest, utf8Length(cells[c]));
            const auto column = static_cast<lxw_col_t>(c);
            // Verdana is wider than the font in whose digits a column is measured.
            worksheet_set_column(sheet_, column, column,
                                 std::min(80.0, static_cast<double>(longest) * 1.25 + 2), nullptr);
        }
        if (lastColumn() >= kLastOldColumn) return;
        lxw_row_col_options hidden{};
        hidden.hidden = LXW_TRUE;
        worksheet_set_column_opt(sheet_, static_cast<lxw_col_t>(width()), kLastOldColumn,
                                 LXW_DEF_COL_WIDTH, nullptr, &hidden);
    }

    const SheetTable& table_;
    lxw_workbook* book_;
    lxw_worksheet* sheet_;
    lxw_row_t row_ = 0;
    std::map<std::pair<std::string, SheetLook>, lxw_format*> formats_;
};

}  // namespace

void writeSheet(const std::string& path, const SheetTable& table) {
    const NumericLocale numbersWithPoint;
    const std::string unfinished = path + ".part";
    try {
        Writer(unfinished, table).write();
        std::filesystem::rename(unfinished, path);
    } catch (const std::exception& e) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        throw std::runtime_error("The file " + path + " cannot be written: " + e.what() + ".");
    }
}

}  // namespace owb
