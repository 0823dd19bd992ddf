// Repeatable chance: the same seed gives the same numbers on every machine.
#pragma once

#include <cstdint>

namespace owb::sample {

class Chance {
  public:
    Chance(uint64_t seed, uint64_t stream) : state_(seed * 0x9E3779B97F4A7C15u + stream) {}

    uint64_t next() {
        state_ += 0x9E3779B97F4A7C15u;
        uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    // Whole number from low to high, both included.
    int between(int low, int high) {
        return low + static_cast<int>(next() % static_cast<uint64_t>(high - low + 1));
    }
    bool perMille(int n) { return between(1, 1000) <= n; }

  private:
    uint64_t state_;
};

}  // namespace owb::sample
