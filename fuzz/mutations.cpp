// How libFuzzer changes and mixes descriptions: step by step, so that most of them stay such as get deep.
#include "fuzz/description.h"

#include <algorithm>
#include <random>
#include <utility>

extern "C" {
std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned seed);
std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1, const std::uint8_t* data2,
                                      std::size_t size2, std::uint8_t* out, std::size_t max_out_size,
                                      unsigned seed);
}

namespace fuzz {
namespace {

class dice {
 public:
  explicit dice(unsigned seed) : random_(seed) {}
  std::size_t below(std::size_t end) { return end == 0 ? 0 : random_() % end; }
  bool one_in(std::size_t n) { return below(n) == 0; }
  template <class T>
  T any() {
    return static_cast<T>(random_());
  }
  /// Small numbers choose the first of a list, which are most often those that matter.
  std::uint16_t number() {
    return one_in(4) ? any<std::uint16_t>() : static_cast<std::uint16_t>(below(one_in(2) ? 4 : 40));
  }

 private:
  std::minstd_rand random_;
};

T_STEP random_step(dice& dice) {
  T_STEP step{.OP = static_cast<std::uint8_t>(dice.below(T_STEP::CALL_BIT)),
              .TARGET = static_cast<std::uint8_t>(dice.below(dice.one_in(4) ? 256 : 32)),
              .A = dice.number(),
              .B = dice.number(),
              .C = dice.number()};
  if (dice.one_in(3))
    step.OP = static_cast<std::uint8_t>(step.OP | T_STEP::CALL_BIT);
  else if (dice.one_in(2))
    step.A = static_cast<std::uint16_t>(step.A | T_STEP::AMONG_COUNTS);
  return step;
}

void change_number(std::uint16_t& number, dice& dice) {
  const auto by = static_cast<std::uint16_t>(1 + dice.below(3));
  number = dice.one_in(3)   ? dice.number()
           : dice.one_in(2) ? static_cast<std::uint16_t>(number + by)
                            : static_cast<std::uint16_t>(number - by);
}

void change_step(T_STEP& step, dice& dice) {
  switch (dice.below(5)) {
    case 0:
      step.OP = random_step(dice).OP;
      break;
    case 1:
      step.TARGET = random_step(dice).TARGET;
      break;
    case 2:
      change_number(step.A, dice);
      break;
    case 3:
      change_number(step.B, dice);
      break;
    default:
      change_number(step.C, dice);
  }
}

/// A new model costs far more than a new step.
void change_model(T_MODEL_CHOICE& model, dice& dice) {
  const auto flip = [&](std::uint8_t& bits) { bits = static_cast<std::uint8_t>(bits ^ 1U << dice.below(8)); };
  switch (dice.below(6)) {
    case 0:
      model.SOURCE = dice.any<std::uint8_t>();
      break;
    case 1:
      flip(model.FEATURES);
      break;
    case 2:
      flip(model.FORM);
      break;
    case 3:
      flip(model.VOLUME_FORM);
      break;
    case 4:
      model.SEED = static_cast<std::uint16_t>(dice.below(256));
      break;
    default:
      model.POINTS = dice.any<std::uint8_t>();
      model.STEP = dice.any<std::uint8_t>();
  }
}

void mutate(T_DESCRIPTION& description, dice& dice) {
  std::vector<T_STEP>& steps = description.STEPS;
  const std::size_t at = dice.below(steps.size());
  const auto place = [&](std::size_t step) { return steps.begin() + static_cast<std::ptrdiff_t>(step); };
  if (steps.empty() || (dice.one_in(4) && steps.size() < MOST_STEPS)) {
    steps.insert(place(dice.below(steps.size() + 1)), random_step(dice));
  } else if (dice.one_in(200)) {
    change_model(description.MODEL, dice);
  } else if (dice.one_in(6)) {
    steps.erase(place(at));
  } else if (dice.one_in(8)) {
    std::swap(steps[at], steps[dice.below(steps.size())]);
  } else if (dice.one_in(8) && steps.size() < MOST_STEPS) {
    steps.insert(place(at), steps[at]);
    change_step(steps[at], dice);
  } else {
    change_step(steps[at], dice);
  }
}

std::size_t put(const T_DESCRIPTION& description, std::uint8_t* data, std::size_t max_size) {
  const std::vector<std::uint8_t> bytes = BYTES_OF(description);
  const std::size_t size = std::min(bytes.size(), max_size);
  std::copy_n(bytes.begin(), size, data);
  return size;
}

}  // namespace
}  // namespace fuzz

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned seed) {
  fuzz::dice dice(seed);
  // Now and then bytes as they come, which also brings in the words that comparisons were made with.
  if (dice.one_in(16)) return LLVMFuzzerMutate(data, size, max_size);
  fuzz::T_DESCRIPTION description = fuzz::PARSE({data, size});
  for (std::size_t changes = 1 + dice.below(3); changes > 0; --changes) fuzz::mutate(description, dice);
  return fuzz::put(description, data, max_size);
}

/// The model and the first steps of one description, the last steps of the other.
std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1, const std::uint8_t* data2,
                                      std::size_t size2, std::uint8_t* out, std::size_t max_out_size,
                                      unsigned seed) {
  fuzz::dice dice(seed);
  fuzz::T_DESCRIPTION mixed = fuzz::PARSE({data1, size1});
  const fuzz::T_DESCRIPTION other = fuzz::PARSE({data2, size2});
  mixed.STEPS.resize(dice.below(mixed.STEPS.size() + 1));
  const std::size_t room = fuzz::MOST_STEPS - mixed.STEPS.size();
  const std::size_t taken = std::min(room, dice.below(other.STEPS.size() + 1));
  mixed.STEPS.insert(mixed.STEPS.end(), other.STEPS.end() - static_cast<std::ptrdiff_t>(taken),
                     other.STEPS.end());
  return fuzz::put(mixed, out, max_out_size);
}
