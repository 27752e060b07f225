#include "modelkit/volume_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <list>
#include <map>
#include <numeric>
#include <set>
#include <span>
#include <stdexcept>
#include <utility>

#include "modelkit/element_files.h"
#include "modelkit/model_writer.h"

namespace modelkit {
namespace {

constexpr int NOT_READ = -1;
constexpr int STATIONS = 8;                                 // points of beams, walls and composite bars
constexpr std::array<int, 5> READ_STATIONS{1, 2, 4, 6, 8};  // of which stresses are read

/// What a record holds: the place, among the values of the response, of each value of the record.
struct record_form {
  int points;
  int items;
  std::vector<int> sources;  // from 0, or NOT_READ

  record_form(int record_points, int record_items)
      : points(record_points),
        items(record_items),
        sources(static_cast<std::size_t>(record_points * record_items), NOT_READ) {}

  /// Value of item `item` at point `point`, both from 1.
  int& at(int point, int item) { return sources[static_cast<std::size_t>((point - 1) * items + item - 1)]; }
};

record_form in_order(int points, int items) {
  record_form form(points, items);
  std::iota(form.sources.begin(), form.sources.end(), 0);
  return form;
}

/// `number` items from `first_item` on, which an element file has from value `first_value` on: each of the
/// first station, then of the stations 2 and 3, 4 and 5, 6 and 7 in turn, of a pair the later one first, and
/// of the last station.
void place_in_pairs(record_form& form, int first_item, int number, int first_value) {
  for (int point = 1; point <= STATIONS; ++point) {
    for (int k = 0; k < number; ++k) {
      int value = (point - 1) * number + k;
      if (point > 1 && point < STATIONS)
        value = (point - point % 2 - 1) * number + 2 * k + (point % 2 == 0 ? 1 : 0);
      form.at(point, first_item + k) = first_value + value;
    }
  }
}

/// Items of the five stations that are read, in the given order, from value `first_value` on.
void place_at_read_stations(record_form& form, int stations_before, std::span<const int> items,
                            int first_value) {
  for (const int station : READ_STATIONS)
    for (const int item : items) form.at(stations_before + station, item) = first_value++;
}

record_form beam_stresses() {
  record_form form(STATIONS, 7);
  place_at_read_stations(form, 0, std::array{4, 5, 6, 7}, 48);
  return form;
}

record_form beam_forces() {
  record_form form(STATIONS, 6);
  place_in_pairs(form, 1, 6, 0);
  return form;
}

record_form wall_forces() {
  record_form form(STATIONS, 9);
  place_in_pairs(form, 1, 6, 0);
  place_in_pairs(form, 7, 3, 48);
  return form;
}

record_form wall_stresses() {
  record_form form(STATIONS, 19);
  place_at_read_stations(form, 0, std::array{5, 6, 7, 8, 12, 13, 14, 15, 16, 17, 18, 19}, 72);
  return form;
}

/// Only the first item of a truss is read.
record_form truss_forces() {
  record_form form(2, 2);
  form.at(1, 1) = 0;
  form.at(2, 1) = 1;
  return form;
}

record_form plate_stresses(int points) {
  record_form form(points, 7);
  int value = 8 * points;
  for (int point = 1; point <= points; ++point)
    for (const int item : {5, 6, 7, 1, 2, 3}) form.at(point, item) = value++;
  return form;
}

/// Nothing is read of a solid's first point.
record_form solid_forces() {
  record_form form(9, 3);
  std::iota(form.sources.begin() + 3, form.sources.end(), 0);
  return form;
}

record_form solid_stresses() {
  record_form form(9, 6);
  std::iota(form.sources.begin(), form.sources.end(), 24);
  return form;
}

constexpr int COMPOSITE_VALUES = 35;  // of a part

record_form composite_forces(int parts) {
  record_form form(parts * STATIONS, 3);
  for (int part = 0; part < parts; ++part)
    place_at_read_stations(form, part * STATIONS, std::array{1, 2, 3}, part * COMPOSITE_VALUES);
  return form;
}

record_form composite_stresses(int parts) {
  record_form form(parts * STATIONS, 5);
  for (int part = 0; part < parts; ++part)
    place_at_read_stations(form, part * STATIONS, std::array{2, 3, 4, 5}, part * COMPOSITE_VALUES + 15);
  return form;
}

// The lists of an index, by the number that readers give them. Lists of elements have a bit of their family
// and one that tells forces from stresses.
// Composite bars have no family: their ids may be those of other elements.
constexpr std::int32_t FAMILY_BITS = 0x1F700;
constexpr std::int32_t STRESS_BIT = 0x80;
constexpr std::int32_t DISP_LIST = 1, LDISP_LIST = 2, REAC_LIST = 4, LREAC_LIST = 8;
constexpr std::int32_t WALL_FORCES = 288, WALL_STRESSES = 384, BEAM_FORCES = 544, BEAM_STRESSES = 640;
constexpr std::int32_t LINK_FORCES = 1056, VIRTUAL_STRESSES = 1152;
constexpr std::int32_t COMPOSITE_FORCES = 2080, COMPOSITE_STRESSES = 2176;
constexpr std::int32_t PLATE_FORCES = 4128, PLATE_STRESSES = 4224;
constexpr std::int32_t SOLID_FORCES = 8224, SOLID_STRESSES = 8320;
constexpr std::int32_t TRUSS_FORCES = 16416, SIMB_FORCES = 32800, OTHER_TRUSS_FORCES = 65568;

/// Items 1 to `number` of a group of elements.
std::vector<std::int32_t> item_codes(std::int32_t first, int number) {
  std::vector<std::int32_t> codes(static_cast<std::size_t>(number));
  std::iota(codes.begin(), codes.end(), first + 1);
  return codes;
}

/// Walls share their result codes with beams; an item of another group tells them apart.
std::vector<std::int32_t> wall_codes(int number) {
  std::vector<std::int32_t> codes = item_codes(140000, number);
  codes.back() += 10000;
  return codes;
}

/// Each item once for each part, which is told by its thousands.
std::vector<std::int32_t> composite_codes(int parts, int number) {
  std::vector<std::int32_t> codes;
  for (int part = 1; part <= parts; ++part)
    for (int item = 1; item <= number; ++item) codes.push_back(30'000'000 + 1000 * part + item);
  return codes;
}

/// What of a response goes into one list.
struct list_part {
  std::int32_t list;
  std::int32_t result_code;
  std::vector<std::int32_t> codes;  // of the items
  int points;                       // as the block tells them
  record_form form;

