#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <algorithm>

#include "kernel/file_access.h"

namespace kernel {
namespace {

HANDLE handle_of(std::intptr_t number) noexcept {
  return reinterpret_cast<HANDLE>(number);  // NOLINT(performance-no-int-to-ptr): the header names no HANDLE
}

}  // namespace

bool FILE_ACCESS::OPEN(const std::string& name) {
  CLOSE();
  // Others may have the file open as they like, be it a solver that hasn't let go of it yet.
  HANDLE file =
      ::CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(file);  // INVALID_HANDLE_VALUE is -1
  LARGE_INTEGER size{};
  if (IS_OPEN() && ::GetFileType(file) == FILE_TYPE_DISK && ::GetFileSizeEx(file, &size) != 0) {
    size_ = size.QuadPart;
    return true;
  }
  CLOSE();
  return false;
}

void FILE_ACCESS::CLOSE() noexcept {
  if (handle_ >= 0) ::CloseHandle(handle_of(handle_));
  handle_ = -1;
  size_ = 0;
}

std::int64_t FILE_ACCESS::READ_AT(std::int64_t offset, std::byte* target, std::int64_t count) const noexcept {
  constexpr std::int64_t MOST_AT_ONCE = std::int64_t{1} << 30;  // a call counts in 32 bits
  std::int64_t done = 0;
  while (done < count) {
    const auto from = static_cast<std::uint64_t>(offset + done);
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(from & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(from >> 32U);
    const auto wanted = static_cast<DWORD>(std::min(count - done, MOST_AT_ONCE));
    DWORD bytes = 0;
    if (::ReadFile(handle_of(handle_), target + done, wanted, &bytes, &place) == 0 || bytes == 0) break;
    done += bytes;
  }
  return done;
}

}  // namespace kernel
