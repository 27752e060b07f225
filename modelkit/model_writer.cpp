#include "modelkit/model_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "modelkit/element_files.h"

namespace modelkit {
namespace {

static_assert(std::endian::native == std::endian::little,
              "the files are little-endian and written as they stand");

using words = std::vector<std::uint32_t>;

constexpr std::int32_t ENTRIES_PER_HEADER = 20;
constexpr std::int32_t FILE_KIND = 2;
constexpr std::int32_t RESPONSE_ID = 5;  // block id of all responses; every other block has 0
constexpr std::int32_t LIST_LENGTH = 100;
constexpr std::int32_t SPREAD_PAIRS = 4;
// A lane that claims more transverse entries than this is damaged on purpose; its points aren't padded any
// further.
constexpr std::int32_t MOST_ENTRIES = 1000;

template <class T>
std::int32_t count(const std::vector<T>& list) {
  return static_cast<std::int32_t>(list.size());
}

template <class T>
constexpr std::size_t WORDS_OF = sizeof(T) / sizeof(std::uint32_t);

template <class T>
void put_at(words& target, std::size_t at, T value) {
  static_assert(sizeof(T) % sizeof(std::uint32_t) == 0);
  if (at + WORDS_OF < T >> target.size())
    throw std::logic_error("model writer: record too short for its items");
  std::memcpy(target.data() + at, &value, sizeof value);
}

/// A block in the making: records of equal length, each filled from its start, the rest left unread.
struct block_image {
  std::string tag;
  std::int32_t id = 0;
  std::int32_t record_words = 1;
  words data;

  block_image(std::string block_tag, std::int32_t block_id, std::int32_t length)
      : tag(std::move(block_tag)), id(block_id), record_words(std::max(length, 1)) {}

  [[nodiscard]] std::int64_t records() const { return std::ssize(data) / record_words; }

  /// Begins the next record, into which PUT writes.
  block_image& record() {
    at_ = data.size();
    data.resize(at_ + static_cast<std::size_t>(record_words), UNREAD_WORD);
    return *this;
  }
  template <class T>
  block_image& put(T value) {
    put_at(data, at_, value);
    at_ += WORDS_OF<T>;
    return *this;
  }
  block_image& put_text(std::string_view text, std::size_t width) {
    std::string padded(text.substr(0, width));
    padded.resize(width, ' ');
    for (std::size_t i = 0; i < width; i += 4) {
      std::uint32_t word = 0;
      std::memcpy(&word, padded.data() + i, sizeof word);
      put(word);
    }
    return *this;
  }
  block_image& put_list(const std::vector<double>& values, std::int32_t length) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
      put(i < values.size() ? values[i] : 0.0);
    return *this;
  }
  block_image& skip(std::size_t count_of_words) {
    at_ += count_of_words;
    return *this;
  }

