// What the influence store of a model holds: its volumes, unit loads and lists of result points, as the
// library has them after it has joined an included set to the primary one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/m_influence.h"
#include "tools/id_runs.h"
#include "tools/volume_files.h"

namespace tools {

struct T_VOLUME {
  std::string file_name;
  std::int64_t bytes = 0;
};

/// One set of volumes. Its unit loads are numbered on from those of the set before it.
struct T_VOLUME_SET {
  std::string base_path;
  bool is_included = false;
  std::vector<T_VOLUME> volumes{};
  std::vector<std::int32_t> load_ids{};  // one for each unit load, as the solver calls it
  std::int32_t first_load = 1;
};

/// The shape of the records of an id: `points` of `items` values each, under every unit load.
struct T_RECORD_SHAPE {
  std::int32_t points = 0;
  std::int32_t items = 0;
  bool operator==(const T_RECORD_SHAPE&) const = default;
};

/// A list of the store that isn't empty.
struct T_STORED_LIST {
  store::LIST list{};
  std::int64_t count = 0;                // ids in any set
  std::vector<std::int64_t> held{};      // of these, by set, those that have values there
  std::vector<T_IDS> runs{};             // the ids
  std::vector<T_RECORD_SHAPE> shapes{};  // all that occur
};

struct T_VOLUME_CONTENTS {
  std::vector<T_VOLUME_SET> sets;  // as load numbers run: the included one first
  std::vector<T_STORED_LIST> lists;
  std::int32_t composite_parts = 0;      // of every composite bar; 0: there are none
  std::int32_t virtual_bar_mark = 0;     // above 0: there are virtual bars
  std::int64_t elements_with_nodes = 0;  // elements of the lists whose nodes are told
  std::vector<std::string> notes;        // what a writer hasn't seen to, and where sets don't fit

  [[nodiscard]] std::int64_t N_LOADS() const;
};

/// What a list holds in words, "beam forces", and the names of its kinds for the command line, none for one
/// that no call reads.
[[nodiscard]] std::string_view LIST_MEANING(store::LIST list);
[[nodiscard]] std::vector<std::string_view> LIST_KINDS(store::LIST list);

/// The sets of a store that these paths have opened, as load numbers run.
[[nodiscard]] std::vector<T_VOLUME_SET> READ_VOLUME_SETS(const T_VOLUME_PATHS& paths);

/// The contents of such a store.
[[nodiscard]] T_VOLUME_CONTENTS READ_VOLUME_CONTENTS(store::INFLUENCE_STORE& store,
                                                     const T_VOLUME_PATHS& paths);

}  // namespace tools
