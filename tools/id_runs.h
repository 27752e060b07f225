// Ids as runs without gaps, which say in a few words what a list of thousands holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tools {

struct T_IDS {
  std::int64_t first = 0;
  std::int64_t last = 0;
};

/// The runs of ids in their order.
[[nodiscard]] std::vector<T_IDS> RUNS_OF(const std::vector<std::int32_t>& ids);

/// "1 to 355, 400"; of more than `most` runs the first ones and the last id; "none" where there are none.
[[nodiscard]] std::string RUNS_IN_WORDS(const std::vector<T_IDS>& runs, std::size_t most = 4);

}  // namespace tools
