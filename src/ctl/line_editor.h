// Lines typed at a terminal, with editing and a history that lasts over runs.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct editline;
struct history;

namespace owb::ctl {

class LineEditor {
  public:
    // All words that begin so, in the order in which they are shown.
    using Complete = std::function<std::vector<std::string>(const std::string& beginning)>;

    // Tab completes the word before the caret, as far as it is certain; where several go on
    // differently, they are listed. A history file that cannot be read or written is done without.
    LineEditor(const char* program, std::string historyFile, Complete complete);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    enum class Got { Line, Interrupted, End };
    // The line comes without its line break and goes into the history. Interrupted: Ctrl-C.
    Got read(const std::string& prompt, std::string& line);

  private:
    static char* promptOf(editline* editor);
    static unsigned char onTab(editline* editor, int key);
    unsigned char completeWord();

    editline* editor_;
    history* history_;
    std::string historyFile_, prompt_;
    Complete complete_;
};

}  // namespace owb::ctl
