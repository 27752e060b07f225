#include "kernel/record_file.h"

#include <algorithm>
#include <limits>

namespace kernel {

namespace {
constexpr std::int64_t SMALLEST_WINDOW = 16 * 1024;
constexpr std::int64_t LARGEST_WINDOW = 1024 * 1024;
}  // namespace

STATUS RECORD_FILE::CONNECT(const std::string& name) {
  CLOSE();
  if (!file_.OPEN(name)) return STATUS::FAILED(REASON::FILE_NOT_OPENED);
  return {};
}

STATUS RECORD_FILE::RECONNECT(std::int64_t record_bytes) noexcept {
  record_bytes_ = 0;
  if (record_bytes < 1 || !file_.IS_OPEN()) return STATUS::FAILED(REASON::FILE_NOT_OPENED);
  record_bytes_ = record_bytes;
  return {};
}

void RECORD_FILE::CLOSE() noexcept {
  file_.CLOSE();
  record_bytes_ = 0;
  window_start_ = 0;
  window_bytes_ = 0;
}

STATUS RECORD_FILE::READ(std::int64_t n, std::int64_t bytes, const std::byte*& record) {
  const bool addressable = n >= 1 && record_bytes_ >= 1 && bytes >= 0 &&
                           n - 1 <= (std::numeric_limits<std::int64_t>::max() - bytes) / record_bytes_;
  if (!addressable) return STATUS::FAILED(REASON::RECORD_ABSENT);
  const std::int64_t offset = (n - 1) * record_bytes_;
  if (offset < window_start_ || offset + bytes > window_start_ + window_bytes_) {
    if (STATUS status = fill(offset, bytes); !status.OK()) return status;
  }
  record = buffer_.get() + (offset - window_start_);
  return {};
}

STATUS RECORD_FILE::fill(std::int64_t offset, std::int64_t bytes) {
  if (offset + bytes > file_.SIZE()) return STATUS::FAILED(REASON::RECORD_CUT);
  const bool forward =
      window_bytes_ > 0 && offset >= window_start_ && offset <= window_start_ + window_bytes_;
  const std::int64_t window = forward ? std::min(2 * window_bytes_, LARGEST_WINDOW) : SMALLEST_WINDOW;

  // A record may be longer than the largest window; it has just been held against the size of the file.
  const std::int64_t wanted = std::max(bytes, std::min(window, file_.SIZE() - offset));
  if (wanted > buffer_bytes_) {
    window_bytes_ = 0;
    buffer_bytes_ = 0;
    const std::int64_t room = std::max(wanted, forward ? LARGEST_WINDOW : SMALLEST_WINDOW);
    buffer_ = std::make_unique_for_overwrite<std::byte[]>(static_cast<std::size_t>(room));
    buffer_bytes_ = room;
  }
  window_start_ = offset;
  window_bytes_ = file_.READ_AT(offset, buffer_.get(), wanted);
  return window_bytes_ >= bytes ? STATUS{} : STATUS::FAILED(REASON::RECORD_CUT);
}

}  // namespace kernel
