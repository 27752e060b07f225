// The influence store as a host uses it, each call held against what include/movload.h promises.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/host_calls.h"
#include "fuzz/model_files.h"
#include "fuzz/target.h"

namespace fuzz {

class STORE_HOST {
 public:
  explicit STORE_HOST(MODEL_FILES& files) : files_(files) {}
  /// Closes the store.
  ~STORE_HOST();
  STORE_HOST(const STORE_HOST&) = delete;
  STORE_HOST& operator=(const STORE_HOST&) = delete;

  /// Names the included set: that of the model, the primary set itself, none that exists, or blanks.
  void INCLUDE(std::uint16_t which);
  /// Opens the primary set, and where it is told with an included set named in the same call.
  void OPEN(bool names_included);
  void CLOSE();
  void REMOVE_FILES(bool included);

  /// A row and the rows of all unit loads, chosen by a step.
  void READ(const T_STEP& step);
  /// Supports and the nodes of an element.
  void QUERY(const T_STEP& step);
  /// Some reads and queries of everything.
  void SWEEP();
  /// A run on the volumes; on sound files it gives what the run on blocks gives.
  void RUN(const T_STEP& step);

 private:
  struct ROWS;

  void note_opening();
  [[nodiscard]] std::int64_t loads_of(const std::string& base) const;
  [[nodiscard]] std::int32_t id_of(const T_STEP& step) const;

  MODEL_FILES& files_;
  std::string included_;  // named for the next opening
  bool is_open_ = false;
  bool is_sound_ = true;  // of an open store: its files have stayed as they were when it was opened
  bool has_two_sets_ = false;
  std::int64_t loads_ = 0;  // of an open store
};

/// What fuzzers of the store have in common: a host for each description, and sound runs behind it.
class STORE_TARGET : public TARGET {
 public:
  void BEGIN(MODEL_FILES& files) override { host_.emplace(files); }
  void END(MODEL_FILES&) override {
    host_.reset();
    sound_runs_.CHECK();
  }

 protected:
  STORE_HOST& HOST() { return *host_; }

 private:
  std::optional<STORE_HOST> host_;
  SOUND_RUNS sound_runs_{true};
};

}  // namespace fuzz
