// Whole runs on block directory files and element files that are sound, damaged, or damaged in between.
#include "fuzz/host_calls.h"
#include "fuzz/target.h"

namespace fuzz {
namespace {

class runs final : public TARGET {
 public:
  void CALL(MODEL_FILES& files, const T_STEP& step) override {
    const T_SOUND_FILES& sound = files.SOUND();
    if (step.NUMBER() % 8 == 7) {
      QUERY_NUM_LANE(files.BASE(), sound.ANALYSIS_CODE);
      return;
    }
    const T_QUESTION question = QUESTION_OF(sound.MODEL, step);
    const int more = step.NUMBER() % 4 == 3 ? static_cast<int>(step.C % 5) - 1 : 0;
    const host::ARGUMENTS got =
        RUN(files.BASE(), sound.ANALYSIS_CODE, question, static_cast<int>(sound.MODEL.lanes.size()) + more);
    if (!files.IS_EDITED() && question.IS_OF_MODEL && more >= 0)
      EXPECT(got.MODE_CODE != -1, std::string("a sound model fails: ") + movload_last_failure());
  }

  void END(MODEL_FILES& files) override {
    CALL(files, {});
    sound_runs_.CHECK();
  }

 private:
  SOUND_RUNS sound_runs_{false};
};

}  // namespace

T_FILE_NEEDS FILE_NEEDS() {
  return {.BLOCKS = true};
}
std::unique_ptr<TARGET> MAKE_TARGET() {
  return std::make_unique<runs>();
}

}  // namespace fuzz
