// Reads, queries and runs on an open influence store, with any arguments, while its files change.
#include "fuzz/store_calls.h"

namespace fuzz {
namespace {

class reads final : public STORE_TARGET {
 public:
  void BEGIN(MODEL_FILES& files) override {
    STORE_TARGET::BEGIN(files);
    HOST().OPEN(true);
  }

  void CALL(MODEL_FILES&, const T_STEP& step) override {
    switch (step.NUMBER() % 8) {
      case 5:
        return HOST().QUERY(step);
      case 6:
        return step.C % 8 == 0 ? HOST().CLOSE() : HOST().OPEN(step.C % 4 != 0);
      case 7:
        return HOST().RUN(step);
      default:
        HOST().READ(step);
    }
  }

  void END(MODEL_FILES& files) override {
    HOST().READ({.TARGET = 3});
    HOST().RUN({.TARGET = static_cast<std::uint8_t>(files.SOUND().MODEL.unit_loads)});
    STORE_TARGET::END(files);
  }
};

}  // namespace

T_FILE_NEEDS FILE_NEEDS() {
  return {.BLOCKS = true, .VOLUMES = true, .POINTS = 12};
}
std::unique_ptr<TARGET> MAKE_TARGET() {
  return std::make_unique<reads>();
}

}  // namespace fuzz