 private:
  std::size_t at_ = 0;
};

std::int32_t entries_written(std::int32_t entries) {
  return std::clamp(entries, 0, MOST_ENTRIES);
}

std::int32_t planes_of(const T_LANE& lane) {
  return lane.entries_per_plane > 0 ? entries_written(lane.entries_per_point) / lane.entries_per_plane : 0;
}

struct vehicle_counts {
  std::int32_t columns = 0;
  std::int32_t classes = 0;
};

vehicle_counts count_vehicles(const T_MODEL& model) {
  vehicle_counts counts;
  for (const T_VEHICLE_GROUP& group : model.vehicle_groups) {
    counts.columns += count(group.vehicles);
    for (const T_VEHICLE& vehicle : group.vehicles)
      counts.classes = std::max(counts.classes, vehicle.vehicle_class);
  }
  return counts;
}

block_image format_block(const T_FILE_FORM& form) {
  block_image block("IFSV", 0, 3);
  block.record().skip(2).put(form.format_number);
  return block;
}

block_image counts_block(const T_MODEL& model) {
  std::int32_t max_points = 0;
  std::int32_t max_spread = 0;
  std::int32_t max_entries = 0;
  std::int32_t max_extra = 0;
  std::int32_t straddle_lanes = 0;
  for (const T_LANE& lane : model.lanes) {
    max_points = std::max(max_points, count(lane.points));
    max_spread = std::max(max_spread, count(lane.spread_rows));
    max_entries = std::max(max_entries, lane.entries_per_point);
    max_extra = std::max(max_extra, lane.extra_records);
    straddle_lanes += lane.is_straddle ? 1 : 0;
  }
  for (const T_CLASS_DEFINITION& definition : model.class_definitions) {
    max_points = std::max(max_points, count(definition.links));
    max_entries = std::max(max_entries, definition.entries_per_point);
  }
  const vehicle_counts vehicles = count_vehicles(model);

  block_image block("MVIF", 0, 25 + count(model.moving_load_cases));
  block.record()
      .put(count(model.vehicle_groups))
      .put(count(model.lanes))
      .put(count(model.moving_load_cases))
      .put(model.unit_loads)
      .put(max_points)
      .put(count(model.reac))
      .skip(1)
      .put(model.plate_form)
      .skip(1)
      .put(vehicles.columns)
      .put(vehicles.classes)
      .skip(2)
      .put(count(model.lrac))
      .skip(1)
      .put(straddle_lanes)
      .put(max_extra)
      .put(max_spread)
      .put(model.class_lanes ? 1 : 0);
  for (const T_MOVING_LOAD_CASE& load_case : model.moving_load_cases)
    block.put(count(load_case.combinations));
  block.skip(2).put(max_entries).skip(1).put(model.keep_points ? 1 : 0);
  return block;
}

block_image element_counts_block(const T_MODEL& model, const T_FILE_FORM& form) {
  block_image block("MLDI", 0, form.short_mldi ? 17 : 18);
  block.record();
  for (const T_ELEMENT_FAMILY& family : ELEMENT_FAMILIES(model))
    block.put(family.COUNT()).put(model.elements_per_file).skip(1);
  block.put(model.n_dof == 7 ? 1 : 0);
  return block;
}

block_image combinations_block(const T_MODEL& model) {
  const std::size_t lanes = model.lanes.size();
  block_image block("MVLC", 0, 3 * count(model.lanes));
  for (const T_MOVING_LOAD_CASE& load_case : model.moving_load_cases) {
    block.record();  // the head record, which nobody reads
    for (const T_COMBINATION& combination : load_case.combinations) {
      block.record();
      const auto load = [&](std::size_t lane) {
        return lane < combination.size() ? combination[lane] : T_LANE_LOAD{};
      };
      for (std::size_t lane = 0; lane < lanes; ++lane) block.put(load(lane).code);
      for (std::size_t lane = 0; lane < lanes; ++lane) block.put(load(lane).scale);
    }
  }
  return block;
}

block_image vehicles_block(const T_MODEL& model, const T_FILE_FORM& form) {
  constexpr std::int32_t SHORT_WORDS = 417;
  constexpr std::int32_t LONG_WORDS = 1217;
  block_image block("VEHI", 0, form.long_vehicles ? LONG_WORDS : SHORT_WORDS);
  for (const T_VEHICLE_GROUP& group : model.vehicle_groups) {
    block.record().put(group.group).put(count(group.vehicles));
    for (const T_VEHICLE& vehicle : group.vehicles) {
      block.record().put(vehicle.vehicle_class).put(vehicle.code).put_text(vehicle.name, 20);
      block.put(vehicle.ha_w0).put(vehicle.ha_k).put(vehicle.ha_wmin).put(vehicle.ha_p);
      block.put(vehicle.load_count.value_or(count(vehicle.loads))).put_list(vehicle.loads, LIST_LENGTH);
      block.put(vehicle.geometry_count.value_or(count(vehicle.geometry)))
          .put_list(vehicle.geometry, LIST_LENGTH);
      if (form.long_vehicles) block.put_list({}, 4 * LIST_LENGTH);
    }
  }
  return block;
}

block_image class_shapes_block(const T_MODEL& model, std::int32_t max_pairs) {
  block_image block("PHSL", 0, 7);
  block.record().put(count(model.class_definitions)).put(max_pairs);
  for (const T_CLASS_DEFINITION& definition : model.class_definitions)
    block.record().put(definition.group_row).put(definition.number).put(definition.lane);
  for (const T_CLASS_DEFINITION& definition : model.class_definitions) {
    block.record().skip(1).put(count(definition.links)).put(definition.entries_per_point);
    block.put(definition.b1).skip(2).put(definition.entries_per_plane);
  }
  return block;
}

std::int32_t most_class_pairs(const T_MODEL& model) {
  std::int32_t most = 0;
  for (const T_CLASS_DEFINITION& definition : model.class_definitions)
    for (const auto& point : definition.links)
      for (const auto& entry : point) most = std::max(most, count(entry));
  return most;
}

block_image class_links_block(const T_MODEL& model, std::int32_t max_pairs) {
  block_image block("LVPF", 0, 2 * (2 * max_pairs + 1));
  for (const T_CLASS_DEFINITION& definition : model.class_definitions) {
    const auto entries = static_cast<std::size_t>(entries_written(definition.entries_per_point));
    for (const auto& point : definition.links) {
      for (std::size_t entry = 0; entry < entries; ++entry) {
        const std::vector<T_LOAD_SHARE> pairs =
            entry < point.size() ? point[entry] : std::vector<T_LOAD_SHARE>{};
        block.record().put(static_cast<double>(pairs.size()));
        for (const T_LOAD_SHARE& pair : pairs) block.put(static_cast<double>(pair.load)).put(pair.weight);
      }
    }
  }
  return block;
}

block_image lanes_block(const T_MODEL& model) {
  std::int32_t length = 13;  // a spread record; a lane's head is shorter
  for (const T_LANE& lane : model.lanes) {
    length = std::max(length, 8 + 8 * entries_written(lane.entries_per_point));
    if (lane.is_straddle) length = std::max(length, 2 + 2 * (planes_of(lane) + 3));
  }

  block_image block("LNIF", 0, length);
  std::int32_t number = 0;
  for (const T_LANE& lane : model.lanes) {
    block.record().put(++number).put(count(lane.spread_rows)).put(count(lane.points)).put(lane.extra_records);
    block.put(static_cast<std::int32_t>(lane.direction)).skip(2).put(lane.is_straddle ? 1 : 0);
    block.put(lane.entries_per_point).put(lane.entries_per_plane).put(lane.keep_points ? 1 : 0);
    if (lane.is_straddle) block.record().put(lane.left_parent).put(lane.right_parent);

    for (const T_SPREAD_ROW& row : lane.spread_rows) {
      const std::size_t pairs = std::min<std::size_t>(row.size(), SPREAD_PAIRS);
      block.record().put(static_cast<std::int32_t>(pairs));
      for (std::size_t i = 0; i < pairs; ++i) block.put(row[i].load).put(row[i].weight);
    }

    const auto entries = static_cast<std::size_t>(entries_written(lane.entries_per_point));
    for (const T_INFLUENCE_POINT& point : lane.points) {
      block.record().skip(3).put(point.x).put(point.impact).skip(1);
      for (std::size_t entry = 0; entry < entries; ++entry) {
        const T_TRANSVERSE_ENTRY links =
            entry < point.entries.size() ? point.entries[entry] : T_TRANSVERSE_ENTRY{};
        for (const T_LOAD_SHARE& link : {links.a, links.b})
          block.put(static_cast<double>(link.load)).put(link.weight);
      }
    }
    for (std::int32_t extra = 0; extra < lane.extra_records; ++extra) block.record();
  }
  return block;
}

block_image axle_lists_block(const T_MODEL& model) {
  std::int32_t longest = 4;  // one lane for each axle of the HB vehicle
  for (const T_AXLE_LIST& list : model.axle_lists) longest = std::max(longest, count(list.lanes));
  block_image block("MLIF", 0, 4 + longest);
  block.record().put(longest).put(count(model.axle_lists));
  for (const T_AXLE_LIST& list : model.axle_lists) {
    block.record().skip(1).put(list.vehicle_class).put(list.lane).put(count(list.lanes));
    for (const std::int32_t lane : list.lanes) block.put(lane);
  }
  return block;
}

/// Responses as runs of one record for each unit load. The components stand behind `head` words.
class response_block {
 public:
  response_block(const std::string& tag, const T_MODEL& model, std::int32_t head, std::int32_t components)
      : image_(tag, RESPONSE_ID, head + components),
        loads_(static_cast<std::size_t>(std::max(model.unit_loads, 0))),
        head_(static_cast<std::size_t>(head)),
        components_(static_cast<std::size_t>(components)) {}

