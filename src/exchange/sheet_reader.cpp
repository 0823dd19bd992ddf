// Reads the first sheet of a spreadsheet file through the libraries that know the formats.
#include <freexl.h>

#include <filesystem>
#include <orcus/orcus_xlsx.hpp>
#include <orcus/spreadsheet/import_interface.hpp>
#include <stdexcept>
#include <utility>

#include "base/date_time.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "exchange/numeric_locale.h"
#include "exchange/sheet_file.h"

namespace owb {

namespace {

namespace os = orcus::spreadsheet;

void put(std::vector<SheetRow>& rows, size_t row, size_t column, SheetCell cell) {
    if (rows.size() <= row) rows.resize(row + 1);
    if (rows[row].size() <= column) rows[row].resize(column + 1);
    rows[row][column] = std::move(cell);
}

// --- .xlsx ---

class SharedStrings final : public os::iface::import_shared_strings {
  public:
    size_t append(std::string_view s) override { return add(s); }
    size_t add(std::string_view s) override {
        texts_.emplace_back(s);
        return texts_.size() - 1;
    }
    void set_segment_font(size_t) override {}
    void set_segment_bold(bool) override {}
    void set_segment_italic(bool) override {}
    void set_segment_font_name(std::string_view) override {}
    void set_segment_font_size(double) override {}
    void set_segment_font_color(os::color_elem_t, os::color_elem_t, os::color_elem_t,
                                os::color_elem_t) override {}
    void append_segment(std::string_view s) override { segments_ += s; }
    size_t commit_segments() override {
        const size_t at = add(segments_);
        segments_.clear();
        return at;
    }
    const std::string& text(size_t index) const { return texts_.at(index); }

  private:
    std::vector<std::string> texts_;
    std::string segments_;
};

// "C7" and "A1:C7", as the parts of the file name cells.
class CellNames final : public os::iface::import_reference_resolver {
  public:
    os::src_address_t resolve_address(std::string_view name) override {
        os::src_address_t cell{0, 0, 0};
        for (const char c : name) {
            if (c >= 'A' && c <= 'Z')
                cell.column = cell.column * 26 + (c - 'A' + 1);
            else if (c >= '0' && c <= '9')
                cell.row = cell.row * 10 + (c - '0');
        }
        --cell.column;
        --cell.row;
        return cell;
    }
    os::src_range_t resolve_range(std::string_view name) override {
        const size_t colon = std::min(name.find(':'), name.size());
        const os::src_address_t first = resolve_address(name.substr(0, colon));
        return {first, colon == name.size() ? first : resolve_address(name.substr(colon + 1))};
    }
};

// A formula counts as the value that it had when the file was saved.
class FormulaResults final : public os::iface::import_formula {
  public:
    explicit FormulaResults(std::vector<SheetRow>& rows) : rows_(rows) {}
    void set_position(os::row_t row, os::col_t column) override {
        row_ = static_cast<size_t>(row);
        column_ = static_cast<size_t>(column);
    }
    void set_formula(os::formula_grammar_t, std::string_view) override {}
    void set_shared_formula_index(size_t) override {}
    void set_result_string(std::string_view value) override { value_ = std::string(value); }
    void set_result_value(double value) override { value_ = value; }
    void set_result_bool(bool value) override { value_ = value ? 1.0 : 0.0; }
    void set_result_empty() override { value_ = {}; }
    void commit() override { put(rows_, row_, column_, std::exchange(value_, {})); }

  private:
    std::vector<SheetRow>& rows_;
    size_t row_ = 0, column_ = 0;
    SheetCell value_;
};

class Sheet final : public os::iface::import_sheet {
  public:
    Sheet(std::vector<SheetRow>& rows, SharedStrings& strings)
        : rows_(rows), strings_(strings), formulas_(rows) {}

    os::iface::import_formula* get_formula() override { return &formulas_; }
    void set_auto(os::row_t row, os::col_t column, std::string_view s) override {
        set(row, column, std::string(s));
    }
    void set_string(os::row_t row, os::col_t column, os::string_id_t index) override {
        set(row, column, strings_.text(index));
    }
    void set_value(os::row_t row, os::col_t column, double value) override {
        set(row, column, value);
    }
    void set_bool(os::row_t row, os::col_t column, bool value) override {
        set(row, column, value ? 1.0 : 0.0);
    }
    void set_date_time(os::row_t row, os::col_t column, int year, int month, int day, int, int,
                       double) override {
        set(row, column,
            static_cast<double>(DateTime::dayNumber(year, month, day) - kSheetDayZero));
    }
    void set_format(os::row_t, os::col_t, size_t) override {}
    void set_format(os::row_t, os::col_t, os::row_t, os::col_t, size_t) override {}
    void fill_down_cells(os::row_t, os::col_t, os::row_t) override {}
    os::range_size_t get_sheet_size() const override { return {1048576, 16384}; }

