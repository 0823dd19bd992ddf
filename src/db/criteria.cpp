#include "db/criteria.h"

#include <cctype>
#include <vector>

#include "base/number_text.h"
#include "base/utf8.h"
#include "db/client_error.h"

namespace owb {

namespace {

enum class Compare { Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual, Like };

bool likeFits(std::string_view text, std::string_view pattern) {
    size_t t = 0, p = 0, star = std::string_view::npos, retry = 0;
    while (t < text.size()) {
        if (p < pattern.size() && (pattern[p] == '%' || pattern[p] == '*')) {
            star = p++;
            retry = t;
        } else if (p < pattern.size() && (pattern[p] == '_' || pattern[p] == text[t])) {
            // One character of the text may be several bytes.
            if (pattern[p++] == '_')
                nextCodePoint(text, t);
            else
                ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            nextCodePoint(text, retry);
            t = retry;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && (pattern[p] == '%' || pattern[p] == '*')) ++p;
    return p == pattern.size();
}

// Negative, 0 or positive; the column's value says how the text is read.
int compareValue(const Value& cell, const std::string& text) {
    if (cell.isDate()) {
        const auto date = parseDate(text);
        if (!date) throw clientError(ClientError::BadCriteria, text);
        return cell.asDate() < *date ? -1 : cell.asDate() > *date ? 1 : 0;
    }
    if (cell.isText()) return compareText(cell.asText(), text);
    Decimal exact;
    if (!cell.isDouble() && Decimal::parse(text, exact)) {
        const Decimal own = cell.isInt() ? Decimal::fromInt(cell.asInt()) : cell.asDecimal();
        return Decimal::compare(own, exact);
    }
    std::string word = lowerCase(text);
    const double number = word == "true" ? 1 : textToNumber(text);
    const double own = cell.toDouble();
    return own < number ? -1 : own > number ? 1 : 0;
}

}  // namespace

struct Criteria::Node {
    enum class Kind { And, Or, Term };
    Kind kind = Kind::Term;
    std::vector<Node> parts;
    size_t column = 0;
    Compare compare = Compare::Equal;
    bool null = false;
    std::string value;

    bool fits(const CellOf& cell) const {
        if (kind == Kind::Term) return termFits(cell(column));
        for (const Node& part : parts)
            if (part.fits(cell) == (kind == Kind::Or)) return kind == Kind::Or;
        return kind == Kind::And;
    }

    bool termFits(const Value& own) const {
        if (null) return own.isNull() == (compare == Compare::Equal);
        if (own.isNull()) return false;
        if (compare == Compare::Like) return likeFits(foldText(own.toText()), foldText(value));
        const int order = compareValue(own, value);
        switch (compare) {
            case Compare::Equal:
                return order == 0;
            case Compare::NotEqual:
                return order != 0;
            case Compare::Less:
                return order < 0;
            case Compare::Greater:
                return order > 0;
            case Compare::LessEqual:
                return order <= 0;
            default:
                return order >= 0;
        }
    }
};

namespace {

class Reader {
  public:
    Reader(const std::string& text, const Criteria::ColumnOf& columnOf)
        : text_(text), columnOf_(columnOf) {}

    Criteria::Node whole() {
        Criteria::Node node = any();
        if (at_ != text_.size()) fail();
        return node;
    }

  private:
    using Node = Criteria::Node;

    Node any() {
        return list(Node::Kind::Or, "OR", [this] { return all(); });
    }
    Node all() {
        return list(Node::Kind::And, "AND", [this] { return term(); });
    }

    Node list(Node::Kind kind, std::string_view word, const std::function<Node()>& part) {
        Node first = part();
        if (!takeWord(word)) return first;
        Node node;
        node.kind = kind;
        node.parts.push_back(std::move(first));
        do node.parts.push_back(part());
        while (takeWord(word));
        return node;
    }

    Node term() {
        if (take("(")) {
            Node node = any();
            if (!take(")")) fail();
            return node;
        }
        Node node;
        node.column = columnOf_(name());
        node.compare = comparison();
        value(node);
        return node;
    }

    std::string name() {
        skipBlanks();
        if (take("[")) return until(']');
        const size_t from = at_;
        while (at_ < text_.size() && (isWord(text_[at_]) || text_[at_] == '#')) ++at_;
        if (at_ == from) fail();
        return text_.substr(from, at_ - from);
    }

    Compare comparison() {
        if (take("<>")) return Compare::NotEqual;
        if (take("<=")) return Compare::LessEqual;
        if (take(">=")) return Compare::GreaterEqual;
        if (take("<")) return Compare::Less;
        if (take(">")) return Compare::Greater;
        if (take("=")) return Compare::Equal;
        if (takeWord("LIKE")) return Compare::Like;
        fail();
    }

    void value(Node& node) {
        skipBlanks();
        if (take("'")) {
            node.value = until('\'');
        } else if (take("#")) {
            node.value = until('#');
        } else {
            const size_t from = at_;
            while (at_ < text_.size() && text_[at_] != ' ' && text_[at_] != ')') ++at_;
            node.value = text_.substr(from, at_ - from);
            if (node.value.empty()) fail();
            node.null = equalsIgnoreCaseAscii(node.value, "NULL");
            if (node.null && node.compare != Compare::Equal && node.compare != Compare::NotEqual)
                fail();
        }
    }

    // The text up to the closing mark, which doubled stands for itself.
    std::string until(char mark) {
        std::string out;
        for (; at_ < text_.size(); ++at_) {
            if (text_[at_] != mark) {
                out += text_[at_];
            } else if (at_ + 1 < text_.size() && text_[at_ + 1] == mark) {
                out += text_[at_++];
            } else {
                ++at_;
                return out;
            }
        }
        fail();
    }

    bool take(std::string_view mark) {
        skipBlanks();
        if (text_.compare(at_, mark.size(), mark) != 0) return false;
        at_ += mark.size();
        return true;
    }

    bool takeWord(std::string_view word) {
        skipBlanks();
        if (!equalsIgnoreCaseAscii(std::string_view(text_).substr(at_, word.size()), word))
            return false;
        const size_t end = at_ + word.size();
        if (end < text_.size() && isWord(text_[end])) return false;
        at_ = end;
        skipBlanks();
        return true;
    }

    void skipBlanks() {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
    }

    static bool isWord(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' ||
               static_cast<unsigned char>(c) >= 0x80;
    }

    [[noreturn]] void fail() const { throw clientError(ClientError::BadCriteria, text_); }

    const std::string& text_;
    const Criteria::ColumnOf& columnOf_;
    size_t at_ = 0;
};

}  // namespace

Criteria::Criteria(const std::string& text, const ColumnOf& columnOf)
    : root_(std::make_unique<Node>(Reader(text, columnOf).whole())) {}

Criteria::~Criteria() = default;

Criteria::Criteria(Criteria&&) noexcept = default;

bool Criteria::fits(const CellOf& cell) const {
    return root_->fits(cell);
}

}  // namespace owb
