// What makes a fuzzer: every *_fuzzer.cpp defines the two routines below, and target.cpp drives them.
//
// The invariants are those of a host: a call answers or fails with a reason, and a call that fails writes
// nothing. A broken one ends the process, after a line that says which, as does what the sanitizers find.
#pragma once

#include <memory>
#include <string>

#include "fuzz/description.h"
#include "fuzz/model_files.h"

namespace fuzz {

/// The calls of one description, from a fresh library to a fresh library.
class TARGET {
 public:
  virtual ~TARGET() = default;
  /// Before the first step; the files are sound.
  virtual void BEGIN(MODEL_FILES&) {}
  virtual void CALL(MODEL_FILES& files, const T_STEP& step) = 0;
  /// Behind the last step.
  virtual void END(MODEL_FILES& files) = 0;
};

/// Defined by the fuzzer.
[[nodiscard]] T_FILE_NEEDS FILE_NEEDS();
[[nodiscard]] std::unique_ptr<TARGET> MAKE_TARGET();

/// Ends the process with this line on stderr unless `holds`.
void EXPECT(bool holds, const std::string& what);

}  // namespace fuzz
