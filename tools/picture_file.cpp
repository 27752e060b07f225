#include "tools/picture_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "tools/file_names.h"
#include "tools/tool_failure.h"

namespace tools {

namespace fs = std::filesystem;

std::optional<PICTURE> PICTURE_FORMAT(const std::string& file) {
  std::string extension = NAME_OF(PATH_OF(file).extension());
  std::ranges::transform(extension, extension.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
  if (extension == ".svg") return PICTURE::SVG;
  if (extension == ".png") return PICTURE::PNG;
  return std::nullopt;
}

std::string PICTURE_FILE_FAULT(const std::string& file) {
  return PICTURE_FORMAT(file) ? std::string() : fmt::format("'{}' ends neither in .svg nor in .png", file);
}

void WRITE_PICTURE_FILE(const std::string& file, const std::string& contents) {
  const fs::path new_file = PATH_OF(file + ".new");
  std::error_code error;
  std::ofstream stream(new_file, std::ios::binary);
  stream << contents;
  stream.close();
  if (stream) {
    fs::rename(new_file, PATH_OF(file), error);
    if (!error) return;
  }
  std::error_code ignored;
  fs::remove(new_file, ignored);
  throw T_TOOL_FAILURE(fmt::format("{}: the file can't be written", file),
                       "name a file in a folder that is there and in which you may write");
}

}  // namespace tools
