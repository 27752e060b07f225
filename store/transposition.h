// From a record, where all loads of a component lie side by side, to rows, where all components of a load do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace store {

/// Components of a record, from 0, that are at hand: float32 values, each component SPACING values behind the
/// one before. Of each the first LOADS are wanted.
struct T_STRETCH {
  std::int32_t FIRST = 0;
  std::int32_t LAST = 0;
  std::int64_t SPACING = 0;
  std::int64_t LOADS = 0;
};

/// Copies what the stretch has of the components that `sources` names: sources[p] to position p (from 0) of
/// each of the LOADS rows, which lie `row_length` apart. Other positions stay as they are. `values` needn't
/// be aligned.
void TRANSPOSE(const std::byte* values, const T_STRETCH& stretch, std::span<const std::int32_t> sources,
               std::int64_t row_length, float* rows) noexcept;

}  // namespace store
