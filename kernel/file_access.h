// The platform's part of reading a file: open, size, positioned read, close. One source file a platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kernel {

/// An open file, closed with the object. Offsets are 64-bit.
class FILE_ACCESS {
 public:
  FILE_ACCESS() = default;
  ~FILE_ACCESS() { CLOSE(); }
  FILE_ACCESS(const FILE_ACCESS&) = delete;
  FILE_ACCESS& operator=(const FILE_ACCESS&) = delete;

  /// Opens an existing regular file for reading, closing the one before.
  [[nodiscard]] bool OPEN(const std::string& name);
  void CLOSE() noexcept;

  [[nodiscard]] bool IS_OPEN() const noexcept { return handle_ >= 0; }
  /// Bytes of the file when it was opened.
  [[nodiscard]] std::int64_t SIZE() const noexcept { return size_; }
  /// Bytes read at the offset: fewer than `count` only where the file ends or can't be read.
  [[nodiscard]] std::int64_t READ_AT(std::int64_t offset, std::byte* target,
                                     std::int64_t count) const noexcept;

 private:
  std::intptr_t handle_ = -1;
  std::int64_t size_ = 0;
};

}  // namespace kernel
