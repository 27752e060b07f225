#include "kernel/input_blocks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "kernel/block_file.h"

namespace kernel {
namespace {

constexpr std::int32_t NO_LIMIT = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t INT_BYTES = 4;
constexpr std::int64_t REAL_BYTES = 8;

/// A block that is read from its first record to its last.
class RECORD_WALK {
 public:
  STATUS OPEN_MANDATORY(RECORD_FILE& unit, const std::string& file_name, std::string_view tag) {
    return block_.OPEN_MANDATORY(unit, file_name, tag, 0);
  }
  STATUS OPEN(RECORD_FILE& unit, const std::string& file_name, std::string_view tag) {
    return block_.OPEN(unit, file_name, tag, 0);
  }
  [[nodiscard]] const BLOCK_READER& BLOCK() const noexcept { return block_; }

  /// The next record, which must hold `bytes` bytes.
  STATUS NEXT(std::int64_t bytes, const std::byte*& record) { return block_.READ(++number_, bytes, record); }
  void PASS(std::int64_t records) noexcept { number_ += records; }

  /// Room for `count` further records of `bytes` bytes.
  STATUS CHECK_ROOM(std::int64_t count, std::int64_t bytes) const {
    return block_.CHECK_ROOM(number_ + 1, count, bytes);
  }
  /// Bounds of a value of the record just read.
  STATUS BOUNDS(const char* item, std::int64_t value, std::int64_t low, std::int64_t high) const noexcept {
    return block_.BOUNDS(number_, item, value, low, high);
  }
  STATUS HERE(const STATUS& status) const noexcept { return block_.AT(status, number_); }

