#include "store/m_file_mapping.h"

#include <algorithm>
#include <cstring>

namespace store {

bool T_FILE::OPEN(const std::string& name) {
  CLOSE(DISPOSITION::KEEP);
  if (!mapping_.OPEN(name)) return false;
  name_ = name;
  return true;
}

void T_FILE::CLOSE(DISPOSITION disposition) noexcept {
  const bool was_open = IS_OPEN();
  RELEASE_VIEW();
  mapping_.CLOSE();
  if (was_open && disposition == DISPOSITION::DELETE_FILE) FILE_MAPPING::REMOVE(name_);
  name_.clear();
  position_ = 0;
}

void T_FILE::SEEK(std::int64_t origin, std::int64_t delta) noexcept {
  position_ = (origin < 0 ? position_ : origin) + delta;
}

bool T_FILE::READ(void* target, std::int32_t bytes) noexcept {
  constexpr std::int64_t SMALLEST_WINDOW = 1024;
  constexpr std::int64_t LARGEST_WINDOW = 256 * 1024;
  if (bytes <= 0) return false;
  const std::int64_t view_end = view_offset_ + view_bytes_;
  const bool forward = view_bytes_ > 0 && position_ >= view_offset_ && position_ <= view_end;
  const std::int64_t window = forward ? std::min(2 * view_bytes_, LARGEST_WINDOW) : SMALLEST_WINDOW;
  const std::byte* source = reach(bytes, window);
  if (source == nullptr) return false;
  std::memcpy(target, source, static_cast<std::size_t>(bytes));
  return true;
}

const std::byte* T_FILE::VIEW(std::int64_t bytes) noexcept {
  return bytes > 0 ? reach(bytes, bytes) : nullptr;
}

void T_FILE::RELEASE_VIEW() noexcept {
  mapping_.UNMAP();
  view_offset_ = 0;
  view_bytes_ = 0;
}

void T_FILE::TAKE_OVER_VIEW(T_FILE& other) noexcept {
  RELEASE_VIEW();
  mapping_.TAKE_MEMORY(other.mapping_);
  other.RELEASE_VIEW();
}

/// The bytes at the position, which moves behind them. A new view takes as much of the window as the file
/// has.
const std::byte* T_FILE::reach(std::int64_t bytes, std::int64_t window) noexcept {
  if (position_ < 0 || position_ > SIZE() || bytes > SIZE() - position_) return nullptr;
  if (position_ < view_offset_ || position_ + bytes > view_offset_ + view_bytes_) {
    const std::int64_t wanted = std::max(bytes, std::min(window, SIZE() - position_));
    view_offset_ = position_;
    view_bytes_ = mapping_.MAP(position_, wanted);
    if (view_bytes_ < bytes) return nullptr;
  }
  const std::byte* at = mapping_.VIEW() + (position_ - view_offset_);
  position_ += bytes;
  return at;
}

}  // namespace store