  /// Appends runs without responses: ordinates and head words are 0.
  void add_runs(std::size_t runs) { image_.data.resize(image_.data.size() + runs * run_words(), 0U); }

  /// Fills run `run` (from 0).
  void fill(std::size_t run, const T_RESPONSE& response) {
    const auto length = static_cast<std::size_t>(image_.record_words);
    std::uint32_t* const start = image_.data.data() + run * run_words();
    for (std::size_t component = 0; component < std::min(components_, response.values.size()); ++component) {
      const std::vector<float>& line = response.values[component];
      std::uint32_t* word = start + head_ + component;
      for (std::size_t load = 0; load < std::min(loads_, line.size()); ++load, word += length)
        *word = std::bit_cast<std::uint32_t>(line[load]);
    }
  }
  void fill_head(std::size_t run, std::uint32_t word) {
    const auto length = static_cast<std::size_t>(image_.record_words);
    std::uint32_t* record = image_.data.data() + run * run_words();
    for (std::size_t load = 0; load < loads_; ++load, record += length) std::fill_n(record, head_, word);
  }
  [[nodiscard]] block_image take() { return std::move(image_); }

 private:
  [[nodiscard]] std::size_t run_words() const {
    return loads_ * static_cast<std::size_t>(image_.record_words);
  }

