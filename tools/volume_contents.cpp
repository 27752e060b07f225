#include "tools/volume_contents.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <iterator>
#include <span>
#include <system_error>

#include "store/m_file_mapping.h"
#include "tools/file_names.h"
#include "tools/result_kinds.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

using store::INFLUENCE_STORE;
using store::LIST;
using store::T_NODE;

/// By list.
constexpr std::array<std::string_view, store::N_LISTS> MEANINGS{
    "displacements",
    "displacements in local axes",
    "reactions",
    "reactions in local axes",
    "wall forces",
    "beam forces",
    "link forces",
    "composite bar forces",
    "plate forces",
    "solid forces",
    "truss forces",
    "SIMB results",
    "truss forces, second code",
    "truss stresses, which no call reads",
    "wall stresses",
    "beam stresses",
    "composite bar stresses",
    "virtual bar stresses",
    "plate stresses",
    "solid stresses",
    "truss stresses, second code, which no call reads",
};

/// The volumes and the load table of a set that the library has opened, so that counts and offsets hold.
T_VOLUME_SET read_set(const std::string& base_path, bool is_included) {
  constexpr std::int64_t VOLUMES_AT = 8;
  constexpr std::int64_t LOAD_TABLE_AT = 24;
  T_VOLUME_SET set{.base_path = base_path, .is_included = is_included};
  store::T_FILE first;
  std::int32_t volumes = 0;
  std::int64_t table = 0;
  std::int32_t loads = 0;
  const auto word_at = [&first](std::int64_t offset, std::int64_t delta, auto& word) {
    first.SEEK(offset, delta);
    return first.READ(&word, sizeof word);
  };
  bool is_read = first.OPEN(store::VOLUME_NAME(base_path, 1)) && word_at(VOLUMES_AT, 0, volumes) &&
                 word_at(LOAD_TABLE_AT, 0, table) && word_at(table, sizeof loads, loads);
  if (is_read && loads > 0 && loads <= first.SIZE() / std::int64_t{sizeof loads}) {
    set.load_ids.resize(static_cast<std::size_t>(loads));
    // One by one: the count of a read is 32 bits of bytes, that of the table 32 bits of words.
    for (std::int32_t& id : set.load_ids) is_read = is_read && first.READ(&id, sizeof id);
  }
  if (!is_read)
    CHECK_STATUS(STATUS::FAILED(REASON::VOLUME_CUT).IN_VOLUME(0), store::VOLUME_NAME(base_path, 1));
  for (std::int32_t volume = 1; volume <= volumes; ++volume) {
    std::error_code ignored;
    std::string name = store::VOLUME_NAME(base_path, volume);
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(PATH_OF(name), ignored));
    set.volumes.push_back({std::move(name), bytes});
  }
  return set;
}

class CONTENTS_READER {
 public:
  explicit CONTENTS_READER(INFLUENCE_STORE& store) : store_(store) {}

  void READ(T_VOLUME_CONTENTS& contents) {
    for (std::size_t i = 0; i < store::N_LISTS; ++i) {
      const LIST list{static_cast<std::uint8_t>(i)};
      if (store_.ROWS(list).empty()) continue;
      contents.lists.push_back(read_list(list));
      check_order(list, contents.notes);
      compare_sets(list, contents.notes);
    }
    contents.composite_parts = store_.PRIMARY().N_COMPOSITE_PARTS;
    contents.virtual_bar_mark = store_.PRIMARY().VIRTUAL_BAR_MARK;
    std::ranges::sort(elements_);
    elements_.erase(std::unique(elements_.begin(), elements_.end()), elements_.end());
    contents.elements_with_nodes = std::ranges::count_if(
        elements_, [this](std::int32_t id) { return store_.MAPS().ELEMENT_NODES.COUNT(id) > 0; });
  }

