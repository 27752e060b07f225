// What the program asks of the terminal. One source file a platform.
#pragma once

namespace tools {

/// Whether a person, rather than a file or another program, reads the messages.
[[nodiscard]] bool STDERR_IS_TERMINAL() noexcept;

}  // namespace tools
