#include "tsql/run/raised_message.h"

#include <algorithm>

#include "base/db_error.h"
#include "base/utf8.h"

namespace owb::tsql {

namespace {

std::string numberText(int64_t n, char kind, bool alternate) {
    char buffer[32];
    const auto bits = static_cast<unsigned>(n);
    switch (kind) {
        case 'x':
            std::snprintf(buffer, sizeof buffer, alternate ? "%#x" : "%x", bits);
            break;
        case 'X':
            std::snprintf(buffer, sizeof buffer, alternate ? "%#X" : "%X", bits);
            break;
        case 'o':
            std::snprintf(buffer, sizeof buffer, alternate ? "%#o" : "%o", bits);
            break;
        case 'u':
            return std::to_string(bits);
        default:
            return std::to_string(n);
    }
    return buffer;
}

}  // namespace

std::string raisedMessage(const std::string& format, const std::vector<Value>& values) {
    std::string out;
    size_t next = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            out += format[i];
            continue;
        }
        const size_t start = i++;
        if (i < format.size() && format[i] == '%') {
            out += '%';
            continue;
        }
        bool left = false, plus = false, zero = false, alternate = false;
        for (; i < format.size() && std::string_view("-+0# ").find(format[i]) != std::string::npos;
             ++i) {
            left |= format[i] == '-';
            plus |= format[i] == '+';
            zero |= format[i] == '0';
            alternate |= format[i] == '#';
        }
        const auto count = [&] {
            if (i < format.size() && format[i] == '*') {
                ++i;
                return next < values.size() ? static_cast<int>(values[next++].toInt()) : 0;
            }
            int n = 0;
            for (; i < format.size() && format[i] >= '0' && format[i] <= '9' && n < 10000; ++i)
                n = n * 10 + (format[i] - '0');
            return n;
        };
        const auto width = static_cast<size_t>(std::max(0, count()));
        int precision = -1;
        if (i < format.size() && format[i] == '.') {
            ++i;
            precision = count();
        }
        if (i < format.size() && (format[i] == 'l' || format[i] == 'h')) ++i;
        if (format.compare(i, 3, "I64") == 0) i += 3;
        const char kind = i < format.size() ? format[i] : ' ';
        if (std::string_view("disuxXop").find(kind) == std::string::npos)
            throw makeDbError(2787, {format.substr(start, i + 1 - start)});
        const Value value = next < values.size() ? values[next++] : Value();
        std::string text;
        if (value.isNull()) {
            text = "(null)";
        } else if (kind == 's') {
            if (!value.isText())
                throw DbError(2786, 16, 1, 0,
                              "The data type of substitution parameter " + std::to_string(next) +
                                  " does not match the expected type of the format specification.");
            text = value.asText();
            if (precision >= 0) text = utf8Substr(text, 0, static_cast<size_t>(precision));
        } else {
            if (!value.isInt())
                throw DbError(2786, 16, 1, 0,
                              "The data type of substitution parameter " + std::to_string(next) +
                                  " does not match the expected type of the format specification.");
            text = numberText(value.asInt(), kind, alternate);
            if (plus && value.asInt() >= 0 && kind == 'd') text = "+" + text;
        }
        const size_t length = utf8Length(text);
        if (length < width) {
            const std::string fill(width - length, zero && !left && kind != 's' ? '0' : ' ');
            const bool sign = fill[0] == '0' && (text[0] == '-' || text[0] == '+');
            text = left ? text + fill : sign ? text[0] + fill + text.substr(1) : fill + text;
        }
        out += text;
    }
    return out;
}

}  // namespace owb::tsql
