// Every byte of every file is altered, and every file cut at every length. A call on such files answers or
// fails with a reason; one that fails leaves the host's arrays alone, and nothing is written behind them. The
// next call on the sound files answers right.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "modelkit/model_writer.h"
#include "modelkit/volume_writer.h"
#include "tests/host/host_call.h"
#include "tests/host/result_items.h"
#include "tests/host/tiny_model.h"
#include "tests/temporary_directory.h"

namespace {

using std::string;
using row = std::vector<float>;

template <class T>
string bytes_of(T value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

/// What may stand in the place of the bytes from `at` on: other bytes, words that are counts, and words and
/// reals at the ends of their ranges.
std::vector<string> replacements(const string& sound, std::size_t at) {
  constexpr double INFINITE = std::numeric_limits<double>::infinity();
  using words = std::numeric_limits<std::int32_t>;
  std::vector<string> values;
  const auto byte = static_cast<unsigned char>(sound[at]);
  for (const int value : {~byte, byte + 1, 0x7F, 0x80}) values.push_back(bytes_of(static_cast<char>(value)));
  if (at % 4 != 0) return values;
  for (const std::int32_t value : {-1, 0, 1, 2, 12, 1 << 20, words::min(), words::max()})
    values.push_back(bytes_of(value));
  for (const double value : {INFINITE, -1e308, std::nan("")}) values.push_back(bytes_of(value));
  std::erase_if(values, [&](const string& value) { return at + value.size() > sound.size(); });
  return values;
}

constexpr int ALL_REPLACEMENTS = -1;

/// Calls `look(length)` for every damage of a file and leaves it sound. A length below that of the sound file
/// tells that it is cut. A byte has the replacement whose turn it is there, or all.
template <class LOOK>
void damage_everywhere(const string& path, int turn, LOOK look) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  const string sound(std::istreambuf_iterator<char>(file), {});
  ASSERT_FALSE(sound.empty()) << path;
  const auto put = [&](std::size_t at, const string& value) {
    file.clear();
    file.seekp(static_cast<std::streamoff>(at));
    ASSERT_TRUE(file.write(value.data(), static_cast<std::streamsize>(value.size())).flush());
  };
  for (std::size_t at = 0; at < sound.size(); ++at) {
    const std::vector<string> values = replacements(sound, at);
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (turn != ALL_REPLACEMENTS && (static_cast<std::size_t>(turn) + at / 4) % values.size() != i)
        continue;
      put(at, values[i]);
      look(sound.size());
      ASSERT_FALSE(testing::Test::HasFailure())
          << path << ", byte " << at << ": " << testing::PrintToString(values[i]);
      put(at, sound.substr(at, values[i].size()));
    }
  }
  for (std::size_t length = sound.size(); length-- > 0;) {
    std::filesystem::resize_file(path, length);
    look(length);
    ASSERT_FALSE(testing::Test::HasFailure()) << path << ", cut to " << length;
  }
  put(0, sound);
}

/// The tiny model with the responses of one kind, so that its runs read whatever the files hold. What all
/// kinds have in common gets all replacements, another from each kind.
class every_byte : public testing::TestWithParam<int> {
 protected:
  every_byte() {
    const std::vector<modelkit::T_RESPONSE> responses =
        kind_.OF_ELEMENTS ? host::TINY_RESPONSES({1}, 132) : model_.*kind_.RESPONSES;
    for (const plain::KIND& other : plain::KINDS) (model_.*other.RESPONSES).clear();
    model_.*kind_.RESPONSES = responses;
    model_.plate_form = 1;
    if (GetParam() % 2 == 1) model_.axle_lists.clear();  // which put class definitions out of use
    id_ = responses.back().id;
    directory_file_ = modelkit::WRITE_MODEL(model_, files_.NAME()).path;
    volumes_ = modelkit::WRITE_VOLUMES(
        model_, files_.NAME(), {.volumes = 2, .foreign_blocks = true, .included_loads = 2}, included_);
  }
  void RUN(std::int32_t mode, host::ARGUMENTS& got) const {
    const auto length = static_cast<std::int32_t>(included_.size());
    if (mode == 100) SET_INCLUDE_BLK(&length, included_.data());
    got.RUN(base_, mode, kind_.RESULT_KIND, id_, 2, 1);
  }
  void DAMAGE(const string& path, std::int32_t mode) const {
    host::ARGUMENTS untouched(host::TINY_LANES);
    untouched.MODE_CODE = -1;
    host::ARGUMENTS sound = untouched;
    RUN(mode, sound);
    ASSERT_GT(sound.FINAL_MAX, 0.0) << movload_last_failure();
    const std::size_t size = std::filesystem::file_size(path);

    host::ARGUMENTS got = untouched;
    damage_everywhere(path, GetParam(), [&](std::size_t length) {
      RUN(mode, got);
      const bool has_failed = got.MODE_CODE == -1;
      ASSERT_EQ(has_failed, *movload_last_failure() != '\0');
      if (has_failed) {
        ASSERT_TRUE(host::SAME(untouched, got));
        ASSERT_TRUE(length == size || string(movload_last_failure()).starts_with(path))
            << movload_last_failure();
        return;
      }
      ASSERT_TRUE(length == size || (length > 0 && host::SAME(sound, got)));
      got.EACH_ARRAY(untouched, [](const char* name, const auto& written, const auto& before) {
        constexpr int BEHIND = host::TINY_LANES + 1;
        if (written.LANE(BEHIND) != before.LANE(BEHIND)) FAIL() << "behind " << name;
      });
      got = untouched;
    });
    RUN(mode, got);
    EXPECT_TRUE(host::SAME(sound, got));
  }