  list_part(std::int32_t list_number, std::int32_t code, std::vector<std::int32_t> codes_of_items,
            record_form form_of_record, int parts = 1)
      : list(list_number),
        result_code(code),
        codes(std::move(codes_of_items)),
        points(form_of_record.points / parts),
        form(std::move(form_of_record)) {}
};

/// The parts of a kind of elements, and the result code and list that its first part may have as well.
struct kind_parts {
  std::vector<list_part> parts;
  std::int32_t other_code = 0;
  std::int32_t other_list = 0;
};

constexpr std::size_t INCLUDED = 0;
constexpr std::size_t PRIMARY = 1;

/// The unit loads of a set.
struct load_range {
  std::int32_t first = 1;
  std::int32_t number = 0;
};

struct list_entry {
  const list_part* part = nullptr;
  std::int32_t result_code = 0;
  const T_RESPONSE* response = nullptr;
  std::array<bool, 2> is_kept{};  // in either set
};
using entry_list = std::map<std::int32_t, list_entry>;  // by id

float value_of(const T_RESPONSE& response, int value, std::int32_t load) {
  const auto line = static_cast<std::size_t>(value);
  const auto column = static_cast<std::size_t>(load) - 1;
  if (line >= response.values.size() || column >= response.values[line].size()) return 0.0F;
  return response.values[line][column];
}

void append_data(const list_entry& entry, const load_range& loads, std::vector<float>& data) {
  for (const int value : entry.part->form.sources)
    for (std::int32_t load = loads.first; load < loads.first + loads.number; ++load)
      data.push_back(value == NOT_READ ? std::bit_cast<float>(UNREAD_WORD)
                                       : value_of(*entry.response, value, load));
}

/// Whether all that is read of a record is 0, not -0.
bool is_zero(const list_entry& entry, const load_range& loads) {
  for (const int value : entry.part->form.sources)
    for (std::int32_t load = loads.first; value != NOT_READ && load < loads.first + loads.number; ++load)
      if (std::bit_cast<std::uint32_t>(value_of(*entry.response, value, load)) != 0) return false;
  return true;
}

/// Blocks that readers skip, with ids and items of the model's own kinds and with ends of volumes in them:
/// other tags, and results of nodes and elements that no list takes.
std::array<T_VOLUME_BLOCK, 7> foreign_blocks(std::int32_t loads) {
  const std::vector<std::int32_t> ids{1, 2, -1};
  const auto results = [&](std::int32_t tag, std::int32_t code, int points) {
    const std::size_t values = ids.size() * 4 * static_cast<std::size_t>(tag == STREAM_NODES ? 1 : points) *
                               static_cast<std::size_t>(loads);
    return T_VOLUME_BLOCK{.tag = tag,
                          .ids = ids,
                          .item_codes = item_codes(code / 10000 * 10000, 4),
                          .result_code = code,
                          .points = points,
                          .data = std::vector(values, std::bit_cast<float>(UNREAD_WORD))};
  };
  return {{{.tag = 7, .ids = ids},
           results(STREAM_NODES, 201, 1),
           {.tag = 13, .ids = ids},
           results(STREAM_ELEMENTS, 412101, 3),
           {.tag = STREAM_GROUPS},
           results(STREAM_ELEMENTS, 310401, 2),
           {.tag = 0}}};
}

std::vector<T_VOLUME_BLOCK> between_foreign_blocks(std::vector<T_VOLUME_BLOCK> blocks, std::int32_t loads) {
  const std::array<T_VOLUME_BLOCK, 7> foreign = foreign_blocks(loads);
  std::vector<T_VOLUME_BLOCK> stream{foreign[0]};
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    stream.push_back(std::move(blocks[i]));
    stream.push_back(foreign[(i + 1) % foreign.size()]);
  }
  return stream;
}

class set_maker {
 public:
  set_maker(const T_MODEL& model, const T_VOLUME_FORM& form) : model_(model), form_(form) {
    const std::int32_t loads = std::max(model.unit_loads, 0);
    const std::int32_t included = std::clamp(form.included_loads, 0, loads);
    loads_ = {load_range{1, included}, load_range{included + 1, loads - included}};
    add_nodes();
    add_elements();
    add_host_elements();
    check_numbers();
    for (auto& [list, entries] : lists_) choose_kept(list, entries);
  }

