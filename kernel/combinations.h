// The combinations of block MVLC: what every lane carries in each of them, and at which scale.
//
//   combination record   OFFSET         SIZE          MEANING
//     LANE_CODE               0         4 * NUM_LANE  int32 a lane: 4 * (class - 1) + sub-case, 0 nothing
//     LANE_SCALE   4 * NUM_LANE         8 * NUM_LANE  float64 a lane: scale of the lane's load
//
// The block holds N_MV_CASE groups, each a head record that nobody reads and then its combinations.
#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/status.h"
#include "kernel/block_file.h"
#include "kernel/record_file.h"
#include "search/vehicle_tables.h"

namespace kernel {

/// A set of vehicle columns; bit j is column j + 1.
using T_COLUMN_SET = std::bitset<search::MAX_VEHICLES>;

/// A lane code as the tables hold it: 4 * (class slot - 1) + sub-case, where the class slots number the
/// classes that some vehicle has, in ascending order. 0 stands for an empty lane, and for a code whose class
/// no vehicle has: both add nothing.
using T_SLOT_CODE = std::uint16_t;

/// What the lane codes of a file mean for the vehicles of a model.
class T_CODE_BOOK {
 public:
  struct T_MEANING {
    T_SLOT_CODE SLOT_CODE = 0;
    T_COLUMN_SET COLUMNS;  // columns whose VEH_GROUP the code names
  };

  T_CODE_BOOK() = default;
  T_CODE_BOOK(const std::vector<search::T_VEHICLE>& vehicles, std::int32_t n_vehicle_class);

  /// Classes of the vehicles, ascending, without 0: class slot s is at s - 1.
  [[nodiscard]] const std::vector<std::int32_t>& CLASSES() const noexcept { return classes_; }
  /// Slot of a class, 0 where no vehicle has it.
  [[nodiscard]] std::int32_t CLASS_SLOT(std::int32_t veh_class) const noexcept;
  /// Slot codes there are, 0 included.
  [[nodiscard]] std::size_t SLOT_CODES() const noexcept { return search::SUB_CASES * classes_.size() + 1; }
  [[nodiscard]] std::int64_t HIGHEST_CODE() const noexcept { return highest_code_; }
  [[nodiscard]] T_MEANING MEANING(std::int32_t code) const;

  /// The low codes, from 0, whose meaning is worked out beforehand:
  /// all of them but for models of very many classes.
  [[nodiscard]] std::size_t USUAL_CODES() const noexcept { return usual_.size(); }
  [[nodiscard]] T_SLOT_CODE USUAL_SLOT_CODE(std::size_t code) const noexcept { return usual_[code]; }

 private:
  std::vector<std::int32_t> classes_;
  std::vector<std::int32_t> groups_;  // VEH_GROUP of each column
  std::int64_t highest_code_ = 0;     // 4 * N_VEHICLE_CLASS
  std::vector<T_SLOT_CODE> usual_;
};

/// Which vehicle columns stand on a lane: where a code of any combination names the column's group, and where
/// one does so with a scale other than 0. A class is searched on a lane only in the second case.
struct T_LANE_VEHICLES {
  T_COLUMN_SET NAMED;
  T_COLUMN_SET SCALED;
};

/// One combination: a code and a scale a lane.
struct T_COMBINATION_VIEW {
  const T_SLOT_CODE* LANE_CODE = nullptr;
  const real* LANE_SCALE = nullptr;
};

/// How memory for the two big arrays is had; null where there is none. Given back by std::free.
using COMBINATION_MEMORY = void* (*)(std::size_t bytes);

class T_COMBINATION_CURSOR;

/// The combinations of all moving load cases, in memory or,
/// where that can't be had, on disk: a model too large for memory runs all the same,
/// with one read of a record per combination and pass, and gives the same results.
class T_COMBINATIONS {
 public:
  /// Reads the block; checks every code. `counts` are the combinations of each moving load case.
  STATUS LOAD(RECORD_FILE& unit, const std::string& file_name, std::int32_t num_lane,
              const std::vector<std::int32_t>& counts, T_CODE_BOOK book, COMBINATION_MEMORY memory);

  [[nodiscard]] bool ON_DISK_MVLC() const noexcept { return on_disk_; }
  [[nodiscard]] std::int32_t NUM_LANE() const noexcept { return num_lane_; }
  [[nodiscard]] const T_CODE_BOOK& BOOK() const noexcept { return book_; }
  /// By lane, 0-based.
  [[nodiscard]] const std::vector<T_LANE_VEHICLES>& LANE_VEHICLES() const noexcept { return lane_vehicles_; }
  /// Whether a combination of this moving load case puts the code on a lane with a scale other than 0. Lanes
  /// and cases from 1; a case that doesn't exist loads nothing.
  [[nodiscard]] bool LOADS(std::int32_t mv_case, std::int32_t lane, T_SLOT_CODE code) const;

 private:
  friend class T_COMBINATION_CURSOR;
  struct MEMORY_FREE {
    void operator()(void* memory) const noexcept;
  };
  struct T_CASE {
    std::int64_t FIRST_ROW = 0;     // combination rows before this case
    std::int64_t FIRST_RECORD = 0;  // block record of its first combination, from 1
    std::int32_t COUNT = 0;
    std::vector<std::uint8_t> LOADED;  // by lane, then slot code; see LOADS
  };

  class T_CODE_USE;
  /// Null where there is no such case.
  [[nodiscard]] const T_CASE* find(std::int32_t mv_case) const;
  STATUS read_row(BLOCK_READER& block, std::int64_t record, T_SLOT_CODE* codes, real* scales,
                  T_CODE_USE* use) const;

  std::string file_name_;
  std::int32_t num_lane_ = 0;
  bool on_disk_ = false;
  T_CODE_BOOK book_;
  std::vector<T_CASE> cases_;
  std::vector<T_LANE_VEHICLES> lane_vehicles_;
  std::unique_ptr<T_SLOT_CODE[], MEMORY_FREE> codes_;  // (lane, combination)
  std::unique_ptr<real[], MEMORY_FREE> scales_;        // (lane, combination)
};

/// A walk over the combinations of one moving load case. On disk it holds a connection of its own, so that
/// several walks can run at once. The combinations must outlive it.
class T_COMBINATION_CURSOR {
 public:
  explicit T_COMBINATION_CURSOR(const T_COMBINATIONS& combinations) : combinations_(combinations) {}

  /// Begins a case, from 1; one that doesn't exist has no combinations.
  STATUS BEGIN(std::int32_t mv_case);
  [[nodiscard]] std::int32_t COUNT() const noexcept { return case_ != nullptr ? case_->COUNT : 0; }
  /// The next combination, good until the next call. Called at most COUNT times.
  STATUS NEXT(T_COMBINATION_VIEW& combination);

 private:
  const T_COMBINATIONS& combinations_;
  const T_COMBINATIONS::T_CASE* case_ = nullptr;
  std::int64_t done_ = 0;
  RECORD_FILE unit_;  // on disk only
  BLOCK_READER block_;
  std::vector<T_SLOT_CODE> row_codes_;
  std::vector<real> row_scales_;
};

}  // namespace kernel
