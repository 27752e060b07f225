#include "tools/tool_failure.h"

#include <algorithm>
#include <array>

#include "kernel/failures.h"

namespace tools {

std::string FAILURE_LINE(const STATUS& status, std::string_view file_name) {
  std::array<char, 2048> text{};
  kernel::FAILURE_TEXT(status, file_name, text.data(), text.size());
  return text.data();
}

void CHECK_STATUS(const STATUS& status, std::string_view file_name) {
  if (status.OK()) return;
  const std::string line = FAILURE_LINE(status, file_name);
  throw T_TOOL_FAILURE(line, ADVICE_FOR(line));
}

std::string ADVICE_FOR(std::string_view failure_line) {
  struct T_ADVICE {
    std::string_view phrase;  // of the line
    std::string_view advice;
  };
  // A host has nothing but the line, so it is the line that decides. The first phrase that fits counts.
  static constexpr std::array<T_ADVICE, 8> ADVICES{{
      {"RESULT_ITEM is", "give an --item within these bounds"},
      {"the file can't be opened", "check that the file exists and that you may read it"},
      {"no block directory of this version",
       "check that this is a model's block directory file, with a directory of version 2.0"},
      {"directory can't be read to its end", "the file is cut or damaged: have the solver write it again"},
      {"the block isn't in the directory",
       "run `movload inspect` to see which blocks the file holds, and have the solver write the missing one"},
      {"memory can't be had", "close other programs or use a machine with more memory"},
      {"unexpected failure", "please report this, with the model's files"},
      {"the path has", "use a shorter path, for instance one that starts in the model's folder"},
  }};
  for (const T_ADVICE& advice : ADVICES) {
    if (failure_line.find(advice.phrase) != std::string_view::npos) return std::string(advice.advice);
  }
  return "the file is damaged or of another version: have the solver write it again";
}

}  // namespace tools