  [[nodiscard]] T_VOLUME_SET make(std::size_t set) const {
    std::vector<T_VOLUME_BLOCK> blocks = in_stream_order(set);
    if (form_.foreign_blocks) blocks = between_foreign_blocks(std::move(blocks), loads_[set].number);
    const T_HOST_ELEMENTS& host = form_.host_elements;
    if (set == PRIMARY && !(host.element_nodes.empty() && host.second_groups.empty()))
      blocks.insert(
          blocks.begin(),
          {.tag = STREAM_GROUPS, .element_nodes = host.element_nodes, .second_groups = host.second_groups});
    std::vector<std::int32_t> load_ids(static_cast<std::size_t>(loads_[set].number));
    std::iota(load_ids.begin(), load_ids.end(), loads_[set].first);
    return {.header_word = form_.header_word,
            .load_ids = std::move(load_ids),
            .volumes = DEAL_BLOCKS(std::move(blocks), form_.volumes)};
  }
  [[nodiscard]] bool has_included() const { return loads_[INCLUDED].number > 0; }

 private:
  void add_nodes() {
    const auto add_node_list = [&](const std::vector<T_RESPONSE>& responses, std::int32_t list,
                                   std::int32_t code, bool is_addressed) {
      add(responses, {{{list, code, item_codes(100, model_.n_dof), in_order(1, model_.n_dof)}}},
          is_addressed);
    };
    add_node_list(model_.disp, DISP_LIST, 101, true);
    add_node_list(model_.ldisp, LDISP_LIST, 8101, false);
    add_node_list(model_.reac, REAC_LIST, 401, false);
    add_node_list(model_.lrac, LREAC_LIST, 8401, false);
  }

  void add_elements() {
    constexpr int ENDS = 2;
    const auto forces_at_ends = [](std::int32_t list, std::int32_t code) {
      return list_part(list, code, item_codes(code / 10000 * 10000, 6), in_order(ENDS, 6));
    };
    add(model_.simb, {{forces_at_ends(SIMB_FORCES, 120401)}});
    add(model_.elnk, {{forces_at_ends(LINK_FORCES, 520401)}});
    add(model_.nlnk, {{forces_at_ends(LINK_FORCES, 540401)}});
    add(model_.trusses, {.parts = {{TRUSS_FORCES, 130401, item_codes(130000, 2), truss_forces()}},
                         .other_code = 190401,
                         .other_list = OTHER_TRUSS_FORCES});
    add(model_.beams, {{{BEAM_FORCES, 140401, item_codes(140000, 6), beam_forces()},
                        {BEAM_STRESSES, 142101, item_codes(140000, 7), beam_stresses()}}});
    add_plates();
    add(model_.walls, {{{WALL_FORCES, 140401, wall_codes(9), wall_forces()},
                        {WALL_STRESSES, 142101, wall_codes(19), wall_stresses()}}});
  }

