#include "formula/ExprFunctions.h"

#include <string>
#include <unordered_map>

namespace owb {

const ExprFunction* findExprFunction(std::string_view name) {
    static const auto functions = [] {
        std::unordered_map<std::string_view, const ExprFunction*> all;
        for (const auto& group : {exprNumberFunctions(), exprConversions(), exprTextFunctions(),
                                  exprDateFunctions(), exprLibrary()})
            for (const ExprFunction& function : group) all.emplace(function.name, &function);
        return all;
    }();
    const auto found = functions.find(name);
    return found == functions.end() ? nullptr : found->second;
}

const ExprValue* findExprConstant(std::string_view name) {
    static const auto constants = [] {
        std::unordered_map<std::string_view, ExprValue> all;
        static constexpr std::pair<const char*, int> kNumbers[] = {
            {"VBBINARYCOMPARE", 0}, {"VBTEXTCOMPARE", 1},   {"VBUSESYSTEMDAYOFWEEK", 0},
            {"VBSUNDAY", 1},        {"VBMONDAY", 2},        {"VBTUESDAY", 3},
            {"VBWEDNESDAY", 4},     {"VBTHURSDAY", 5},      {"VBFRIDAY", 6},
            {"VBSATURDAY", 7},      {"VBUSESYSTEM", 0},     {"VBFIRSTJAN1", 1},
            {"VBFIRSTFOURDAYS", 2}, {"VBFIRSTFULLWEEK", 3}, {"VBGENERALDATE", 0},
            {"VBLONGDATE", 1},      {"VBSHORTDATE", 2},     {"VBLONGTIME", 3},
            {"VBSHORTTIME", 4},     {"VBTRUE", -1},         {"VBFALSE", 0},
            {"VBUSEDEFAULT", -2},   {"VBEMPTY", 0},         {"VBNULL", 1},
            {"VBINTEGER", 2},       {"VBLONG", 3},          {"VBSINGLE", 4},
            {"VBDOUBLE", 5},        {"VBCURRENCY", 6},      {"VBDATE", 7},
            {"VBSTRING", 8},        {"VBOBJECT", 9},        {"VBERROR", 10},
            {"VBBOOLEAN", 11},      {"VBVARIANT", 12},      {"VBDATAOBJECT", 13},
            {"VBDECIMAL", 14},      {"VBBYTE", 17},         {"VBARRAY", 8192},
        };
        for (const auto& [word, value] : kNumbers) all[word] = ExprValue::whole(value);
        static constexpr std::pair<const char*, std::string_view> kTexts[] = {
            {"VBCR", "\r"},          {"VBLF", "\n"},       {"VBCRLF", "\r\n"},
            {"VBNEWLINE", "\r\n"},   {"VBTAB", "\t"},      {"VBFORMFEED", "\f"},
            {"VBVERTICALTAB", "\v"}, {"VBNULLSTRING", ""}, {"VBNULLCHAR", {"\0", 1}},
        };
        for (const auto& [word, value] : kTexts) all[word] = ExprValue::text(std::string(value));
        return all;
    }();
    const auto found = constants.find(name);
    return found == constants.end() ? nullptr : &found->second;
}

}  // namespace owb
