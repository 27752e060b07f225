#include "fuzz/model_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <stdexcept>

#include "modelkit/element_files.h"
#include "modelkit/example_span.h"
#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "modelkit/volume_writer.h"

namespace fuzz {
namespace {

using modelkit::T_MODEL;
using modelkit::T_RESPONSE;

constexpr std::int64_t WORD = 4;
constexpr std::size_t MOST_KEPT = 400;
constexpr std::size_t MOST_BYTES = 4U << 20U;  // of a file that edits make longer

bool has(std::uint8_t bits, int bit) {
  return (bits >> bit & 1) != 0;
}

// Choices of a model ----------------------------------------------------------------------------------------

T_MODEL random_model(const T_MODEL_CHOICE& choice, std::uint8_t most_points) {
  constexpr std::array<double, 4> LONGEST_STEPS{1.0, 5.0, 12.0, 30.0};
  const auto share = [&](int bit) { return has(choice.FEATURES, bit) ? 1.0 : 0.0; };
  std::mt19937_64 random(choice.SEED);
  return modelkit::RANDOM_MODEL(random, {.max_lanes = has(choice.FEATURES, 6) ? 4 : 2,
                                         .max_points = 3 + choice.POINTS % most_points,
                                         .max_combinations = 4,
                                         .other_sub_cases = has(choice.FEATURES, 4) ? 0.6 : 0.1,
                                         .repeated_points = share(3),
                                         .straddle_lanes = share(0),
                                         .axle_lists = share(1),
                                         .class_definitions = share(2),
                                         .warping = share(5),
                                         .responses_of_all_kinds = true,
                                         .longest_step = LONGEST_STEPS[choice.STEP % LONGEST_STEPS.size()]});
}

/// The examples that are worked out by hand, with and without a straddle lane.
T_MODEL example_model(const T_MODEL_CHOICE& choice) {
  const int points = 5 + choice.POINTS % 12;
  const modelkit::T_SPAN_LANE lane{
      .overrun = 40.0, .overrun_step = 8.0, .direction = static_cast<modelkit::DIRECTION>(choice.STEP % 3)};
  T_MODEL model = has(choice.FEATURES, 0)
                      ? modelkit::SIMPLE_SPAN_MODEL(10.0 + choice.SEED % 50, points, lane)
                      : modelkit::TWO_SPAN_MODEL(20.0, 10.0 + choice.SEED % 50, points, lane);
  std::int32_t code = has(choice.FEATURES, 1) ? 2 : 1;
  if (has(choice.FEATURES, 2)) {
    modelkit::STRADDLE_TWO_LANES(model, {0.5, 0.3, 0.7});
    model.moving_load_cases = {
        {.combinations = {{{0, 0.0}, {0, 0.0}, {3, 1.0}}, {{0, 0.0}, {0, 0.0}, {4, 1.0}}}}};
    code = 0;
  }
  if (code != 0) model.moving_load_cases = {{.combinations = {{{code, 1.0}}}}};
  return model;
}

T_MODEL model_of(const T_MODEL_CHOICE& choice, const T_FILE_NEEDS& needs) {
  constexpr int RANDOM_OF_8 = 6;
  T_MODEL model =
      choice.SOURCE % 8 < RANDOM_OF_8 ? random_model(choice, needs.POINTS) : example_model(choice);
  if (!needs.VOLUMES) return model;
  model.elements_per_file = 1000;  // numbers grow beyond the few files of a small one
  return modelkit::NUMBER_ELEMENTS_APART(std::move(model));
}

modelkit::T_FILE_FORM file_form(const T_MODEL_CHOICE& choice, const T_FILE_NEEDS& needs) {
  return {.analysis_code = choice.FORM >> 6,
          .directory_version_1 = needs.OLD_FORMAT && has(choice.FORM, 0),
          .long_vehicles = has(choice.FORM, 1),
          .short_mldi = has(choice.FORM, 2),
          .reverse_entries = has(choice.FORM, 3),
          .unused_groups = has(choice.FORM, 4) ? 1 : 0,
          .header_groups_behind = has(choice.FORM, 5)};
}

std::vector<T_RESPONSE> host_elements(std::int32_t id, int values, std::int32_t loads) {
  T_RESPONSE element{.id = id};
  for (int value = 0; value < values; ++value)
    element.values.emplace_back(static_cast<std::size_t>(loads), static_cast<float>(value + 1));
  return {element};
}

modelkit::T_VOLUME_FORM volume_form(const T_MODEL_CHOICE& choice, const T_MODEL& model) {
  modelkit::T_VOLUME_FORM form{.volumes = 1 + choice.VOLUME_FORM % 4,
                               .ids_per_block = (choice.VOLUME_FORM >> 2) % 4,
                               .lists_in_turn = has(choice.VOLUME_FORM, 4),
                               .both_codes = has(choice.VOLUME_FORM, 5),
                               .foreign_blocks = has(choice.VOLUME_FORM, 6),
                               .leave_out_zeros = has(choice.VOLUME_FORM, 7)};
  const std::array<std::int32_t, 4> included{0, 1, model.unit_loads / 2, model.unit_loads};
  form.included_loads = included[(choice.SOURCE >> 4U) % 4];
  constexpr std::int32_t FIRST_ID = 9001;  // behind those of the model
  const std::int32_t parts = 1 + choice.SEED % 3;
  form.host_elements.composite_parts = parts;
  form.host_elements.composite_bars = host_elements(FIRST_ID, 35 * parts, model.unit_loads);
  form.host_elements.virtual_bars = host_elements(FIRST_ID + 1, 5, model.unit_loads);
  form.host_elements.solids = host_elements(FIRST_ID + 2, 78, model.unit_loads);
  form.host_elements.element_nodes = {{.key = FIRST_ID, .members = {1, 2}},
                                      {.key = FIRST_ID + 2, .members = {1, 2, 3, 4, 5, 6, 7, 8}}};
  return form;
}

// The files as they were written ----------------------------------------------------------------------------

std::vector<std::byte> bytes_of(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<std::byte> bytes(std::filesystem::file_size(path));
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

class region_list {
 public:
  explicit region_list(T_SOUND_FILES& files) : files_(files) {}

  void add(const std::string& name, const std::string& path, std::int64_t offset, std::int64_t bytes,
           std::int64_t record_words) {
    const auto file = std::ranges::find(files_.FILES, path, &T_FILE_BYTES::PATH);
    if (file == files_.FILES.end() || bytes < WORD) return;
    files_.REGIONS.push_back(
        {name, static_cast<std::size_t>(file - files_.FILES.begin()), offset, bytes, record_words});
  }

  void add_blocks(const modelkit::T_FILE_LAYOUT& layout) {
    constexpr std::int64_t RECORDS = 21;  // of a header and its entries
    const std::int64_t words = files_.OLD_FORMAT ? 5 : 7;
    for (const std::int64_t offset : layout.header_offsets)
      add("directory", layout.path, offset, RECORDS * words * WORD, words);
    for (const modelkit::T_WRITTEN_BLOCK& block : layout.blocks)
      add("block " + block.tag, layout.path, block.OFFSET(1),
          WORD * (block.last - block.first + 1) * block.record_words, block.record_words);
    for (const modelkit::T_ELEMENT_FAMILY& family : modelkit::ELEMENT_FAMILIES(files_.MODEL)) {
      for (const T_FILE_BYTES& file : files_.FILES)
        if (file.PATH.starts_with(layout.path + family.letter) && file.PATH.size() == layout.path.size() + 2)
          add(std::string("element file ") + family.letter, file.PATH, 0, std::ssize(file.BYTES),
              family.head_words + family.values);
    }
  }

  void add_volumes(const std::string& set, const modelkit::T_VOLUME_LAYOUT& layout) {
    if (layout.paths.empty()) return;
    const bool has_blocks = !layout.blocks.empty() && layout.blocks.front().volume == 1;
    const std::int64_t head = has_blocks ? layout.blocks.front().offset : 48;
    add(set + " set, head and load table", layout.paths.front(), 0, head, 1);
    for (std::size_t i = 0; i < layout.blocks.size(); ++i) {
      const modelkit::T_WRITTEN_VOLUME_BLOCK& block = layout.blocks[i];
      const std::string& path = layout.paths[static_cast<std::size_t>(block.volume) - 1];
      add(set + " set, head of block " + std::to_string(i + 1), path, block.offset,
          block.data_offset - block.offset, 1);
      // A few words of its data, and the tag behind it.
      add(set + " set, data of block " + std::to_string(i + 1), path, block.data_offset,
          block.record_bytes + 2 * WORD, 1);
    }
  }

 private:
  T_SOUND_FILES& files_;
};

// Values that edits put into files --------------------------------------------------------------------------

constexpr std::int32_t INT_TOP = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t INT_BOTTOM = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t LONG_TOP = std::numeric_limits<std::int64_t>::max();
constexpr std::array INTS{
    0,      1,      -1,     2,       3,       4,       5,           6,           7,          8,
    9,      10,     12,     13,      14,      20,      25,          48,          68,         99,
    100,    101,    132,    255,     400,     401,     417,         499,         500,        501,
    999,    1000,   1001,   1217,    8101,    8401,    9600,        65535,       65536,      1 << 24,
    -2,     -4,     -100,   1 << 29, 1 << 30, INT_TOP, INT_TOP - 1, INT_TOP - 3, INT_BOTTOM, INT_BOTTOM + 1,
    140401, 142101, 414104, 412151,  540401,  312101,  30000601,    30000101,    80000007};
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr std::array DOUBLES{0.0,  1.0,   -1.0,         2.0,          -2.0,          0.5,        -0.0,
                             3.0,  7.0,   NO_NUMBER,    INFINITE,     -INFINITE,     1e10,       -1e10,
                             1e38, -1e38, 1e39,         1e300,        -1e300,        5e-324,     1e-40,
                             1e-7, 25.0,  2147483647.0, 2147483648.0, -2147483649.0, 16777217.0, 1e-30,
                             1.8,  999.0, 100.0};
constexpr std::array<std::int64_t, 12> LONGS{
    0, 1, -1, 2, 3, 20, 1LL << 31, 1LL << 32, 1LL << 40, 1LL << 61, LONG_TOP, -LONG_TOP - 1};

template <class LIST>
auto pick(const LIST& list, std::uint16_t number) {
  return list[number % list.size()];
}

enum class EDIT : std::uint8_t {
  SET_INT,
  ADD,
  SET_REAL,
  SET_FLOAT,
  SET_LONG,
  SET_NUMBER,
  FLIP_BIT,
  COPY_WORD,
  SWAP_RECORDS,
  ERASE_WORDS,
  INSERT_WORDS,
  MOVE_REGION,
  CUT,
  GROW,
  REMOVE_FILE,
  N_EDITS
};
constexpr std::array<const char*, static_cast<std::size_t>(EDIT::N_EDITS)> EDIT_NAMES{"int",
                                                                                      "add to int",
                                                                                      "double",
                                                                                      "float",
                                                                                      "int64",
                                                                                      "small int",
                                                                                      "flip bit",
                                                                                      "copy word of record",
                                                                                      "swap with record",
                                                                                      "erase words",
                                                                                      "insert words",
                                                                                      "move before region",
                                                                                      "cut file",
                                                                                      "grow file by words",
                                                                                      "remove file"};

/// One edit on the bytes of a file.
class editor {
 public:
  editor(T_FILE_BYTES& file, const T_REGION& region, const T_STEP& step)
      : bytes_(file.BYTES), region_(region), step_(step) {
    record_bytes_ = std::min(WORD * region.RECORD_WORDS, region.BYTES);
    records_ = std::max<std::int64_t>(region.BYTES / record_bytes_, 1);
    record_ = step.A % records_;
    word_ = step.B % (record_bytes_ / WORD);
    if (step.A >= T_STEP::AMONG_COUNTS) find_count();
  }

  [[nodiscard]] std::int64_t record() const { return record_; }
  [[nodiscard]] std::int64_t word() const { return word_; }
  [[nodiscard]] std::int64_t at() const { return region_.OFFSET + record() * record_bytes_ + word() * WORD; }

  template <class T>
  void put(T value) {
    if (in_file(at(), sizeof value)) std::memcpy(byte(at()), &value, sizeof value);
  }
  void add() {
    std::uint32_t value = 0;
    if (!in_file(at(), sizeof value)) return;
    std::memcpy(&value, byte(at()), sizeof value);
    put(value + static_cast<std::uint32_t>(static_cast<std::int32_t>(step_.C % 17) - 8));
  }
  void flip() {
    if (in_file(at(), WORD)) byte(at())[step_.C % 32 / 8] ^= std::byte(1U << step_.C % 8U);
  }
  void copy_word() {
    const std::int64_t from = region_.OFFSET + step_.C % records_ * record_bytes_ + word() * WORD;
    if (in_file(at(), WORD) && in_file(from, WORD)) std::memmove(byte(at()), byte(from), WORD);
  }
  void swap_records() {
    const std::int64_t one = region_.OFFSET + record() * record_bytes_;
    const std::int64_t other = region_.OFFSET + step_.C % records_ * record_bytes_;
    if (one == other || !in_file(one, record_bytes_) || !in_file(other, record_bytes_)) return;
    std::swap_ranges(byte(one), byte(one) + record_bytes_, byte(other));
  }
  void erase() {
    const std::int64_t count = WORD * (1 + step_.C % 8);
    if (in_file(at(), count)) bytes_.erase(place(at()), place(at() + count));
  }
  void insert() {
    if (in_file(at(), 0)) bytes_.insert(place(at()), static_cast<std::size_t>(WORD * (1 + step_.C % 8)), {});
  }
  void move_before(std::int64_t target) {
    if (!in_file(region_.OFFSET, region_.BYTES) || !in_file(target, 0)) return;
    const auto begin = place(region_.OFFSET);
    const auto end = place(region_.OFFSET + region_.BYTES);
    if (target <= region_.OFFSET)
      std::rotate(place(target), begin, end);
    else if (target >= region_.OFFSET + region_.BYTES)
      std::rotate(begin, end, place(target));
  }
  void cut() {
    if (in_file(at(), 0)) bytes_.resize(static_cast<std::size_t>(at() + step_.C % 5));
  }
  void grow() { bytes_.resize(std::min(bytes_.size() + std::size_t{step_.C} % 2000 * 4, MOST_BYTES)); }

 private:
  /// Goes to one of the words that look like a count or a number of something; the others are mostly values.
  void find_count() {
    constexpr std::int32_t MOST = 9999;
    std::vector<std::int64_t> words;
    for (std::int64_t word = 0; word < region_.BYTES / WORD; ++word) {
      std::int32_t value = 0;
      if (!in_file(region_.OFFSET + word * WORD, WORD)) break;
      std::memcpy(&value, byte(region_.OFFSET + word * WORD), WORD);
      if (value >= 1 && value <= MOST) words.push_back(word);
    }
    if (words.empty()) return;
    const std::int64_t found = words[step_.B % words.size()];
    record_ = found / (record_bytes_ / WORD);
    word_ = found % (record_bytes_ / WORD);
  }
  [[nodiscard]] bool in_file(std::int64_t offset, std::int64_t count) const {
    return offset + count <= std::ssize(bytes_) && bytes_.size() < MOST_BYTES;
  }
  std::byte* byte(std::int64_t offset) { return bytes_.data() + offset; }
  std::vector<std::byte>::iterator place(std::int64_t offset) {
    return bytes_.begin() + static_cast<std::ptrdiff_t>(offset);
  }

  std::vector<std::byte>& bytes_;
  const T_REGION& region_;
  const T_STEP& step_;
  std::int64_t record_bytes_ = WORD;
  std::int64_t records_ = 1;
  std::int64_t record_ = 0;
  std::int64_t word_ = 0;
};

void tell(const T_REGION& region, const editor& edit, const char* name, std::uint16_t value) {
  std::fprintf(stderr, "edit   %s, record %lld, word %lld (byte %lld): %s, number %u\n", region.NAME.c_str(),
               static_cast<long long>(edit.record() + 1), static_cast<long long>(edit.word()),
               static_cast<long long>(edit.at()), name, unsigned{value});
}

}  // namespace

MODEL_FILES::MODEL_FILES(const T_FILE_NEEDS& needs) : needs_(needs) {
  std::string name = (std::filesystem::temp_directory_path() / "movload_fuzz_XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("can't make " + name);
  folder_ = name;
}

MODEL_FILES::~MODEL_FILES() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void MODEL_FILES::empty_folder() const {
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) std::filesystem::remove(entry);
}

std::shared_ptr<const T_SOUND_FILES> MODEL_FILES::make(const T_MODEL_CHOICE& choice) {
  auto files = std::make_shared<T_SOUND_FILES>();
  files->MODEL = model_of(choice, needs_);
  const modelkit::T_FILE_FORM form = file_form(choice, needs_);
  files->ANALYSIS_CODE = form.analysis_code;
  files->OLD_FORMAT = form.directory_version_1;
  modelkit::T_FILE_LAYOUT blocks;
  modelkit::T_VOLUME_LAYOUTS volumes;
  if (needs_.BLOCKS) blocks = modelkit::WRITE_MODEL(files->MODEL, BASE(), form);
  if (needs_.VOLUMES)
    volumes =
        modelkit::WRITE_VOLUMES(files->MODEL, BASE(), volume_form(choice, files->MODEL), INCLUDED_BASE());
  files->HAS_INCLUDED_SET = !volumes.included.paths.empty();

  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder_))
    paths.push_back(entry.path().string());
  std::ranges::sort(paths);  // a folder has no order of its own
  for (const std::string& path : paths) files->FILES.push_back({path, bytes_of(path)});
  region_list regions(*files);
  if (needs_.BLOCKS) regions.add_blocks(blocks);
  regions.add_volumes("primary", volumes.primary);
  regions.add_volumes("included", volumes.included);
  return files;
}