 private:
  T_STORED_LIST read_list(LIST list) {
    T_STORED_LIST stored{.list = list};
    std::vector<std::int32_t> ids;
    for (const T_NODE& node : store_.ROWS(list)) {
      ids.push_back(node.ID);
      const T_RECORD_SHAPE shape{node.VALUES_PER_ITEM, node.ITEMS};
      if (std::ranges::find(stored.shapes, shape) == stored.shapes.end()) stored.shapes.push_back(shape);
    }
    stored.count = std::ssize(ids);
    stored.runs = RUNS_OF(ids);
    const auto has_values = [](const T_NODE& node) { return node.VOLUME > 0; };
    for (const store::T_MEC& set : store_.SETS()) {
      const std::span<const T_NODE> nodes(set.NODES(list));
      stored.held.push_back(
          std::ranges::count_if(nodes.first(std::min(nodes.size(), ids.size())), has_values));
    }
    if (!store::IS_NODE_LIST(list)) elements_.insert(elements_.end(), ids.begin(), ids.end());
    return stored;
  }

  /// Of an id that stands twice the last record is read, and joining sets takes ascending ids for granted.
  void check_order(LIST list, std::vector<std::string>& notes) {
    const auto rows = store_.ROWS(list);
    const auto wrong = std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, &T_NODE::ID);
    if (wrong == rows.end()) return;
    notes.push_back(
        fmt::format("{}: the ids don't ascend, {} comes behind {}: volumes may be mixed up, and an "
                    "included set may lend its values to other ids",
                    LIST_MEANING(list), std::next(wrong)->ID, wrong->ID));
  }

  /// What the library doesn't check of sets that it joins: rows of a list then pair ids that differ, or ids
  /// of an included set have no row.
  void compare_sets(LIST list, std::vector<std::string>& notes) {
    const auto rows = store_.ROWS(list);
    for (std::size_t set = 0; set + 1 < store_.SETS().size(); ++set) {
      const store::T_LIST& other = store_.SETS()[set].NODES(list);
      if (other.empty()) continue;
      if (other.size() > rows.size()) {
        notes.push_back(
            fmt::format("{}: {} ids of the included set behind the last one of the primary set can't be read",
                        LIST_MEANING(list), other.size() - rows.size()));
      }
      const auto [row, pair] = std::ranges::mismatch(rows, other, {}, &T_NODE::ID, &T_NODE::ID);
      if (row == rows.end() || pair == other.end()) continue;
      notes.push_back(
          fmt::format("{}: the two sets have equally many ids between the same ends, but not the "
                      "same ones: {} is read with values of {} under the included unit loads",
                      LIST_MEANING(list), row->ID, pair->ID));
    }
  }

  INFLUENCE_STORE& store_;
  std::vector<std::int32_t> elements_;
};

}  // namespace

std::int64_t T_VOLUME_CONTENTS::N_LOADS() const {
  std::int64_t loads = 0;
  for (const T_VOLUME_SET& set : sets) loads += std::ssize(set.load_ids);
  return loads;
}

std::string_view LIST_MEANING(LIST list) {
  return MEANINGS[static_cast<std::size_t>(list)];
}

std::vector<std::string_view> LIST_KINDS(LIST list) {
  std::vector<std::string_view> names;
  for (const T_KIND& kind : ALL_KINDS())
    if (kind.lists[0] == list || kind.lists[1] == list) names.push_back(kind.name);
  return names;
}

std::vector<T_VOLUME_SET> READ_VOLUME_SETS(const T_VOLUME_PATHS& paths) {
  std::vector<T_VOLUME_SET> sets;
  if (!paths.included.empty()) sets.push_back(read_set(paths.included, true));
  sets.push_back(read_set(paths.base, false));
  for (std::size_t i = 1; i < sets.size(); ++i)
    sets[i].first_load = sets[i - 1].first_load + static_cast<std::int32_t>(sets[i - 1].load_ids.size());
  return sets;
}

T_VOLUME_CONTENTS READ_VOLUME_CONTENTS(INFLUENCE_STORE& store, const T_VOLUME_PATHS& paths) {
  T_VOLUME_CONTENTS contents;
  contents.sets = READ_VOLUME_SETS(paths);
  CONTENTS_READER(store).READ(contents);
  return contents;
}

}  // namespace tools
