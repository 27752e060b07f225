// Writes the element files of a T_MODEL: the responses of its trusses, beams, plates and walls, beside the
// block directory file.
//
// The elements of a family lie in files of elements_per_file each, named like the directory file with the
// family's letter and a digit behind ("model.ZA3B1"). An element has one record for each unit load: words
// that nobody reads, then the element's values under that load.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "modelkit/model.h"

namespace modelkit {

/// One family of element files; S has no elements in a model.
struct T_ELEMENT_FAMILY {
  char letter;
  std::int32_t head_words;
  std::int32_t values;                      // of a record
  const std::vector<T_RESPONSE>* elements;  // of the model; null for S

  /// The greatest id, up to which the files go.
  [[nodiscard]] std::int32_t COUNT() const;
};

/// The families in the order of block MLDI. The hundreds of a plate form don't count, and one other than 1 to
/// 4 counts as 4.
std::array<T_ELEMENT_FAMILY, 5> ELEMENT_FAMILIES(const T_MODEL& model);

/// Writes the files beside a block directory file and removes older ones that the model has no elements for.
/// Elements without a response are written as zeros; a file of none but such isn't written. Throws
/// std::runtime_error, with the file's name in the text, if a file can't be written, and for more than nine
/// files of a family.
void WRITE_ELEMENT_FILES(const T_MODEL& model, const std::string& directory_file);

}  // namespace modelkit
