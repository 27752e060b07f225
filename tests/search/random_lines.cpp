#include "tests/search/random_lines.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float INFINITE = std::numeric_limits<float>::infinity();

int random_count(RANDOM& random) {
  if (random.one_in(600)) return random.between(1050, 1500);
  if (random.one_in(100)) return random.between(200, 500);
  if (random.one_in(8)) return random.below(4);
  return random.between(4, 44);
}

plain::LIST<float> random_positions(RANDOM& random, int n, std::string& kind) {
  static constexpr const char* NAMES[] = {"even", "thirds", "tenths", "random", "dense", "all at one place"};
  const int form = random.one_in(100) ? 5 : random.below(5);
  const bool repeats = random.one_in(3);
  const int repeat_rate = random.between(2, 12);
  const float starts[] = {0.0F, 0.0F, 1234.567F, -17.3F, 0.1F};
  kind += std::string(NAMES[form]) + (repeats ? " repeated" : "") + " points";

  plain::LIST<float> x;
  float position = starts[random.below(5)];
  while (x.count() < n) {
    const int copies = repeats && random.one_in(repeat_rate) ? random.between(2, 4) : 1;
    for (int copy = 1; copy <= copies && x.count() < n; ++copy) x.add(position);
    const float dense = random.one_in(3) ? std::nextafter(position, INFINITE) : position + random.unit();
    if (form == 0) position += 5.0F;
    if (form == 1) position += 10.0F / 3.0F;
    if (form == 2) position += 0.1F * static_cast<float>(random.between(1, 40));
    if (form == 3) position += 20.0F * random.unit() + 0.001F;
    if (form == 4) position = dense;
  }
  return x;
}

plain::LIST<float> random_ordinates(RANDOM& random, int n, std::string& kind) {
  static constexpr const char* NAMES[] = {"girder",         "noise",        "tied values",  "zero stretches",
                                          "touching zeros", "one-signed",   "all zero",     "alternating",
                                          "few peaks",      "of all sizes", "stepped spans"};
  // Where a line is to overflow the lists, it must change sign at every point or so.
  const int form = n > 1000 && random.one_in(2) ? 7 : random.one_in(30) ? 6 : random.below(11);
  const float scales[] = {1.0F, 1.0F, 1.0F, 0.0137F, 1e20F, 1e-30F};
  const int scale = random.below(6);
  const float sign = random.one_in(2) ? 1.0F : -1.0F;
  const float span = static_cast<float>(random.between(2, 14));
  const float decay = 0.2F + 0.6F * random.unit();
  kind += std::string(", ") + NAMES[form] + (scale == 4 ? " huge" : scale == 5 ? " tiny" : "");

  plain::LIST<float> y;
  float step = 1.0F;
  for (int i = 0; i < n; ++i) {
    const float at = static_cast<float>(i) / span;
    const float noise = random.noise();
    float value = 0;
    const bool at_support = i % static_cast<int>(span) == 0;
    // Spans that alternate in sign and die away, with exact zeros at the supports.
    if (form == 0 && !at_support)
      value = std::sin(3.14159265F * at) * std::pow(decay, std::fabs(std::floor(at) - 2.0F));
    if (form == 1) value = noise;
    if (form == 2) value = static_cast<float>(random.between(-2, 2));
    if (form == 3) value = random.one_in(2) ? 0.0F : noise;
    if (form == 4) value = random.one_in(3) ? 0.0F : std::fabs(noise);
    if (form == 5) value = std::fabs(noise) + 0.01F;
    if (form == 7) value = i % 2 == 0 ? 1.0F : -1.0F;
    if (form == 8) value = noise * (random.one_in(6) ? 1.0F : 0.01F);
    if (form == 9) value = std::ldexp(noise, random.between(-40, 10));
    if (form == 10 && at_support) step = static_cast<float>(random.between(-3, 3));
    if (form == 10) value = step;
    y.add(sign * scales[scale] * value);
  }
  return y;
}

