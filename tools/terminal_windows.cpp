#include <io.h>

#include <cstdio>

#include "tools/terminal.h"

namespace tools {

bool STDERR_IS_TERMINAL() noexcept {
  return ::_isatty(::_fileno(stderr)) != 0;
}

}  // namespace tools
