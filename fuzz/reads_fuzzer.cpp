// Reads, queries and runs on an open influence store, with any arguments, while its files change.
#include <optional>

#include "fuzz/host_calls.h"
#include "fuzz/store_calls.h"
#include "fuzz/target.h"

namespace fuzz {
namespace {

class reads final : public TARGET {
 public:
  void BEGIN(MODEL_FILES& files) override {
    host_.emplace(files);
    host_->OPEN(true);
  }

  void CALL(MODEL_FILES&, const T_STEP& step) override {
    switch (step.NUMBER() % 8) {
      case 5:
        return host_->QUERY(step);
      case 6:
        return step.C % 8 == 0 ? host_->CLOSE() : host_->OPEN(step.C % 4 != 0);
      case 7:
        return host_->RUN(step);
      default:
        host_->READ(step);
    }
  }

  void END(MODEL_FILES& files) override {
    host_->READ({.TARGET = 3});
    host_->RUN({.TARGET = static_cast<std::uint8_t>(files.SOUND().MODEL.unit_loads)});
    host_.reset();
    sound_runs_.CHECK();
  }

 private:
  std::optional<STORE_HOST> host_;
  SOUND_RUNS sound_runs_{true};
};

}  // namespace

T_FILE_NEEDS FILE_NEEDS() {
  return {.BLOCKS = true, .VOLUMES = true, .POINTS = 12};
}
std::unique_ptr<TARGET> MAKE_TARGET() {
  return std::make_unique<reads>();
}

}  // namespace fuzz
