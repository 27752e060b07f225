// Works published and hand-worked answers out again, by a whole run of the library each, and prints both. Exit code 1
// where one of them is missed by more than its line allows.
//
//   replay_bridges BRIDGES.CSV
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "examples/published_bridges/published_answers.h"
#include "include/movload.h"
#include "modelkit/model_writer.h"
#include "tests/temporary_directory.h"

namespace {

/// The value of the side that the answer is of.
double work_out(const replay::T_ANSWER& answer) {
  const replay::T_QUESTION question = replay::QUESTION_OF(answer);
  const TEMPORARY_DIRECTORY directory;
  const std::string base = directory.NAME();
  modelkit::WRITE_MODEL(question.model, base);

  std::int32_t lanes = 1;
  std::int32_t mode_code = 0;
  double max = 0.0;
  double min = 0.0;
  std::array<std::array<std::int32_t, MOVLOAD_RECORD_FIELDS>, 6> records{};
  std::array<std::vector<std::int32_t>, 6> ranges;
  ranges.fill(std::vector<std::int32_t>(MOVLOAD_RANGE_NUMBERS));
  std::array<std::array<float, MOVLOAD_RANGE_DISTANCES>, 2> distances{};
  _MOV_KRNL_BS_5400(base.data(), static_cast<std::int32_t>(base.size()), question.kind, question.id,
                    question.item, 1, &lanes, &max, &min, records[0].data(), records[1].data(), &mode_code,
                    ranges[0].data(), ranges[1].data(), records[2].data(), records[3].data(),
                    records[4].data(), records[5].data(), ranges[2].data(), ranges[3].data(),
                    ranges[4].data(), ranges[5].data(), distances[0].data(), distances[1].data());
  if (mode_code == -1) throw std::runtime_error(movload_last_failure());
  return answer.IS_MINIMUM() ? min : max;
}

std::string spans_text(const std::vector<double>& spans) {
  std::string text = fmt::format("{}", spans[0]);
  for (std::size_t i = 1; i < spans.size(); ++i) text += fmt::format(" + {}", spans[i]);
  return text + " m";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fmt::print(stderr, "usage: replay_bridges BRIDGES.CSV\n");
    return 2;
  }
  try {
    int missed = 0;
    constexpr const char* LINE = "{:<10} {:<14} {:<18} {:>9} {:>10} {:<4} {:>7} {}\n";
    fmt::print(fmt::runtime(LINE), "Spans", "Loading", "Result", "Printed", "movload", "", "Off", " Source");
    const std::vector<replay::T_ANSWER> answers = replay::READ_ANSWERS(argv[1]);
    for (const replay::T_ANSWER& answer : answers) {
      const double got = work_out(answer);
      const double off = got / answer.PRINTED() - 1.0;
      const bool is_missed = !(std::fabs(off) <= answer.within);
      if (is_missed) ++missed;
      fmt::print(fmt::runtime(LINE), spans_text(answer.spans), answer.loading, answer.result, answer.printed,
                 fmt::format("{:.7g}", got), answer.unit, fmt::format("{:.4f}%", 100.0 * std::fabs(off)),
                 (is_missed ? "MISSED " : " ") + answer.source);
    }
    fmt::print("{} of {} answers met\n", static_cast<int>(answers.size()) - missed, answers.size());
    return missed == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    fmt::print(stderr, "replay_bridges: {}\n", error.what());
    return 1;
  }
}
