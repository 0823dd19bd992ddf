#include "ctl/line_editor.h"

#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <filesystem>

namespace owb::ctl {

namespace {
constexpr int kLinesKept = 2000;

bool inWord(char c) {
    return isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '@' || c == '#';
}

// How many letters all words have in common at their beginnings.
size_t commonLength(const std::vector<std::string>& words) {
    size_t length = words.front().size();
    for (const std::string& word : words) {
        size_t n = 0;
        while (n < std::min(length, word.size()) && tolower(word[n]) == tolower(words.front()[n]))
            ++n;
        length = n;
    }
    return length;
}

}  // namespace

LineEditor::LineEditor(const char* program, std::string historyFile, Complete complete)
    : editor_(nullptr),
      history_(history_init()),
      historyFile_(std::move(historyFile)),
      complete_(std::move(complete)) {
    // Text is UTF-8 everywhere, whatever a bare environment says.
    const char* locale = std::setlocale(LC_CTYPE, "");
    if (!locale || !std::string_view(locale).ends_with("UTF-8"))
        std::setlocale(LC_CTYPE, "C.UTF-8");
    editor_ = el_init(program, stdin, stdout, stderr);
    HistEvent event;
    ::history(history_, &event, H_SETSIZE, kLinesKept);
    ::history(history_, &event, H_SETUNIQUE, 1);
    ::history(history_, &event, H_LOAD, historyFile_.c_str());
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(editor_, EL_PROMPT, promptOf);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_HIST, ::history, history_);
    el_set(editor_, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_set(editor_, EL_ADDFN, "owb-complete", "Completes a name", onTab);
    el_set(editor_, EL_BIND, "^I", "owb-complete", nullptr);
    el_source(editor_, nullptr);
}

LineEditor::~LineEditor() {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(historyFile_).parent_path(), ignored);
    HistEvent event;
    ::history(history_, &event, H_SAVE, historyFile_.c_str());
    ::history_end(history_);
    el_end(editor_);
}

char* LineEditor::promptOf(editline* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return static_cast<LineEditor*>(self)->prompt_.data();
}

unsigned char LineEditor::onTab(editline* editor, int) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return static_cast<LineEditor*>(self)->completeWord();
}

unsigned char LineEditor::completeWord() {
    const LineInfo* line = el_line(editor_);
    const char* from = line->cursor;
    while (from > line->buffer && inWord(from[-1])) --from;
    const std::string word(from, line->cursor);
    const std::vector<std::string> words = complete_(word);
    if (words.empty()) return CC_ERROR;
    const size_t common = commonLength(words);
    if (words.size() > 1 && common <= word.size()) {
        std::string list = "\n";
        for (const std::string& each : words) list += each + "  ";
        fputs((list + "\n").c_str(), stdout);
        return CC_REDISPLAY;
    }
    el_deletestr(editor_, static_cast<int>(word.size()));
    el_insertstr(editor_,
                 (words.front().substr(0, common) + (words.size() == 1 ? " " : "")).c_str());
    return CC_REFRESH;
}

LineEditor::Got LineEditor::read(const std::string& prompt, std::string& line) {
    prompt_ = prompt;
    int length = 0;
    errno = 0;
    const char* text = el_gets(editor_, &length);
    if (!text || length <= 0) {
        const bool interrupted = errno == EINTR;
        el_reset(editor_);
        return interrupted ? Got::Interrupted : Got::End;
    }
    line.assign(text, static_cast<size_t>(length));
    while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
    if (line.find_first_not_of(" \t") != std::string::npos) {
        HistEvent event;
        ::history(history_, &event, H_ENTER, line.c_str());
    }
    return Got::Line;
}

}  // namespace owb::ctl
