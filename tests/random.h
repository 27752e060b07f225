// Small portable random choices; the standard distributions differ between platforms.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

struct RANDOM {
  explicit RANDOM(std::uint64_t seed) : engine(seed) {}

  int below(int count) { return static_cast<int>(engine() % static_cast<std::uint64_t>(count)); }
  int between(int low, int high) { return low + below(high - low + 1); }
  bool one_in(int count) { return below(count) == 0; }
  float unit() { return static_cast<float>(engine() >> 40) * 0x1p-24F; }  // 0 up to below 1
  float noise() { return 2.0F * unit() - 1.0F; }
  template <class T>
  T one_of(const std::vector<T>& list) {
    return list.at(static_cast<std::size_t>(below(static_cast<int>(list.size()))));
  }

  std::mt19937_64 engine;
};