  block_image image_;
  std::size_t loads_;
  std::size_t head_;
  std::size_t components_;
};

/// Run p belongs to id p, up to the greatest id.
block_image addressed_block(const std::string& tag, const T_MODEL& model,
                            const std::vector<T_RESPONSE>& responses, std::int32_t head,
                            std::int32_t components) {
  std::int32_t greatest = 0;
  for (const T_RESPONSE& response : responses) greatest = std::max(greatest, response.id);
  response_block block(tag, model, head, components);
  block.add_runs(static_cast<std::size_t>(greatest));
  for (std::size_t run = 0; head > 0 && run < static_cast<std::size_t>(greatest); ++run)
    block.fill_head(run, UNREAD_WORD);
  for (const T_RESPONSE& response : responses)
    if (response.id >= 1) block.fill(static_cast<std::size_t>(response.id) - 1, response);
  return block.take();
}

/// One run after another in the order given; each record begins with the node number, as a real, where
/// `numbered`.
block_image listed_block(const std::string& tag, const T_MODEL& model,
                         const std::vector<T_RESPONSE>& responses, bool numbered) {
  response_block block(tag, model, numbered ? 1 : 0, model.n_dof);
  block.add_runs(responses.size());
  for (std::size_t run = 0; run < responses.size(); ++run) {
    if (numbered) block.fill_head(run, std::bit_cast<std::uint32_t>(static_cast<float>(responses[run].id)));
    block.fill(run, responses[run]);
  }
  return block.take();
}

block_image local_axes_block(const T_MODEL& model) {
  block_image block("NLAX", 0, 2);
  std::int32_t position = 0;
  for (const T_RESPONSE& response : model.ldisp) block.record().put(response.id).put(++position);
  return block;
}

void add_response_blocks(const T_MODEL& model, std::vector<block_image>& blocks) {
  constexpr std::int32_t ELEMENT_COMPONENTS = 12;
  constexpr std::int32_t LINK_HEAD = 3;
  if (!model.disp.empty()) blocks.push_back(addressed_block("DISP", model, model.disp, 0, model.n_dof));
  if (!model.ldisp.empty()) {
    blocks.push_back(listed_block("LDSP", model, model.ldisp, false));
    blocks.push_back(local_axes_block(model));
  }
  if (!model.reac.empty()) blocks.push_back(listed_block("REAC", model, model.reac, true));
  if (!model.lrac.empty()) blocks.push_back(listed_block("LRAC", model, model.lrac, true));
  if (!model.simb.empty())
    blocks.push_back(addressed_block("SIMB", model, model.simb, 0, ELEMENT_COMPONENTS));
  if (!model.elnk.empty())
    blocks.push_back(addressed_block("ELNK", model, model.elnk, LINK_HEAD, ELEMENT_COMPONENTS));
  if (!model.nlnk.empty())
    blocks.push_back(addressed_block("NLNK", model, model.nlnk, LINK_HEAD, ELEMENT_COMPONENTS));
}

std::vector<block_image> build_blocks(const T_MODEL& model, const T_FILE_FORM& form) {
  std::vector<block_image> blocks;
  blocks.push_back(format_block(form));
  blocks.push_back(counts_block(model));
  blocks.push_back(element_counts_block(model, form));
  blocks.push_back(combinations_block(model));
  blocks.push_back(vehicles_block(model, form));
  if (model.class_lanes && !model.class_definitions.empty()) {
    const std::int32_t max_pairs = most_class_pairs(model);
    blocks.push_back(class_shapes_block(model, max_pairs));
    blocks.push_back(class_links_block(model, max_pairs));
  }
  blocks.push_back(lanes_block(model));
  if (!model.axle_lists.empty()) blocks.push_back(axle_lists_block(model));
  if (form.responses) add_response_blocks(model, blocks);
  std::erase_if(blocks,
                [&](const block_image& block) { return std::ranges::count(form.left_out, block.tag) > 0; });
  return blocks;
}

/// Foreign blocks share one record of three words. Some carry one of our tags under another id, which a
/// lookup must pass over.
std::vector<T_WRITTEN_BLOCK> foreign_entries(std::int32_t groups) {
  std::vector<T_WRITTEN_BLOCK> entries;
  for (std::int32_t i = 1; i <= groups * ENTRIES_PER_HEADER; ++i) {
    std::string tag = std::to_string(i);
    tag.insert(0, "F" + std::string(3 - std::min<std::size_t>(tag.size(), 3), '0'));
    entries.push_back({.tag = i % 5 == 0 ? "MVIF" : tag.substr(0, 4), .id = 1000 + i, .record_words = 3});
  }
  return entries;
}

std::int64_t round_up(std::int64_t value, std::int64_t step) {
  return (value + step - 1) / step * step;
}

/// The directory of a file and where it stands.
class directory {
 public:
  directory(bool version_1, std::size_t entries, bool groups_behind)
      : version_1_(version_1),
        groups_(std::max<std::int64_t>(
            1, (static_cast<std::int64_t>(entries) + ENTRIES_PER_HEADER - 1) / ENTRIES_PER_HEADER)),
        groups_in_front_(groups_behind ? 1 : groups_) {}

