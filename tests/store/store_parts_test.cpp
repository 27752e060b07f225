// Parts of the store that hosts see only together: a volume's positions and views, rows out of a record, and
// the look-up of IDs in any order.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>

#include "store/id_maps.h"
#include "store/m_file_mapping.h"
#include "store/m_linked_list.h"
#include "store/transposition.h"
#include "tests/temporary_directory.h"

namespace store {
namespace {

constexpr std::int32_t WORDS = 300'000;  // more than the largest window

/// A file whose word k, from 0, is k.
std::string counting_file(const TEMPORARY_DIRECTORY& files) {
  std::vector<std::int32_t> words(WORDS);
  std::iota(words.begin(), words.end(), 0);
  std::ofstream(files.NAME(), std::ios::binary).write(reinterpret_cast<const char*>(words.data()), 4 * WORDS);
  return files.NAME();
}

std::int32_t word_at(const std::byte* bytes) {
  std::int32_t word = -1;
  if (bytes != nullptr) std::memcpy(&word, bytes, sizeof word);
  return word;
}

TEST(file_mapping, a_position_moves_behind_what_was_read_and_stays_where_nothing_was) {
  const TEMPORARY_DIRECTORY files;
  T_FILE file;
  EXPECT_FALSE(file.OPEN(files.NAME()));
  EXPECT_FALSE(file.OPEN(files.NAME(".")));
  std::ofstream(files.NAME("empty")).close();
  EXPECT_FALSE(file.OPEN(files.NAME("empty")));
  ASSERT_TRUE(file.OPEN(counting_file(files)));

  std::int32_t word = -1;
  for (std::int32_t k = 0; k < WORDS; ++k) {
    ASSERT_TRUE(file.READ(&word, 4));
    ASSERT_EQ(word, k);
  }
  EXPECT_FALSE(file.READ(&word, 4));
  file.SEEK(-1, -8);
  std::array<std::int32_t, 3> words{-1, -1, -1};
  EXPECT_FALSE(file.READ(words.data(), 12));
  EXPECT_EQ(words[0], -1);
  EXPECT_EQ(file.TELL(), 4 * WORDS - 8);
  EXPECT_FALSE(file.READ(words.data(), 0));
  file.SEEK(100, 20);
  EXPECT_EQ(word_at(file.VIEW(4 * 1000)), 30);
  file.SEEK(200, 0);
  EXPECT_EQ(word_at(file.VIEW(4)), 50);  // out of the same view
  EXPECT_EQ(file.TELL(), 204);
  for (const std::int64_t position : {std::int64_t{-4}, std::int64_t{4 * WORDS - 3}, std::int64_t{1} << 62}) {
    file.SEEK(0, position);
    EXPECT_EQ(file.VIEW(4), nullptr);
    EXPECT_FALSE(file.READ(&word, 4));
    EXPECT_EQ(file.TELL(), position);
  }
  std::error_code refused;  // by Windows, where nobody can cut a mapped file
  std::filesystem::resize_file(files.NAME(), 4 * 1000, refused);
  file.SEEK(4 * 990, 0);
  EXPECT_EQ(file.VIEW(4 * 2000) == nullptr, !refused);
  file.SEEK(4 * 990, 0);
  EXPECT_TRUE(file.READ(words.data(), 12));
  EXPECT_EQ(words[2], 992);
  EXPECT_EQ(file.SIZE_NOW(), refused ? 4 * WORDS : 4 * 1000);

  file.CLOSE(DISPOSITION::KEEP);
  EXPECT_TRUE(std::filesystem::exists(files.NAME()));
  ASSERT_TRUE(file.OPEN(files.NAME()));
  file.CLOSE(DISPOSITION::DELETE_FILE);
  EXPECT_FALSE(std::filesystem::exists(files.NAME()));
}

TEST(file_mapping, bytes_beyond_4_gb_are_reached_while_others_read_the_file) {
  const TEMPORARY_DIRECTORY files;
  constexpr std::int64_t FAR = (std::int64_t{5} << 30) - 8;  // 8 bytes before a multiple of the granularity
  std::fstream other(counting_file(files), std::ios::binary | std::ios::in | std::ios::out);
  other.seekp(FAR).write("abcdefghijkl", 12);
  other.close();
  other.open(files.NAME(), std::ios::binary | std::ios::in);
  T_FILE file;
  T_FILE same;
  ASSERT_TRUE(other.is_open() && file.OPEN(files.NAME()) && same.OPEN(files.NAME()));
  EXPECT_EQ(file.SIZE(), FAR + 12);
  for (T_FILE* each : {&file, &same}) {
    each->SEEK(FAR, 4);
    const std::byte* bytes = each->VIEW(8);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::memcmp(bytes, "efghijkl", 8), 0);
    each->SEEK(-1, -12);
    std::array<char, 12> text{};
    EXPECT_TRUE(each->READ(text.data(), 12));
    EXPECT_EQ(text[0], 'a');
  }
}

TEST(transposition, every_component_goes_to_its_position_and_nothing_else_is_written) {
  for (const std::int32_t components : {1, 3, 4, 7, 300}) {
    for (const std::int32_t loads : {1, 2, 5, 16, 67}) {
      // One byte off any boundary; component k under load j is 1000 * k + j. The stretch leaves out the ends, and
      // a load that isn't wanted.
      std::vector<float> record;
      for (std::int32_t k = 1; k < components - 1; ++k)
        for (std::int32_t j = 0; j <= loads; ++j) record.push_back(static_cast<float>(1000 * k + j));
      std::vector<std::byte> bytes(4 * record.size() + 1);
      if (!record.empty()) std::memcpy(bytes.data() + 1, record.data(), 4 * record.size());

      std::vector<std::int32_t> sources(static_cast<std::size_t>(components) + 2, -1);
      for (std::size_t p = 0; p < sources.size(); ++p)
        if (p % 11 != 3)
          sources[p] = static_cast<std::int32_t>((p * 7) % static_cast<std::size_t>(components));
      const std::int64_t length = std::ssize(sources) + 1;
      std::vector<float> rows(static_cast<std::size_t>(length * loads), -1.0F);
      TRANSPOSE(bytes.data() + 1, {1, components - 2, loads + 1, loads}, sources, length, rows.data());
      for (std::int64_t j = 0; j < loads; ++j) {
        for (std::int64_t p = 0; p < length; ++p) {
          const std::int32_t k = p < std::ssize(sources) ? sources[static_cast<std::size_t>(p)] : -1;
          const bool is_written = k >= 1 && k <= components - 2;
          ASSERT_EQ(rows[static_cast<std::size_t>(j * length + p)],
                    is_written ? static_cast<float>(1000 * k + j) : -1.0F);
        }
      }
    }
  }
}

TEST(id_maps, ids_in_any_order_are_found_and_one_that_comes_twice_keeps_its_last_row) {
  ID_MAPS maps;
  const T_LIST primary{{.ID = 5}, {.ID = -2}, {.ID = 9}, {.ID = 5}};
  const T_LIST included{{.ID = 5}, {.ID = 7}, {.ID = 9}, {.ID = 5}, {.ID = 11}};
  maps.REGISTER(LIST::N_288, primary, std::array{&included});
  maps.REGISTER(LIST::N_384, included, {});
  const auto row = [&](std::int32_t id) { return maps.FIND_ROW(LIST::N_288, id); };
  EXPECT_EQ((std::array{row(5), row(-2), row(7), row(9), row(11), row(6)}), (std::array{4, 2, 2, 3, 0, 0}));
  EXPECT_EQ(maps.ELEMENT_FLAGS(7), 288 | 384);
  EXPECT_EQ(maps.ELEMENT_FLAGS(11), 384);
  EXPECT_EQ(maps.FIND_ROW(LIST::DISP, 5), 0);
  maps.CLEAR();
  EXPECT_EQ(maps.ELEMENT_FLAGS(5), 0);
}

}  // namespace
}  // namespace store
