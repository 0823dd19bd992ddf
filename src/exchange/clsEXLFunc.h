// Spreadsheet books as the screens use them: a sheet that is read back, a query's rows as a table,
// the addresses of cells, and the messages for what can go wrong.
#pragma once

#include <string>
#include <vector>

#include "db/recordset.h"
#include "exchange/sheet_file.h"
#include "screen/message_boxes.h"

namespace owb {

class clsEXLFunc {
  public:
    explicit clsEXLFunc(MessageBoxes& boxes) : boxes_(boxes) {}

    // Reads the first sheet of a book; false after a message.
    bool EXLOpenBook(const std::string& path);
    const std::vector<SheetRow>& rows() const { return rows_; }
    // The recordset's rows from the current one on, columns under their names: dates as DD/MM/YYYY.
    static SheetTable EXLLoadData(Recordset& recordset, const std::string& name);

    static std::string ExlFnStrGetCol(int number);  // 1 "A" to 26 "Z", 27 "AA"; "" below 1
    static std::string FnStrGetExcelCell(int row, int column);  // "C7"
    // The message for an error of the spreadsheet layer.
    void ExlFnIntErrorHandler(int number, const std::string& description);

  private:
    MessageBoxes& boxes_;
    std::vector<SheetRow> rows_;
};

}  // namespace owb
