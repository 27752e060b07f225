// Published and hand-worked answers of bridges (bridges.csv), and the models that work them out again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "modelkit/model.h"

namespace replay {

/// A line of bridges.csv.
struct T_ANSWER {
  std::vector<double> spans;  // one or two, in m
  int points = 0;             // influence points of each span
  double beyond = 0.0;        // length of the lane before and behind the deck in m
  std::string loading;        // "HA", "HB <units> with HA" or "HB <units> alone"
  std::string result;         // as "moment at 12.5 m", "moment over pier" or "shear at start"
  std::string printed;        // the answer, as its source has it
  std::string unit;
  double within = 0.0;  // of the answer, how far the library may be off
  std::string source;

  [[nodiscard]] double PRINTED() const { return std::stod(printed); }
  [[nodiscard]] bool IS_MINIMUM() const { return PRINTED() < 0.0; }
};

/// The answers of a file. Throws std::runtime_error where it can't be read.
[[nodiscard]] std::vector<T_ANSWER> READ_ANSWERS(const std::string& file);

/// What to ask the library for.
struct T_QUESTION {
  modelkit::T_MODEL model;
  std::int32_t kind = 0, id = 1, item = 0;
};

/// The bridge with its loading and the component of the result. Throws std::invalid_argument where a loading or a
/// result is none of those that there are.
[[nodiscard]] T_QUESTION QUESTION_OF(const T_ANSWER& answer);

}  // namespace replay
