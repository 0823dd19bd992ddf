#include "script/script_front_end.h"

#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <thread>
#include <vector>

#include "base/utf8.h"
#include "script/script_commands.h"

namespace owb {

namespace {

const char* iconName(BoxIcon icon) {
    static constexpr std::array names = {"none", "critical", "question", "warning", "information"};
    return names[static_cast<size_t>(icon)];
}

struct Buttons {
    const char* name;
    std::vector<BoxAnswer> answers;
};

const Buttons& buttonsOf(BoxButtons buttons) {
    static const std::map<BoxButtons, Buttons> all = {
        {BoxButtons::Ok, {"OK", {BoxAnswer::Ok}}},
        {BoxButtons::OkCancel, {"OKCancel", {BoxAnswer::Ok, BoxAnswer::Cancel}}},
        {BoxButtons::YesNo, {"YesNo", {BoxAnswer::Yes, BoxAnswer::No}}},
        {BoxButtons::YesNoCancel,
         {"YesNoCancel", {BoxAnswer::Yes, BoxAnswer::No, BoxAnswer::Cancel}}},
    };
    return all.at(buttons);
}

constexpr std::array kAnswerNames = {"OK", "Cancel", "Yes", "No"};

std::optional<BoxAnswer> answerNamed(const std::string& word) {
    for (size_t i = 0; i < kAnswerNames.size(); ++i)
        if (equalsIgnoreCaseAscii(word, kAnswerNames[i])) return static_cast<BoxAnswer>(i);
    return std::nullopt;
}

}  // namespace

BoxAnswer ScriptFrontEnd::show(const Box& box) {
    const Buttons& buttons = buttonsOf(box.buttons);
    auto offered = [&](BoxAnswer answer) {
        return std::find(buttons.answers.begin(), buttons.answers.end(), answer) !=
               buttons.answers.end();
    };
    BoxAnswer answer = offered(box.defaultAnswer) ? box.defaultAnswer : buttons.answers.front();
    if (buttons.answers.size() > 1 && !answers_.empty()) {
        const BoxAnswer queued = answers_.front();
        answers_.pop_front();
        if (offered(queued))
            answer = queued;
        else
            fail(std::string("the box has no button ") + kAnswerNames[static_cast<size_t>(queued)]);
    }
    out_ << "box: " << iconName(box.icon) << '|' << oneLine(box.title) << '|' << oneLine(box.text)
         << '|' << buttons.name << '|' << kAnswerNames[static_cast<size_t>(answer)] << std::endl;
    return answer;
}

// Without a queued path nobody names a file.
std::string ScriptFrontEnd::askFile(const FileQuestion& question) {
    std::string path;
    if (!files_.empty()) {
        path = files_.front();
        files_.pop_front();
    }
    out_ << "file: " << (question.save ? "save" : "open") << '|' << oneLine(question.title) << '|'
         << path << std::endl;
    return path;
}

void ScriptFrontEnd::openFile(const std::string& path) {
    out_ << "show: " << path << std::endl;
}

void ScriptFrontEnd::opened(Screen& screen) {
    out_ << "open: " << screen.name() << '|' << oneLine(screen.caption) << std::endl;
}

void ScriptFrontEnd::closed(Screen& screen) {
    focus_.erase(&screen);
    out_ << "close: " << screen.name() << std::endl;
}

void ScriptFrontEnd::run(Screen& screen) {
    while (screen.closesItself && screen.isOpen()) {
        screen.tick();
        if (screen.isOpen())
            std::this_thread::sleep_for(std::chrono::milliseconds(screen.timerInterval));
    }
    std::string line;
    while (screen.isOpen()) {
        if (!std::getline(in_, line)) {
            screen.close();
            return;
        }
        ++line_;
        line = trim(line);
        if (screen.timerInterval > 0) screen.tick();
        if (screen.isOpen() && !line.empty() && line[0] != '#') command(screen, line);
    }
}

void ScriptFrontEnd::command(Screen& screen, const std::string& line) {
    try {
        checkUsage(line);
        if (ownCommand(screen, line)) return;
        const auto acted = runControlCommand(screen, line, out_);
        moveFocus(screen, acted.value_or(""));
    } catch (const ScriptError& e) {
        fail(e.reason);
    }
}

// The commands that concern no single control.
bool ScriptFrontEnd::ownCommand(Screen& screen, const std::string& line) {
    std::string rest = line;
    const std::string verb = takeWord(rest);
    if (verb == "close") {
        screen.closeByUser();
    } else if (verb == "answer") {
        const auto answer = answerNamed(rest);
        if (!answer)
            throw ScriptError{"no such answer: " + rest + ": there are Yes, No, Cancel, OK"};
        answers_.push_back(*answer);
    } else if (verb == "file") {
        files_.push_back(rest);
    } else if (verb == "print") {
        printTo(screen, rest);
    } else if (verb == "focus") {
        moveFocus(screen, "");
        const std::string& name = focus_[&screen];
        out_ << "focus: " << (name.empty() ? "none" : name) << std::endl;
    } else {
        return false;
    }
    return true;
}

// Into the file that is queued, as other questions for one are answered.
void ScriptFrontEnd::print(const Grid& grid, const PrintHeading& heading) {
    const std::string path = askFile({.title = "Print", .save = true});
    if (!path.empty()) printTo(grid, heading, PaperSize::A4, path);
}

void ScriptFrontEnd::printTo(Screen& screen, const std::string& words) {
    std::string rest = words;
    const Grid& grid = gridNamed(screen, takeWord(rest));
    const auto isFile = [](const std::string& text) { return text.ends_with(".pdf"); };
    std::optional<PaperSize> paper = PaperSize::A4;
    if (!isFile(rest)) paper = paperNamed(takeLastWord(rest));
    if (!isFile(rest) || !paper)
        throw ScriptError{"print wants a file whose name ends in .pdf, and A4 or A3 behind it"};
    printTo(grid, screen.printHeading(), *paper, rest);
}

void ScriptFrontEnd::printTo(const Grid& grid, const PrintHeading& heading, PaperSize paper,
                             const std::string& path) {
    if (!printToPdf) throw ScriptError{"this program does not print"};
    try {
        const size_t pages = printToPdf(grid, heading, paper, path);
        out_ << "print: " << path << '|' << pages << (pages == 1 ? " page" : " pages") << std::endl;
    } catch (const std::exception& e) {
        throw ScriptError{e.what()};
    }
}

// The focus stands where the user was last, or where the screen has put it since.
void ScriptFrontEnd::moveFocus(Screen& screen, const std::string& acted) {
    const Control* control = screen.takeFocus();
    if (!control && !acted.empty()) control = screen.find(acted);
    // A label, a bar and a menu leave it where it is.
    const bool takes = control && !dynamic_cast<const Label*>(control) &&
                       !dynamic_cast<const ProgressBar*>(control) &&
                       !dynamic_cast<const MenuItem*>(control);
    if (takes) focus_[&screen] = control->name();
}

void ScriptFrontEnd::fail(const std::string& reason) {
    failed_ = true;
    errors_ << "error: line " << line_ << ": " << reason << std::endl;
}

}  // namespace owb
