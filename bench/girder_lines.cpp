#include "bench/girder_lines.h"

#include <algorithm>

namespace bench {
namespace {

/// Moments over the inner supports, sagging positive, under a unit load `at` in span `loaded` (from 0). All
/// spans have length L: M(s-1) + 4 M(s) + M(s+1) = load terms / L.
std::vector<double> support_moments(std::int32_t spans, double L, std::int32_t loaded, double at) {
  const auto inner = static_cast<std::size_t>(spans - 1);
  std::vector<double> diagonal(inner, 4.0);
  std::vector<double> right(inner, 0.0);
  const auto span = static_cast<std::size_t>(loaded);
  const double rest = L - at;
  if (span >= 1) right[span - 1] = -at * rest * (L + rest) / (L * L);
  if (span < inner) right[span] = -at * rest * (L + at) / (L * L);
  for (std::size_t s = 1; s < inner; ++s) {
    const double factor = 1.0 / diagonal[s - 1];
    diagonal[s] -= factor;
    right[s] -= factor * right[s - 1];
  }
  std::vector<double> moments(static_cast<std::size_t>(spans) + 1, 0.0);
  for (std::size_t s = inner; s >= 1; --s) moments[s] = (right[s - 1] - moments[s + 1]) / diagonal[s - 1];
  return moments;
}

}  // namespace

T_GIRDER::T_GIRDER(std::int32_t points, std::int32_t spans, EFFECT effect, double length) {
  const double L = length / spans;
  const std::int32_t field = (spans - 1) / 2;  // the span looked at, and the support behind it
  const double section = effect == EFFECT::FIELD_MOMENT ? L / 2 : L / 4;
  for (std::int32_t i = 0; i < points; ++i) {
    const double x = length * i / (points - 1);
    const std::int32_t loaded = std::min(static_cast<std::int32_t>(x / L), spans - 1);
    const double at = x - L * loaded;
    const std::vector<double> moments = support_moments(spans, L, loaded, at);
    const double left = moments[static_cast<std::size_t>(field)];
    const double right = moments[static_cast<std::size_t>(field) + 1];
    double y = right;
    if (effect == EFFECT::FIELD_MOMENT) {
      y = (left + right) / 2 + (loaded == field ? std::min(at, L - at) / 2 : 0.0);
    } else if (effect == EFFECT::SHEAR) {
      y = (right - left) / L;
      if (loaded == field) y += at <= section ? -at / L : 1 - at / L;
    }
    X.push_back(static_cast<real>(x));
    Y.push_back(static_cast<real>(y));
  }
}

search::T_LINE T_GIRDER::LINE() const {
  const auto n = static_cast<std::int32_t>(X.size());
  const TABLE<const real, POINT> y(Y.data(), {n});
  return {n, TABLE<const real, POINT>(X.data(), {n}), y, y, false};
}

}  // namespace bench
