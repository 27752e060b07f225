// Writes the responses of a T_MODEL as influence volumes, from which runs take the same ordinates, bit for
// bit, as from the block directory file and the element files.
//
// Unlike those files, volumes have one numbering for elements of all kinds: an id that a truss and a beam
// share belongs to neither. NUMBER_ELEMENTS_APART makes a model fit; write the directory file of such a model
// too, since runs read everything but the responses from it.
//
// Elements are stored as solvers do, by stations: a beam's record has eight of them, and the columns of an
// element file, where the two sides of a jump stand side by side, are a choice and an order of its values.
// The other values hold UNREAD_WORD.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "modelkit/model.h"
#include "modelkit/volume_set.h"

namespace modelkit {

/// Elements that volumes can hold and that only hosts read. `values` are those of an output row:
/// composite bars 35 for each part, one part behind the other; virtual bars any number, the same for all;
/// solids 78.
struct T_HOST_ELEMENTS {
  std::vector<T_RESPONSE> composite_bars{}, virtual_bars{}, solids{};
  std::int32_t composite_parts = 1;  // of every composite bar
  std::vector<T_ID_GROUP> element_nodes{}, second_groups{};
};

/// How the sets are laid out. The defaults give one set of one volume, a block for each list and code.
struct T_VOLUME_FORM {
  std::int32_t header_word = 1;
  std::int32_t volumes = 1;         // of each set
  std::int32_t ids_per_block = 0;   // at most; 0: no limit
  bool lists_in_turn = false;       // a block of each list in turn instead of list by list
  bool both_codes = false;          // every second truss and plate has the other result code of its kind
  bool foreign_blocks = false;      // every block stands between blocks that readers skip
  std::int32_t included_loads = 0;  // unit loads in a set of their own, the first ones; 0: no such set

  // What is 0 under all unit loads of a set isn't stored there, so far as a reader gives zeros for it all the
  // same.
  bool leave_out_zeros = false;
  T_HOST_ELEMENTS host_elements{};
};

/// The sets of a model: that of the first unit loads, where the form asks for it, and that of the others,
/// which also holds the groups of nodes.
struct T_VOLUME_SETS {
  std::optional<T_VOLUME_SET> included{};
  T_VOLUME_SET primary{};
};

/// The model with its elements numbered through all kinds: from SIMB on, each kind behind the greatest number
/// of the one before, in the order of T_MODEL.
T_MODEL NUMBER_ELEMENTS_APART(T_MODEL model);

/// The sets of a model, to be changed or written. Of responses with equal ids the one that the block files
/// give is stored. Throws std::invalid_argument, with the id in the text, if elements of several kinds have
/// one id.
T_VOLUME_SETS VOLUME_SETS(const T_MODEL& model, const T_VOLUME_FORM& form = {});

struct T_VOLUME_LAYOUTS {
  T_VOLUME_LAYOUT included, primary;  // of a set that isn't written: empty
};

/// Writes VOLUME_SETS(model, form), the set of the first unit loads under a name of its own. Throws as that
/// and as WRITE_VOLUME_SET.
T_VOLUME_LAYOUTS WRITE_VOLUMES(const T_MODEL& model, const std::string& base_name,
                               const T_VOLUME_FORM& form = {}, const std::string& included_base_name = {});

}  // namespace modelkit