  [[nodiscard]] std::int64_t record_words() const { return version_1_ ? 5 : 7; }
  [[nodiscard]] std::int64_t group_words() const { return (ENTRIES_PER_HEADER + 1) * record_words(); }
  [[nodiscard]] std::int64_t groups() const { return groups_; }
  [[nodiscard]] std::int64_t front_words() const { return groups_in_front_ * group_words(); }
  [[nodiscard]] bool has_groups_behind() const { return groups_ > groups_in_front_; }

  /// Tells where the blocks end; the groups behind them follow, the last one of the chain first.
  void place_behind(std::int64_t end_of_blocks) { behind_ = round_up(end_of_blocks, record_words()); }

  /// Word at which group `group` (from 0, in chain order) starts.
  [[nodiscard]] std::int64_t start(std::int64_t group) const {
    return group < groups_in_front_ ? group * group_words() : behind_ + (groups_ - 1 - group) * group_words();
  }
  /// Word at which entry `entry` (from 0, in search order) starts.
  [[nodiscard]] std::int64_t entry_start(std::int64_t entry) const {
    return start(entry / ENTRIES_PER_HEADER) + (1 + entry % ENTRIES_PER_HEADER) * record_words();
  }

  void write(words& file, const std::vector<T_WRITTEN_BLOCK>& entries) const {
    for (std::int64_t group = 0; group < groups_; ++group) {
      cursor at{file, start(group)};
      at.put_tag("KVR ").put(FILE_KIND).put(version_1_ ? 1.0F : 2.0F).put(ENTRIES_PER_HEADER);
      number(at, group + 1 < groups_ ? start(group + 1) / record_words() + 1 : 0);
    }
    for (std::int64_t i = 0; i < groups_ * ENTRIES_PER_HEADER; ++i) {
      cursor at{file, entry_start(i)};
      const T_WRITTEN_BLOCK entry =
          i < std::ssize(entries) ? entries[static_cast<std::size_t>(i)] : T_WRITTEN_BLOCK{.tag = "    "};
      at.put_tag(entry.tag).put(entry.id);
      number(at, entry.first);
      number(at, entry.last);
      at.put(entry.record_words);
    }
  }

 private:
  struct cursor {
    words& file;
    std::int64_t at;
    template <class T>
    cursor& put(T value) {
      put_at(file, static_cast<std::size_t>(at), value);
      at += static_cast<std::int64_t>(WORDS_OF<T>);
      return *this;
    }
    cursor& put_tag(const std::string& tag) {
      std::uint32_t word = 0;
      std::memcpy(&word, tag.data(), sizeof word);
      return put(word);
    }
  };
  void number(cursor& at, std::int64_t value) const {
    if (version_1_)
      at.put(static_cast<std::int32_t>(value));
    else
      at.put(value);
  }

