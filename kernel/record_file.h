// Direct access to a file of fixed-length records: connect, read the leading bytes of record n, close.
//
// Record n lies at byte (n - 1) * length. Records are read through a window that grows while reading goes
// forward, so that a block costs a call to the system per megabyte and not per record, and a single record a
// small one. A connection sees the file as it was when it was opened; every run opens its files anew.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "common/status.h"
#include "kernel/file_access.h"

namespace kernel {

static_assert(std::endian::native == std::endian::little, "the files are little-endian and read as they lie");

/// Items of a record, taken one after the other;
/// packed without padding. The caller has made sure of their number.
class UNPACK {
 public:
  explicit UNPACK(const std::byte* bytes) noexcept : at_(bytes) {}

  template <class T>
  T NEXT() noexcept {
    T value;
    std::memcpy(&value, at_, sizeof value);
    at_ += sizeof value;
    return value;
  }
  UNPACK& SKIP(std::size_t bytes) noexcept {
    at_ += bytes;
    return *this;
  }

 private:
  const std::byte* at_;
};

class RECORD_FILE {
 public:
  /// Opens the file. The record length is given by RECONNECT.
  STATUS CONNECT(const std::string& name);

  /// Sets the record length of the open file; a length below 1 fails like a file that can't be opened.
  STATUS RECONNECT(std::int64_t record_bytes) noexcept;

  void CLOSE() noexcept;

  /// Gives the first `bytes` bytes of record n in `record`,
  /// good until the next read. RECORD_CUT where the file ends before.
  STATUS READ(std::int64_t n, std::int64_t bytes, const std::byte*& record);

  [[nodiscard]] std::int64_t RECORD_BYTES() const noexcept { return record_bytes_; }
  [[nodiscard]] std::int64_t FILE_BYTES() const noexcept { return file_.SIZE(); }

 private:
  STATUS fill(std::int64_t offset, std::int64_t bytes);

  FILE_ACCESS file_;
  std::int64_t record_bytes_ = 0;
  std::unique_ptr<std::byte[]> buffer_;
  std::int64_t buffer_bytes_ = 0;
  std::int64_t window_start_ = 0;
  std::int64_t window_bytes_ = 0;
};

}  // namespace kernel