  void add_plates() {
    const std::int32_t values = ELEMENT_FAMILIES(model_)[2].values;
    const int points = values == 8 || values == 14 ? 1 : 5;
    kind_parts plates{.parts = {{PLATE_FORCES, 410401, item_codes(410000, 8), in_order(points, 8)}},
                      .other_code = 420401,
                      .other_list = PLATE_FORCES};
    if (values > 8 * points)
      plates.parts.emplace_back(PLATE_STRESSES, 412151, item_codes(410000, 7), plate_stresses(points));
    add(model_.plates, std::move(plates));
  }

  void add_host_elements() {
    const T_HOST_ELEMENTS& host = form_.host_elements;
    const int parts = std::max(host.composite_parts, 1);
    add(host.composite_bars,
        {{{COMPOSITE_FORCES, 30'000'601, composite_codes(parts, 3), composite_forces(parts), parts},
          {COMPOSITE_STRESSES, 30'000'101, composite_codes(parts, 5), composite_stresses(parts), parts}}});
    int bar_values = 0;
    for (const T_RESPONSE& bar : host.virtual_bars)
      bar_values = std::max(bar_values, static_cast<int>(bar.values.size()));
    add(host.virtual_bars,
        {{{VIRTUAL_STRESSES, 80'000'007, item_codes(80'000'010, bar_values), in_order(1, bar_values)}}});
    add(host.solids, {{{SOLID_FORCES, 319101, item_codes(310000, 3), solid_forces()},
                       {SOLID_STRESSES, 312101, item_codes(310000, 6), solid_stresses()}}});
  }

  /// Files the responses of a kind. In block files the last of equal ids counts where a run is addressed by
  /// its id, else the first.
  void add(const std::vector<T_RESPONSE>& responses, kind_parts kind, bool is_addressed = true) {
    const kind_parts& kept = kinds_.emplace_back(std::move(kind));
    std::set<std::int32_t> ids;
    for (const T_RESPONSE& response : responses) {
      if (is_addressed && response.id < 1) continue;
      const bool is_new = ids.insert(response.id).second;
      if (!is_new && !is_addressed) continue;
      for (const list_part& part : kept.parts) {
        const bool has_other = form_.both_codes && &part == kept.parts.data() && kept.other_code != 0;
        const bool is_other = has_other && response.id % 2 == 0;
        entry_list& list = lists_[is_other ? kept.other_list : part.list];
        if (is_new && list.contains(response.id)) refuse(response.id);
        list[response.id] = {&part, is_other ? kept.other_code : part.result_code, &response};
      }
    }
  }

  [[noreturn]] static void refuse(std::int32_t id) {
    throw std::invalid_argument("elements of several kinds have the number " + std::to_string(id));
  }

  /// Readers tell an element's family by all lists that it stands in.
  void check_numbers() const {
    std::map<std::int32_t, std::int32_t> families;
    for (const auto& [list, entries] : lists_) {
      const std::int32_t family = list & FAMILY_BITS;
      for (const auto& [id, entry] : entries)
        if (family != 0 && families.try_emplace(id, family).first->second != family) refuse(id);
    }
  }

