// Record files and the block directory.
#include "kernel/block_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <numeric>
#include <random>

#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "tests/temporary_directory.h"

namespace kernel {
namespace {

constexpr std::int64_t LONG_TOP = std::numeric_limits<std::int64_t>::max();

/// A file of the numbers 0, 1, 2, ..., longer than the largest read window.
class record_file : public testing::Test {
 protected:
  record_file() {
    std::iota(numbers_.begin(), numbers_.end(), 0);
    write(name_, 0, numbers_.data(), numbers_.size());
    EXPECT_TRUE(unit_.CONNECT(name_).OK());
  }
  static void write(const std::string& name, std::int64_t offset, const std::int32_t* values, std::size_t n) {
    std::ofstream file(name, std::ios::binary);
    file.seekp(offset);
    file.write(reinterpret_cast<const char*>(values), static_cast<std::streamsize>(4 * n));
  }
  REASON reason_of_read(std::int64_t n, std::int64_t bytes) {
    const std::byte* record = nullptr;
    return unit_.READ(n, bytes, record).reason;
  }
  void EXPECT_READS(std::int64_t n, std::int64_t bytes) {
    const std::byte* record = nullptr;
    ASSERT_TRUE(unit_.READ(n, bytes, record).OK()) << n;
    const auto* wanted = reinterpret_cast<const std::byte*>(numbers_.data()) + (n - 1) * unit_.RECORD_BYTES();
    ASSERT_EQ(std::memcmp(record, wanted, static_cast<std::size_t>(bytes)), 0) << n;
  }

