// Influence volumes in plain named fields, block by block, and their writer. volume_writer.h makes such a set
// of a T_MODEL; tests make or change one to write odd and damaged sets.
//
// A set "model" is the files model_000.BLK, model_001.BLK and so on, little-endian:
//
//   first volume   OFFSET  SIZE  MEANING
//                       0     4  header word, 1 or more
//                       8     4  number of volumes
//                      24     8  offset of the load table
//   load table          4     4  number of loads, behind it an id for each
//
// Blocks follow the load table, and in a later volume stand from its first byte on. -1 ends each volume. A
// block of results (tag 1 nodes, 2 elements):
//
//   tag, number of ids, ids, unread word, number of items, item codes, unread word, result code,
//   14 words of which the last is the number of points, 22 unread words, data
//
// The data are one record for each id: point by point, item by item, load by load. Tag 12 has two tables of
// groups of ids, each a number of groups and then key, number of members and members of each. Any other tag
// is followed by a number of values and the values.
//
// Nothing is checked. Counts are worked out from the lists; to write a file whose counts lie, write a sound
// one and change it with OVERWRITE_WORD_AT.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace modelkit {

inline constexpr std::int32_t STREAM_NODES = 1;
inline constexpr std::int32_t STREAM_ELEMENTS = 2;
inline constexpr std::int32_t STREAM_GROUPS = 12;

/// An id and what belongs to it, as an element and its nodes.
struct T_ID_GROUP {
  std::int32_t key = 0;
  std::vector<std::int32_t> members{};
};

/// A block. Only the fields of its tag are written.
struct T_VOLUME_BLOCK {
  std::int32_t tag = STREAM_NODES;
  std::vector<std::int32_t> ids{};  // of a tag that isn't known the values
  std::vector<std::int32_t> item_codes{};
  std::int32_t result_code = 0;
  std::int32_t points = 1;                                   // of elements
  std::vector<T_ID_GROUP> element_nodes{}, second_groups{};  // of STREAM_GROUPS

  // The records of the ids, one behind the other. What they lack to the size that the counts give is a hole
  // in the file, which reads as zeros and takes no room on the disk.
  std::vector<float> data{};
};

struct T_VOLUME_SET {
  std::int32_t header_word = 1;
  std::vector<std::int32_t> load_ids{};
  std::int32_t words_before_loads = 0;                   // unread words between header and load table
  std::vector<std::vector<T_VOLUME_BLOCK>> volumes{{}};  // the blocks of each volume, in stream order
};

/// A block as it was written, in bytes of its volume.
struct T_WRITTEN_VOLUME_BLOCK {
  std::int32_t tag = 0;
  std::int32_t volume = 1;       // from 1
  std::int64_t offset = 0;       // of the tag
  std::int64_t data_offset = 0;  // of the first id's record; without data the end of the block
  std::int64_t record_bytes = 0;
};

struct T_VOLUME_LAYOUT {
  std::vector<std::string> paths;
  std::vector<T_WRITTEN_VOLUME_BLOCK> blocks;  // in stream order
};

/// Name of a volume, from 1 to 1000, of a set. Throws std::runtime_error for any other.
std::string VOLUME_PATH(const std::string& base_name, std::int32_t volume);

/// Deals blocks to volumes, as evenly as their number allows and in their order. There may be more volumes
/// than blocks.
std::vector<std::vector<T_VOLUME_BLOCK>> DEAL_BLOCKS(std::vector<T_VOLUME_BLOCK> blocks,
                                                     std::int32_t volumes);

/// Writes a set, replacing an older one of that name with all its volumes, and tells what lies where. Throws
/// std::runtime_error, with the file's name in the text, if a file can't be written.
T_VOLUME_LAYOUT WRITE_VOLUME_SET(const T_VOLUME_SET& set, const std::string& base_name);

/// Counts of a large set for measurements.
struct T_LARGE_SET {
  std::int32_t nodes = 900'000;  // with displacements, ids from 1
  std::int32_t beams = 100'000;  // ids from 1
  std::int32_t loads = 100;
  std::int32_t ids_per_block = 10'000;
  std::int32_t volumes = 4;
};

/// A set without data: its files are as long as real ones, by default 6 GB in all, but hold little more than
/// ids on the disk.
T_VOLUME_SET LARGE_VOLUME_SET(const T_LARGE_SET& counts = {});

}  // namespace modelkit
