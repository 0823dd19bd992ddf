// Text between the models (UTF-8) and the toolkit.
#pragma once

#include <QString>
#include <string>

namespace owb {

inline QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}
inline std::string fromQt(const QString& text) {
    return text.toStdString();
}
// Stands behind the caption of what the user has changed and not yet saved.
inline const QString kChangedSign = QStringLiteral(" \u2022");

// A caption as it is read aloud: without the mark of its mnemonic.
inline QString withoutMnemonic(const std::string& caption) {
    return toQt(caption).remove('&');
}

}  // namespace owb
