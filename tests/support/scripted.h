// Opens one screen on a test's company and drives it by a script, as owbctl does.
#pragma once

#include <sstream>
#include <string>
#include <utility>

#include "script/script_front_end.h"
#include "support/company.h"

namespace owb::test {

struct Scripted {
    std::string boxes;   // "<text>|<answer>" of each box of the screen, a line each
    std::string shown;   // what show and dump printed
    std::string errors;  // lines of the script that could not be done
};

// The arguments are the screen's own, after session and front end.
template <class S, class... Arguments>
Scripted drive(Company& company, const std::string& script, Arguments&&... arguments) {
    std::istringstream in(script);
    std::ostringstream out, errors;
    ScriptFrontEnd frontEnd(in, out, errors);
    S(company.session, frontEnd, std::forward<Arguments>(arguments)...).showModal();
    Scripted result{"", "", errors.str()};
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string icon, title, text, buttons, answer;
        if (line.rfind("box: ", 0) == 0) {
            for (std::string* field : {&icon, &title, &text, &buttons, &answer})
                std::getline(fields, *field, '|');
            result.boxes += text + (buttons == "OK" ? "" : "|" + answer) + "\n";
        } else if (line.rfind("open: ", 0) != 0 && line.rfind("close: ", 0) != 0) {
            result.shown += line + "\n";
        }
    }
    return result;
}

// The same as an act that is tried with disturbances (support/rehearsal.h): what the screen told
// stands among the company's boxes, but for its questions and the message of a good save.
template <class S, class... Arguments>
void act(Company& company, const std::string& script, Arguments&&... arguments) {
    const Scripted done = drive<S>(company, script, std::forward<Arguments>(arguments)...);
    std::erase_if(company.boxes.shown, [](const Box& box) { return box.text == "Updated"; });
    std::istringstream lines(done.boxes);
    for (std::string line; std::getline(lines, line);)
        if (line.find('|') == std::string::npos) company.boxes.shown.push_back({line});
}

// So many statements of an act are tried in a run of all tests (OWB_EVERY=1: all of them).
constexpr size_t kPlaces = 2;

}  // namespace owb::test
