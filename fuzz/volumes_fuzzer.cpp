// The stream of influence volumes: opened, joined with an included set, queried, closed, in any order.
#include <optional>

#include "fuzz/host_calls.h"
#include "fuzz/store_calls.h"
#include "fuzz/target.h"

namespace fuzz {
namespace {

class volumes final : public TARGET {
 public:
  void BEGIN(MODEL_FILES& files) override { host_.emplace(files); }

  void CALL(MODEL_FILES&, const T_STEP& step) override {
    switch (step.NUMBER() % 8) {
      case 0:
      case 1:
        return host_->OPEN(true);
      case 2:
        return host_->OPEN(false);
      case 3:
        return host_->CLOSE();
      case 4:
        return host_->INCLUDE(step.A);
      case 5:
        return host_->QUERY(step);
      case 6:
        return host_->READ(step);
      default:
        if (step.A % 4 == 0) host_->REMOVE_FILES(step.B % 2 == 1);
    }
  }

  void END(MODEL_FILES&) override {
    host_->OPEN(true);
    host_->SWEEP();
    host_.reset();
    sound_runs_.CHECK();
  }

 private:
  std::optional<STORE_HOST> host_;
  SOUND_RUNS sound_runs_{true};
};

}  // namespace

T_FILE_NEEDS FILE_NEEDS() {
  return {.BLOCKS = false, .VOLUMES = true, .POINTS = 4};
}
std::unique_ptr<TARGET> MAKE_TARGET() {
  return std::make_unique<volumes>();
}

}  // namespace fuzz
