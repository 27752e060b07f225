// The files of a model, in memory and in a folder of the process, and edits that damage them.
//
// Writing a model takes far longer than a run on it. Files are therefore written once for each choice of a
// model and kept as bytes; later only those that an edit has changed are written again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/description.h"
#include "modelkit/model.h"

namespace fuzz {

/// Which files a target needs.
struct T_FILE_NEEDS {
  bool BLOCKS = true;        // block directory file and element files
  bool VOLUMES = false;      // influence volumes; the elements of the model are then numbered apart
  bool OLD_FORMAT = false;   // directories of version 1.0 too, which no run reads
  std::uint8_t POINTS = 30;  // about the most influence points of a lane
};

/// A stretch of a file with a structure: the directory, a block, an element file, the head of a volume's
/// block or its data.
struct T_REGION {
  std::string NAME;
  std::size_t FILE = 0;
  std::int64_t OFFSET = 0;
  std::int64_t BYTES = 0;
  std::int64_t RECORD_WORDS = 1;
};

struct T_FILE_BYTES {
  std::string PATH;
  std::vector<std::byte> BYTES;
  bool EXISTS = true;
};

/// A sound model and its files.
struct T_SOUND_FILES {
  modelkit::T_MODEL MODEL;
  std::int32_t ANALYSIS_CODE = 0;
  bool OLD_FORMAT = false;
  bool HAS_INCLUDED_SET = false;
  std::vector<T_FILE_BYTES> FILES;
  std::vector<T_REGION> REGIONS;
};

class MODEL_FILES {
 public:
  explicit MODEL_FILES(const T_FILE_NEEDS& needs);
  ~MODEL_FILES();
  MODEL_FILES(const MODEL_FILES&) = delete;
  MODEL_FILES& operator=(const MODEL_FILES&) = delete;

  /// Puts the sound files of a model into the folder.
  void BEGIN(const T_MODEL_CHOICE& choice);
  /// Damages a file; counts from the next WRITE on.
  void EDIT(const T_STEP& step);
  /// Writes what edits have changed, into the files as they are, open or not.
  void WRITE();

  [[nodiscard]] const T_SOUND_FILES& SOUND() const { return *sound_; }
  [[nodiscard]] bool IS_EDITED() const { return edited_; }
  [[nodiscard]] std::string BASE() const { return (folder_ / "model").string(); }
  [[nodiscard]] std::string INCLUDED_BASE() const { return (folder_ / "included").string(); }
  [[nodiscard]] std::string FOLDER() const { return folder_.string(); }
  /// The bytes of a file as they are now; null where there is none of that name.
  [[nodiscard]] const T_FILE_BYTES* FILE(const std::string& path) const;
  /// The same after a call that removes files.
  void NOTE_REMOVED_FILES();

 private:
  std::shared_ptr<const T_SOUND_FILES> make(const T_MODEL_CHOICE& choice);
  void empty_folder() const;
  void write(std::size_t file);

  T_FILE_NEEDS needs_;
  std::filesystem::path folder_;
  std::vector<std::pair<T_MODEL_CHOICE, std::shared_ptr<const T_SOUND_FILES>>> kept_;
  std::size_t next_to_drop_ = 0;
  std::shared_ptr<const T_SOUND_FILES> sound_;
  std::vector<T_FILE_BYTES> now_;
  std::vector<char> differs_;     // by file: from the sound one
  std::vector<char> is_written_;  // by file: the folder has it as it is now
  bool edited_ = false;
};

/// Whether descriptions are told on stderr step by step: environment variable MOVLOAD_FUZZ_TELL.
[[nodiscard]] bool TELLS();

}  // namespace fuzz
