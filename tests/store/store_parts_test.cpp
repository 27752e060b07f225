// Parts of the store that hosts see only together: a volume's positions and views, and the look-up of IDs in
// any order.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>

#include "store/id_maps.h"
#include "store/m_file_mapping.h"
#include "store/m_linked_list.h"
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
