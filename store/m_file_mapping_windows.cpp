#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include "store/m_file_mapping.h"

namespace store {

namespace {

/// Views begin at multiples of this.
constexpr std::int64_t GRANULARITY = 65536;

HANDLE handle_of(std::intptr_t number) noexcept {
  return reinterpret_cast<HANDLE>(number);  // NOLINT(performance-no-int-to-ptr): the header names no HANDLE
}

}  // namespace

bool FILE_MAPPING::OPEN(const std::string& name) noexcept {
  CLOSE();
  HANDLE file = ::CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
  file_ = reinterpret_cast<std::intptr_t>(file);  // INVALID_HANDLE_VALUE is NO_FILE
  if (!IS_OPEN()) return false;
  LARGE_INTEGER size{};
  if (::GetFileType(file) == FILE_TYPE_DISK && ::GetFileSizeEx(file, &size) != 0) size_ = size.QuadPart;

  // An empty file has no mapping.
  HANDLE mapping = size_ > 0 ? ::CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr) : nullptr;
  mapping_ = reinterpret_cast<std::intptr_t>(mapping);
  if (mapping == nullptr) CLOSE();
  return IS_OPEN();
}

void FILE_MAPPING::CLOSE() noexcept {
  UNMAP();
  if (mapping_ != 0) ::CloseHandle(handle_of(mapping_));
  if (IS_OPEN()) ::CloseHandle(handle_of(file_));
  mapping_ = 0;
  file_ = NO_FILE;
  size_ = 0;
}

std::int64_t FILE_MAPPING::SIZE_NOW() const noexcept {
  return size_;  // a mapped file can't be cut
}

std::int64_t FILE_MAPPING::MAP(std::int64_t offset, std::int64_t bytes) noexcept {
  UNMAP();
  const std::int64_t before = offset % GRANULARITY;
  const auto from = static_cast<std::uint64_t>(offset - before);
  void* memory = ::MapViewOfFile(handle_of(mapping_), FILE_MAP_READ, static_cast<DWORD>(from >> 32U),
                                 static_cast<DWORD>(from & 0xFFFFFFFFU), static_cast<SIZE_T>(before + bytes));
  if (memory == nullptr) return 0;
  memory_ = static_cast<std::byte*>(memory);
  memory_bytes_ = before + bytes;
  view_ = memory_ + before;
  return bytes;
}

void FILE_MAPPING::UNMAP() noexcept {
  if (memory_ != nullptr) ::UnmapViewOfFile(memory_);
  memory_ = nullptr;
  memory_bytes_ = 0;
  view_ = nullptr;
}

void FILE_MAPPING::TAKE_MEMORY(FILE_MAPPING& other) noexcept {
  UNMAP();
  other.UNMAP();  // views have no memory of their own
}

void FILE_MAPPING::REMOVE(const std::string& name) noexcept {
  ::DeleteFileA(name.c_str());
}

}  // namespace store
