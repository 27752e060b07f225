// The folder of the benchmarks' files, which goes with the program.
#pragma once

#include <string>

namespace bench {

/// Path of a file in it.
[[nodiscard]] std::string FILE_IN_FOLDER(const std::string& name);

}  // namespace bench
