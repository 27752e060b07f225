#include "bench/bench_folder.h"

#include <unistd.h>

#include <filesystem>

namespace bench {
namespace {

/// Removed at the end of the program.
struct T_FOLDER {
  std::filesystem::path PATH =
      std::filesystem::temp_directory_path() / ("movload-bench-" + std::to_string(::getpid()));
  T_FOLDER() { std::filesystem::create_directories(PATH); }
  ~T_FOLDER() {
    std::error_code ignored;
    std::filesystem::remove_all(PATH, ignored);
  }
  T_FOLDER(const T_FOLDER&) = delete;
  T_FOLDER& operator=(const T_FOLDER&) = delete;
};

}  // namespace

std::string FILE_IN_FOLDER(const std::string& name) {
  static const T_FOLDER folder;
  return (folder.PATH / name).string();
}

}  // namespace bench