/// The after values of a line with jumps at one point in `rate`.
plain::LIST<float> with_jumps(RANDOM& random, const plain::LIST<float>& before, int rate) {
  plain::LIST<float> after = before;
  for (float& value : after.values) {
    if (!random.one_in(rate)) continue;
    const float choices[] = {-value, 0.0F, value * random.noise(), before(random.between(1, before.count()))};
    value = choices[random.below(4)];
  }
  return after;
}

plain::HA_CURVE random_curve(RANDOM& random) {
  const float W0 = 100.0F * random.unit();
  const float L0 = random.one_in(3) ? 0.0F : 60.0F * random.unit();
  const plain::HA_CURVE curves[] = {
      {30.0F, 151.0F, 9.0F, 0.475F, 30.0F},
      {34.4F, 336.0F, 9.0F, 0.67F, 20.0F},
      {5.0F, 151.0F, 9.0F, 0.475F, 30.0F},  // W0 below the least intensity
      {50.0F, 1000.0F, 0.0F, 1.0F, 5.0F},   // area / L: every range lowers the effect
      {W0, 0.0F, 0.0F, 0.475F, L0},         // falls to nothing
      {W0, 500.0F * random.unit(), 20.0F * random.unit(), 2.0F * random.unit(), L0}};
  return curves[random.below(6)];
}

/// A position on the lane: on a point, just beside it, or anywhere in a segment.
float random_end(RANDOM& random, const plain::LIST<float>& x) {
  const int n = x.count();
  const int i = random.between(1, n);
  const float within = x(i) + random.unit() * (x(i < n ? i + 1 : n) - x(i));
  const float as_of_hb = (x(i) + 25.0F) - 25.0F;  // how the near end of an HB comes about
  const float choices[] = {x(i),
                           std::nextafter(x(i), INFINITE),
                           std::nextafter(x(i), -INFINITE),
                           x(1),
                           x(n),
                           as_of_hb,
                           within,
                           within,
                           within};
  return std::clamp(choices[random.below(9)], x(1), x(n));
}

std::vector<RANDOM_ZONE> random_zones(RANDOM& random, const plain::LIST<float>& x) {
  std::vector<RANDOM_ZONE> zones;
  const int n = x.count();
  for (int k = 0; k < 4 && n >= 2; ++k) {
    float ends[] = {random_end(random, x), random_end(random, x)};
    if (k == 3) {  // both in one segment
      const int i = random.between(1, n - 1);
      for (float& end : ends) end = std::clamp(x(i) + random.unit() * (x(i + 1) - x(i)), x(1), x(n));
    }
    const auto [near_end, far_end] = std::minmax(ends[0], ends[1]);
    zones.push_back({far_end, near_end, random.one_in(5) ? 30.0F * random.unit() : far_end - near_end});
  }
  return zones;
}

}  // namespace

RANDOM_CASE MAKE_RANDOM_CASE(std::uint64_t seed) {
  RANDOM random(seed);
  RANDOM_CASE c;
  const int n = random_count(random);
  c.KIND = std::to_string(n) + " ";
  const plain::LIST<float> x = random_positions(random, n, c.KIND);
  const int jump_rate = random.one_in(4) ? 0 : random.between(1, 8);
  for (int set = 0; set < 2; ++set) {
    const plain::LIST<float> y = random_ordinates(random, n, c.KIND);
    c.SIMPLE[set] = {false, false, x, y, y};
    c.JUMP[set] = {true, jump_rate != 0, x, y, jump_rate == 0 ? y : with_jumps(random, y, jump_rate)};
  }
  if (jump_rate != 0) c.KIND += ", a jump at one in " + std::to_string(jump_rate);
  c.CURVE = random_curve(random);
  c.KEL_LOAD = random.one_in(4) ? 120.0F : 300.0F * random.unit();
  c.ZONES = random_zones(random, x);
  if (n == 0) {
    c.PROBES = {0.0F, 1.0F};
    return c;
  }
  c.PROBES = {std::nextafter(x(1), -INFINITE), std::nextafter(x(n), INFINITE), x(1), x(n)};
  for (int k = 0; k < 12; ++k) c.PROBES.push_back(random_end(random, x));
  return c;
}