  const plain::KIND& kind_ = plain::KINDS.at(static_cast<std::size_t>(GetParam()));
  modelkit::T_MODEL model_ = host::TINY_MODEL();
  std::int32_t id_ = 0;
  TEMPORARY_DIRECTORY files_;
  std::vector<char> base_ = [name = files_.NAME()] { return std::vector(name.begin(), name.end()); }();
  string included_ = files_.NAME("included");
  string directory_file_;
  modelkit::T_VOLUME_LAYOUTS volumes_;
};
INSTANTIATE_TEST_SUITE_P(kinds, every_byte, testing::Range(0, static_cast<int>(plain::KINDS.size())),
                         [](const auto& kind) {
                           const auto index = static_cast<std::size_t>(kind.param);
                           return std::to_string(plain::KINDS.at(index).RESULT_KIND);
                         });

TEST_P(every_byte, of_the_directory_file_and_of_an_element_file) {
  DAMAGE(directory_file_, 0);
  for (const char family : {'T', 'B', 'P', 'W'}) {
    const string path = directory_file_ + family + '1';
    if (std::filesystem::exists(path)) DAMAGE(path, 0);
  }
}

TEST_P(every_byte, of_two_sets_of_volumes) {
  for (const modelkit::T_VOLUME_LAYOUT& set : {volumes_.included, volumes_.primary})
    for (const string& path : set.paths) DAMAGE(path, 100);
}

TEST(every_byte_of_volumes, that_a_host_reads) {
  modelkit::T_MODEL model{.unit_loads = 2};
  model.disp = model.reac = model.lrac = host::TINY_RESPONSES({1}, 6);
  model.trusses = host::TINY_RESPONSES({2}, 2);
  const modelkit::T_HOST_ELEMENTS elements{.composite_bars = host::TINY_RESPONSES({3}, 70),
                                           .virtual_bars = host::TINY_RESPONSES({4}, 5),
                                           .solids = host::TINY_RESPONSES({5}, 78),
                                           .composite_parts = 2,
                                           .element_nodes = {{2, {1, 6}}, {7, {}}},
                                           .second_groups = {{2, {3}}}};
  const TEMPORARY_DIRECTORY files;
  const string base = files.NAME();
  const string included = files.NAME("included");
  const auto layouts = modelkit::WRITE_VOLUMES(
      model, base, {.volumes = 2, .foreign_blocks = true, .included_loads = 1, .host_elements = elements},
      included);
  std::uintmax_t bytes = 0;
  for (const auto& file : std::filesystem::directory_iterator(std::filesystem::path(base).parent_path()))
    bytes += file.file_size();

  // As many loads, nodes or ids as the files have room for.
  constexpr std::int32_t NCOMP = 3;
  std::vector<std::int32_t> numbers(bytes / 4);
  row rows(NCOMP * bytes / 4);
  const std::int32_t base_length = static_cast<std::int32_t>(base.size());
  const std::int32_t included_length = static_cast<std::int32_t>(included.size());
  const std::int32_t second = 2;
  const auto read = [&](row& all) {
    all.clear();
    const auto keep = [&all](const auto& from, std::size_t n) {
      for (std::size_t i = 0; i < n; ++i) all.push_back(static_cast<float>(from[i]));
    };
    std::fill(rows.begin(), rows.end(), static_cast<float>(host::UNTOUCHED));
    std::int32_t count = host::UNTOUCHED;
    INIT_MOVING_INFLUENCE(&included_length, included.data(), &base_length, base.data());
    const string failure = movload_last_failure();
    for (const auto& [number_of, ids_of] : {std::pair{&GET_NUM_REACTION, &GET_NUM_REACTION_IDS},
                                            {&GET_NUM_LOCAL_REACTION, &GET_NUM_LOCAL_REACTION_IDS}}) {
      number_of(&count);
      ids_of(numbers.data());
      keep(numbers, static_cast<std::size_t>(count));
    }
    const auto row_is_read = [&] {
      keep(rows, 2 * NCOMP);
      return rows[0] != host::UNTOUCHED;
    };
    bool any_row = false;
    for (std::int32_t id = 1; id <= 5; ++id) {
      for (const auto read_rows :
           {READ_DISP_INFLUENCE_ALL_LOAD, READ_REAC_INFLUENCE_ALL_LOAD, READ_LREAC_INFLUENCE_ALL_LOAD,
            READ_ELEMENT_INFLUENCE_ALL_LOAD, READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD}) {
        read_rows(&id, &NCOMP, rows.data());
        any_row = row_is_read() || any_row;
      }
      READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(&id, &second, &NCOMP, rows.data());
      READ_COMPOSITE_BAR_INFLUENCE(&id, &second, &second, &NCOMP, rows.data());
      READ_ELEMENT_INFLUENCE(&id, &second, &NCOMP, rows.data());
      any_row = row_is_read() || any_row;
    }
    count = 0;
    GET_ELEMENT_NODE_INFO(&second, &count, numbers.data());
    keep(numbers, static_cast<std::size_t>(count));
    EXPECT_TRUE(failure.empty() || !any_row);
    CLOSE_MOVING_INFLUENCE();
    return failure;
  };
  row sound;
  row got;
  read(sound);
  for (const modelkit::T_VOLUME_LAYOUT& set : {layouts.included, layouts.primary}) {
    for (const string& path : set.paths) {
      const std::size_t size = std::filesystem::file_size(path);
      damage_everywhere(path, ALL_REPLACEMENTS, [&](std::size_t length) {
        const string failure = read(got);
        ASSERT_TRUE(length == size || failure.starts_with(path + ": ")) << failure;
      });
      read(got);
      EXPECT_EQ(got, sound);
    }
  }
}

}  // namespace
