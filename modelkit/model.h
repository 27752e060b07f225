// A moving load model in plain named fields, as a modeller thinks of it.
//
// WRITE_MODEL (model_writer.h) turns a model into the files that the library reads. The model is deliberately
// free: nothing here is checked, so that tests can write damaged models too. Numbers that appear in the files
// as 1-based references (unit loads, lanes, spread rows) are 1-based here as well; 0 means "none".
//
// Every member is initialised where it is declared, so that a designated initialiser may leave any of them
// out.
//
// The library never links this folder; tools, tests, benchmarks and examples do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace modelkit {

/// A share of one unit load: the response to unit load `load`, times `weight`.
struct T_LOAD_SHARE {
  std::int32_t load = 0;
  double weight = 0.0;
};

/// One transverse entry of an influence point: two links. A positive reference is a unit load; a negative one
/// names row -reference of the lane's spread rows (whose own weights then stand in place of the link's); 0 is
/// none.
struct T_TRANSVERSE_ENTRY {
  T_LOAD_SHARE a{};  // reference and weight
  T_LOAD_SHARE b{};
};

struct T_INFLUENCE_POINT {
  double x = 0.0;       // distance along the lane
  double impact = 0.0;  // add-on to 1 that scales the point's weights
  std::vector<T_TRANSVERSE_ENTRY> entries{};
};

/// A spread row: a group of up to four unit loads (more are not stored).
using T_SPREAD_ROW = std::vector<T_LOAD_SHARE>;

enum class DIRECTION : std::int32_t { FORWARD = 0, REVERSE = 1, BOTH = 2 };

struct T_LANE {
  std::vector<T_INFLUENCE_POINT> points{};
  std::vector<T_SPREAD_ROW> spread_rows{};
  DIRECTION direction = DIRECTION::BOTH;
  std::int32_t entries_per_point = 1;  // N_TRANSVERSE; every point is written with that many entries
  std::int32_t entries_per_plane = 1;  // N_PER_PLANE
  bool keep_points = false;            // repeated influence points of this lane are kept
  bool is_straddle = false;            // straddle lanes stand last in the lane list
  std::int32_t left_parent = 0;        // parent lanes of a straddle lane
  std::int32_t right_parent = 0;
  std::int32_t extra_records = 0;  // N_LANE_EXTRA
};

/// One vehicle of block VEHI. Loads and geometry are the first entries of lists of 100, the rest 0.
struct T_VEHICLE {
  std::int32_t vehicle_class = 1;
  std::int32_t code = 20;  // 20: BS 5400
  std::string name{};
  double ha_w0 = 0.0;    // HA UDL up to the loaded length ha_l0
  double ha_k = 0.0;     // beyond: ha_k * (1 / L) ^ ha_p
  double ha_wmin = 0.0;  // not below
  double ha_p = 0.0;
  std::vector<double> loads{};                   // 1 KEL, 2 HB axle load, ..., 100 factor of the HB axle load
  std::vector<double> geometry{};                // 1 HA_L0, 2 HB_S, 3 HB_B, 4 HB_STEP
  std::optional<std::int32_t> load_count{};      // N_VEHICLE_LOADS, where it isn't loads.size()
  std::optional<std::int32_t> geometry_count{};  // N_VEHICLE_GEOM, where it isn't geometry.size()
};

struct T_VEHICLE_GROUP {
  std::int32_t group = 1;  // VEH_GROUP
  std::vector<T_VEHICLE> vehicles{};
};

/// What one lane carries in a combination. code = 4 * (class - 1) + sub-case, 0 for an empty lane.
struct T_LANE_LOAD {
  std::int32_t code = 0;
  double scale = 0.0;
};

using T_COMBINATION = std::vector<T_LANE_LOAD>;  // one per lane
struct T_MOVING_LOAD_CASE {
  std::vector<T_COMBINATION> combinations{};
};

/// A lane definition of one vehicle class (blocks PHSL and LVPF).
struct T_CLASS_DEFINITION {
  // Place of the group in block VEHI; the definition is for its last vehicle's class.
  std::int32_t group_row = 1;
  std::int32_t number = 1;  // CLASS_DEF_NO
  std::int32_t lane = 1;
  std::int32_t entries_per_point = 1;
  std::int32_t entries_per_plane = 1;  // also the divisor of the weights
  std::int32_t b1 = 0;
  std::vector<std::vector<std::vector<T_LOAD_SHARE>>> links{};  // [point][entry][pair]
};

/// An axle list (block MLIF): the lanes on which the axles of a class run, 0 the lane itself.
struct T_AXLE_LIST {
  std::int32_t vehicle_class = 1;
  std::int32_t lane = 1;
  std::vector<std::int32_t> lanes{};
};

/// Responses of one result point: values[component][load], 0-based.
struct T_RESPONSE {
  std::int32_t id = 0;  // node, support or element number; for local displacements the node
  std::vector<std::vector<float>> values{};
};

struct T_MODEL {
  std::int32_t unit_loads = 1;  // N_UNIT_LOAD
  std::int32_t n_dof = 6;       // 6, or 7 with warping
  std::vector<T_LANE> lanes{};  // straddle lanes last
  std::vector<T_VEHICLE_GROUP> vehicle_groups{};
  std::vector<T_MOVING_LOAD_CASE> moving_load_cases{};
  std::vector<T_CLASS_DEFINITION> class_definitions{};  // written where class_lanes is set
  std::vector<T_AXLE_LIST> axle_lists{};                // block MLIF where there are any
  bool class_lanes = false;
  bool keep_points = false;
  std::int32_t plate_form = 4;

  // Responses by kind. disp, simb, elnk and nlnk are addressed by id: run id of the block, up to the greatest
  // id, ids without a response written as zeros. reac and lrac carry their node number and may stand in any
  // order. ldisp runs in the order given, with NLAX entries (node, position) beside them.
  std::vector<T_RESPONSE> disp{}, ldisp{}, reac{}, lrac{}, simb{}, elnk{}, nlnk{};

  // Responses of elements by their number, each with all values of a record of its family: trusses 2; beams
  // 68, of which 48 are columns of the components that may jump; plates 8, 40, 14 or 70 by plate_form 1 to 4;
  // walls 132, of which 48 are such columns and 24 belong to parts of components.
  std::vector<T_RESPONSE> trusses{}, beams{}, plates{}, walls{};
  std::int32_t elements_per_file = 1000;  // of every family
};

/// How the files are laid out. The defaults suit the library's usual reading.
struct T_FILE_FORM {
  std::int32_t analysis_code = 0;       // chooses the extension
  bool directory_version_1 = false;     // 20-byte entries instead of 28
  bool long_vehicles = false;           // vehicle records of 4868 bytes
  bool short_mldi = false;              // MLDI of 17 words
  bool reverse_entries = false;         // directory entries in reverse order of the blocks
  std::int32_t unused_groups = 0;       // header groups of foreign blocks written in front of ours
  bool header_groups_behind = false;    // headers after the first stand behind the blocks, last first
  std::int32_t format_number = 9600;    // third word of block IFSV
  bool responses = true;                // else neither blocks nor files of responses, as beside volumes
  std::vector<std::string> left_out{};  // tags of blocks that aren't written
};

}  // namespace modelkit