void MODEL_FILES::BEGIN(const T_MODEL_CHOICE& choice) {
  edited_ = false;
  const auto kept = std::ranges::find_if(
      kept_, [&](const auto& other) { return std::memcmp(&other.first, &choice, sizeof choice) == 0; });
  if (kept != kept_.end() && kept->second == sound_) {
    for (std::size_t file = 0; file < now_.size(); ++file) {
      if (differs_[file] == 0) continue;
      now_[file] = sound_->FILES[file];
      differs_[file] = 0;
      is_written_[file] = 0;
    }
  } else {
    empty_folder();
    const bool is_new = kept == kept_.end();  // and then written already
    sound_ = is_new ? make(choice) : kept->second;
    if (is_new && kept_.size() < MOST_KEPT)
      kept_.emplace_back(choice, sound_);
    else if (is_new)
      kept_[next_to_drop_++ % MOST_KEPT] = {choice, sound_};
    now_ = sound_->FILES;
    differs_.assign(now_.size(), 0);
    is_written_.assign(now_.size(), is_new ? 1 : 0);
  }
  WRITE();
}

void MODEL_FILES::EDIT(const T_STEP& step) {
  const std::vector<T_REGION>& regions = sound_->REGIONS;
  if (regions.empty()) return;
  const T_REGION& region = regions[step.TARGET % regions.size()];
  T_FILE_BYTES& file = now_[region.FILE];
  if (!file.EXISTS) return;
  edited_ = true;
  differs_[region.FILE] = 1;
  is_written_[region.FILE] = 0;
  editor edit(file, region, step);
  const auto kind = static_cast<fuzz::EDIT>(step.NUMBER() % EDIT_NAMES.size());
  if (TELLS()) tell(region, edit, EDIT_NAMES[static_cast<std::size_t>(kind)], step.C);
  switch (kind) {
    case EDIT::SET_INT:
      return edit.put(pick(INTS, step.C));
    case EDIT::ADD:
      return edit.add();
    case EDIT::SET_REAL:
      return edit.put(pick(DOUBLES, step.C));
    case EDIT::SET_FLOAT:
      return edit.put(static_cast<float>(pick(DOUBLES, step.C)));
    case EDIT::SET_LONG:
      return edit.put(pick(LONGS, step.C));
    case EDIT::SET_NUMBER:
      return edit.put(static_cast<std::int32_t>(static_cast<std::int16_t>(step.C)));
    case EDIT::FLIP_BIT:
      return edit.flip();
    case EDIT::COPY_WORD:
      return edit.copy_word();
    case EDIT::SWAP_RECORDS:
      return edit.swap_records();
    case EDIT::ERASE_WORDS:
      return edit.erase();
    case EDIT::INSERT_WORDS:
      return edit.insert();
    case EDIT::MOVE_REGION: {
      const T_REGION& target = regions[step.C % regions.size()];
      if (target.FILE == region.FILE) edit.move_before(target.OFFSET);
      return;
    }
    case EDIT::CUT:
      return edit.cut();
    case EDIT::GROW:
      return edit.grow();
    case EDIT::REMOVE_FILE:
    case EDIT::N_EDITS:
      file.EXISTS = false;
  }
}

