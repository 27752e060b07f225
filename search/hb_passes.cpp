#include "search/hb_passes.h"

namespace search {
namespace {

void reverse_rows(const T_ORDINATES& from, std::int32_t n, T_ORDINATES& to) {
  if (to.POINTS() < n || to.COLUMNS() != from.COLUMNS()) to = T_ORDINATES(n, from.COLUMNS());
  for (std::int32_t column = 1; column <= from.COLUMNS(); ++column) {
    for (std::int32_t k = 1; k <= n; ++k) to(k, column) = from(n + 1 - k, column);
  }
}

}  // namespace

T_PASS TURN_ROUND(const T_HB_INPUT& input, T_HB_WORK& work) {
  const std::int32_t n = input.n;
  work.REVERSED_X.assign(static_cast<std::size_t>(n), 0.0F);
  for (std::int32_t k = 1; k < n; ++k) {
    const auto at = static_cast<std::size_t>(k);
    work.REVERSED_X[at] = work.REVERSED_X[at - 1] + input.LANE_X(n - k + 1) - input.LANE_X(n - k);
  }
  std::size_t sets = 0;
  work.REVERSED.resize(1 + HB_AXLES);
  const auto reversed = [&](const std::vector<T_ORDINATES>* source) -> const std::vector<T_ORDINATES>* {
    for (std::size_t s = 0; s < sets; ++s) {
      if (work.REVERSED[s].SOURCE == source) return &work.REVERSED[s].PLANES;
    }
    T_HB_WORK::T_REVERSED_SET& set = work.REVERSED[sets++];
    set.SOURCE = source;
    set.PLANES.resize(source->size());
    for (std::size_t p = 0; p < source->size(); ++p) reverse_rows((*source)[p], n, set.PLANES[p]);
    return &set.PLANES;
  };
  T_PASS pass{REVERSE_PASS, n, {work.REVERSED_X.data(), {n}}, reversed(input.OWN), {}, false, nullptr};
  for (std::size_t j = 0; j < HB_AXLES; ++j) pass.AXLES[j] = reversed(input.AXLES[j]);
  return pass;
}

}  // namespace search
