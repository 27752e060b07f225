// A directory of a test's own, removed in the end.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

class TEMPORARY_DIRECTORY {
 public:
  TEMPORARY_DIRECTORY() {
    for (int number = 0; path_.empty(); ++number) {
      const auto path = std::filesystem::temp_directory_path() / ("movload_test_" + std::to_string(number));
      if (std::filesystem::create_directory(path)) path_ = path;
    }
  }
  ~TEMPORARY_DIRECTORY() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TEMPORARY_DIRECTORY(const TEMPORARY_DIRECTORY&) = delete;
  TEMPORARY_DIRECTORY& operator=(const TEMPORARY_DIRECTORY&) = delete;

  [[nodiscard]] std::string NAME(const std::string& file = "model") const { return (path_ / file).string(); }

 private:
  std::filesystem::path path_;
};
