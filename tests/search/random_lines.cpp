#include "tests/search/random_lines.h"

#include <algorithm>
#include <cmath>
#include <limits>

search::T_VEHICLE_PARAMETERS VEHICLE_OF(const plain::HB_TASK& task) {
  search::T_VEHICLE_PARAMETERS vehicle;
  vehicle.HA_CURVE = CURVE_OF(task.CURVE);
  vehicle.HB_LOAD = task.HB_LOAD;
  vehicle.HB_S = task.HB_S;
  vehicle.HB_B = task.HB_B;
  vehicle.HB_STEP = task.HB_STEP;
  return vehicle;
}

search::T_SEARCH_RESULT SEARCH_HB(search::HB_SEARCH* form, const plain::HB_TASK& task, std::size_t planes,
                                  int behind, search::T_HB_WORK& work) {
  const auto n = static_cast<std::int32_t>(task.X.size());
  std::vector<std::vector<search::T_ORDINATES>> sets;
  for (const plain::PLANES& from : task.SETS) {
    auto& set = sets.emplace_back();
    for (std::size_t plane = 0; plane < planes; ++plane) {
      search::T_ORDINATES& rows = set.emplace_back(n + behind, task.TWO_COLUMNS ? 2 : 1);
      for (std::int32_t i = 1; i <= n; ++i) {
        rows(i, 1) = from[plane].BEFORE[static_cast<std::size_t>(i) - 1];
        if (task.TWO_COLUMNS) rows(i, 2) = from[plane].AFTER[static_cast<std::size_t>(i) - 1];
      }
    }
  }
  const search::T_VEHICLE_PARAMETERS vehicle = VEHICLE_OF(task);
  search::T_HB_INPUT input;
  input.n = n;
  input.LANE_X = TABLE<const real, POINT>(task.X.data(), {n});
  input.OWN = &sets[0];
  for (std::size_t j = 0; j < search::HB_AXLES; ++j) input.AXLES[j] = &sets[task.AXLE_SET[j]];
  input.VEHICLE = &vehicle;
  input.LANE_DIRECTION = task.LANE_DIRECTION;
  input.LANE_NUMBER = task.LANE_NUMBER;
  search::T_SEARCH_RESULT result;
  form(input, work, result);
  return result;
}

namespace {

constexpr float INFINITE = std::numeric_limits<float>::infinity();

plain::LIST<float> random_ordinates(RANDOM& random, int n, std::string& kind) {
  // Where a line is to overflow the lists, it must change sign at every point or so.
  const int form = n > 1000 && random.one_in(2) ? 7 : random.one_in(30) ? 6 : random.below(11);
  const float scales[] = {1.0F, 1.0F, 1.0F, 0.0137F, 1e20F, 1e-30F};
  const int scale = random.below(6);
  const float sign = random.one_in(2) ? 1.0F : -1.0F;
  const float span = static_cast<float>(random.between(2, 14));
  const float decay = 0.2F + 0.6F * random.unit();
  kind += ", ordinates of form " + std::to_string(form) + (scale == 4 ? " huge" : scale == 5 ? " tiny" : "");

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
      {0.0F, 1e4F, 0.0F, 3.0F, 0.0F},       // so steep that short ranges give more than long ones
      {W0, 500.0F * random.unit(), 20.0F * random.unit(), 2.0F * random.unit(), L0}};
  return curves[random.below(7)];
}

/// Where a placing of HB type k from `x` has its axles (1 to 4) and FAR_END (0), rounded in the same way.
float hb_end(const plain::HB_TASK& task, float x, int k, int axle) {
  const float T = task.HB_B + task.HB_S + static_cast<float>(k - 1) * task.HB_STEP;
  const float first = x + (T + 25.0F + task.HB_S);
  const float at[] = {first + 25.0F, first, x + (T + 25.0F), x + (25.0F + task.HB_S), x + 25.0F};
  return at[axle];
}

