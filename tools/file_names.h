// Names of files between the program and std::filesystem. The program has them in UTF-8 on every platform (on
// Windows its manifest sees to it), and std::filesystem takes char alone for something else there.
#pragma once

#include <filesystem>
#include <string>

namespace tools {

[[nodiscard]] inline std::filesystem::path PATH_OF(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

/// With slashes on every platform.
[[nodiscard]] inline std::string NAME_OF(const std::filesystem::path& path) {
  const std::u8string name = path.generic_u8string();
  return {name.begin(), name.end()};
}

}  // namespace tools
