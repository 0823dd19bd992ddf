#include "qt/window_memory.h"

#include <QByteArray>
#include <QStringList>
#include <QWidget>

#include "qt/qt_text.h"

namespace owb {

namespace {
constexpr const char* kSection = "LeaveMgmt";
}

// A store that cannot be written costs the user the places of the windows, not the screen.
void WindowMemory::save(const std::string& key, const std::string& value) {
    try {
        if (settings_.GetSetting(kSection, key) != value)
            settings_.SaveSetting(kSection, key, value);
    } catch (const std::exception&) {
    }
}

void WindowMemory::restoreWindow(const std::string& screen, QWidget& window) const {
    const std::string held = settings_.GetSetting(kSection, "Window " + screen);
    if (!held.empty()) window.restoreGeometry(QByteArray::fromBase64(held.c_str()));
}

void WindowMemory::rememberWindow(const std::string& screen, const QWidget& window) {
    save("Window " + screen, window.saveGeometry().toBase64().toStdString());
}

std::vector<int> WindowMemory::columns(const std::string& grid, size_t count) const {
    const QStringList parts = toQt(settings_.GetSetting(kSection, "Columns " + grid)).split(',');
    std::vector<int> widths;
    for (const QString& part : parts) widths.push_back(part.toInt());
    if (widths.size() != count) widths.clear();
    return widths;
}

void WindowMemory::rememberColumns(const std::string& grid, const std::vector<int>& widths) {
    QStringList parts;
    for (const int width : widths) parts << QString::number(width);
    save("Columns " + grid, fromQt(parts.join(',')));
}

int WindowMemory::habit(const std::string& grid, const std::string& name, int otherwise) const {
    bool good = false;
    const int held = toQt(settings_.GetSetting(kSection, name + " " + grid)).toInt(&good);
    return good ? held : otherwise;
}

void WindowMemory::rememberHabit(const std::string& grid, const std::string& name, int value,
                                 int otherwise) {
    if (value != habit(grid, name, otherwise)) save(name + " " + grid, std::to_string(value));
}

std::string WindowMemory::paper() const {
    return settings_.GetSetting(kSection, "Print paper");
}

}  // namespace owb
