// Controls of one name that are told apart by a number: "chkFirst(0)", "optAllotType(1)". One for
// each caption.
#pragma once

#include <array>
#include <string>
#include <utility>

#include "screen/control.h"

namespace owb {

inline std::string arrayName(const std::string& name, size_t number) {
    return name + "(" + std::to_string(number) + ")";
}

template <size_t N>
using Captions = std::array<const char*, N>;

// A control of each caption, numbered from `first`; `extra` stands before the names in the
// constructor of the control.
template <class C, size_t N>
class ControlArray {
  public:
    template <class... Extra>
    ControlArray(Screen& screen, const std::string& name, size_t first, const Captions<N>& captions,
                 Extra&... extra)
        : all_(make(screen, name, first, captions, std::make_index_sequence<N>(), extra...)) {}

    C& operator[](size_t place) { return all_[place]; }
    const C& operator[](size_t place) const { return all_[place]; }
    auto begin() { return all_.begin(); }
    auto end() { return all_.end(); }
    static constexpr size_t size() { return N; }

  private:
    template <size_t... I, class... Extra>
    static std::array<C, N> make(Screen& screen, const std::string& name, size_t first,
                                 const Captions<N>& captions, std::index_sequence<I...>,
                                 Extra&... extra) {
        return {C(screen, extra..., arrayName(name, first + I), captions[I])...};
    }

    std::array<C, N> all_;
};

template <size_t N>
using CheckBoxArray = ControlArray<CheckBox, N>;

// Option buttons with the group that they are chosen in.
template <size_t N>
class OptionArray : public OptionGroup {
  public:
    OptionArray(Screen& screen, const std::string& name, size_t first, const Captions<N>& captions)
        : options_(screen, name, first, captions, static_cast<OptionGroup&>(*this)) {}
    OptionButton& operator[](size_t place) { return options_[place]; }
    static constexpr size_t size() { return N; }
    auto begin() { return options_.begin(); }
    auto end() { return options_.end(); }

  private:
    ControlArray<OptionButton, N> options_;
};

}  // namespace owb
