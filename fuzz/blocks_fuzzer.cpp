// The block directory file without a search: lookups in directories of both versions, every record of a
// block, and the tables of a model.
#include <algorithm>
#include <array>
#include <cstdio>

#include "fuzz/host_calls.h"
#include "fuzz/target.h"
#include "kernel/block_file.h"
#include "kernel/driver.h"
#include "kernel/failures.h"
#include "kernel/input_blocks.h"

namespace fuzz {
namespace {

constexpr std::array<const char*, 20> TAGS{"MVIF", "MLDI", "MVLC", "VEHI", "LNIF", "PHSL", "LVPF",
                                           "MLIF", "NLAX", "IFSV", "DISP", "LDSP", "REAC", "LRAC",
                                           "SIMB", "ELNK", "NLNK", "F001", "    ", "KVR "};
constexpr std::int32_t RESPONSE_ID = 5;
constexpr std::int64_t FAR = std::int64_t{1} << 62;  // as far as two int32 make it

class blocks final : public TARGET {
 public:
  void BEGIN(MODEL_FILES& files) override {
    const T_SOUND_FILES& sound = files.SOUND();
    file_name_ = kernel::MAKE_BLOCK_FILE_NAME(files.BASE(), sound.ANALYSIS_CODE);
    version_ = sound.OLD_FORMAT ? kernel::DIRECTORY_VERSION::V1 : kernel::DIRECTORY_VERSION::V2;
    code_ = sound.ANALYSIS_CODE;
  }

  void CALL(MODEL_FILES& files, const T_STEP& step) override {
    const char* const tag = TAGS[step.A % TAGS.size()];
    switch (step.NUMBER() % 4) {
      case 0:
        return read_block(tag, step.B);
      case 1:
        return read_model(files);
      case 2:
        return read_local_axes(files, step);
      default:
        QUERY_NUM_LANE(files.BASE(), code_);
    }
  }

  void END(MODEL_FILES& files) override {
    for (const char* const tag : TAGS) read_block(tag, 1);
    read_local_axes(files, {.B = 1});
    QUERY_NUM_LANE(files.BASE(), code_);
    read_model(files);
    unit_.CLOSE();
    sound_runs_.CHECK();
  }

 private:
  /// A failure has a text of its own, which fits where it is put.
  void told(const char* what, const STATUS& status) const {
    std::array<char, 64> text{};
    text.fill('#');
    kernel::FAILURE_TEXT(status, file_name_, text.data(), text.size() - 1);
    EXPECT(text.back() == '#', "a failure's text runs over its room");
    EXPECT((text.front() != '\0') == !status.OK(), "a failure without a reason");
    if (!TELLS()) return;
    std::array<char, 2048> line{};
    kernel::FAILURE_TEXT(status, file_name_, line.data(), line.size());
    std::fprintf(stderr, "%-7s%s\n", what, line.data());
  }

  /// Looks a block up and reads all of it, some records beyond it, and the record `odd`.
  void read_block(const char* tag, std::int64_t odd) {
    for (const std::int32_t id : {0, RESPONSE_ID}) {
      kernel::BLOCK_READER reader;
      const STATUS status = reader.OPEN(unit_, file_name_, tag, id, version_);
      told(tag, status);
      if (!status.OK() || !reader.FOUND()) continue;
      const std::int64_t bytes = std::int64_t{4} * reader.REC_WORDS();
      const std::int64_t some = std::clamp<std::int64_t>(reader.NUM_REC(), 0, 500) + 2;
      for (std::int64_t number = -1; number <= some; ++number) read_record(reader, number, bytes);
      for (const std::int64_t number : {odd, reader.NUM_REC(), -odd, FAR, -FAR})
        read_record(reader, number, bytes);
      for (const std::int64_t count : {std::int64_t{0}, odd, reader.NUM_REC(), FAR})
        (void)reader.CHECK_ROOM(1, count, bytes);
    }
  }

  void read_record(kernel::BLOCK_READER& reader, std::int64_t number, std::int64_t bytes) {
    const std::byte* record = nullptr;
    if (!reader.READ(number, bytes, record).OK()) return;
    EXPECT(number >= 1 && number <= reader.NUM_REC(), "a record that the block hasn't");
    // Every byte is there.
    for (std::int64_t i = 0; i < bytes; ++i) sum_ = sum_ + static_cast<unsigned>(record[i]);
  }

  void read_model(const MODEL_FILES& files) {
    kernel::T_REQUEST request{.FILE_NAME = file_name_, .ANALYSIS_CODE = code_};
    kernel::T_MODEL model;
    constexpr std::int32_t HOST_LANES = 40;
    const STATUS status = kernel::READ_MODEL(unit_, request, HOST_LANES, model);
    told("model", status);
    EXPECT(status.reason != REASON::NO_MEMORY, "no memory for a small file");
    if (!files.IS_EDITED() && !files.SOUND().OLD_FORMAT) EXPECT(status.OK(), "a sound model can't be read");
    if (status.OK()) EXPECT(std::ssize(model.LANES) == model.COUNTS.NUM_LANE, "lanes are missing");
  }

  void read_local_axes(const MODEL_FILES& files, const T_STEP& step) {
    std::int32_t position = 0;
    told("axes",
         kernel::LOCAL_AXES_POSITION(unit_, file_name_, files.SOUND().MODEL.unit_loads, step.B, position));
  }

  std::string file_name_;
  kernel::DIRECTORY_VERSION version_{};
  std::int32_t code_ = 0;
  kernel::RECORD_FILE unit_;
  volatile unsigned sum_ = 0;
  SOUND_RUNS sound_runs_{false};
};

}  // namespace

T_FILE_NEEDS FILE_NEEDS() {
  return {.BLOCKS = true, .OLD_FORMAT = true, .POINTS = 8};
}
std::unique_ptr<TARGET> MAKE_TARGET() {
  return std::make_unique<blocks>();
}

}  // namespace fuzz
