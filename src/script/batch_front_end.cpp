#include "script/batch_front_end.h"

namespace owb {

// A screen that works by itself tells where it is in its label lblProgress and in its bar.
void BatchFrontEnd::refresh(Screen& screen) {
    if (const Control* label = screen.find("lblProgress")) progress_.status(label->text());
    for (const Control* control : screen.controls())
        if (const auto* bar = dynamic_cast<const ProgressBar*>(control))
            progress_.step(bar->value, bar->maximum);
    if (progress_.cancelled())
        if (Control* cancel = screen.find("cmdCancel")) cancel->click();
}

}  // namespace owb