  private:
    void set(os::row_t row, os::col_t column, SheetCell cell) {
        put(rows_, static_cast<size_t>(row), static_cast<size_t>(column), std::move(cell));
    }

    std::vector<SheetRow>& rows_;
    SharedStrings& strings_;
    FormulaResults formulas_;
};

// Keeps the first sheet; the others are read and let go.
class Book final : public os::iface::import_factory {
  public:
    os::iface::import_shared_strings* get_shared_strings() override { return &strings_; }
    os::iface::import_reference_resolver* get_reference_resolver(
        os::formula_ref_context_t) override {
        return &names_;
    }
    os::iface::import_sheet* append_sheet(os::sheet_t index, std::string_view) override {
        return get_sheet(index);
    }
    os::iface::import_sheet* get_sheet(std::string_view) override { return &first_; }
    os::iface::import_sheet* get_sheet(os::sheet_t index) override {
        return index == 0 ? &first_ : &rest_;
    }
    void finalize() override {}

    std::vector<SheetRow> rows;

  private:
    std::vector<SheetRow> ignored_;
    SharedStrings strings_;
    CellNames names_;
    Sheet first_{rows, strings_}, rest_{ignored_, strings_};
};

std::vector<SheetRow> readXlsx(const std::string& path) {
    Book book;
    orcus::orcus_xlsx(&book).read_file(path);
    return std::move(book.rows);
}

// --- .xls ---

class XlsFile {
  public:
    explicit XlsFile(const std::string& path) {
        if (freexl_open(path.c_str(), &handle_) != FREEXL_OK ||
            freexl_select_active_worksheet(handle_, 0) != FREEXL_OK)
            throw std::runtime_error("it is no spreadsheet that can be read");
    }
    ~XlsFile() { freexl_close(handle_); }
    XlsFile(const XlsFile&) = delete;

    std::vector<SheetRow> rows() const {
        unsigned int count = 0;
        unsigned short columns = 0;
        if (freexl_worksheet_dimensions(handle_, &count, &columns) != FREEXL_OK)
            throw std::runtime_error("its first sheet cannot be read");
        std::vector<SheetRow> rows;
        for (unsigned int r = 0; r < count; ++r)
            for (unsigned short c = 0; c < columns; ++c) {
                FreeXL_CellValue value{};
                if (freexl_get_cell_value(handle_, r, c, &value) != FREEXL_OK) continue;
                if (value.type != FREEXL_CELL_NULL) put(rows, r, c, cellOf(value));
            }
        return rows;
    }

  private:
    static SheetCell cellOf(const FreeXL_CellValue& value) {
        if (value.type == FREEXL_CELL_INT) return static_cast<double>(value.value.int_value);
        if (value.type == FREEXL_CELL_DOUBLE) return value.value.double_value;
        const std::string text = value.value.text_value;
        if (value.type != FREEXL_CELL_DATE && value.type != FREEXL_CELL_DATETIME) return text;
        const auto date = parseDate(text);
        return date ? SheetCell(static_cast<double>(date->day - kSheetDayZero)) : SheetCell(text);
    }

    const void* handle_ = nullptr;
};

bool isEmpty(const SheetCell& cell) {
    return cell.index() == 0 ||
           (std::holds_alternative<std::string>(cell) && std::get<std::string>(cell).empty());
}

}  // namespace

std::vector<SheetRow> readSheet(const std::string& path) {
    if (!std::filesystem::is_regular_file(path)) throw std::runtime_error("File Not Found");
    const std::string ending = lowerCase(std::filesystem::path(path).extension().string());
    std::vector<SheetRow> rows;
    const NumericLocale numbersWithPoint;
    try {
        if (ending == ".xlsx")
            rows = readXlsx(path);
        else if (ending == ".xls")
            rows = XlsFile(path).rows();
        else
            throw std::runtime_error("only .xlsx and .xls files are read");
    } catch (const std::exception& e) {
        throw std::runtime_error("The file " + path + " cannot be read: " + e.what() + ".");
    }
    for (SheetRow& row : rows)
        while (!row.empty() && isEmpty(row.back())) row.pop_back();
    while (!rows.empty() && rows.back().empty()) rows.pop_back();
    return rows;
}

std::string sheetText(const SheetCell& cell) {
    if (const auto* number = std::get_if<double>(&cell)) return numberText(*number);
    if (const auto* text = std::get_if<std::string>(&cell)) return *text;
    return "";
}

std::string sheetDateText(const SheetCell& cell) {
    const auto* number = std::get_if<double>(&cell);
    if (!number) return sheetText(cell);
    if (*number < 1 || *number > DateTime::kMaxDay - kSheetDayZero) return numberText(*number);
    return dateText({static_cast<int32_t>(*number) + kSheetDayZero, 0}, "dd/mm/yyyy");
}

}  // namespace owb
