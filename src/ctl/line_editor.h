// Lines typed at a terminal, with editing and a history that lasts over runs.
#pragma once

#include <string>

struct editline;
struct history;

namespace owb::ctl {

class LineEditor {
  public:
    // A history file that cannot be read or written is done without.
    LineEditor(const char* program, std::string historyFile);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    enum class Got { Line, Interrupted, End };
    // The line comes without its line break and goes into the history. Interrupted: Ctrl-C.
    Got read(const std::string& prompt, std::string& line);

  private:
    static char* promptOf(editline* editor);

    editline* editor_;
    history* history_;
    std::string historyFile_, prompt_;
};

}  // namespace owb::ctl
