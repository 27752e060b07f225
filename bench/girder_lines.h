// Influence lines of continuous girders of constant stiffness, by the three-moment equation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "search/layouts.h"

namespace bench {

enum class EFFECT : std::uint8_t { FIELD_MOMENT, SUPPORT_MOMENT, SHEAR };

/// A lane that a girder of `spans` equal spans fills, with n evenly spaced points.
struct T_GIRDER {
  std::vector<real> X;
  std::vector<real> Y;

  T_GIRDER(std::int32_t points, std::int32_t spans, EFFECT effect, double length = 200.0);
  [[nodiscard]] search::T_LINE LINE() const;
};

}  // namespace bench
