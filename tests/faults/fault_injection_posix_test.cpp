// Every request for memory and every access to a file that a call makes is refused once. Such a call answers
// as if nothing had happened or fails with a reason and writes nothing; the next one answers right.
//
// The library is linked as a host links it, so that what it takes from the system can be taken over here.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <new>
#include <random>

#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "modelkit/volume_writer.h"
#include "tests/host/host_call.h"
#include "tests/host/result_items.h"
#include "tests/temporary_directory.h"

namespace {

enum class FAULT { NONE, NO_MEMORY, READ_FAILS, READ_ENDS, READ_INTERRUPTED, OPEN_FAILS, SIZE_FAILS };

struct {
  FAULT fault = FAULT::NONE;
  std::int64_t spared = 0;  // so many chances go by, and then one is taken
  std::int64_t chances = 0;
  bool WAS_TAKEN() const { return chances > spared; }
} injection;

/// Whether the fault in hand strikes now.
bool strikes(FAULT fault) {
  return fault == injection.fault && injection.chances++ == injection.spared;
}

void* allocate(std::size_t bytes) {
  return strikes(FAULT::NO_MEMORY) ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}
void* allocate_or_throw(std::size_t bytes) {
  void* memory = allocate(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t bytes) {
  return allocate_or_throw(bytes);
}
void* operator new[](std::size_t bytes) {
  return allocate_or_throw(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return allocate(bytes);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

#define OF_THE_PROCESS extern "C" __attribute__((visibility("default")))

OF_THE_PROCESS ssize_t pread(int file, void* target, std::size_t bytes, off_t offset) {
  if (strikes(FAULT::READ_ENDS)) return 0;
  if (strikes(FAULT::READ_FAILS))
    errno = EIO;
  else if (strikes(FAULT::READ_INTERRUPTED))
    errno = EINTR;
  else
    return syscall(SYS_pread64, file, target, bytes, offset);
  return -1;
}

OF_THE_PROCESS int open(const char* name, int flags, ...) {
  if (strikes(FAULT::OPEN_FAILS)) {
    errno = EMFILE;
    return -1;
  }
  va_list arguments;
  va_start(arguments, flags);
  const int mode = (flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0;
  va_end(arguments);
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

OF_THE_PROCESS int fstat(int file, struct stat* info) {
  if (!strikes(FAULT::SIZE_FAILS)) return static_cast<int>(syscall(SYS_fstat, file, info));
  errno = EIO;
  return -1;
}

namespace {

constexpr FAULT FAULTS[] = {FAULT::NO_MEMORY,        FAULT::READ_FAILS, FAULT::READ_ENDS,
                            FAULT::READ_INTERRUPTED, FAULT::OPEN_FAILS, FAULT::SIZE_FAILS};

/// Models with all that files can carry, in both forms; the unit loads lie in two sets of volumes.
class faults : public testing::TestWithParam<int> {
 protected:
  faults() {
    std::mt19937_64 random(static_cast<std::uint64_t>(GetParam()));
    model_ = modelkit::NUMBER_ELEMENTS_APART(
        modelkit::RANDOM_MODEL(random, {.straddle_lanes = 1.0, .axle_lists = 0.5, .class_definitions = 0.5}));
    model_.elements_per_file = 1000;  // ids that are apart spread over many
    modelkit::WRITE_MODEL(model_, base_);
    modelkit::WRITE_VOLUMES(model_, base_, {.volumes = 2, .included_loads = 1}, included_);
  }
  void TearDown() override { injection.fault = FAULT::NONE; }

  /// Calls run() again and again with one fault more spared each time, until none strikes.
  /// `check(struck)` looks at what came of it.
  template <class RUN, class CHECK>
  void STRIKE_EVERYWHERE(FAULT fault, RUN run, CHECK check) {
    bool struck = true;
    for (std::int64_t spared = 0; struck && !HasFailure(); ++spared) {
      SCOPED_TRACE("fault " + std::to_string(static_cast<int>(fault)) + " at chance " +
                   std::to_string(spared));
      injection = {fault, spared, 0};
      run();
      injection.fault = FAULT::NONE;
      struck = injection.WAS_TAKEN();
      check(struck);
      times_struck_ += struck ? 1 : 0;
    }
  }

  modelkit::T_MODEL model_;
  TEMPORARY_DIRECTORY files_;
  std::string base_ = files_.NAME("model");
  std::vector<char> path_{base_.begin(), base_.end()};
  std::string included_ = files_.NAME("included");
  int times_struck_ = 0;
};
INSTANTIATE_TEST_SUITE_P(models, faults, testing::Values(1, 3));

TEST_P(faults, a_run_answers_or_fails_with_a_reason_and_the_next_one_answers_right) {
  const auto lanes = static_cast<int>(model_.lanes.size());
  const auto path_length = static_cast<std::int32_t>(included_.size());
  for (const plain::KIND& kind : plain::KINDS) {
    const auto& responses = model_.*kind.RESPONSES;
    for (const std::int32_t mode : {0, 100}) {
      SCOPED_TRACE("kind " + std::to_string(kind.RESULT_KIND) + " in mode " + std::to_string(mode));
      host::ARGUMENTS got(lanes);
      const auto run = [&] {
        if (mode == 100) SET_INCLUDE_BLK(&path_length, included_.data());
        got.RUN(path_, mode, kind.RESULT_KIND, responses.front().id, 1, 1);
      };
      run();
      ASSERT_EQ(got.MODE_CODE, mode) << movload_last_failure();
      const host::ARGUMENTS sound = got;
      host::ARGUMENTS failed(lanes);
      failed.MODE_CODE = -1;
      for (const FAULT fault : FAULTS) {
        STRIKE_EVERYWHERE(
            fault,
            [&] {
              got = failed;
              run();
            },
            [&](bool struck) {
              const bool has_failed = got.MODE_CODE == -1;
              ASSERT_TRUE(host::SAME(has_failed ? failed : sound, got));
              ASSERT_EQ(has_failed, *movload_last_failure() != '\0');
              ASSERT_TRUE(!has_failed || (struck && fault != FAULT::READ_INTERRUPTED));
              if (!struck) return;
              run();
              ASSERT_TRUE(host::SAME(sound, got));
            });
      }
    }
  }
  EXPECT_GT(times_struck_, 1000);
}

TEST_P(faults, a_host_reads_values_or_zeros_and_a_store_opened_anew_serves_all) {
  const std::int32_t id = model_.disp.front().id;
  const std::int32_t components = 6;
  const auto lengths =
      std::array{static_cast<std::int32_t>(included_.size()), static_cast<std::int32_t>(base_.size())};
  std::vector<float> sound;
  std::vector<float> rows(static_cast<std::size_t>(components * model_.unit_loads));
  const std::vector<float> untouched(rows.size(), host::UNTOUCHED);
  std::int32_t supports = 0;
  const auto run = [&] {
    rows = untouched;
    INIT_MOVING_INFLUENCE(&lengths[0], included_.data(), &lengths[1], base_.data());
    GET_NUM_REACTION(&supports);
    READ_DISP_INFLUENCE_ALL_LOAD(&id, &components, rows.data());
    CLOSE_MOVING_INFLUENCE();
  };
  run();
  const std::int32_t all_supports = supports;
  ASSERT_GT(all_supports, 0);
  sound = rows;
  for (const FAULT fault : FAULTS) {
    STRIKE_EVERYWHERE(fault, run, [&](bool struck) {
      ASSERT_TRUE(rows == sound || (struck && fault != FAULT::READ_INTERRUPTED));
      for (std::size_t i = 0; i < rows.size(); ++i)
        ASSERT_TRUE(rows[i] == sound[i] || rows[i] == 0.0F || rows[i] == host::UNTOUCHED) << rows[i];
      ASSERT_TRUE(supports == all_supports || supports == 0);
      run();
      ASSERT_EQ(rows, sound);
      ASSERT_EQ(supports, all_supports);
    });
  }
}

}  // namespace
