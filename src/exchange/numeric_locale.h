// The sheet libraries write and read numbers as the C library's locale says; a sheet has a point.
#pragma once

#include <clocale>

namespace owb {

// While it lives, this thread's numbers have a point.
class NumericLocale {
  public:
    NumericLocale() : point_(newlocale(LC_NUMERIC_MASK, "C", duplocale(uselocale(nullptr)))) {
        before_ = uselocale(point_);
    }
    ~NumericLocale() {
        uselocale(before_);
        freelocale(point_);
    }
    NumericLocale(const NumericLocale&) = delete;
    NumericLocale& operator=(const NumericLocale&) = delete;

  private:
    locale_t point_;
    locale_t before_;
};

}  // namespace owb
