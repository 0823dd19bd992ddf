#include "qt/key_names.h"

#include <QKeyEvent>
#include <QKeySequence>

#include "qt/qt_text.h"

namespace owb {

std::string keyName(const QKeyEvent& event) {
    const Qt::KeyboardModifiers with =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier);
    const int key = event.key();
    if (key == Qt::Key_unknown || (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock)) return "";
    const bool typesText = key < Qt::Key_Escape;
    if (typesText && !(with & (Qt::ControlModifier | Qt::AltModifier))) return "";
    const int plain = key == Qt::Key_Return ? static_cast<int>(Qt::Key_Enter) : key;
    return fromQt(QKeySequence(plain | with.toInt()).toString(QKeySequence::PortableText));
}

}  // namespace owb
