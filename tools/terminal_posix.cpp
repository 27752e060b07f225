#include <unistd.h>

#include "tools/terminal.h"

namespace tools {

bool STDERR_IS_TERMINAL() noexcept {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace tools
