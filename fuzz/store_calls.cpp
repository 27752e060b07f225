#include "fuzz/store_calls.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>

#include "fuzz/host_calls.h"
#include "fuzz/target.h"

namespace fuzz {
namespace {

using modelkit::T_RESPONSE;

constexpr float UNTOUCHED = host::UNTOUCHED;
constexpr std::int32_t INT_TOP = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t INT_BOTTOM = std::numeric_limits<std::int32_t>::min();

struct T_READ {
  std::int32_t ID = 0;
  std::int32_t LOAD = 0;
  std::int32_t PART = 0;
  std::int32_t NCOMP = 0;
};
struct T_READER {
  const char* NAME;
  void (*ONE)(const T_READ&, float*);
  void (*ALL)(const T_READ&, float*);
};
constexpr std::array<T_READER, 6> READERS{
    {{"displacements",
      [](const T_READ& r, float* row) { READ_DISP_INFLUENCE(&r.ID, &r.LOAD, &r.NCOMP, row); },
      [](const T_READ& r, float* rows) { READ_DISP_INFLUENCE_ALL_LOAD(&r.ID, &r.NCOMP, rows); }},
     {"reactions", [](const T_READ& r, float* row) { READ_REAC_INFLUENCE(&r.ID, &r.LOAD, &r.NCOMP, row); },
      [](const T_READ& r, float* rows) { READ_REAC_INFLUENCE_ALL_LOAD(&r.ID, &r.NCOMP, rows); }},
     {"local reactions",
      [](const T_READ& r, float* row) { READ_LREAC_INFLUENCE(&r.ID, &r.LOAD, &r.NCOMP, row); },
      [](const T_READ& r, float* rows) { READ_LREAC_INFLUENCE_ALL_LOAD(&r.ID, &r.NCOMP, rows); }},
     {"element", [](const T_READ& r, float* row) { READ_ELEMENT_INFLUENCE(&r.ID, &r.LOAD, &r.NCOMP, row); },
      [](const T_READ& r, float* rows) { READ_ELEMENT_INFLUENCE_ALL_LOAD(&r.ID, &r.NCOMP, rows); }},
     {"composite bar",
      [](const T_READ& r, float* row) {
        READ_COMPOSITE_BAR_INFLUENCE(&r.ID, &r.LOAD, &r.PART, &r.NCOMP, row);
      },
      [](const T_READ& r, float* rows) {
        READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(&r.ID, &r.PART, &r.NCOMP, rows);
      }},
     {"virtual bar",
      [](const T_READ& r, float* row) { READ_VIRTUAL_BAR_STRESS_INFLUENCE(&r.ID, &r.LOAD, &r.NCOMP, row); },
      [](const T_READ& r, float* rows) {
        READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD(&r.ID, &r.NCOMP, rows);
      }}}};
constexpr std::size_t ELEMENT_READER = 3;

constexpr std::array<std::int32_t, 24> NCOMPS{6,  7,  1,  2,  8,  12, 14, 35, 40,  68,  70,  78,
                                              48, 49, 72, 73, 88, 3,  0,  -1, 132, 131, 200, INT_BOTTOM};
constexpr std::array<std::int32_t, 8> ODD{0, -1, 9001, 9002, 9003, 1 << 24, INT_TOP, INT_BOTTOM};

bool is_odd(std::uint16_t number) {
  return number % 16 == 15;
}
bool failed() {
  return movload_last_failure()[0] != '\0';
}
std::int32_t length(const std::string& path) {
  return static_cast<std::int32_t>(path.size());
}
void tell(const std::string& what) {
  if (TELLS()) std::fprintf(stderr, "%s; %s\n", what.c_str(), movload_last_failure());
}
bool all_untouched(const std::vector<float>& values) {
  return std::ranges::all_of(values, [](float value) { return value == UNTOUCHED; });
}

}  // namespace

STORE_HOST::~STORE_HOST() {
  CLOSE();
}

void STORE_HOST::INCLUDE(std::uint16_t which) {
  const std::array<std::string, 6> paths{
      files_.INCLUDED_BASE(), "  " + files_.INCLUDED_BASE() + " ", "   ", files_.BASE(), files_.BASE() + "x",
      std::string(1025, 'x')};
  const std::string& path = paths[which % paths.size()];
  const std::int32_t characters = length(path);
  SET_INCLUDE_BLK(&characters, path.data());
  tell("include " + path);
  EXPECT(!failed(), "an included set can't be named");
  const std::size_t first = path.find_first_not_of(' ');
  if (first != std::string::npos && path.size() <= 1024)
    included_ = path.substr(first, path.find_last_not_of(' ') - first + 1);
}

void STORE_HOST::OPEN(bool names_included) {
  const std::string included =
      names_included && files_.SOUND().HAS_INCLUDED_SET ? files_.INCLUDED_BASE() : "";
  const std::string base = files_.BASE();
  const std::int32_t include_length = length(included);
  const std::int32_t base_length = length(base);
  INIT_MOVING_INFLUENCE(&include_length, included.data(), &base_length, base.data());
  tell("open " + base + " with " + included);
  if (!included.empty()) included_ = included;
  note_opening();
}

void STORE_HOST::note_opening() {
  EXPECT(std::string(movload_last_failure()).find("memory") == std::string::npos, "no memory");
  is_open_ = !failed();
  is_sound_ = !files_.IS_EDITED();
  has_two_sets_ = !included_.empty();
  loads_ = is_open_ ? loads_of(files_.BASE()) + (has_two_sets_ ? loads_of(included_) : 0) : 0;
  EXPECT(loads_ >= 0, "a store with a negative number of loads");
}

/// The count of the load table, whose offset stands in the head of the first volume.
std::int64_t STORE_HOST::loads_of(const std::string& base) const {
  const T_FILE_BYTES* first = files_.FILE(base + "_000.BLK");
  EXPECT(first != nullptr, "a set without a volume was opened");
  std::int64_t offset = 0;
  std::int32_t loads = 0;
  constexpr std::size_t OFFSET_AT = 24;
  EXPECT(first->BYTES.size() >= OFFSET_AT + sizeof offset, "a set without a head was opened");
  std::memcpy(&offset, first->BYTES.data() + OFFSET_AT, sizeof offset);
  EXPECT(offset >= 0 && offset <= std::ssize(first->BYTES) - 8, "a set without a load table was opened");
  std::memcpy(&loads, first->BYTES.data() + offset + 4, sizeof loads);
  return loads;
}

void STORE_HOST::CLOSE() {
  CLOSE_MOVING_INFLUENCE();
  EXPECT(!failed(), "the store can't be closed");
  is_open_ = false;
  included_.clear();
  loads_ = 0;
}

void STORE_HOST::REMOVE_FILES(bool included) {
  const std::string base = included ? files_.INCLUDED_BASE() : files_.BASE();
  const std::int32_t characters = length(base);
  REMOVE_MOVING_INFLUENCE_FILE_PATH(&characters, base.data());
  tell("remove " + base);
  files_.NOTE_REMOVED_FILES();
  is_sound_ = false;
}

std::int32_t STORE_HOST::id_of(const T_STEP& step) const {
  const modelkit::T_MODEL& model = files_.SOUND().MODEL;
  if (is_odd(step.A)) return ODD[step.A / 16U % ODD.size()];
  switch (step.TARGET % READERS.size()) {
    case 4:
      return 9001;
    case 5:
      return 9002;
    default:
      break;
  }
  const std::array<const std::vector<T_RESPONSE>*, 10> lists{
      &model.disp,  &model.reac,    &model.lrac, &model.beams, &model.plates,
      &model.walls, &model.trusses, &model.simb, &model.elnk,  &model.nlnk};
  std::size_t list = step.TARGET % READERS.size();
  if (list == ELEMENT_READER) list += step.TARGET / READERS.size() % (lists.size() - ELEMENT_READER);
  const auto& responses = *lists[list];
  return responses.empty() ? 1 : responses[step.A % responses.size()].id;
}

void STORE_HOST::READ(const T_STEP& step) {
  constexpr std::int64_t MOST_VALUES = 1 << 20;
  const std::size_t number = step.TARGET % READERS.size();
  const T_READER& reader = READERS[number];
  T_READ read{.ID = id_of(step),
              .PART = is_odd(step.C) ? ODD[step.C / 16U % ODD.size()] : 1 + step.C % 3,
              .NCOMP = NCOMPS[step.B % NCOMPS.size()]};
  const std::int64_t load = step.C % (loads_ + 2);
  read.LOAD = step.B >= 0xF000 ? ODD[step.B % ODD.size()]
                               : static_cast<std::int32_t>(std::min<std::int64_t>(load, INT_TOP));
  const auto ncomp = static_cast<std::size_t>(std::max(read.NCOMP, 0));
  if (loads_ * static_cast<std::int64_t>(ncomp) > MOST_VALUES) return;

  // As long as a host must have them: the sanitizer knows what lies behind.
  std::vector<float> row(ncomp, UNTOUCHED);
  std::vector<float> rows(ncomp * static_cast<std::size_t>(loads_), UNTOUCHED);
  float nothing = UNTOUCHED;
  reader.ONE(read, row.empty() ? &nothing : row.data());
  const bool one_failed = failed();
  tell(std::string("row of ") + reader.NAME + ", id " + std::to_string(read.ID) + ", load " +
       std::to_string(read.LOAD) + ", part " + std::to_string(read.PART) + ", ncomp " +
       std::to_string(read.NCOMP));
  reader.ALL(read, rows.empty() ? &nothing : rows.data());
  const bool all_failed = failed();
  tell("all rows");

  EXPECT(nothing == UNTOUCHED, "a row of no values was written");
  if (!is_open_) {
    EXPECT(one_failed && all_failed, "a read without a store has no reason");
    EXPECT(all_untouched(row) && all_untouched(rows), "a read without a store has written");
    return;
  }
  if (is_sound_ && !files_.IS_EDITED()) EXPECT(!one_failed && !all_failed, "a read of sound files fails");
  // With two sets the place of a plate's stresses follows from the set that is read.
  const bool is_comparable = number != ELEMENT_READER || !has_two_sets_;
  if (one_failed || all_failed || !is_comparable || row.empty()) return;
  const bool is_stored = read.LOAD >= 1 && read.LOAD <= loads_;
  const std::vector<float> zeros(row.size(), 0.0F);
  const float* expected =
      is_stored ? rows.data() + static_cast<std::size_t>(read.LOAD - 1) * row.size() : zeros.data();
  EXPECT(std::memcmp(row.data(), expected, row.size() * sizeof row[0]) == 0,
         "a row isn't what it is among the rows of all loads");
}

void STORE_HOST::QUERY(const T_STEP& step) {
  const bool local = step.TARGET % 2 == 1;
  std::int32_t number = host::UNTOUCHED;
  local ? GET_NUM_LOCAL_REACTION(&number) : GET_NUM_REACTION(&number);
  EXPECT(is_open_ ? number >= 0 : number == 0, "the number of supports");
  std::vector<std::int32_t> ids(static_cast<std::size_t>(number));
  local ? GET_NUM_LOCAL_REACTION_IDS(ids.data()) : GET_NUM_REACTION_IDS(ids.data());
  // Of damaged files in the order of the file.
  EXPECT(!is_sound_ || std::ranges::is_sorted(ids), "supports aren't in ascending order");

  std::size_t longest = 0;  // no list is longer than its file
  for (const T_FILE_BYTES& file : files_.SOUND().FILES) longest = std::max(longest, file.BYTES.size());
  if (const T_FILE_BYTES* first = files_.FILE(files_.BASE() + "_000.BLK"); first != nullptr)
    longest = std::max(longest, first->BYTES.size());
  std::vector<std::int32_t> nodes(longest, host::UNTOUCHED);
  const std::int32_t id = step.A % 2 == 0 ? 9001 : id_of(step);
  std::int32_t count = host::UNTOUCHED;
  GET_ELEMENT_NODE_INFO(&id, &count, nodes.data());
  tell("nodes of element " + std::to_string(id) + ": " + std::to_string(count));
  EXPECT(is_open_ ? count >= 0 && count <= std::ssize(nodes) : count == host::UNTOUCHED,
         "the number of nodes");
  if (is_open_) nodes.erase(nodes.begin(), nodes.begin() + count);
  EXPECT(std::ranges::all_of(nodes, [](std::int32_t node) { return node == host::UNTOUCHED; }),
         "behind the nodes of an element");
}

void STORE_HOST::SWEEP() {
  for (std::uint8_t target = 0; target < 48; ++target)
    READ({.TARGET = target, .A = target, .B = target, .C = static_cast<std::uint16_t>(1 + target % 3)});
  QUERY({.TARGET = 0});
  QUERY({.TARGET = 1, .A = 1});
}

void STORE_HOST::RUN(const T_STEP& step) {
  constexpr std::int32_t FROM_VOLUMES = 100;
  const T_SOUND_FILES& sound = files_.SOUND();
  const bool includes = sound.HAS_INCLUDED_SET && step.NUMBER() % 16 != 15;
  const std::string included = files_.INCLUDED_BASE();
  const std::int32_t characters = length(included);
  if (includes) SET_INCLUDE_BLK_BS5400(&characters, included.data());
  const T_QUESTION question = QUESTION_OF(sound.MODEL, step);
  const auto lanes = static_cast<int>(sound.MODEL.lanes.size());
  host::ARGUMENTS got = fuzz::RUN(files_.BASE(), sound.ANALYSIS_CODE + FROM_VOLUMES, question, lanes);
  const bool left_alone = included_.empty() || included_ == included;
  // A run that comes as far as the store closes it; where it doesn't, the store stays as it was.
  CLOSE();
  if (files_.IS_EDITED() || !question.IS_OF_MODEL || !left_alone || (sound.HAS_INCLUDED_SET && !includes))
    return;
  if (got.MODE_CODE != -1) got.MODE_CODE -= FROM_VOLUMES;
  const std::string difference =
      host::DIFFERENCE(fuzz::RUN(files_.BASE(), sound.ANALYSIS_CODE, question, lanes), got);
  EXPECT(difference.empty(), "volumes give another answer than blocks: " + difference);
}

}  // namespace fuzz
