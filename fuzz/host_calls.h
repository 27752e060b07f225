// Calls of a host, each held against what include/movload.h promises of any call.
#pragma once

#include <cstdint>
#include <string>

#include "fuzz/model_files.h"
#include "tests/host/host_call.h"

namespace fuzz {

/// What a run asks for.
struct T_QUESTION {
  std::int32_t KIND = 1;
  std::int32_t ID = 1;
  std::int32_t ITEM = 1;
  std::int32_t MV_CASE = 1;
  bool IS_OF_MODEL = false;  // kind, id and item are such as the sound model has
};

/// Chosen by a step out of what the sound model has; now and then something that it hasn't.
[[nodiscard]] T_QUESTION QUESTION_OF(const modelkit::T_MODEL& model, const T_STEP& step);

/// One run with arrays for that many lanes. A run that fails names a reason and writes nothing; one that
/// doesn't keeps within the arrays.
host::ARGUMENTS RUN(const std::string& base, std::int32_t mode_code, const T_QUESTION& question, int lanes);

void QUERY_NUM_LANE(const std::string& base, std::int32_t mode_code);

/// Every now and then: runs on files that nobody damages, which must give what they gave in the beginning.
class SOUND_RUNS {
 public:
  explicit SOUND_RUNS(bool volumes);
  void CHECK();

 private:
  host::ARGUMENTS run(std::size_t number);

  static constexpr std::size_t EVERY = 64;
  MODEL_FILES files_;
  bool volumes_;
  std::vector<T_QUESTION> questions_;
  std::vector<host::ARGUMENTS> answers_;
  std::size_t calls_ = 0;
};

}  // namespace fuzz
