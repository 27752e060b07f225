#include "modelkit/volume_set.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <numeric>
#include <stdexcept>

#include "modelkit/model_writer.h"

namespace modelkit {
namespace {

static_assert(std::endian::native == std::endian::little,
              "the files are little-endian and written as they stand");

constexpr std::int32_t MOST_VOLUMES = 1000;
constexpr std::int32_t END_OF_VOLUME = -1;
constexpr std::size_t DESCRIPTION_WORDS = 14;  // the last is the number of points
constexpr std::size_t UNREAD_WORDS = 22;       // between the description and the data

std::int32_t count(std::size_t size) {
  return static_cast<std::int32_t>(size);
}

bool has_results(const T_VOLUME_BLOCK& block) {
  return block.tag == STREAM_NODES || block.tag == STREAM_ELEMENTS;
}

/// A volume in the making.
class volume_file {
 public:
  explicit volume_file(const std::string& path)
      : path_(path), out_(path, std::ios::binary | std::ios::trunc) {}

  [[nodiscard]] std::int64_t at() const { return at_; }

  volume_file& put(std::int32_t word) { return put_words(&word, 1); }
  volume_file& put_long(std::int64_t value) { return put_words(&value, 1); }
  volume_file& put_unread(std::size_t words) {
    return put_list(std::vector<std::int32_t>(words, std::bit_cast<std::int32_t>(UNREAD_WORD)));
  }
  template <class T>
  volume_file& put_list(const std::vector<T>& list) {
    return put_words(list.data(), list.size());
  }
  volume_file& put_counted(const std::vector<std::int32_t>& list) {
    return put(count(list.size())).put_list(list);
  }
  /// Leaves a hole up to a byte further on.
  void skip_to(std::int64_t offset) {
    if (offset <= at_) return;
    out_.seekp(offset);
    at_ = offset;
  }
  void close() {
    out_.close();
    if (!out_) throw std::runtime_error("can't write " + path_);
  }

 private:
  template <class T>
  volume_file& put_words(const T* values, std::size_t number) {
    const auto bytes = static_cast<std::streamsize>(number * sizeof(T));
    out_.write(reinterpret_cast<const char*>(values), bytes);
    at_ += bytes;
    return *this;
  }