std::vector<float> hb_positions(RANDOM& random, std::uint64_t seed, const plain::HB_TASK& task,
                                std::string& kind) {
  const float starts[] = {0.0F, 0.0F, 1234.567F, -17.3F, 60000.0F, 90.0F * random.unit()};
  const float x1 = starts[random.below(6)];
  float length = 40.0F + (random.one_in(3) ? 260.0F : 80.0F) * random.unit();
  std::vector<float> x{x1};
  const auto even = [&](int count, float from, float spacing) {
    for (int i = 1; i < count; ++i) x.push_back(from + static_cast<float>(i) * spacing);
  };
  if (seed % 1500 == 7) {  // more ranges beyond the HB than a list holds, and few placements
    kind += "dense end";
    even(1150, x1 + hb_end(task, 0, 2, 0), 0.03125F);
    return x;
  }
  if (seed % 600 == 4) {
    kind += "dense";
    even(random.between(150, 250), x1, 0.28125F);
    return x;
  }
  if (seed % 600 == 3) {
    kind += "fine even";
    const int count = random.one_in(4) ? 400 : random.between(90, 180);
    even(count, x1, (length + 60.0F) / static_cast<float>(count));
    return x;
  }
  const int form = random.below(5);
  if (form == 0) {
    kind += "even";
    const float tenths = 0.1F * static_cast<float>(random.between(10, 99));
    const float spacings[] = {1.25F, 2.5F, 5.0F, 10.0F, 20.0F / 3.0F, tenths};
    const float spacing = spacings[random.below(6)];
    even(std::min(45, static_cast<int>(length / spacing) + 2), x1, spacing);
  } else if (form == 1) {  // a lane as long as a zone, or all but
    kind += "one zone";
    const float end = hb_end(task, x1, random.between(1, 5), 0);
    const float ends[] = {end, end, std::nextafter(end, INFINITE), std::nextafter(end, -INFINITE)};
    x.push_back(ends[random.below(4)]);
    for (int i = random.below(12); i > 0; --i) x.push_back(x1 + random.unit() * (end - x1));
  } else {
    kind += form == 2 ? "random" : "zone ends";
    for (int i = random.between(1, form == 2 ? 40 : 8); i > 0; --i) x.push_back(x1 + random.unit() * length);
    for (int i = form == 2 ? 0 : random.between(3, 20); i > 0; --i) {
      const float from = x[static_cast<std::size_t>(random.below(static_cast<int>(x.size())))];
      const int k = random.between(1, 5);
      const float at = hb_end(task, from, k, random.below(5));
      const float as_near_end = (from + 25.0F) - 25.0F;
      const float choices[] = {at, at, at, as_near_end, as_near_end, from};
      const float place = choices[random.below(6)];
      const float direction = random.one_in(2) ? INFINITE : -INFINITE;
      x.push_back(std::max(x1, random.one_in(3) ? std::nextafter(place, direction) : place));
    }
  }
  if (random.one_in(3)) {
    kind += " repeated";
    for (int i = random.between(1, 8); i > 0; --i) {
      const float at = x[static_cast<std::size_t>(random.below(static_cast<int>(x.size())))];
      x.insert(x.end(), static_cast<std::size_t>(random.between(1, 4)), at);
    }
  }
  std::sort(x.begin(), x.end());
  if (random.one_in(30)) x.resize(static_cast<std::size_t>(random.below(2)));
  if (random.one_in(30)) x = {x1, x1 + length};
  return x;
}

std::vector<float> hb_ordinates(RANDOM& random, const std::vector<float>& x, std::string& kind) {
  const auto n = static_cast<int>(x.size());
  const int form = n > 1000 ? 7 : n >= 90 && !random.one_in(4) ? 0 : random.below(8);
  std::vector<float> y = random_ordinates(random, n, kind).values;
  if (n < 2) return y;
  const float length = x.back() - x.front();
  const auto spans = static_cast<float>(random.between(1, 6));
  const float decay = 3.0F * random.unit();
  const float peak = x.front() + random.unit() * length;
  const float reach = (0.1F + random.unit()) * length;
  const float level = random.noise();
  const bool rough = random.one_in(2);
  for (std::size_t i = 0; i < x.size(); ++i) {
    const float at = (x[i] - x.front()) / length;
    if (form == 0) y[i] = std::sin(3.14159265F * spans * at) * std::exp(-decay * at);
    if (form == 1) y[i] = std::max(0.0F, 1.0F - std::fabs(x[i] - peak) / reach);
    if (form == 2) y[i] = rough && random.one_in(3) ? std::nextafter(level, INFINITE) : level;
    if (form == 3) y[i] = y[x.size() - 1 - i];
    if (form == 4) y[i] = i % 2 == 0 ? level : rough ? 0.0F : -level;  // spans of one mean but for rounding
  }
  kind += ", over it form " + std::to_string(form);
  return y;
}

}  // namespace

