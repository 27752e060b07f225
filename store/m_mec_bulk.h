// The index of one set of influence volumes: BASE_000.BLK, BASE_001.BLK and so on, up to 1000 of them.
//
// All integers are little-endian and signed; values are float32.
//
//   first volume      OFFSET  SIZE  MEANING
//     HEADER_WORD          0     4  int32, below 1: the set holds no influence data
//     N_VOLUMES            8     4  int32
//     LOAD_TABLE_OFFSET   24     8  int64, of the load table in this volume
//   load table
//     N_LOADS              4     4  int32, unit loads of this set
//     LOAD_IDS             8  4 * N_LOADS
//
// Behind the load table, and at byte 0 of every later volume, a stream of blocks begins. STREAM_TAG opens a
// block:
//
//     -1       end of the volume's stream
//     1, 2     results of nodes, of elements: int32 N_IDS, the IDs, 4 bytes unread, int32 N_ITEMS, the item
//              codes, 4 bytes unread, int32 RESULT_CODE, 14 words of which the last is POINTS, 88 bytes
//              unread, and a data record for each ID in order
//     12       two tables of groups, of element nodes and one that nobody reads: int32 number of groups; for
//              each int32 key, int32 count, the members
//     13       int32 count, so many words
//     other    int32 N_IDS, the IDs
//
// A data record holds a stretch of N_LOADS values for each component: items run faster, points slower. What a
// block holds follows from its RESULT_CODE (table in the source); what no list wants is passed over.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/status.h"
#include "store/id_maps.h"
#include "store/m_file_mapping.h"
#include "store/m_linked_list.h"

namespace store {

inline constexpr std::int32_t MOST_VOLUMES = 1000;

/// Name of a volume, from 1; empty for a base path that no name can be made of.
[[nodiscard]] std::string VOLUME_NAME(std::string_view base_path, std::int32_t volume);

/// What the head of a first volume says.
struct T_VOLUME_HEAD {
  std::int32_t HEADER_WORD = 0;
  std::int32_t N_VOLUMES = 0;
  std::int64_t LOAD_TABLE_OFFSET = 0;
};

/// The index of one set. A new one is empty; LOAD fills it, and CLOSE makes it new again. In between all
/// volumes are open, with a view of at most one.
class T_MEC {
 public:
  /// Opens the volumes and reads all block headers, no values. `element_nodes` takes the groups of the set;
  /// null where nobody wants them. A set that can't be read to its end has failed: nothing may be read from
  /// it, and FAULTY_VOLUME names the file.
  STATUS LOAD(std::string_view base_path, T_GROUP_TABLE* element_nodes);
  void CLOSE() noexcept;

  [[nodiscard]] const std::string& FAULTY_VOLUME() const noexcept { return faulty_volume_; }
  [[nodiscard]] T_LIST& NODES(LIST list) noexcept { return lists_[static_cast<std::size_t>(list)]; }
  [[nodiscard]] const T_LIST& NODES(LIST list) const noexcept {
    return lists_[static_cast<std::size_t>(list)];
  }

  /// The volume of a record that the set has.
  [[nodiscard]] T_FILE& VOLUME(const T_NODE& node) noexcept {
    return volumes_[static_cast<std::size_t>(node.VOLUME - 1)];
  }
  /// To be called before a record is read: takes over the view of another volume, so that a set has one at
  /// most. Fails where the volume was cut before the end of the record since it was opened.
  STATUS REACH_RECORD(const T_NODE& node) noexcept;

  std::int32_t N_LOADS = 0;
  std::int32_t N_COMPOSITE_PARTS = 0;  // 0: the set has no composite bars
  std::int32_t VIRTUAL_BAR_MARK = 0;   // above 0: the set has virtual bars

 private:
  STATUS load(std::string_view base_path, T_GROUP_TABLE* element_nodes);
  STATUS open_volumes(std::string_view base_path, T_VOLUME_HEAD& head);

  std::vector<T_FILE> volumes_;
  std::int32_t active_volume_ = 0;
  std::array<T_LIST, N_LISTS> lists_;
  std::string faulty_volume_;
};

/// Deletes the volumes of a set. Nothing is deleted where the first is missing, holds no influence data, or
/// is too short to tell how many there are; later ones that are missing are passed over.
void REMOVE_VOLUMES(std::string_view base_path);

}  // namespace store
