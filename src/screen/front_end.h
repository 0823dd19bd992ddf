// What renders screens and takes the user's input: a toolkit's windows, or a script.
#pragma once

#include <string>

#include "screen/message_boxes.h"

namespace owb {

class Grid;
class Screen;
struct PrintHeading;

// Where a spreadsheet, or a file of another kind, goes to or comes from.
struct FileQuestion {
    std::string title;
    std::string suggested;  // path or name that stands there at first
    bool save = false;      // otherwise a file to open
    std::string kind = "";  // "Companies (*.owb)"; "": spreadsheets
};

class FrontEnd : public MessageBoxes {
  public:
    // The file that the user names; "" when there is none.
    virtual std::string askFile(const FileQuestion&) { return ""; }
    // Shows a file that was written in the desktop's program for it.
    virtual void openFile(const std::string&) {}
    // Shows the grid as it will stand on paper, from where the user prints or saves it.
    virtual void print(const Grid&, const PrintHeading&) {}
    // What was copied last, on the desktop or, without one, here.
    virtual std::string clipboard() { return clipboard_; }
    virtual void setClipboard(const std::string& text) { clipboard_ = text; }
    // The screen has loaded: it is drawn before its activation runs.
    virtual void opened(Screen& screen) = 0;
    // Takes input for the screen and returns when it is no longer open.
    virtual void run(Screen& screen) = 0;
    virtual void closed(Screen& screen) = 0;
    // Between the rows of a long pass: draws what has changed and takes input meanwhile.
    virtual void refresh(Screen& screen) = 0;
    virtual void pause(int milliseconds) = 0;

  private:
    std::string clipboard_;
};

}  // namespace owb