  std::string path_;
  std::ofstream out_;
  std::int64_t at_ = 0;
};

void write_first_words(const T_VOLUME_SET& set, volume_file& out) {
  constexpr std::int64_t HEADER_BYTES = 32;
  out.put(set.header_word).put_unread(1).put(count(set.volumes.size())).put_unread(3);
  out.put_long(HEADER_BYTES + std::int64_t{4} * set.words_before_loads);
  out.put_unread(static_cast<std::size_t>(set.words_before_loads) + 1).put_counted(set.load_ids);
}

void write_groups(const std::vector<T_ID_GROUP>& groups, volume_file& out) {
  out.put(count(groups.size()));
  for (const T_ID_GROUP& group : groups) out.put(group.key).put_counted(group.members);
}

/// Everything of a block in front of its data.
void write_head(const T_VOLUME_BLOCK& block, volume_file& out) {
  out.put(block.tag);
  if (block.tag == STREAM_GROUPS) {
    write_groups(block.element_nodes, out);
    write_groups(block.second_groups, out);
    return;
  }
  out.put_counted(block.ids);
  if (!has_results(block)) return;
  out.put_unread(1).put_counted(block.item_codes).put_unread(1).put(block.result_code);
  if (block.tag == STREAM_NODES)
    out.put_unread(DESCRIPTION_WORDS);
  else
    out.put_unread(DESCRIPTION_WORDS - 1).put(block.points);
  out.put_unread(UNREAD_WORDS);
}

std::int64_t bytes_of_record(const T_VOLUME_BLOCK& block, std::size_t loads) {
  if (!has_results(block)) return 0;
  const std::int64_t points = block.tag == STREAM_NODES ? 1 : block.points;
  return 4 * points * std::ssize(block.item_codes) * static_cast<std::int64_t>(loads);
}

T_WRITTEN_VOLUME_BLOCK write_block(const T_VOLUME_BLOCK& block, std::size_t loads, volume_file& out) {
  T_WRITTEN_VOLUME_BLOCK written{.tag = block.tag, .offset = out.at()};
  write_head(block, out);
  written.data_offset = out.at();
  written.record_bytes = bytes_of_record(block, loads);
  if (has_results(block)) out.put_list(block.data);
  out.skip_to(written.data_offset + std::ssize(block.ids) * written.record_bytes);
  return written;
}

void remove_set(const std::string& base_name) {
  for (std::int32_t volume = 1; volume <= MOST_VOLUMES; ++volume)
    if (std::remove(VOLUME_PATH(base_name, volume).c_str()) != 0) return;
}

/// Appends blocks without data for the ids 1 to `ids`.
void add_blocks(const T_VOLUME_BLOCK& form, std::int32_t ids, std::int32_t ids_per_block,
                std::vector<T_VOLUME_BLOCK>& blocks) {
  const std::int32_t step = std::max(ids_per_block, 1);
  for (std::int32_t first = 1; first <= ids; first += step) {
    blocks.push_back(form);
    blocks.back().ids.resize(static_cast<std::size_t>(std::min(step, ids - first + 1)));
    std::iota(blocks.back().ids.begin(), blocks.back().ids.end(), first);
  }
}

std::vector<std::int32_t> codes_from(std::int32_t first, std::size_t number) {
  std::vector<std::int32_t> codes(number);
  std::iota(codes.begin(), codes.end(), first);
  return codes;
}

}  // namespace

std::string VOLUME_PATH(const std::string& base_name, std::int32_t volume) {
  if (volume < 1 || volume > MOST_VOLUMES)
    throw std::runtime_error("no volume " + std::to_string(volume) + " of " + base_name);
  const std::string number = std::to_string(volume - 1);
  return base_name + "_" + std::string(3 - number.size(), '0') + number + ".BLK";
}

std::vector<std::vector<T_VOLUME_BLOCK>> DEAL_BLOCKS(std::vector<T_VOLUME_BLOCK> blocks,
                                                     std::int32_t volumes) {
  const std::ptrdiff_t parts = std::max(volumes, 1);
  std::vector<std::vector<T_VOLUME_BLOCK>> dealt;
  for (std::ptrdiff_t part = 0; part < parts; ++part) {
    const auto edge = [&](std::ptrdiff_t number) {
      return std::make_move_iterator(blocks.begin() + number * std::ssize(blocks) / parts);
    };
    dealt.emplace_back(edge(part), edge(part + 1));
  }
  return dealt;
}

T_VOLUME_LAYOUT WRITE_VOLUME_SET(const T_VOLUME_SET& set, const std::string& base_name) {
  remove_set(base_name);
  T_VOLUME_LAYOUT layout;
  for (std::int32_t volume = 1; volume <= count(set.volumes.size()); ++volume) {
    layout.paths.push_back(VOLUME_PATH(base_name, volume));
    volume_file out(layout.paths.back());
    if (volume == 1) write_first_words(set, out);
    for (const T_VOLUME_BLOCK& block : set.volumes[static_cast<std::size_t>(volume) - 1]) {
      layout.blocks.push_back(write_block(block, set.load_ids.size(), out));
      layout.blocks.back().volume = volume;
    }
    out.put(END_OF_VOLUME);
    out.close();
  }
  return layout;
}

T_VOLUME_SET LARGE_VOLUME_SET(const T_LARGE_SET& counts) {
  const T_VOLUME_BLOCK displacements{.item_codes = codes_from(101, 6), .result_code = 101};
  const T_VOLUME_BLOCK forces{
      .tag = STREAM_ELEMENTS, .item_codes = codes_from(140001, 6), .result_code = 140401, .points = 8};
  T_VOLUME_BLOCK stresses = forces;
  stresses.item_codes = codes_from(140001, 7);
  stresses.result_code = 142101;

  std::vector<T_VOLUME_BLOCK> blocks;
  add_blocks(displacements, counts.nodes, counts.ids_per_block, blocks);
  add_blocks(forces, counts.beams, counts.ids_per_block, blocks);
  add_blocks(stresses, counts.beams, counts.ids_per_block, blocks);
  return {.load_ids = codes_from(1, static_cast<std::size_t>(std::max(counts.loads, 0))),
          .volumes = DEAL_BLOCKS(std::move(blocks), counts.volumes)};
}

}  // namespace modelkit