  bool version_1_;
  std::int64_t groups_;
  std::int64_t groups_in_front_;
  std::int64_t behind_ = 0;
};

T_WRITTEN_BLOCK place(std::int64_t& end, const std::string& tag, std::int32_t id, std::int32_t record_words,
                      std::int64_t records) {
  const std::int64_t start = round_up(end, record_words);
  end = start + records * record_words;
  const std::int64_t first = start / record_words + 1;
  return {.tag = tag, .id = id, .first = first, .last = first + records - 1, .record_words = record_words};
}

void write_file(const std::string& path, const words& file) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(file.data()),
            static_cast<std::streamsize>(file.size() * sizeof file[0]));
  out.close();
  if (!out) throw std::runtime_error("can't write " + path);
}

}  // namespace

const T_WRITTEN_BLOCK& T_FILE_LAYOUT::BLOCK(const std::string& tag) const {
  for (const T_WRITTEN_BLOCK& block : blocks)
    if (block.tag == tag) return block;
  throw std::out_of_range("no block " + tag + " in " + path);
}

std::string FILE_EXTENSION(std::int32_t analysis_code) {
  switch (analysis_code) {
    case 0:
      return ".ZA3";
    case 1:
    case 101:
      return ".YA3";
    case 2:
      return ".XA3";
    case 3:
      return ".WA3";
    case 4:
      return ".ZAX3";
    default:
      throw std::runtime_error("no block directory file for analysis code " + std::to_string(analysis_code));
  }
}

T_FILE_LAYOUT WRITE_MODEL(const T_MODEL& model, const std::string& base_name, const T_FILE_FORM& form) {
  T_FILE_LAYOUT layout;
  layout.path = base_name + FILE_EXTENSION(form.analysis_code);

  std::vector<block_image> images = build_blocks(model, form);
  std::vector<T_WRITTEN_BLOCK> entries = foreign_entries(std::max(form.unused_groups, 0));
  const std::size_t foreign = entries.size();
  directory dir(form.directory_version_1, foreign + images.size(), form.header_groups_behind);

  // Where everything stands, in words.
  std::int64_t end = dir.front_words();
  if (foreign > 0) {
    const T_WRITTEN_BLOCK shared = place(end, {}, 0, 3, 1);
    for (T_WRITTEN_BLOCK& entry : entries) {
      entry.first = shared.first;
      entry.last = shared.last;
    }
  }
  for (const block_image& image : images)
    layout.blocks.push_back(place(end, image.tag, image.id, image.record_words, image.records()));
  if (dir.has_groups_behind()) {
    dir.place_behind(end);
    end = dir.start(1) + dir.group_words();
  }

  const std::size_t ours = images.size();
  for (std::size_t i = 0; i < ours; ++i) {
    const std::size_t from_the_front = form.reverse_entries ? ours - 1 - i : i;
    layout.blocks[i].entry_offset = 4 * dir.entry_start(static_cast<std::int64_t>(foreign + from_the_front));
  }
  for (std::int64_t group = 0; group < dir.groups(); ++group)
    layout.header_offsets.push_back(4 * dir.start(group));
  entries.insert(entries.end(), layout.blocks.begin(), layout.blocks.end());
  if (form.reverse_entries)
    std::reverse(entries.begin() + static_cast<std::ptrdiff_t>(foreign), entries.end());

  words file(static_cast<std::size_t>(end), UNREAD_WORD);
  dir.write(file, entries);
  for (std::size_t i = 0; i < ours; ++i)
    std::ranges::copy(images[i].data,
                      file.begin() + static_cast<std::ptrdiff_t>(layout.blocks[i].OFFSET(1) / 4));
  write_file(layout.path, file);
  WRITE_ELEMENT_FILES(form.responses ? model : T_MODEL{}, layout.path);
  layout.size = 4 * end;
  return layout;
}

void OVERWRITE_WORD(const T_FILE_LAYOUT& layout, const std::string& tag, std::int64_t record,
                    std::int64_t word, std::int32_t value) {
  OVERWRITE_WORD_AT(layout, layout.BLOCK(tag).OFFSET(record, word), value);
}

void OVERWRITE_WORD_AT(const T_FILE_LAYOUT& layout, std::int64_t offset, std::int32_t value) {
  OVERWRITE_WORD_AT(layout.path, offset, value);
}

void OVERWRITE_WORD_AT(const std::string& path, std::int64_t offset, std::int32_t value) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(offset);
  file.write(reinterpret_cast<const char*>(&value), sizeof value);
  file.close();
  if (!file) throw std::runtime_error("can't change " + path);
}

}  // namespace modelkit
