#include "exchange/clsEXLFunc.h"

#include <filesystem>
#include <stdexcept>

#include "base/date_time.h"

namespace owb {

bool clsEXLFunc::EXLOpenBook(const std::string& path) {
    rows_.clear();
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) {
        boxes_.critical("File Not Found");
        return false;
    }
    try {
        rows_ = readSheet(path);
        return true;
    } catch (const std::bad_alloc&) {
        ExlFnIntErrorHandler(7, "");
    } catch (const std::exception& e) {
        ExlFnIntErrorHandler(1004, e.what());
    }
    return false;
}

SheetTable clsEXLFunc::EXLLoadData(Recordset& recordset, const std::string& name) {
    SheetTable table;
    table.name = name;
    for (size_t c = 0; c < recordset.FieldCount(); ++c) {
        const SqlType& type = recordset.Fields(c).type();
        table.header.push_back(recordset.Fields(c).name());
        table.columns.push_back({type.isNumber() ? SheetColumn::Number : SheetColumn::Text,
                                 type.kind == SqlKind::Numeric ? type.scale
                                 : type.kind == SqlKind::Float ? 2
                                                               : 0});
    }
    for (; !recordset.IsEOF(); recordset.MoveNext()) {
        std::vector<std::string> cells;
        for (size_t c = 0; c < recordset.FieldCount(); ++c) {
            const Value& value = recordset.Fields(c).value();
            cells.push_back(value.isDate() ? dateText(value.asDate(), "dd/mm/yyyy")
                                           : value.toText());
        }
        table.rows.push_back(std::move(cells));
    }
    return table;
}

std::string clsEXLFunc::ExlFnStrGetCol(int number) {
    std::string letters;
    for (; number > 0; number = (number - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (number - 1) % 26));
    return letters;
}

std::string clsEXLFunc::FnStrGetExcelCell(int row, int column) {
    return ExlFnStrGetCol(column) + std::to_string(row);
}

void clsEXLFunc::ExlFnIntErrorHandler(int number, const std::string& description) {
    switch (number) {
        case 7:
            boxes_.critical("Insufficient Memory, Close some Applications and Try Again.");
            break;
        case 76:
            boxes_.critical("Bad or Invalid File Path. Check File Path Again.", "Check File Path");
            break;
        default:
            boxes_.critical(
                "Error Number " + std::to_string(number) + "\nDescription : " + description,
                "Error in ModExcelFunction Module");
    }
}

}  // namespace owb