void MODEL_FILES::WRITE() {
  for (std::size_t file = 0; file < now_.size(); ++file)
    if (is_written_[file] == 0) write(file);
}

void MODEL_FILES::write(std::size_t file) {
  const T_FILE_BYTES& bytes = now_[file];
  is_written_[file] = 1;
  if (!bytes.EXISTS) {
    std::filesystem::remove(bytes.PATH);
    return;
  }
  const int descriptor = ::open(bytes.PATH.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  const auto size = static_cast<ssize_t>(bytes.BYTES.size());
  const bool is_good = descriptor >= 0 && ::ftruncate(descriptor, size) == 0 &&
                       ::pwrite(descriptor, bytes.BYTES.data(), bytes.BYTES.size(), 0) == size;
  if (descriptor >= 0) ::close(descriptor);
  if (!is_good) throw std::runtime_error("can't write " + bytes.PATH);
}

const T_FILE_BYTES* MODEL_FILES::FILE(const std::string& path) const {
  const auto file = std::ranges::find(now_, path, &T_FILE_BYTES::PATH);
  return file == now_.end() || !file->EXISTS ? nullptr : &*file;
}

void MODEL_FILES::NOTE_REMOVED_FILES() {
  for (std::size_t file = 0; file < now_.size(); ++file) {
    if (std::filesystem::exists(now_[file].PATH)) continue;
    now_[file].EXISTS = false;
    differs_[file] = 1;
    edited_ = true;
  }
}

bool TELLS() {
  static const bool tells = std::getenv("MOVLOAD_FUZZ_TELL") != nullptr;
  return tells;
}

}  // namespace fuzz
