// Drives screens by text: one command a line in, what happens out. Used by tests, by owbctl and by
// anyone who wants to automate an entry. The commands are listed in script_commands.cpp; "owbctl
// help screen" prints that list.
//
// ROW and COL count what is visible from 1; COL may be a caption. Blank lines and lines that begin
// with # say nothing. Out go "open: <screen>|<caption>", "close: <screen>" and
// "box: <icon>|<title>|<text>|<buttons>|<answer>", line breaks as \n. A question without a queued
// answer takes its default button. When the input ends, the open screens close.
#pragma once

#include <deque>
#include <functional>
#include <istream>
#include <map>
#include <ostream>
#include <string>

#include "screen/print_pages.h"
#include "screen/screen.h"

namespace owb {

class ScriptFrontEnd final : public FrontEnd {
  public:
    // What a line got wrong goes to `errors` as "error: line <n>: <reason>"; the script goes on.
    ScriptFrontEnd(std::istream& in, std::ostream& out, std::ostream& errors)
        : in_(in), out_(out), errors_(errors) {}

    bool failed() const { return failed_; }

    // Writes a PDF file and gives its number of pages; throws std::exception. A program that can
    // draw sets it; without it "print" is refused.
    std::function<size_t(const Grid&, const PrintHeading&, PaperSize, const std::string& path)>
        printToPdf;

    BoxAnswer show(const Box& box) override;
    std::string askFile(const FileQuestion& question) override;
    void openFile(const std::string& path) override;
    void print(const Grid& grid, const PrintHeading& heading) override;
    void opened(Screen& screen) override;
    void run(Screen& screen) override;
    void closed(Screen& screen) override;
    void refresh(Screen&) override {}
    void pause(int) override {}

  private:
    void command(Screen& screen, const std::string& line);
    bool ownCommand(Screen& screen, const std::string& line);
    void printTo(Screen& screen, const std::string& words);
    void printTo(const Grid& grid, const PrintHeading& heading, PaperSize paper,
                 const std::string& path);
    void moveFocus(Screen& screen, const std::string& acted);
    void fail(const std::string& reason);

    std::istream& in_;
    std::ostream& out_;
    std::ostream& errors_;
    std::deque<BoxAnswer> answers_;
    std::deque<std::string> files_;
    std::map<const Screen*, std::string> focus_;  // the control's name
    size_t line_ = 0;
    bool failed_ = false;
};

}  // namespace owb
