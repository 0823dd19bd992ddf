#include "script/script_front_end.h"

#include <gtest/gtest.h>

#include <sstream>

namespace owb {
namespace {

class Asking final : public Screen {
  public:
    explicit Asking(FrontEnd& frontEnd) : Screen(frontEnd, "Asking", "Ask\nme") {
        cmdAsk.onClick = [this] {
            Box box{"Delete\nit ?", "Confirm", BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::No};
            lblAnswer.caption = this->frontEnd().show(box) == BoxAnswer::Yes ? "yes" : "no";
        };
        cmdClose.onClick = [this] { close(); };
        cmdHidden.visible = false;
    }
    Label lblAnswer{*this, "lblAnswer"};
    Command cmdAsk{*this, "cmdAsk", "&Ask"};
    Command cmdHidden{*this, "cmdHidden", "Hidden"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};
};

struct Driven {
    std::string out, errors;
    bool failed;
};

Driven drive(const std::string& script) {
    std::istringstream in(script);
    std::ostringstream out, errors;
    ScriptFrontEnd frontEnd(in, out, errors);
    Asking(frontEnd).showModal();
    return {out.str(), errors.str(), frontEnd.failed()};
}

TEST(Script, DrivesAScreen) {
    struct Case {
        const char* what;
        const char* script;
        const char* out;  // between open and close
        const char* errors;
    };
    const char* asked = "box: question|Confirm|Delete\\nit ?|YesNo|";
    for (const Case& c :
         {Case{"a question takes its default", "click cmdAsk\nshow lblAnswer\n",
               "No\nlblAnswer: no | no | Yes | Yes\n", ""},
          {"or the queued answer", "answer yes\n\n# a comment\n  click CMDASK \nshow lblAnswer\n",
           "Yes\nlblAnswer: yes | yes | Yes | Yes\n", ""},
          {"an answer that the box does not offer", "answer Cancel\nclick cmdAsk\n", "No\n",
           "error: line 2: the box has no button Cancel\n"}}) {
        const Driven run = drive(c.script);
        EXPECT_EQ(run.out,
                  std::string("open: Asking|Ask\\nme\n") + asked + c.out + "close: Asking\n")
            << c.what;
        EXPECT_EQ(run.errors, c.errors) << c.what;
        EXPECT_EQ(run.failed, *c.errors != 0) << c.what;
    }
}

TEST(Script, TellsWhatItCannotDoAndGoesOn) {
    const Driven run = drive(
        "press cmdAsk\nclick cmdNone\nclick cmdHidden\nanswer Perhaps\nclick cmdClose\nclick "
        "cmdAsk\n");
    EXPECT_EQ(run.out, "open: Asking|Ask\\nme\nclose: Asking\n") << "nothing after the close";
    EXPECT_EQ(run.errors,
              "error: line 1: no such command: press\n"
              "error: line 2: no control cmdNone on Asking\n"
              "error: line 3: cmdHidden takes no click now\n"
              "error: line 4: no such answer: Perhaps\n");
}

}  // namespace
}  // namespace owb
