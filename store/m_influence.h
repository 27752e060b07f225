// The influence store: one set of volumes, or two as one.
//
// The primary set may be joined by an included one, which has further unit loads for the same IDs. Load
// numbers run through both, from 1: the included set's loads first, then the primary's.
//
//   state     begun by                         what may be asked
//   NONE      the process, CLOSE               nothing
//   OPEN      an OPEN that ended well          everything
//   FAILED    any other OPEN                   nothing
//
// The path of the included set has a life of its own: SET_INCLUDE may be called at any time and counts from
// the next OPEN on, for every OPEN until FORGET.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "common/path.h"
#include "common/status.h"
#include "store/id_maps.h"
#include "store/m_mec_bulk.h"

namespace store {

/// Positions of the longest row that doesn't follow from a record.
inline constexpr std::int32_t LONGEST_FIXED_ROW = 132;

/// Working space of the reads, made when the store is opened so that no read takes memory: room for the
/// record with the most components and for the longest row. What it means is the reads' affair.
struct T_READ_SPACE {
  std::vector<std::int32_t> POSITIONS;
  std::vector<std::uint8_t> COMPONENTS;
};

class INFLUENCE_STORE {
 public:
  constexpr INFLUENCE_STORE() noexcept = default;
  INFLUENCE_STORE(const INFLUENCE_STORE&) = delete;
  INFLUENCE_STORE& operator=(const INFLUENCE_STORE&) = delete;

  /// Names the included set; blanks at both ends don't belong to it. A path of blanks only, of none, or of
  /// more than 1024 characters changes nothing.
  void SET_INCLUDE(std::string_view path);
  void FORGET_INCLUDE() noexcept { include_path_ = {}; }

  /// Opens the volumes of the base path and of the included set; a store that is open is closed first. A
  /// store that can't be opened has failed, and FAULTY_VOLUME names the file.
  STATUS OPEN(std::string_view base_path);
  void CLOSE() noexcept;

  [[nodiscard]] bool IS_OPEN() const noexcept { return state_ == STATE::OPEN; }
  /// The volume that the last failure concerns; stands until the next OPEN or failure.
  [[nodiscard]] std::string_view FAULTY_VOLUME() const noexcept { return faulty_volume_.TEXT(); }

  // Of an open store; else 0 or empty.
  [[nodiscard]] std::int32_t N_TOTAL_LOADS() const noexcept { return n_total_loads_; }
  /// The IDs of a list in row order.
  [[nodiscard]] std::span<const T_NODE> ROWS(LIST list) const noexcept;
  [[nodiscard]] const ID_MAPS& MAPS() const noexcept { return maps_; }
  [[nodiscard]] const T_MEC& PRIMARY() const noexcept { return sets_.back(); }

  /// The sets of an open store, the primary one last. Reading moves their views.
  [[nodiscard]] std::span<T_MEC> SETS() noexcept { return sets_; }
  /// Where an ID's record lies in a set (from 0), given its row; null where the set's list is shorter.
  [[nodiscard]] const T_NODE* NODE(std::size_t set, LIST list, std::int32_t row) const noexcept;
  void SET_FAULTY_VOLUME(const T_FILE& volume) noexcept { faulty_volume_.SET(volume.NAME()); }

  /// One space for each of the two parts that a row may have.
  [[nodiscard]] std::array<T_READ_SPACE, 2>& READ_SPACES() noexcept { return read_spaces_; }

 private:
  enum class STATE : std::uint8_t { NONE, OPEN, FAILED };

  STATUS load(std::string_view base_path);
  STATUS load_set(T_MEC& set, std::string_view base_path, T_GROUP_TABLE* element_nodes);
  void merge();
  void register_ids();

  STATE state_ = STATE::NONE;
  T_PATH include_path_;  // empty: none
  std::vector<T_MEC> sets_;
  std::int32_t n_total_loads_ = 0;
  ID_MAPS maps_;
  std::array<T_READ_SPACE, 2> read_spaces_;
  T_PATH faulty_volume_;
};

}  // namespace store
