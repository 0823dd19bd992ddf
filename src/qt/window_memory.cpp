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

std::vector<int> WindowMemory::numbers(const std::string& key, size_t count) const {
    const QStringList parts = toQt(settings_.GetSetting(kSection, key)).split(',');
    std::vector<int> numbers;
    for (const QString& part : parts) numbers.push_back(part.toInt());
    if (numbers.size() != count) numbers.clear();
    return numbers;
}

void WindowMemory::saveNumbers(const std::string& key, const std::vector<int>& numbers) {
    QStringList parts;
    for (const int number : numbers) parts << QString::number(number);
    save(key, fromQt(parts.join(',')));
}

std::vector<int> WindowMemory::columns(const std::string& grid, size_t count) const {
    return numbers("Columns " + grid, count);
}

void WindowMemory::rememberColumns(const std::string& grid, const std::vector<int>& widths) {
    saveNumbers("Columns " + grid, widths);
}

std::vector<size_t> WindowMemory::order(const std::string& grid, size_t count) const {
    const std::vector<int> held = numbers("Order " + grid, count);
    return {held.begin(), held.end()};
}

void WindowMemory::rememberOrder(const std::string& grid, const std::vector<size_t>& order) {
    saveNumbers("Order " + grid, {order.begin(), order.end()});
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