  /// Decides which ids a list has in either set. A reader adds to each what only the other has by a walk that
  /// ends at the lower of their last ids, so that both need the last one; only supports are completed to the
  /// end, from the primary set. And it takes lists with equal numbers of ids and equal ends for the same.
  void choose_kept(std::int32_t list, entry_list& entries) const {
    const bool is_optional =
        (list & FAMILY_BITS) != 0 && (list & STRESS_BIT) != 0 && list != VIRTUAL_STRESSES;
    for (auto& [id, entry] : entries) {
      for (const std::size_t set : {INCLUDED, PRIMARY})
        entry.is_kept[set] = !form_.leave_out_zeros || !is_zero(entry, loads_[set]);
      if (!is_optional && !entry.is_kept[INCLUDED]) entry.is_kept[PRIMARY] = true;
    }
    if (!has_included()) return;

    // first and last id and number of those that a set keeps
    const auto outline = [&entries](std::size_t set) {
      std::array<std::int32_t, 3> result{};
      for (const auto& [id, entry] : entries)
        if (entry.is_kept[set]) result = {result[2] == 0 ? id : result[0], id, result[2] + 1};
      return result;
    };
    const std::array<std::int32_t, 3> included = outline(INCLUDED);
    const std::array<std::int32_t, 3> primary = outline(PRIMARY);
    if (included[2] == 0 || primary[2] == 0) return;
    std::array<bool, 2>& at_end = entries.at(std::max(included[1], primary[1])).is_kept;
    at_end[PRIMARY] = true;
    if (list != REAC_LIST && list != LREAC_LIST) at_end[INCLUDED] = true;
    if (outline(INCLUDED) != outline(PRIMARY)) return;
    for (auto& [id, entry] : entries)
      entry.is_kept[PRIMARY] = entry.is_kept[PRIMARY] || entry.is_kept[INCLUDED];
  }

  /// The blocks of one list: ids of the same kind and code that follow each other.
  [[nodiscard]] std::vector<T_VOLUME_BLOCK> blocks_of(const entry_list& entries, std::int32_t list,
                                                      std::size_t set) const {
    std::vector<T_VOLUME_BLOCK> blocks;
    const list_part* part = nullptr;
    for (const auto& [id, entry] : entries) {
      if (!entry.is_kept[set]) continue;
      const bool is_full =
          !blocks.empty() && form_.ids_per_block > 0 && std::ssize(blocks.back().ids) >= form_.ids_per_block;
      if (part != entry.part || blocks.back().result_code != entry.result_code || is_full) {
        part = entry.part;
        blocks.push_back({.tag = list <= LREAC_LIST ? STREAM_NODES : STREAM_ELEMENTS,
                          .item_codes = part->codes,
                          .result_code = entry.result_code,
                          .points = part->points});
      }
      blocks.back().ids.push_back(id);
      append_data(entry, loads_[set], blocks.back().data);
    }
    return blocks;
  }

  [[nodiscard]] std::vector<T_VOLUME_BLOCK> in_stream_order(std::size_t set) const {
    std::multimap<std::size_t, T_VOLUME_BLOCK> by_turn;
    for (const auto& [list, entries] : lists_) {
      std::size_t turn = 0;
      for (T_VOLUME_BLOCK& block : blocks_of(entries, list, set))
        by_turn.emplace(form_.lists_in_turn ? turn++ : 0, std::move(block));
    }
    std::vector<T_VOLUME_BLOCK> stream;
    for (auto& [turn, block] : by_turn) stream.push_back(std::move(block));
    return stream;
  }

  const T_MODEL& model_;
  const T_VOLUME_FORM& form_;
  std::array<load_range, 2> loads_{};
  std::list<kind_parts> kinds_;  // their parts stay where they are
  std::map<std::int32_t, entry_list> lists_;
};

}  // namespace

T_MODEL NUMBER_ELEMENTS_APART(T_MODEL model) {
  std::int32_t last = 0;
  for (std::vector<T_RESPONSE>* kind :
       {&model.simb, &model.elnk, &model.nlnk, &model.trusses, &model.beams, &model.plates, &model.walls}) {
    const std::int32_t before = last;
    for (T_RESPONSE& response : *kind) {
      response.id += before;
      last = std::max(last, response.id);
    }
  }
  return model;
}

T_VOLUME_SETS VOLUME_SETS(const T_MODEL& model, const T_VOLUME_FORM& form) {
  const set_maker maker(model, form);
  T_VOLUME_SETS sets{.primary = maker.make(PRIMARY)};
  if (maker.has_included()) sets.included = maker.make(INCLUDED);
  return sets;
}

T_VOLUME_LAYOUTS WRITE_VOLUMES(const T_MODEL& model, const std::string& base_name, const T_VOLUME_FORM& form,
                               const std::string& included_base_name) {
  const T_VOLUME_SETS sets = VOLUME_SETS(model, form);
  T_VOLUME_LAYOUTS layouts;
  layouts.primary = WRITE_VOLUME_SET(sets.primary, base_name);
  if (sets.included) layouts.included = WRITE_VOLUME_SET(*sets.included, included_base_name);
  return layouts;
}

}  // namespace modelkit
