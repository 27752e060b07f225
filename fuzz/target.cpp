#include "fuzz/target.h"

#include <cstdio>
#include <cstdlib>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

void EXPECT(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what.c_str());
  std::abort();
}

}  // namespace fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::MODEL_FILES files(fuzz::FILE_NEEDS());
  static const std::unique_ptr<fuzz::TARGET> target = fuzz::MAKE_TARGET();
  const fuzz::T_DESCRIPTION description = fuzz::PARSE({data, size});
  files.BEGIN(description.MODEL);
  target->BEGIN(files);
  for (const fuzz::T_STEP& step : description.STEPS) {
    if (!step.IS_CALL()) {
      files.EDIT(step);
      continue;
    }
    files.WRITE();
    target->CALL(files, step);
  }
  files.WRITE();
  target->END(files);
  return 0;
}
