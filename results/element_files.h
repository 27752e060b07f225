// Element result files: the response of trusses, plates, beams and walls to every unit load.
//
// They lie beside the block directory file. The elements of a family are spread over files of ELEM_PER_FILE
// elements each (block MLDI), named like the directory file with the family's letter and the file's number
// behind, "model.ZA3B1": one digit, so that a family has at most nine. A file is a flat sequence of records
// of one length, little-endian, without header or marks. An element owns N_UNIT_LOAD of them, one for each
// unit load in order; record numbers start at 1.
//
//   FAMILY  WORDS OF A RECORD  MEANING (float32, behind words that nobody reads)
//   T              3           1 unread, 2 components
//   P       13, 45, 19 or 75   5 unread; 8, 40, 14 or 70 components by PLATE_FORM 1 to 4
//   B             69           1 unread, 48 columns of the 30 components that may jump, 20 further components
//   W            133           1 unread, 48 columns as in B, 24 values of the components that have parts,
//                              60 further components
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/status.h"
#include "kernel/control_blocks.h"
#include "kernel/record_file.h"

namespace results {

/// The records of one element while they are read. The file is closed with the object.
class ELEMENT_READER {
 public:
  /// Connects the file of an element, given the family's letter, and makes sure that it holds all of the
  /// element's records, of `rec_words` words each. Fails too where ELEM_PER_FILE or the element is below 1,
  /// and for an element behind file 9. `directory_file` is the name of the block directory file.
  STATUS OPEN(const std::string& directory_file, const kernel::T_COUNTS& counts, char family,
              std::int32_t element, std::int32_t rec_words);

  /// Gives the record of unit load k, from 1 to N_UNIT_LOAD, good until the next read. In order, the records
  /// of an element cost one call to the system per megabyte.
  STATUS READ_ELEMENT_RECORD(std::int64_t k, const std::byte*& record);

 private:
  [[nodiscard]] STATUS at(const STATUS& status, std::int64_t record) const {
    return status.OK() ? status : status.IN(name_end_, record);
  }

  kernel::RECORD_FILE unit_;
  std::array<char, 2> name_end_{};  // family letter and file number
  std::int64_t before_ = 0;         // records of the elements in front
};

}  // namespace results
