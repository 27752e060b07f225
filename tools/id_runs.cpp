#include "tools/id_runs.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tools {

std::vector<T_IDS> RUNS_OF(const std::vector<std::int32_t>& ids) {
  std::vector<T_IDS> runs;
  for (const std::int32_t id : ids) {
    if (runs.empty() || runs.back().last + 1 != id)
      runs.push_back({id, id});
    else
      runs.back().last = id;
  }
  return runs;
}

std::string RUNS_IN_WORDS(const std::vector<T_IDS>& runs, std::size_t most) {
  if (runs.empty()) return "none";
  std::vector<std::string> words;
  for (std::size_t i = 0; i < std::min(most, runs.size()); ++i)
    words.push_back(runs[i].first == runs[i].last ? fmt::to_string(runs[i].first)
                                                  : fmt::format("{} to {}", runs[i].first, runs[i].last));
  if (runs.size() > most) words.push_back(fmt::format("... {}", runs.back().last));
  return fmt::format("{}", fmt::join(words, ", "));
}

}  // namespace tools
