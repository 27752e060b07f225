// The stream of influence volumes: opened, joined with an included set, queried, closed, in any order.
#include "fuzz/store_calls.h"

namespace fuzz {
namespace {

class volumes final : public STORE_TARGET {
 public:
  void CALL(MODEL_FILES&, const T_STEP& step) override {
    switch (step.NUMBER() % 8) {
      case 0:
      case 1:
        return HOST().OPEN(true);
      case 2:
        return HOST().OPEN(false);
      case 3:
        return HOST().CLOSE();
      case 4:
        return HOST().INCLUDE(step.A);
      case 5:
        return HOST().QUERY(step);
      case 6:
        return HOST().READ(step);
      default:
        if (step.A % 4 == 0) HOST().REMOVE_FILES(step.B % 2 == 1);
    }
  }

  void END(MODEL_FILES& files) override {
    HOST().OPEN(true);
    HOST().SWEEP();
    STORE_TARGET::END(files);
  }
};

}  // namespace

T_FILE_NEEDS FILE_NEEDS() {
  return {.BLOCKS = false, .VOLUMES = true, .POINTS = 4};
}
std::unique_ptr<TARGET> MAKE_TARGET() {
  return std::make_unique<volumes>();
}

}  // namespace fuzz
