#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

#include "store/m_file_mapping.h"

namespace store {

static_assert(sizeof(off_t) == 8, "volumes may be larger than 4 GB");

bool FILE_MAPPING::OPEN(const std::string& name) noexcept {
  CLOSE();
  // O_NONBLOCK keeps a pipe of that name from holding up the host; it means nothing to a regular file.
  const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return false;
  struct stat info {};
  if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size == 0) {
    ::close(descriptor);
    return false;
  }
  file_ = descriptor;
  size_ = info.st_size;
  return true;
}

void FILE_MAPPING::CLOSE() noexcept {
  UNMAP();
  if (IS_OPEN()) ::close(static_cast<int>(file_));
  file_ = NO_FILE;
  size_ = 0;
}

std::int64_t FILE_MAPPING::SIZE_NOW() const noexcept {
  struct stat info {};
  return IS_OPEN() && ::fstat(static_cast<int>(file_), &info) == 0 ? info.st_size : 0;
}

std::int64_t FILE_MAPPING::MAP(std::int64_t offset, std::int64_t bytes) noexcept {
  if (bytes > memory_bytes_) {
    UNMAP();
    memory_ = new (std::nothrow) std::byte[static_cast<std::size_t>(bytes)];
    if (memory_ == nullptr) return 0;
    memory_bytes_ = bytes;
  }
  view_ = memory_;
  std::int64_t done = 0;
  while (done < bytes) {
    const ssize_t read = ::pread(static_cast<int>(file_), memory_ + done,
                                 static_cast<std::size_t>(bytes - done), static_cast<off_t>(offset + done));
    if (read < 0 && errno == EINTR) continue;
    if (read <= 0) break;
    done += read;
  }
  return done;
}

void FILE_MAPPING::UNMAP() noexcept {
  delete[] memory_;
  memory_ = nullptr;
  memory_bytes_ = 0;
  view_ = nullptr;
}

void FILE_MAPPING::TAKE_MEMORY(FILE_MAPPING& other) noexcept {
  UNMAP();
  std::swap(memory_, other.memory_);
  std::swap(memory_bytes_, other.memory_bytes_);
  other.view_ = nullptr;
}

void FILE_MAPPING::REMOVE(const std::string& name) noexcept {
  ::unlink(name.c_str());
}

}  // namespace store