 private:
  BLOCK_READER block_;
  std::int64_t number_ = 0;
};

// ---------------------------------------------------------------------------------------- vehicles

constexpr std::int32_t SHORT_VEHICLE_WORDS = 417;
constexpr std::int64_t SHORT_VEHICLE_BYTES = 1668;
constexpr std::int64_t LONG_VEHICLE_BYTES = 4868;

/// In the short form the vehicle table is single precision throughout, its integers too.
std::int32_t table_integer(std::int32_t value, bool long_form) {
  return long_form ? value : TRUNCATE(static_cast<double>(static_cast<real>(value)));
}

STATUS read_vehicle(RECORD_WALK& walk, const T_COUNTS& counts, std::int32_t group, search::T_VEHICLE& vehicle,
                    std::int32_t& last_class) {
  constexpr std::int32_t HB_LOAD = 2;
  constexpr std::int32_t HB_FACTOR = 100;
  // A long record is held to its length, though nothing is taken from its two further lists.
  const bool long_form = walk.BLOCK().REC_WORDS() > SHORT_VEHICLE_WORDS;
  const std::byte* record = nullptr;
  STATUS status = walk.NEXT(long_form ? LONG_VEHICLE_BYTES : SHORT_VEHICLE_BYTES, record);
  if (!status.OK()) return status;
  UNPACK items(record);
  const auto veh_class = items.NEXT<std::int32_t>();
  const auto vehicle_code = items.NEXT<std::int32_t>();
  items.SKIP(20);
  for (real& value : vehicle.HA_CURVE) value = static_cast<real>(items.NEXT<double>());
  vehicle.N_VEHICLE_LOADS = items.NEXT<std::int32_t>();
  for (real& value : vehicle.VEHICLE_LOADS) value = static_cast<real>(items.NEXT<double>());
  vehicle.N_VEHICLE_GEOM = items.NEXT<std::int32_t>();
  for (real& value : vehicle.VEHICLE_GEOM) value = static_cast<real>(items.NEXT<double>());

  status = walk.BOUNDS("VEH_CLASS", veh_class, 0, counts.N_VEHICLE_CLASS);
  if (!status.OK()) return status;
  status = walk.BOUNDS("N_VEHICLE_LOADS", vehicle.N_VEHICLE_LOADS, 0, search::VEHICLE_LIST);
  if (!status.OK()) return status;
  status = walk.BOUNDS("N_VEHICLE_GEOM", vehicle.N_VEHICLE_GEOM, std::numeric_limits<std::int32_t>::min(),
                       search::VEHICLE_LIST);
  if (!status.OK()) return status;

  last_class = veh_class;
  vehicle.VEH_GROUP = table_integer(group, long_form);
  vehicle.VEH_CLASS = table_integer(veh_class, long_form);
  vehicle.VEHICLE_CODE = table_integer(vehicle_code, long_form);
  vehicle.VEHICLE_LOADS[HB_LOAD - 1] *= vehicle.VEHICLE_LOADS[HB_FACTOR - 1];
  // These two kinds of vehicle count their geometry otherwise; neither is searched.
  const bool counts_one_more = vehicle.VEHICLE_CODE == 14 || vehicle.VEHICLE_CODE == 15;
  if (counts_one_more && vehicle.N_VEHICLE_GEOM > std::numeric_limits<std::int32_t>::min())
    --vehicle.N_VEHICLE_GEOM;
  return {};
}

// ---------------------------------------------------------------------------------------- lanes

constexpr std::int64_t LANE_HEAD_BYTES = 44;
constexpr std::int64_t SPREAD_BYTES = 52;
constexpr std::int64_t POINT_BYTES = 32;

STATUS read_lane_head(RECORD_WALK& walk, const T_COUNTS& counts, std::int32_t lane_number,
                      search::T_LANE& lane, std::int32_t& n_spread, std::int32_t& n_extra) {
  const std::byte* record = nullptr;
  if (STATUS status = walk.NEXT(LANE_HEAD_BYTES, record); !status.OK()) return status;
  UNPACK items(record);
  lane.LANE_NUMBER = items.NEXT<std::int32_t>();
  n_spread = items.NEXT<std::int32_t>();
  lane.LANE_STATIONS = items.NEXT<std::int32_t>();
  n_extra = items.NEXT<std::int32_t>();
  lane.LANE_DIRECTION = items.NEXT<std::int32_t>();
  items.SKIP(REAL_BYTES);
  lane.IS_STRADDLE = items.NEXT<std::int32_t>() == 1;
  lane.N_TRANSVERSE = items.NEXT<std::int32_t>();
  lane.N_PER_PLANE = items.NEXT<std::int32_t>();
  lane.LANE_KEEP_POINTS = items.NEXT<std::int32_t>() != 0;

  STATUS status = walk.BOUNDS("N_SPREAD", n_spread, 0, counts.MAX_SPREAD);
  if (!status.OK()) return status;
  status = walk.BOUNDS("LANE_STATIONS", lane.LANE_STATIONS, 0, counts.MAX_POINTS);
  if (!status.OK()) return status;
  status = walk.BOUNDS("N_LANE_EXTRA", n_extra, 0, counts.MAX_LANE_EXTRA);
  if (!status.OK()) return status;
  status = walk.BOUNDS("N_TRANSVERSE", lane.N_TRANSVERSE, 0, counts.MAX_TRANSVERSE);
  if (!status.OK()) return status;

  // The straddle lanes are the last of the lane list: their numbers and their loading rest on it.
  const bool straddle_expected = lane_number > counts.NUM_LANE - counts.N_STRADDLE;
  if (lane.IS_STRADDLE != straddle_expected) {
    status = STATUS::FAILED(REASON::STRADDLE_LANE_MISPLACED, lane_number);
    status.high = counts.N_STRADDLE;
    return walk.HERE(status);
  }
  if (!lane.IS_STRADDLE) return {};
  // The second and the third plane are read as the parent lanes.
  constexpr std::int32_t LEAST_PLANES = 3;
  return walk.BOUNDS("N_PER_PLANE", lane.N_PER_PLANE, 1, lane.N_TRANSVERSE / LEAST_PLANES);
}

STATUS read_straddle_record(RECORD_WALK& walk, const T_COUNTS& counts, search::T_LANE& lane) {
  const std::byte* record = nullptr;
  if (STATUS status = walk.NEXT(2 * INT_BYTES, record); !status.OK()) return status;
  UNPACK items(record);
  lane.STRADDLE_LEFT = items.NEXT<std::int32_t>();
  lane.STRADDLE_RIGHT = items.NEXT<std::int32_t>();
  STATUS status = walk.BOUNDS("STRADDLE_LEFT", lane.STRADDLE_LEFT, 1, counts.NUM_LANE);
  return status.OK() ? walk.BOUNDS("STRADDLE_RIGHT", lane.STRADDLE_RIGHT, 1, counts.NUM_LANE) : status;
}

STATUS read_spread_row(RECORD_WALK& walk, const T_COUNTS& counts, search::T_SPREAD_ROW& row) {
  const std::byte* record = nullptr;
  if (STATUS status = walk.NEXT(SPREAD_BYTES, record); !status.OK()) return status;
  UNPACK items(record);
  row.COUNT = items.NEXT<std::int32_t>();
  STATUS status = walk.BOUNDS("count of a spread row", row.COUNT, 0, search::T_SPREAD_ROW::PAIRS);
  if (!status.OK()) return status;
  for (std::size_t pair = 0; pair < static_cast<std::size_t>(row.COUNT); ++pair) {
    row.LOAD_NUMBER[pair] = items.NEXT<std::int32_t>();
    row.WEIGHT[pair] = items.NEXT<double>();
    status = walk.BOUNDS("unit load of a spread row", row.LOAD_NUMBER[pair], 1, counts.N_UNIT_LOAD);
    if (!status.OK()) return status;
  }
  return {};
}

/// A link's reference, which the files hold as a real:
/// truncated, and held against the unit loads or spread rows.
STATUS read_reference(const RECORD_WALK& walk, double reference, std::int32_t n_unit_load,
                      std::int32_t n_spread, std::int32_t& result) {
  if (reference > 0) {
    result = TRUNCATE(reference);
    if (result >= 1 && result <= n_unit_load) return {};
    return walk.BOUNDS("unit load of a link", result, 1, n_unit_load);
  }
  if (reference < 0) {
    result = TRUNCATE(reference);
    if (result <= -1 && result >= -n_spread) return {};
    return walk.BOUNDS("spread row of a link", -std::int64_t{result}, 1, n_spread);
  }
  result = 0;
  return {};
}

STATUS read_points(RECORD_WALK& walk, const T_COUNTS& counts, search::T_LANE& lane) {
  const std::int64_t bytes = POINT_BYTES + 4 * REAL_BYTES * std::int64_t{lane.N_TRANSVERSE};
  if (STATUS status = walk.CHECK_ROOM(lane.LANE_STATIONS, bytes); !status.OK()) return status;
  const auto n_spread = static_cast<std::int32_t>(lane.SPREAD_TABLE.size());
  lane.LANE_LINKS.RESIZE(2, lane.N_TRANSVERSE, lane.LANE_STATIONS);
  lane.POINT_X.reserve(static_cast<std::size_t>(lane.LANE_STATIONS));
  lane.POINT_IMPACT.reserve(static_cast<std::size_t>(lane.LANE_STATIONS));
  lane.POINT_X_REAL.reserve(static_cast<std::size_t>(lane.LANE_STATIONS));

  search::T_LINK* link = lane.LANE_LINKS.VIEW().begin();
  for (std::int32_t point = 1; point <= lane.LANE_STATIONS; ++point) {
    const std::byte* record = nullptr;
    if (STATUS status = walk.NEXT(bytes, record); !status.OK()) return status;
    UNPACK items(record);
    items.SKIP(INT_BYTES + REAL_BYTES);
    lane.POINT_X.push_back(items.NEXT<double>());
    lane.POINT_X_REAL.push_back(static_cast<real>(lane.POINT_X.back()));
    lane.POINT_IMPACT.push_back(items.NEXT<double>());
    items.SKIP(INT_BYTES);
    for (std::int32_t i = 0; i < 2 * lane.N_TRANSVERSE; ++i, ++link) {
      const auto reference = items.NEXT<double>();
      link->FACTOR = items.NEXT<double>();
      STATUS status = read_reference(walk, reference, counts.N_UNIT_LOAD, n_spread, link->REFERENCE);
      if (!status.OK()) return status;
    }
  }
  lane.KEPT = search::DROP_REPEATED_POINTS(lane.POINT_X_REAL);
  return {};
}

// ---------------------------------------------------------------------------------------- class lanes

struct T_PHSL_HEAD {
  std::int32_t N_CLASS_DEF = 0;
  std::int32_t MAX_DEF_ENTRIES = 0;
};

STATUS read_phsl(RECORD_WALK& walk, const T_COUNTS& counts, const T_VEHICLES& vehicles, T_PHSL_HEAD& head,
                 search::T_CLASS_DEFINITIONS& definitions) {
  const std::byte* record = nullptr;
  if (STATUS status = walk.NEXT(2 * INT_BYTES, record); !status.OK()) return status;
  UNPACK head_items(record);
  head.N_CLASS_DEF = head_items.NEXT<std::int32_t>();
  head.MAX_DEF_ENTRIES = head_items.NEXT<std::int32_t>();
  STATUS status = walk.BOUNDS("N_CLASS_DEF", head.N_CLASS_DEF, 0, NO_LIMIT);
  if (!status.OK()) return status;
  status = walk.BOUNDS("MAX_DEF_ENTRIES", head.MAX_DEF_ENTRIES, 0, NO_LIMIT);
  if (!status.OK()) return status;
  status = walk.CHECK_ROOM(2 * std::int64_t{head.N_CLASS_DEF}, 3 * INT_BYTES);
  if (!status.OK()) return status;

  definitions.CLASS_DEF.resize(static_cast<std::size_t>(head.N_CLASS_DEF));
  definitions.CLASS_LANE_TABLE = search::T_CLASS_LANE_TABLE(head.N_CLASS_DEF, counts.NUM_LANE);
  for (search::T_CLASS_DEFINITION& definition : definitions.CLASS_DEF) {
    status = walk.NEXT(3 * INT_BYTES, record);
    if (!status.OK()) return status;
    UNPACK items(record);
    const auto group_row = items.NEXT<std::int32_t>();
    definition.CLASS_DEF_NO = items.NEXT<std::int32_t>();
    definition.LANE_NUMBER = items.NEXT<std::int32_t>();
    status = walk.BOUNDS("group row", group_row, 1, counts.N_VEHICLE_GROUP);
    if (!status.OK()) return status;
    status = walk.BOUNDS("lane", definition.LANE_NUMBER, 1, counts.NUM_LANE);
    if (!status.OK()) return status;
    definition.VEH_CLASS = vehicles.LAST_CLASS[static_cast<std::size_t>(group_row - 1)];
    if (!definitions.CLASS_LANE_TABLE.ADD(definition.VEH_CLASS, definition.LANE_NUMBER,
                                          definition.CLASS_DEF_NO)) {
      return walk.HERE(STATUS::FAILED(REASON::CLASS_LANE_TABLE_FULL));
    }
  }
  for (search::T_CLASS_DEFINITION& definition : definitions.CLASS_DEF) {
    status = walk.NEXT(7 * INT_BYTES, record);
    if (!status.OK()) return status;
    UNPACK items(record);
    items.SKIP(INT_BYTES);
    definition.N_POINTS = items.NEXT<std::int32_t>();
    definition.N_ENTRIES = items.NEXT<std::int32_t>();
    items.SKIP(3 * INT_BYTES);
    definition.N_PER_PLANE = items.NEXT<std::int32_t>();
    status = walk.BOUNDS("points of a class definition", definition.N_POINTS, 0, counts.MAX_POINTS);
    if (!status.OK()) return status;
    status = walk.BOUNDS("entries of a class definition", definition.N_ENTRIES, 0, counts.MAX_TRANSVERSE);
    if (!status.OK()) return status;
    status = walk.BOUNDS("entries per plane of a class definition", definition.N_PER_PLANE, 1, NO_LIMIT);
    if (!status.OK()) return status;
  }
  return {};
}

STATUS read_lvpf(RECORD_WALK& walk, const T_COUNTS& counts, std::int32_t max_def_entries,
                 std::vector<search::T_CLASS_DEFINITION>& definitions) {
  const std::int64_t bytes = REAL_BYTES * (2 * std::int64_t{max_def_entries} + 1);
  for (search::T_CLASS_DEFINITION& definition : definitions) {
    const std::int64_t records = std::int64_t{definition.N_POINTS} * definition.N_ENTRIES;
    if (STATUS status = walk.CHECK_ROOM(records, bytes); !status.OK()) return status;
    definition.FIRST_SHARE.reserve(static_cast<std::size_t>(records) + 1);
    definition.FIRST_SHARE.push_back(0);
    for (std::int64_t r = 0; r < records; ++r) {
      const std::byte* record = nullptr;
      if (STATUS status = walk.NEXT(bytes, record); !status.OK()) return status;
      UNPACK items(record);
      const auto next_real = [&items] { return static_cast<real>(items.NEXT<double>()); };
      const std::int32_t count = TRUNCATE(static_cast<double>(next_real()));
      STATUS status = walk.BOUNDS("count of a class entry", count, 0, max_def_entries);
      if (!status.OK()) return status;
      for (std::int32_t pair = 0; pair < count; ++pair) {
        const std::int32_t load = TRUNCATE(static_cast<double>(next_real()));
        const real weight = next_real();
        status = walk.BOUNDS("unit load of a class entry", load, 1, counts.N_UNIT_LOAD);
        if (!status.OK()) return status;
        definition.CLASS_LINKS.push_back({load, weight});
      }
      definition.FIRST_SHARE.push_back(definition.CLASS_LINKS.size());
    }
  }
  return {};
}

/// On a straddle lane every plane of the HB needs entries of the lanes that its axles run on.
STATUS check_planes(const RECORD_WALK& walk, const T_COUNTS& counts, const std::vector<search::T_LANE>& lanes,
                    std::int32_t lane, const std::vector<std::int32_t>& axle_list) {
  const search::T_LANE& straddle = lanes[static_cast<std::size_t>(lane - 1)];
  if (!straddle.IS_STRADDLE) return {};
  for (const std::int32_t named : axle_list) {
    if (named <= 0 || named == lane) continue;
    const std::int64_t per_plane = lanes[static_cast<std::size_t>(named - 1)].N_PER_PLANE;
    if (per_plane >= 1 && straddle.N_PLANE() * per_plane <= counts.MAX_TRANSVERSE) continue;
    STATUS status = STATUS::FAILED(REASON::AXLE_LIST_WITHOUT_PLANES, named);
    status.low = lane;
    return walk.HERE(status);
  }
  return {};
}

}  // namespace

STATUS READ_VEHICLES(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                     T_VEHICLES& vehicles) {
  RECORD_WALK walk;
  if (STATUS status = walk.OPEN_MANDATORY(unit, file_name, "VEHI"); !status.OK()) return status;
  vehicles.COLUMNS.assign(static_cast<std::size_t>(counts.N_VEHICLE_COLUMN), {});
  std::int32_t columns = 0;
  for (std::int32_t g = 0; g < counts.N_VEHICLE_GROUP; ++g) {
    const std::byte* record = nullptr;
    if (STATUS status = walk.NEXT(2 * INT_BYTES, record); !status.OK()) return status;
    UNPACK items(record);
    const auto group = items.NEXT<std::int32_t>();
    const auto count = items.NEXT<std::int32_t>();
    STATUS status = walk.BOUNDS("N_GROUP_VEHICLE", count, 0, counts.N_VEHICLE_COLUMN - columns);
    if (!status.OK()) return status;
    vehicles.LAST_CLASS.push_back(0);
    for (std::int32_t v = 0; v < count; ++v) {
      search::T_VEHICLE& vehicle = vehicles.COLUMNS[static_cast<std::size_t>(columns++)];
      status = read_vehicle(walk, counts, group, vehicle, vehicles.LAST_CLASS.back());
      if (!status.OK()) return status;
    }
  }
  return {};
}

STATUS READ_CLASS_DEFINITIONS(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                              const T_VEHICLES& vehicles, search::T_CLASS_DEFINITIONS& definitions) {
  definitions = {};
  T_PHSL_HEAD head;
  {
    RECORD_WALK walk;
    if (STATUS status = walk.OPEN(unit, file_name, "PHSL"); !status.OK()) return status;
    if (!walk.BLOCK().FOUND() || walk.BLOCK().NUM_REC() < 1) return {};
    if (STATUS status = read_phsl(walk, counts, vehicles, head, definitions); !status.OK()) return status;
  }
  if (head.N_CLASS_DEF == 0) return {};
  RECORD_WALK walk;
  if (STATUS status = walk.OPEN_MANDATORY(unit, file_name, "LVPF"); !status.OK()) return status;
  return read_lvpf(walk, counts, head.MAX_DEF_ENTRIES, definitions.CLASS_DEF);
}

STATUS READ_LANES(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                  std::vector<search::T_LANE>& lanes) {
  RECORD_WALK walk;
  if (STATUS status = walk.OPEN_MANDATORY(unit, file_name, "LNIF"); !status.OK()) return status;
  if (STATUS status = walk.CHECK_ROOM(counts.NUM_LANE, LANE_HEAD_BYTES); !status.OK()) return status;
  lanes.assign(static_cast<std::size_t>(counts.NUM_LANE), {});
  std::int32_t lane_number = 0;
  for (search::T_LANE& lane : lanes) {
    std::int32_t n_spread = 0;
    std::int32_t n_extra = 0;
    STATUS status = read_lane_head(walk, counts, ++lane_number, lane, n_spread, n_extra);
    if (!status.OK()) return status;
    if (lane.IS_STRADDLE) {
      status = read_straddle_record(walk, counts, lane);
      if (!status.OK()) return status;
    }
    status = walk.CHECK_ROOM(n_spread, SPREAD_BYTES);
    if (!status.OK()) return status;
    lane.SPREAD_TABLE.resize(static_cast<std::size_t>(n_spread));
    for (search::T_SPREAD_ROW& row : lane.SPREAD_TABLE) {
      status = read_spread_row(walk, counts, row);
      if (!status.OK()) return status;
    }
    status = read_points(walk, counts, lane);
    if (!status.OK()) return status;
    walk.PASS(n_extra);
  }
  return {};
}

STATUS READ_AXLE_LANES(RECORD_FILE& unit, const std::string& file_name, const T_COUNTS& counts,
                       const std::vector<search::T_LANE>& lanes, search::T_AXLE_LANES& axle_lanes) {
  constexpr std::int32_t AXLES = 4;
  axle_lanes = {};
  RECORD_WALK walk;
  if (STATUS status = walk.OPEN(unit, file_name, "MLIF"); !status.OK()) return status;
  if (!walk.BLOCK().FOUND()) return {};
  const std::byte* record = nullptr;
  if (STATUS status = walk.NEXT(2 * INT_BYTES, record); !status.OK()) return status;
  UNPACK head(record);
  const auto list_length = head.NEXT<std::int32_t>();
  const auto count = head.NEXT<std::int32_t>();
  STATUS status = walk.BOUNDS("MAX_AXLE_LIST", list_length, AXLES, NO_LIMIT);
  if (!status.OK()) return status;
  status = walk.BOUNDS("N_AXLE_LIST", count, 0, NO_LIMIT);
  if (!status.OK()) return status;

  axle_lanes.CREATE();
  for (std::int32_t r = 0; r < count; ++r) {
    status = walk.NEXT(4 * INT_BYTES, record);
    if (!status.OK()) return status;
    UNPACK items(record);
    items.SKIP(INT_BYTES);
    const auto veh_class = items.NEXT<std::int32_t>();
    const auto lane = items.NEXT<std::int32_t>();
    const auto n = items.NEXT<std::int32_t>();
    status = walk.BOUNDS("class of an axle list", veh_class, 1, counts.N_VEHICLE_CLASS);
    if (!status.OK()) return status;
    status = walk.BOUNDS("lane of an axle list", lane, 1, counts.NUM_LANE);
    if (!status.OK()) return status;
    status = walk.BOUNDS("length of an axle list", n, 0, list_length);
    if (!status.OK()) return status;

    // The same record once more, at its full length.
    walk.PASS(-1);
    status = walk.NEXT((4 + std::int64_t{n}) * INT_BYTES, record);
    if (!status.OK()) return status;
    UNPACK entries(record);
    entries.SKIP(4 * INT_BYTES);
    std::vector<std::int32_t> axle_list(static_cast<std::size_t>(n));
    for (std::int32_t& entry : axle_list) {
      entry = entries.NEXT<std::int32_t>();
      status =
          walk.BOUNDS("lane of an axle", entry, std::numeric_limits<std::int32_t>::min(), counts.NUM_LANE);
      if (!status.OK()) return status;
    }
    status = check_planes(walk, counts, lanes, lane, axle_list);
    if (!status.OK()) return status;
    axle_lanes.STORE(veh_class, lane, std::move(axle_list));
  }
  return {};
}

std::int32_t POINTS_PER_SEGMENT(const std::vector<search::T_LANE>& lanes) {
  constexpr real SAME_PLACE = 1E-10F;
  std::int32_t points = 3;
  for (std::size_t l = 0; l < lanes.size(); ++l) {
    const search::T_LANE& lane = lanes[l];
    for (std::int32_t k = 1; k <= lane.LANE_STATIONS; ++k) {
      if (k == lane.LANE_STATIONS) return k;
      const auto at = static_cast<std::size_t>(k);
      const real step = std::fabs(static_cast<real>(lane.POINT_X[at] - lane.POINT_X[at - 1]));
      if (l == 0 && step < SAME_PLACE) {
        points = k;
        break;
      }
      if (l > 0 && step < SAME_PLACE && points == k) return k;
    }
  }
  return points;
}

STATUS LOCAL_AXES_POSITION(RECORD_FILE& unit, const std::string& file_name, std::int32_t n_unit_load,
                           std::int32_t node, std::int32_t& position) {
  constexpr std::int32_t RESULT_BLOCKS = 5;
  position = 0;
  BLOCK_READER local_displacements;
  STATUS status = local_displacements.OPEN(unit, file_name, "LDSP", RESULT_BLOCKS);
  if (!status.OK()) return status;
  const bool any = local_displacements.FOUND() && local_displacements.FIRST_REC() >= 1;
  if (!any || local_displacements.NUM_REC() < n_unit_load) return {};

  // An axes table that begins at the file's first record can't be, for the directory does.
  RECORD_WALK axes;
  status = axes.OPEN(unit, file_name, "NLAX");
  if (!status.OK()) return status;
  if (!axes.BLOCK().FOUND() || axes.BLOCK().FIRST_REC() <= 1) return {};
  for (std::int64_t entry = 1; entry <= axes.BLOCK().NUM_REC(); ++entry) {
    const std::byte* record = nullptr;
    status = axes.NEXT(2 * INT_BYTES, record);
    if (!status.OK()) return status;
    UNPACK items(record);
    const auto axes_node = items.NEXT<std::int32_t>();
    const auto axes_position = items.NEXT<std::int32_t>();
    if (axes_node != node) continue;
    position = axes_position;
    return {};
  }
  return {};
}

}  // namespace kernel
