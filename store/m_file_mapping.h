// One volume of the influence store, read through a view: the part of the file that is in memory.
//
// A volume may be far larger than memory, so that no more than one view of it is ever held. Two back ends
// stand behind FILE_MAPPING, one source file a platform:
//
//   m_file_mapping_windows.cpp   MapViewOfFile. Windows doesn't let a file be cut while it is mapped.
//   m_file_mapping_posix.cpp     pread into memory of the view's size. A mapped page behind the end of a file
//                                that was cut since would end the host's process with SIGBUS, and a library
//                                must not put a signal handler into its host; a read that comes back short
//                                ends nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace store {

/// The platform's part: an open file and one view of it. Closed with the object.
class FILE_MAPPING {
 public:
  FILE_MAPPING() = default;
  ~FILE_MAPPING() { CLOSE(); }
  FILE_MAPPING(const FILE_MAPPING&) = delete;
  FILE_MAPPING& operator=(const FILE_MAPPING&) = delete;

  /// Opens an existing regular file that isn't empty, for reading.
  [[nodiscard]] bool OPEN(const std::string& name) noexcept;
  void CLOSE() noexcept;

  [[nodiscard]] bool IS_OPEN() const noexcept { return file_ != NO_FILE; }
  /// Bytes of the file when it was opened, and now.
  [[nodiscard]] std::int64_t SIZE() const noexcept { return size_; }
  [[nodiscard]] std::int64_t SIZE_NOW() const noexcept;

  /// Makes the bytes from the offset on the view, in place of the one before. Gives how many there are at
  /// VIEW(): fewer than asked for where the file was cut, 0 where nothing can be had.
  [[nodiscard]] std::int64_t MAP(std::int64_t offset, std::int64_t bytes) noexcept;
  void UNMAP() noexcept;
  /// Ends the views of both. Memory that the other's took serves this one's from now on.
  void TAKE_MEMORY(FILE_MAPPING& other) noexcept;
  /// Good until the next MAP, UNMAP or CLOSE.
  [[nodiscard]] const std::byte* VIEW() const noexcept { return view_; }

  static void REMOVE(const std::string& name) noexcept;

 private:
  static constexpr std::intptr_t NO_FILE = -1;

  std::intptr_t file_ = NO_FILE;
  [[maybe_unused]] std::intptr_t mapping_ = 0;  // of Windows
  std::int64_t size_ = 0;
  std::byte* memory_ = nullptr;  // begin of what the view takes
  std::int64_t memory_bytes_ = 0;
  const std::byte* view_ = nullptr;
};

enum class DISPOSITION : std::uint8_t { KEEP, DELETE_FILE };

/// A volume with a position. Offsets are 64-bit.
class T_FILE {
 public:
  [[nodiscard]] bool OPEN(const std::string& name);
  /// Ends the view, closes the file, and deletes it unless it is kept.
  void CLOSE(DISPOSITION disposition) noexcept;
  [[nodiscard]] bool IS_OPEN() const noexcept { return mapping_.IS_OPEN(); }
  [[nodiscard]] const std::string& NAME() const noexcept { return name_; }
  [[nodiscard]] std::int64_t SIZE() const noexcept { return mapping_.SIZE(); }
  [[nodiscard]] std::int64_t SIZE_NOW() const noexcept { return mapping_.SIZE_NOW(); }

  /// An origin of 0 or above: position = origin + delta; a negative one: position += delta.
  void SEEK(std::int64_t origin, std::int64_t delta) noexcept;
  [[nodiscard]] std::int64_t TELL() const noexcept { return position_; }

  /// Copies the bytes at the position and moves behind them. False, with the target and the position as they
  /// were, where there are fewer, and for a count of 0. Reads go through a window that grows while they go
  /// forward: a long list costs a call to the system for some hundred KB, a word here and there a small one.
  [[nodiscard]] bool READ(void* target, std::int32_t bytes) noexcept;

  /// Gives the bytes at the position in place and moves behind them; null where there are fewer. Good until
  /// the next operation but SEEK and TELL. Bytes that are in view already cost nothing.
  [[nodiscard]] const std::byte* VIEW(std::int64_t bytes) noexcept;
  void RELEASE_VIEW() noexcept;
  /// Releases the views of both; the next one here costs no new memory unless it is larger than they were.
  void TAKE_OVER_VIEW(T_FILE& other) noexcept;

 private:
  const std::byte* reach(std::int64_t bytes, std::int64_t window) noexcept;

  FILE_MAPPING mapping_;
  std::string name_;
  std::int64_t position_ = 0;
  std::int64_t view_offset_ = 0;
  std::int64_t view_bytes_ = 0;
};

}  // namespace store
