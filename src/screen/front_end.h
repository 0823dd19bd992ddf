// What renders screens and takes the user's input: a toolkit's windows, or a script.
#pragma once

#include "screen/message_boxes.h"

namespace owb {

class Screen;

class FrontEnd : public MessageBoxes {
  public:
    // The screen has loaded: it is drawn before its activation runs.
    virtual void opened(Screen& screen) = 0;
    // Takes input for the screen and returns when it is no longer open.
    virtual void run(Screen& screen) = 0;
    virtual void closed(Screen& screen) = 0;
    // Between the rows of a long pass: draws what has changed and takes input meanwhile.
    virtual void refresh(Screen& screen) = 0;
    virtual void pause(int milliseconds) = 0;
};

}  // namespace owb
