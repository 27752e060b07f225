#include "bench/plain_hb_lane.h"

#include <algorithm>
#include <cmath>

namespace bench {

void PLAIN_HB_LANE::RUN(const std::vector<real>& x, const std::vector<real>& y) {
  const std::size_t n = x.size();
  for (T_PLAIN_SIDE* side : {&MAXIMUM, &MINIMUM}) {
    side->RANGES.reserve(n);
    *side = {0, 0, 0, 0, 0, std::move(side->RANGES)};
    side->RANGES.clear();
  }
  positive_.resize(n);
  negative_.resize(n);
  x_ = x;
  y_ = y;
  place(1);
  x_[0] = 0;
  for (std::size_t k = 1; k < n; ++k) x_[k] = x_[k - 1] + x[n - k] - x[n - k - 1];
  std::reverse_copy(y.begin(), y.end(), y_.begin());
  place(2);
}

void PLAIN_HB_LANE::place(std::int32_t pass) {
  constexpr real CLEAR = 25;
  const auto n = static_cast<std::int32_t>(x_.size());
  const real* x = x_.data() - 1;  // from 1, as the points are numbered
  for (std::int32_t i = 1; i <= n; ++i) {
    for (std::int32_t type = 1; type <= 5; ++type) {
      const real bogies = vehicle_.HB_B + vehicle_.HB_S + static_cast<real>(type - 1) * vehicle_.HB_STEP;
      const real axles[4] = {x[i] + (bogies + CLEAR + vehicle_.HB_S), x[i] + (bogies + CLEAR),
                             x[i] + (CLEAR + vehicle_.HB_S), x[i] + CLEAR};
      const real far_end = axles[0] + CLEAR;
      const real near_end = axles[3] - CLEAR;
      if (far_end > x[n] || x[1] > near_end) break;

      std::int32_t far_index = 0;
      std::int32_t near_index = 0;
      real far_fraction = 0;
      real near_fraction = 0;
      for (std::int32_t k = 1; k <= n && far_index == 0; ++k) {
        if (far_end == x[k]) {
          far_index = k;
        } else if (k < n && x[k] < far_end && far_end < x[k + 1]) {
          far_index = k;
          far_fraction = (far_end - x[k]) / (x[k + 1] - x[k]);
        }
      }
      for (std::int32_t k = 1; k <= n && near_index == 0; ++k) {
        if (near_end == x[k]) {
          near_index = k;
        } else if (k < n && x[k] < near_end && near_end < x[k + 1]) {
          near_index = k + 1;
          near_fraction = (near_end - x[k]) / (x[k + 1] - x[k]);
        }
      }
      real sum = 0;
      for (const real axle : axles) sum += ordinate_at(axle);
      search_ranges(near_index, near_fraction, far_index, far_fraction, axles[0] - axles[3]);
      const real effect = sum * vehicle_.HB_LOAD;
      const std::int32_t position = pass == 1 ? i : n - i + 1;
      if (positive_.best + effect > MAXIMUM.VALUE)
        keep(positive_, positive_.best + effect, type, position, pass, MAXIMUM);
      if (negative_.best + effect < MINIMUM.VALUE)
        keep(negative_, negative_.best + effect, type, position, pass, MINIMUM);
    }
  }
}

/// By bisection; an equal point goes first.
real PLAIN_HB_LANE::ordinate_at(real position) const {
  const auto above = std::lower_bound(x_.begin(), x_.end(), position);
  const auto k = static_cast<std::size_t>(above - x_.begin());
  if (*above == position) return y_[k];
  const real f = (position - x_[k - 1]) / (x_[k] - x_[k - 1]);
  return (1 - f) * y_[k - 1] + f * y_[k];
}

inline void PLAIN_HB_LANE::add(real dx, real a, real b) {
  if (a >= 0 && b > 0) {
    positive_length_ += dx;
    positive_area_ += (a + b) * dx * 0.5F;
  } else if (a <= 0 && b < 0) {
    negative_length_ += dx;
    negative_area_ += (a + b) * dx * 0.5F;
  } else if (a > 0 && b <= 0) {
    const real x0 = std::fabs(a) * dx / (std::fabs(b) + std::fabs(a));
    positive_length_ += x0;
    positive_area_ += a * 0.5F * x0;
    negative_length_ += dx - x0;
    negative_area_ += b * 0.5F * (dx - x0);
    positive_.close(positive_area_, positive_length_);
  } else if (a < 0 && b >= 0) {
    const real x0 = std::fabs(a) * dx / (std::fabs(b) + std::fabs(a));
    negative_length_ += x0;
    negative_area_ += a * 0.5F * x0;
    positive_length_ += dx - x0;
    positive_area_ += b * 0.5F * (dx - x0);
    negative_.close(negative_area_, negative_length_);
  }
}

void PLAIN_HB_LANE::search_ranges(std::int32_t near_index, real near_fraction, std::int32_t far_index,
                                  real far_fraction, real vehicle_length) {
  const auto n = static_cast<std::int32_t>(x_.size());
  const real* x = x_.data() - 1;
  const real* y = y_.data() - 1;
  positive_.count = 0;
  negative_.count = 0;
  positive_area_ = positive_length_ = negative_area_ = negative_length_ = 0;
  const std::int32_t cut = near_fraction != 0 ? near_index - 1 : near_index;
  for (std::int32_t i = 1; i < cut; ++i) add(x[i + 1] - x[i], y[i], y[i + 1]);
  const auto part = [&](std::int32_t i, real f, bool in_front) {
    const real at = x[i] + (x[i + 1] - x[i]) * f;
    const real ordinate = (1 - f) * y[i] + f * y[i + 1];
    if (in_front) add(at - x[i], y[i], ordinate);
    if (!in_front) add(x[i + 1] - at, ordinate, y[i + 1]);
  };
  if (near_fraction != 0) part(near_index - 1, near_fraction, true);
  if (far_index < n) part(far_index, far_fraction, false);
  for (std::int32_t i = far_index + 1; i < n; ++i) add(x[i + 1] - x[i], y[i], y[i + 1]);
  if (positive_area_ > 0) positive_.close(positive_area_, positive_length_);
  if (negative_area_ < 0) negative_.close(negative_area_, negative_length_);
  rank(positive_, false, vehicle_length);
  rank(negative_, true, vehicle_length);
}

void PLAIN_HB_LANE::rank(T_RANGES& ranges, bool is_minimum, real vehicle_length) const {
  const std::int32_t count = ranges.count;
  real* mean = ranges.mean.data();
  std::int32_t* number = ranges.number.data();
  for (std::int32_t r = 0; r < count; ++r) {
    const auto at = static_cast<std::size_t>(r);
    mean[r] = ranges.length[at] != 0 ? ranges.area[at] / ranges.length[at] : 0;
    if (is_minimum) mean[r] = std::fabs(mean[r]);
    number[r] = r;
  }
  for (std::int32_t front = 0, back = count - 1; front < back; ++front, --back) {
    const auto exchange = [&](std::int32_t a, std::int32_t b) {
      std::swap(mean[a], mean[b]);
      std::swap(number[a], number[b]);
    };
    std::int32_t at = front;
    for (std::int32_t r = front + 1; r <= back; ++r) {
      if (mean[r] > mean[at]) at = r;
    }
    exchange(front, at);
    at = front;
    for (std::int32_t r = front + 1; r <= back; ++r) {
      if (mean[r] < mean[at]) at = r;
    }
    exchange(back, at);
  }
  ranges.best = 0;
  ranges.loaded = 0;
  ranges.intensity = 0;
  real area = 0;
  real length = vehicle_length;
  for (std::int32_t j = 0; j < count; ++j) {
    const auto range = static_cast<std::size_t>(number[j]);
    area += ranges.area[range];
    length += ranges.length[range];
    real w = length <= vehicle_.HA_L0 ? vehicle_.HA_W0 : vehicle_.HA_K * std::pow(1 / length, vehicle_.HA_P);
    w = std::max(w, vehicle_.HA_WMIN);
    const real effect = area * w;
    if (is_minimum ? effect < ranges.best : effect > ranges.best) {
      ranges.best = effect;
      ranges.loaded = j + 1;
      ranges.intensity = w;
    }
  }
}

void PLAIN_HB_LANE::keep(const T_RANGES& ranges, real total, std::int32_t type, std::int32_t position,
                         std::int32_t pass, T_PLAIN_SIDE& side) {
  side.VALUE = total;
  side.HB_TYPE = type;
  side.HB_POSITION = position;
  side.PASS = pass;
  side.W_MILLI = static_cast<std::int32_t>(ranges.intensity * 1000);
  side.RANGES.assign(ranges.number.begin(), ranges.number.begin() + ranges.loaded);
}

}  // namespace bench
