// The yardstick of the HB placing: every placement in full, step after step, and as fast as that allows. Work
// lists are sized once, ordinates stand in one contiguous column, and the lane is copied once a pass.
#pragma once

#include <cstdint>
#include <vector>

#include "common/real.h"

namespace bench {

struct T_PLAIN_VEHICLE {
  real HA_W0 = 30, HA_K = 151, HA_WMIN = 9, HA_P = 0.475F, HA_L0 = 30;
  real HB_LOAD = 450, HB_S = 1.8F, HB_B = 6, HB_STEP = 5;
};

struct T_PLAIN_SIDE {
  real VALUE = 0;
  std::int32_t W_MILLI = 0, HB_TYPE = 0, HB_POSITION = 0, PASS = 0;
  std::vector<std::int32_t> RANGES;
};

class PLAIN_HB_LANE {
 public:
  explicit PLAIN_HB_LANE(const T_PLAIN_VEHICLE& vehicle) : vehicle_(vehicle) {}
  /// Both directions; answers stand in MAXIMUM and MINIMUM.
  void RUN(const std::vector<real>& x, const std::vector<real>& y);

  T_PLAIN_SIDE MAXIMUM;
  T_PLAIN_SIDE MINIMUM;

 private:
  struct T_RANGES {
    std::int32_t count = 0;
    std::vector<real> area, length, mean;
    std::vector<std::int32_t> number;
    real best = 0;
    real intensity = 0;
    std::int32_t loaded = 0;
    void resize(std::size_t n) {
      area.resize(n);
      length.resize(n);
      mean.resize(n);
      number.resize(n);
    }
    void close(real& open_area, real& open_length) {
      const auto at = static_cast<std::size_t>(count++);
      area[at] = open_area;
      length[at] = open_length;
      open_area = 0;
      open_length = 0;
    }
  };
  void place(std::int32_t pass);
  [[nodiscard]] real ordinate_at(real position) const;
  void add(real dx, real a, real b);
  void search_ranges(std::int32_t near_index, real near_fraction, std::int32_t far_index, real far_fraction,
                     real vehicle_length);
  void rank(T_RANGES& ranges, bool is_minimum, real vehicle_length) const;
  static void keep(const T_RANGES& ranges, real total, std::int32_t type, std::int32_t position,
                   std::int32_t pass, T_PLAIN_SIDE& side);

  T_PLAIN_VEHICLE vehicle_;
  std::vector<real> x_, y_;
  T_RANGES positive_, negative_;
  real positive_area_ = 0, positive_length_ = 0, negative_area_ = 0, negative_length_ = 0;
};

}  // namespace bench