  TEMPORARY_DIRECTORY directory_;
  std::string name_ = directory_.NAME("numbers");
  std::vector<std::int32_t> numbers_ = std::vector<std::int32_t>(900'001);
  RECORD_FILE unit_;
};

TEST_F(record_file, reads_records_of_any_length_in_any_order) {
  std::mt19937 random(5);
  const auto up_to = [&](std::int64_t top) {
    return std::uniform_int_distribution<std::int64_t>(0, top)(random);
  };
  for (const std::int64_t length : {1, 12, 28, 4868, 16 * 1024 + 4, 1024 * 1024 + 4}) {
    ASSERT_TRUE(unit_.RECONNECT(length).OK());
    const std::int64_t records = unit_.FILE_BYTES() / length;
    const std::int64_t step = std::max<std::int64_t>(1, records / 3000);
    for (std::int64_t n = 1; n <= records; n += step) EXPECT_READS(n, length);
    for (std::int64_t n = records; n >= 1; n -= step) EXPECT_READS(n, length);
    for (int i = 0; i < 300; ++i) EXPECT_READS(1 + up_to(records - 1), up_to(length));
  }
}

TEST_F(record_file, a_record_outside_the_file_fails_and_the_next_read_is_sound) {
  ASSERT_TRUE(unit_.RECONNECT(12).OK());
  const std::int64_t whole = unit_.FILE_BYTES() / 12;  // and four bytes of another
  EXPECT_READS(whole + 1, 4);
  EXPECT_EQ(reason_of_read(whole + 1, 5), REASON::RECORD_CUT);
  EXPECT_EQ(reason_of_read(LONG_TOP / 12, 12), REASON::RECORD_CUT);
  EXPECT_EQ(reason_of_read(1, LONG_TOP), REASON::RECORD_CUT);
  for (const std::int64_t n : {std::int64_t{0}, std::int64_t{-1}, -LONG_TOP - 1, LONG_TOP})
    EXPECT_EQ(reason_of_read(n, 12), REASON::RECORD_ABSENT) << n;
  EXPECT_READS(whole, 12);

  std::filesystem::resize_file(name_, 400'002);  // while it is open
  EXPECT_EQ(reason_of_read(33'334, 12), REASON::RECORD_CUT);
  EXPECT_EQ(reason_of_read(whole - 50'000, 12), REASON::RECORD_CUT);
  EXPECT_READS(33'333, 12);
  EXPECT_FALSE(unit_.RECONNECT(0).OK());
  EXPECT_EQ(reason_of_read(1, 1), REASON::RECORD_ABSENT);
  EXPECT_EQ(unit_.CONNECT(directory_.NAME("none")).reason, REASON::FILE_NOT_OPENED);
}

TEST_F(record_file, offsets_beyond_4_GB_are_reached) {
  const std::int64_t far_word = std::int64_t{5} << 30;
  write(name_, 4 * (far_word - 1), &numbers_[77], 2);
  ASSERT_TRUE(unit_.CONNECT(name_).OK());
  EXPECT_EQ(unit_.FILE_BYTES(), 4 * far_word + 4);
  for (const auto& [length, n, value] : {std::tuple{1, 4 * far_word + 1, 78}, {4, far_word, 77}, {4, 1, 0}}) {
    const std::byte* record = nullptr;
    ASSERT_TRUE(unit_.RECONNECT(length).OK());
    ASSERT_TRUE(unit_.READ(n, 4, record).OK());
    EXPECT_EQ(UNPACK(record).NEXT<std::int32_t>(), value);
  }
}

/// Both directory versions, each searched by its own lookup.
class directory : public testing::TestWithParam<bool> {
 protected:
  void WRITE(int foreign_groups, bool groups_behind = false) {
    layout_ = modelkit::WRITE_MODEL(modelkit::SIMPLE_SPAN_MODEL(), files_.NAME("model"),
                                    {.directory_version_1 = GetParam(),
                                     .reverse_entries = groups_behind,
                                     .unused_groups = foreign_groups,
                                     .header_groups_behind = groups_behind});
  }
  T_BLOCK FIND(const std::string& tag, std::int32_t id = 0, std::int32_t kind = 2) {
    return (GetParam() ? FIND_BLOCK_V1 : FIND_BLOCK)(unit_, layout_.path, kind, tag, id);
  }
  FIND_STATUS STATUS_OF(const std::string& tag, std::int32_t id = 0, std::int32_t kind = 2) {
    return FIND(tag, id, kind).STATUS_CODE;
  }
  /// Of MVIF, which stands behind one foreign group, where one value of the directory is another.
  template <class T>
  FIND_STATUS STATUS_WITH(std::int64_t offset, T value) {
    WRITE(1);
    PUT(offset, value);
    return STATUS_OF("MVIF");
  }
  template <class T>
  void PUT(std::int64_t offset, T value) {
    std::fstream file(layout_.path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(offset);
    file.write(reinterpret_cast<const char*>(&value), sizeof value);
  }

  const std::int64_t entry_bytes_ = GetParam() ? 20 : 28;
  TEMPORARY_DIRECTORY files_;
  modelkit::T_FILE_LAYOUT layout_;
  RECORD_FILE unit_;
};
INSTANTIATE_TEST_SUITE_P(versions, directory, testing::Bool());

TEST_P(directory, every_block_is_found_and_left_connected) {
  for (const int foreign_groups : {0, 1, 3}) {
    for (const bool groups_behind : {false, true}) {
      WRITE(foreign_groups, groups_behind);
      for (const modelkit::T_WRITTEN_BLOCK& written : layout_.blocks) {
        const T_BLOCK found = FIND(written.tag, written.id);
        ASSERT_EQ(found.STATUS_CODE, FIND_STATUS::FOUND) << written.tag;
        EXPECT_EQ(found.FIRST_REC, written.first);
        EXPECT_EQ(found.NUM_REC, written.last - written.first + 1);
        EXPECT_EQ(found.REC_WORDS, written.record_words);
        EXPECT_EQ(unit_.RECORD_BYTES(), 4 * written.record_words);
      }
      // A foreign block has this tag under another id, in front of ours.
      EXPECT_EQ(FIND("MVIF", 1005).REC_WORDS, foreign_groups > 0 ? 3 : 0);
      EXPECT_EQ(STATUS_OF("MVIF", 5), FIND_STATUS::NOT_FOUND);
      EXPECT_EQ(STATUS_OF("NONE"), FIND_STATUS::NOT_FOUND);
    }
  }
}

TEST_P(directory, arguments_that_no_block_has_leave_the_unit_alone) {
  WRITE(0);
  EXPECT_EQ(STATUS_OF("MVLC"), FIND_STATUS::FOUND);
  const std::int64_t length = unit_.RECORD_BYTES();
  for (const char* tag : {"HEAD", "    "}) EXPECT_EQ(STATUS_OF(tag), FIND_STATUS::BAD_ARGUMENTS);
  const std::string path = std::exchange(layout_.path, "");
  EXPECT_EQ(STATUS_OF("MVIF"), FIND_STATUS::BAD_ARGUMENTS);
  const std::byte* record = nullptr;
  EXPECT_TRUE(unit_.RECORD_BYTES() == length && unit_.READ(1, 4, record).OK());
  layout_.path = path + "x";
  EXPECT_EQ(STATUS_OF("MVIF"), FIND_STATUS::NOT_OPENED);
}

TEST_P(directory, a_search_ends_at_a_blank_tag_at_the_end_of_the_chain_or_at_damage) {
  constexpr std::int32_t BLANKS = 0x20202020;
  const std::int64_t second = 21 * entry_bytes_;  // header
  EXPECT_EQ(STATUS_WITH(entry_bytes_ * 20, BLANKS), FIND_STATUS::NOT_FOUND);
  EXPECT_EQ(STATUS_WITH(second + entry_bytes_, BLANKS), FIND_STATUS::NOT_FOUND);
  EXPECT_EQ(STATUS_OF("MVIF", 0, 3), FIND_STATUS::NOT_A_DIRECTORY);
  const auto other_lookup = GetParam() ? FIND_BLOCK : FIND_BLOCK_V1;
  EXPECT_EQ(other_lookup(unit_, layout_.path, 2, "MVIF", 0).STATUS_CODE, FIND_STATUS::NOT_A_DIRECTORY);
  for (const std::int64_t header : {std::int64_t{0}, second}) {
    EXPECT_EQ(STATUS_WITH(header, 'k'), FIND_STATUS::NOT_A_DIRECTORY);
    EXPECT_EQ(STATUS_WITH(header + 4, 1), FIND_STATUS::NOT_A_DIRECTORY);
    EXPECT_EQ(STATUS_WITH(header + 8, std::nextafter(GetParam() ? 1.0F : 2.0F, 9.0F)),
              FIND_STATUS::NOT_A_DIRECTORY);
    EXPECT_EQ(STATUS_WITH(header + 12, 21), FIND_STATUS::NOT_A_DIRECTORY);
  }
  for (const std::int32_t next : {1, 100'000}) EXPECT_EQ(STATUS_WITH(16, next), FIND_STATUS::READ_FAILED);

  // The chain ends behind 20 used entries: nothing is read behind them.
  EXPECT_EQ(STATUS_WITH(16, 0), FIND_STATUS::NOT_FOUND);
  for (const auto& [bytes, status] :
       {std::pair{second, FIND_STATUS::NOT_FOUND}, {second - 1, FIND_STATUS::READ_FAILED}}) {
    std::filesystem::resize_file(layout_.path, static_cast<std::uintmax_t>(bytes));
    EXPECT_EQ(STATUS_OF("MVIF"), status);
  }
  // A block that claims to end beyond all files has records all the same.
  WRITE(0);
  const modelkit::T_WRITTEN_BLOCK& block = layout_.BLOCK("LNIF");
  PUT(block.entry_offset + entry_bytes_ - 8, std::numeric_limits<std::int32_t>::max());
  EXPECT_GT(FIND("LNIF").NUM_REC, 1 << 30);
  // A record length that can't be: the entry's values stand beside the status.
  PUT(block.entry_offset + entry_bytes_ - 4, 0);
  EXPECT_EQ(STATUS_OF("LNIF"), FIND_STATUS::NOT_OPENED);
  EXPECT_EQ(FIND("LNIF").FIRST_REC, block.first);
}

}  // namespace
}  // namespace kernel
