// A path that outlives the call it came with.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

/// A path as the calling contract keeps it: characters and a length, no terminator.
struct T_PATH {
  static constexpr std::size_t ROOM = 1024;
  std::array<char, ROOM> CHARACTERS{};
  std::size_t LENGTH = 0;

  void SET(std::string_view path) noexcept {
    LENGTH = std::min(path.size(), ROOM);
    std::copy_n(path.data(), LENGTH, CHARACTERS.data());
  }
  [[nodiscard]] std::string_view TEXT() const noexcept { return {CHARACTERS.data(), LENGTH}; }
};
