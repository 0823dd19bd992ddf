#include "ctl/line_editor.h"

#include <histedit.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <filesystem>

namespace owb::ctl {

namespace {
constexpr int kLinesKept = 2000;
}

LineEditor::LineEditor(const char* program, std::string historyFile)
    : editor_(nullptr), history_(history_init()), historyFile_(std::move(historyFile)) {
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