RANDOM_HB_CASE MAKE_RANDOM_HB_CASE(std::uint64_t seed) {
  RANDOM random(seed);
  RANDOM_HB_CASE c;
  plain::HB_TASK task;
  const std::array<float, 4> vehicles[] = {
      {450.0F, 1.8F, 6.0F, 5.0F},
      {450.0F, 1.8F, 6.0F, 5.0F},
      {300.0F, 2.5F, 5.0F, 5.0F},  // ends and axles on the points of even lanes
      {450.0F, 1.8F, 6.0F, 0.0F},  // five types alike
      {0.0F, 1.8F, 6.0F, 5.0F},
      {-450.0F, 1.8F, 6.0F, 5.0F},
      {100.0F, 0.0F, 0.0F, 0.0F},    // a vehicle without geometry
      {250.0F, 1.8F, 26.0F, -5.0F},  // types that grow shorter
      {250.0F, -3.0F, 12.0F, 5.0F},
      {500.0F * random.noise(), 4.0F * random.unit(), 15.0F * random.unit(), 8.0F * random.unit()}};
  const auto& [load, s, b, step] = vehicles[random.below(10)];
  task.HB_LOAD = load;
  task.HB_S = s;
  task.HB_B = b;
  task.HB_STEP = step;
  const plain::HA_CURVE curve = random_curve(random);
  task.CURVE = random.one_in(2) ? plain::HA_CURVE{30.0F, 151.0F, 9.0F, 0.475F, 30.0F} : curve;
  const int directions[] = {0, 1, 2, 2, 2, -1};
  task.LANE_DIRECTION = seed % 1500 == 7 ? 0 : directions[random.below(6)];
  task.LANE_NUMBER = random.between(1, 999);
  task.X = hb_positions(random, seed, task, c.KIND);
  c.KIND = std::to_string(task.X.size()) + " " + c.KIND + " points, HB_S " + std::to_string(s) + ", curve " +
           std::to_string(task.CURVE.K);

  const int sets = random.one_in(2) ? 1 : random.between(2, 3);
  for (std::size_t& set : task.AXLE_SET) set = static_cast<std::size_t>(random.below(sets));
  const int planes = random.one_in(3) ? random.between(4, 5) : 3;
  const int jump_rate = random.one_in(4) ? 0 : random.between(1, 8);
  c.SIMPLE = c.JUMP = task;
  c.JUMP.JUMP_LAYOUT = true;
  c.JUMP.TWO_COLUMNS = jump_rate != 0;
  const std::vector<float> base = hb_ordinates(random, task.X, c.KIND);
  for (int set = 0; set < sets; ++set) {
    c.SIMPLE.SETS.emplace_back();
    c.JUMP.SETS.emplace_back();
    for (int plane = 0; plane < planes; ++plane) {
      // Planes and lanes of one deck are much alike, often the same.
      const float factors[] = {1.0F, 1.0F, 2.0F * random.unit(), -1.0F, 0.0F};
      const float factor = factors[random.below(5)];
      std::vector<float> y = factor == 0 ? hb_ordinates(random, task.X, c.KIND) : base;
      for (float& value : y) value *= factor == 0 ? 1.0F : factor;
      c.SIMPLE.SETS.back().push_back({y, y});
      c.JUMP.SETS.back().push_back({y, jump_rate == 0 ? y : with_jumps(random, {y}, jump_rate).values});
    }
  }
  return c;
}
