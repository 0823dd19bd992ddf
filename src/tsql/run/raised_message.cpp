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

DbError wrongType(size_t place) {
    return DbError(2786, 16, 1, 0,
                   "The data type of substitution parameter " + std::to_string(place) +
                       " does not match the expected type of the format specification.");
}

// One "%..." of a format: read from behind the sign, then filled with its value.
class Placeholder {
  public:
    Placeholder(const std::string& format, size_t& at, const std::vector<Value>& values,
                size_t& next)
        : format_(format), at_(at), values_(values), next_(next) {}

    std::string fill() {
        const size_t start = at_ - 1;
        readFlags();
        width_ = static_cast<size_t>(std::max(0, count()));
        if (at_ < format_.size() && format_[at_] == '.') {
            ++at_;
            precision_ = count();
        }
        if (at_ < format_.size() && (format_[at_] == 'l' || format_[at_] == 'h')) ++at_;
        if (format_.compare(at_, 3, "I64") == 0) at_ += 3;
        kind_ = at_ < format_.size() ? format_[at_] : ' ';
        if (std::string_view("disuxXop").find(kind_) == std::string::npos)
            throw makeDbError(2787, {format_.substr(start, at_ + 1 - start)});
        return padded(text(next_ < values_.size() ? values_[next_++] : Value()));
    }

  private:
    void readFlags() {
        for (; at_ < format_.size() &&
               std::string_view("-+0# ").find(format_[at_]) != std::string::npos;
             ++at_) {
            left_ |= format_[at_] == '-';
            plus_ |= format_[at_] == '+';
            zero_ |= format_[at_] == '0';
            alternate_ |= format_[at_] == '#';
        }
    }

    // A number, or "*", which takes the next value.
    int count() {
        if (at_ < format_.size() && format_[at_] == '*') {
            ++at_;
            return next_ < values_.size() ? static_cast<int>(values_[next_++].toInt()) : 0;
        }
        int n = 0;
        for (; at_ < format_.size() && format_[at_] >= '0' && format_[at_] <= '9' && n < 10000;
             ++at_)
            n = n * 10 + (format_[at_] - '0');
        return n;
    }

    std::string text(const Value& value) const {
        if (value.isNull()) return "(null)";
        if (kind_ == 's') {
            if (!value.isText()) throw wrongType(next_);
            return precision_ < 0 ? value.asText()
                                  : utf8Substr(value.asText(), 0, static_cast<size_t>(precision_));
        }
        if (!value.isInt()) throw wrongType(next_);
        const std::string number = numberText(value.asInt(), kind_, alternate_);
        return plus_ && value.asInt() >= 0 && kind_ == 'd' ? "+" + number : number;
    }

    std::string padded(const std::string& text) const {
        const size_t length = utf8Length(text);
        if (length >= width_) return text;
        const std::string fill(width_ - length, zero_ && !left_ && kind_ != 's' ? '0' : ' ');
        if (left_) return text + fill;
        const bool sign = fill[0] == '0' && (text[0] == '-' || text[0] == '+');
        return sign ? text[0] + fill + text.substr(1) : fill + text;
    }

    const std::string& format_;
    size_t& at_;
    const std::vector<Value>& values_;
    size_t& next_;
    bool left_ = false, plus_ = false, zero_ = false, alternate_ = false;
    size_t width_ = 0;
    int precision_ = -1;
    char kind_ = ' ';
};

}  // namespace

std::string raisedMessage(const std::string& format, const std::vector<Value>& values) {
    std::string out;
    size_t next = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            out += format[i];
        } else if (++i < format.size() && format[i] == '%') {
            out += '%';
        } else {
            out += Placeholder(format, i, values, next).fill();
        }
    }
    return out;
}

}  // namespace owb::tsql
