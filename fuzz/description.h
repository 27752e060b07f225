// The input of a fuzzer: a description of what to do, so that chance doesn't have to hit upon the format of a
// file.
//
// A description is a sequence of records of 8 bytes, and every sequence of bytes is one; what is left over at
// its end doesn't count. The first record chooses a sound model, which modelkit writes. The others are steps,
// done in order: an edit of the model's files, or a call to the library. Equal descriptions do the same
// everywhere, but for a crash that needs a certain address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace fuzz {

/// Which sound model; model_files.cpp says what the numbers mean.
struct T_MODEL_CHOICE {
  std::uint8_t SOURCE = 0;       // random model or example, and the unit loads of the included set
  std::uint8_t FEATURES = 0;     // of a random model, one bit each
  std::uint8_t FORM = 0;         // of the block directory file
  std::uint8_t VOLUME_FORM = 0;  // of the influence volumes
  std::uint16_t SEED = 0;
  std::uint8_t POINTS = 0;  // influence points of a lane, and the steps between them
  std::uint8_t STEP = 0;
};

/// An edit or a call. Numbers that are too large for what they choose from begin again at 0.
struct T_STEP {
  static constexpr std::uint8_t CALL_BIT = 0x80;
  static constexpr std::uint16_t AMONG_COUNTS =
      0x8000;  // from this A on an edit takes a word that is a count

  std::uint8_t OP = 0;      // with CALL_BIT a call of the target's list, else an EDIT
  std::uint8_t TARGET = 0;  // region of the files; kind of result
  std::uint16_t A = 0;      // record; id
  std::uint16_t B = 0;      // word; item
  std::uint16_t C = 0;      // value; moving load case or unit load

  [[nodiscard]] bool IS_CALL() const { return (OP & CALL_BIT) != 0; }
  [[nodiscard]] std::size_t NUMBER() const { return OP & (CALL_BIT - 1U); }
};

inline constexpr std::size_t RECORD_BYTES = 8;
inline constexpr std::size_t MOST_STEPS = 12;
static_assert(sizeof(T_MODEL_CHOICE) == RECORD_BYTES && sizeof(T_STEP) == RECORD_BYTES);

struct T_DESCRIPTION {
  T_MODEL_CHOICE MODEL{};
  std::vector<T_STEP> STEPS{};  // at most MOST_STEPS
};

[[nodiscard]] T_DESCRIPTION PARSE(std::span<const std::uint8_t> bytes);
[[nodiscard]] std::vector<std::uint8_t> BYTES_OF(const T_DESCRIPTION& description);

}  // namespace fuzz
