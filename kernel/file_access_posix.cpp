#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "kernel/file_access.h"

namespace kernel {

static_assert(sizeof(off_t) == 8, "files may be larger than 4 GB");

bool FILE_ACCESS::OPEN(const std::string& name) {
  CLOSE();
  // O_NONBLOCK keeps a pipe of that name from holding up the host; it means nothing to a regular file.
  const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return false;
  struct stat info {};
  if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(descriptor);
    return false;
  }
  handle_ = descriptor;
  size_ = info.st_size;
  return true;
}

void FILE_ACCESS::CLOSE() noexcept {
  if (handle_ >= 0) ::close(static_cast<int>(handle_));
  handle_ = -1;
  size_ = 0;
}

std::int64_t FILE_ACCESS::READ_AT(std::int64_t offset, std::byte* target, std::int64_t count) const noexcept {
  std::int64_t done = 0;
  while (done < count) {
    const ssize_t bytes = ::pread(static_cast<int>(handle_), target + done,
                                  static_cast<std::size_t>(count - done), static_cast<off_t>(offset + done));
    if (bytes < 0 && errno == EINTR) continue;
    if (bytes <= 0) break;
    done += bytes;
  }
  return done;
}

}  // namespace kernel
