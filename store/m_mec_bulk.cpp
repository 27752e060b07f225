#include "store/m_mec_bulk.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <span>

namespace store {
namespace {

static_assert(std::endian::native == std::endian::little, "the files are little-endian and read as they lie");

constexpr std::int64_t WORD_BYTES = 4;
constexpr std::int64_t MOST_RECORD_BYTES = std::numeric_limits<std::int32_t>::max();

STATUS cut_at(std::int64_t offset) {
  return STATUS::FAILED(REASON::VOLUME_CUT).IN_VOLUME(offset);
}

/// The stream of one volume. Whatever the file claims, a count is held against the bytes that are left before
/// anything is sized by it.
class BLOCK_STREAM {
 public:
  explicit BLOCK_STREAM(T_FILE& file) : file_(file) {}

  [[nodiscard]] std::int64_t OFFSET() const noexcept { return file_.TELL(); }

  STATUS WORD(std::int32_t& word) { return file_.READ(&word, WORD_BYTES) ? STATUS{} : cut_at(file_.TELL()); }

  /// A count of what follows, so many bytes each.
  STATUS COUNT(const char* item, std::int64_t bytes_each, std::int32_t& count) {
    const std::int64_t offset = file_.TELL();
    if (STATUS status = WORD(count); !status.OK()) return status;
    return CHECK_BOUNDS(item, count, 0, (file_.SIZE() - file_.TELL()) / bytes_each).IN_VOLUME(offset);
  }

  /// `words` only grows.
  STATUS WORDS(std::int32_t count, std::vector<std::int32_t>& words) {
    constexpr std::int32_t AT_ONCE = 32 * 1024;
    if (words.size() < static_cast<std::size_t>(count)) words.resize(static_cast<std::size_t>(count));
    for (std::int32_t done = 0; done < count; done += AT_ONCE) {
      const std::int64_t bytes = WORD_BYTES * std::min(AT_ONCE, count - done);
      if (!file_.READ(words.data() + done, static_cast<std::int32_t>(bytes))) return cut_at(file_.TELL());
    }
    return {};
  }

  STATUS SKIP(std::int64_t bytes) {
    const std::int64_t offset = file_.TELL();
    if (bytes < 0 || bytes > file_.SIZE() - offset) return cut_at(offset);
    file_.SEEK(offset, bytes);
    return {};
  }

 private:
  T_FILE& file_;
};

/// Head of a block of node or element results, behind its IDs.
struct T_BLOCK_HEAD {
  std::int32_t N_ITEMS = 0;
  std::int32_t RESULT_CODE = 0;
  std::int32_t POINTS = 0;
};

// What a RESULT_CODE C says of an element block: C / 10000 is its group, (C mod 10000) / 100 its section.
// Composite and virtual bars are told by the top digit and have groups and sections of their own.
enum GROUP : std::int32_t { COMPOSITE_BAR = -3, VIRTUAL_BAR = -8 };
constexpr std::int32_t FORCE = 4;
constexpr std::int32_t STRESS = 21;
enum class ITEMS_OF : std::uint8_t { ANY, ONE_GROUP, SEVERAL_GROUPS };

/// A row of the table of element blocks.
struct T_ELEMENT_BLOCK {
  std::int32_t SECTION;
  std::int32_t GROUP;
  LIST TARGET;
  ITEMS_OF ITEMS = ITEMS_OF::ANY;
  std::int32_t CODE = 0;  // 0: any code of the group and section
};

constexpr std::array<T_ELEMENT_BLOCK, 19> ELEMENT_BLOCKS{{
    {FORCE, 14, LIST::N_288, ITEMS_OF::SEVERAL_GROUPS},
    {FORCE, 14, LIST::N_544, ITEMS_OF::ONE_GROUP},
    {FORCE, 52, LIST::N_1056},
    {FORCE, 54, LIST::N_1056},
    {FORCE, COMPOSITE_BAR, LIST::N_2080},
    {FORCE, 41, LIST::N_4128},
    {FORCE, 42, LIST::N_4128},
    {91, 31, LIST::N_8224, ITEMS_OF::ANY, 319101},
    {FORCE, 13, LIST::N_16416},
    {FORCE, 12, LIST::N_32800},
    {FORCE, 19, LIST::N_65568},
    {STRESS, 14, LIST::N_384, ITEMS_OF::SEVERAL_GROUPS},
    {STRESS, 14, LIST::N_640, ITEMS_OF::ONE_GROUP},
    {STRESS, COMPOSITE_BAR, LIST::N_2176},
    {STRESS, 41, LIST::N_4224, ITEMS_OF::ANY, 412151},
    {STRESS, 31, LIST::N_8320, ITEMS_OF::ANY, 312101},
    {STRESS, VIRTUAL_BAR, LIST::N_1152},
    {STRESS, 13, LIST::N_16512},
    {STRESS, 19, LIST::N_65664},
}};

struct T_NODE_BLOCK {
  std::int32_t CODE;
  LIST TARGET;
};
constexpr std::array<T_NODE_BLOCK, 4> NODE_BLOCKS{
    {{101, LIST::DISP}, {8101, LIST::LDISP}, {401, LIST::REAC}, {8401, LIST::LREAC}}};

constexpr std::int32_t TOP_DIGIT = 10000000;
constexpr std::int32_t COMPOSITE_DIGIT = 3;
constexpr std::int32_t VIRTUAL_DIGIT = 8;

bool is_composite(std::int32_t code) {
  return code / TOP_DIGIT == COMPOSITE_DIGIT;
}
bool is_virtual(std::int32_t code) {
  return code / TOP_DIGIT == VIRTUAL_DIGIT;
}

/// The list that wants an element block; false where none does.
bool find_element_list(std::int32_t code, std::span<const std::int32_t> item_codes, LIST& list) {
  std::int32_t group = code / 10000;
  std::int32_t section = code % 10000 / 100;
  if (is_composite(code)) {
    const std::int32_t hundreds = code / 100 % 10;
    group = COMPOSITE_BAR;
    section = hundreds == 1 ? STRESS : hundreds == 6 ? FORCE : 0;
  } else if (is_virtual(code)) {
    group = VIRTUAL_BAR;
    section = code % 10 == 7 ? STRESS : 0;
  }
  const bool one_group = std::all_of(item_codes.begin(), item_codes.end(),
                                     [group](std::int32_t item) { return item / 10000 == group; });
  const ITEMS_OF items = one_group ? ITEMS_OF::ONE_GROUP : ITEMS_OF::SEVERAL_GROUPS;
  for (const T_ELEMENT_BLOCK& row : ELEMENT_BLOCKS) {
    const bool fits = row.SECTION == section && row.GROUP == group && (row.CODE == 0 || row.CODE == code) &&
                      (row.ITEMS == ITEMS_OF::ANY || row.ITEMS == items);
    if (!fits) continue;
    list = row.TARGET;
    return true;
  }
  return false;
}

bool find_node_list(std::int32_t code, LIST& list) {
  for (const T_NODE_BLOCK& row : NODE_BLOCKS) {
    if (row.CODE != code) continue;
    list = row.TARGET;
    return true;
  }
  return false;
}

/// The greatest number that the item codes of a composite or virtual bar carry.
std::int32_t greatest_in_codes(std::span<const std::int32_t> item_codes, std::int32_t unit) {
  std::int32_t greatest = 0;
  for (const std::int32_t code : item_codes) greatest = std::max(greatest, code % TOP_DIGIT / unit);
  return greatest;
}

/// Reads the streams of a set's volumes into its lists.
class LOADER {
 public:
  LOADER(T_MEC& set, T_GROUP_TABLE* element_nodes) : set_(set), element_nodes_(element_nodes) {}

  /// From the position of the file to the end of its stream.
  STATUS READ_STREAM(T_FILE& file, std::int32_t volume) {
    BLOCK_STREAM stream(file);
    while (true) {
      std::int32_t tag = 0;
      if (STATUS status = stream.WORD(tag); !status.OK()) return status;
      if (tag == END_OF_STREAM) return {};
      if (STATUS status = read_block(stream, tag, volume); !status.OK()) return status;
    }
  }

 private:
  enum STREAM_TAG : std::int32_t { END_OF_STREAM = -1, NODES = 1, ELEMENTS = 2, GROUPS = 12, WORDS = 13 };

  STATUS read_block(BLOCK_STREAM& stream, std::int32_t tag, std::int32_t volume) {
    std::int32_t count = 0;
    switch (tag) {
      case GROUPS: {
        STATUS status = read_groups(stream, element_nodes_);
        return status.OK() ? read_groups(stream, nullptr) : status;
      }
      case NODES:
      case ELEMENTS: {
        STATUS status = stream.COUNT("N_IDS", WORD_BYTES, count);
        if (status.OK()) status = stream.WORDS(count, ids_);
        return status.OK() ? read_results(stream, tag, {ids_.data(), static_cast<std::size_t>(count)}, volume)
                           : status;
      }
      default: {
        STATUS status = stream.COUNT(tag == WORDS ? "N" : "N_IDS", WORD_BYTES, count);
        return status.OK() ? stream.SKIP(WORD_BYTES * count) : status;
      }
    }
  }

  /// `table` is null where nobody wants the groups.
  STATUS read_groups(BLOCK_STREAM& stream, T_GROUP_TABLE* table) {
    std::int32_t groups = 0;
    if (STATUS status = stream.COUNT("number of groups", 2 * WORD_BYTES, groups); !status.OK()) return status;
    for (std::int32_t group = 0; group < groups; ++group) {
      std::int32_t key = 0;
      std::int32_t count = 0;
      STATUS status = stream.WORD(key);
      if (status.OK()) status = stream.COUNT("number of members", WORD_BYTES, count);
      if (status.OK() && table == nullptr) status = stream.SKIP(WORD_BYTES * count);
      if (!status.OK()) return status;
      if (table == nullptr) continue;
      if (status = stream.WORDS(count, ids_); !status.OK()) return status;
      table->ADD_GROUP(key);
      table->ADD_MEMBERS({ids_.data(), static_cast<std::size_t>(count)});
    }
    return {};
  }

  STATUS read_results(BLOCK_STREAM& stream, std::int32_t tag, std::span<const std::int32_t> ids,
                      std::int32_t volume) {
    const std::int64_t offset = stream.OFFSET();
    T_BLOCK_HEAD head;
    if (STATUS status = read_head(stream, head); !status.OK()) return status;
    const std::span<const std::int32_t> codes(item_codes_.data(), static_cast<std::size_t>(head.N_ITEMS));

    T_NODE node{0, volume, 0, 1, head.N_ITEMS};
    LIST list{};
    bool is_wanted = false;
    if (tag == NODES) {
      is_wanted = find_node_list(head.RESULT_CODE, list);
    } else {
      is_wanted = find_element_list(head.RESULT_CODE, codes, list);
      if (STATUS status = take_bars(head, codes, node); !status.OK()) return status.IN_VOLUME(offset);
    }
    // Held against the greatest record that the format knows, so that nothing below leaves 64 bits.
    const std::int64_t room =
        MOST_RECORD_BYTES / WORD_BYTES / std::max(set_.N_LOADS, 1) / std::max(node.ITEMS, 1);
    STATUS status = CHECK_BOUNDS("values per item", node.VALUES_PER_ITEM, 0, room);
    if (!status.OK()) return status.IN_VOLUME(offset);
    const std::int64_t record_bytes = WORD_BYTES * set_.N_LOADS * node.COMPONENTS();
    const auto n_ids = static_cast<std::int64_t>(ids.size());
    return is_wanted ? index(stream, ids, record_bytes, node, set_.NODES(list))
                     : stream.SKIP(n_ids * record_bytes);
  }

  STATUS read_head(BLOCK_STREAM& stream, T_BLOCK_HEAD& head) {
    constexpr std::int64_t DESCRIPTION_BEFORE_POINTS = 13 * WORD_BYTES;
    constexpr std::int64_t UNREAD_BEHIND_POINTS = 88;
    STATUS status = stream.SKIP(WORD_BYTES);
    if (status.OK()) status = stream.COUNT("N_ITEMS", WORD_BYTES, head.N_ITEMS);
    if (status.OK()) status = stream.WORDS(head.N_ITEMS, item_codes_);
    if (status.OK()) status = stream.SKIP(WORD_BYTES);
    if (status.OK()) status = stream.WORD(head.RESULT_CODE);
    if (status.OK()) status = stream.SKIP(DESCRIPTION_BEFORE_POINTS);
    if (status.OK()) status = stream.WORD(head.POINTS);
    if (status.OK()) status = stream.SKIP(UNREAD_BEHIND_POINTS);
    return status;
  }

  /// The shape of an element's record. The parts of composite bars and the mark of virtual ones come from the
  /// first block of their kind, wanted or not, and stand for all of the set.
  STATUS take_bars(const T_BLOCK_HEAD& head, std::span<const std::int32_t> codes, T_NODE& node) {
    node.VALUES_PER_ITEM = head.POINTS;
    if (is_virtual(head.RESULT_CODE) && set_.VIRTUAL_BAR_MARK == 0) {
      set_.VIRTUAL_BAR_MARK = greatest_in_codes(codes, 10);
    }
    if (is_composite(head.RESULT_CODE)) {
      if (set_.N_COMPOSITE_PARTS == 0) set_.N_COMPOSITE_PARTS = greatest_in_codes(codes, 1000);
      const std::int32_t parts = set_.N_COMPOSITE_PARTS;
      if (parts == 0) return STATUS::FAILED(REASON::NO_COMPOSITE_PARTS);
      node.ITEMS = head.N_ITEMS / parts;
      STATUS status =
          CHECK_BOUNDS("POINTS", head.POINTS, 0, std::numeric_limits<std::int32_t>::max() / parts);
      if (!status.OK()) return status;
      node.VALUES_PER_ITEM = parts * head.POINTS;
    }
    return {};
  }

  static STATUS index(BLOCK_STREAM& stream, std::span<const std::int32_t> ids, std::int64_t record_bytes,
                      T_NODE node, T_LIST& list) {
    node.DATA_OFFSET = stream.OFFSET();
    // Before the list grows, so that it follows what the file holds.
    STATUS status = stream.SKIP(static_cast<std::int64_t>(ids.size()) * record_bytes);
    if (!status.OK()) return status;
    const std::size_t wanted = list.size() + ids.size();
    if (wanted > list.capacity()) list.reserve(std::max(wanted, list.size() + list.size() / 2));
    for (const std::int32_t id : ids) {
      node.ID = id;
      list.push_back(node);
      node.DATA_OFFSET += record_bytes;
    }
    return {};
  }

  T_MEC& set_;
  T_GROUP_TABLE* element_nodes_;
  std::vector<std::int32_t> ids_;
  std::vector<std::int32_t> item_codes_;
};

/// Reads the head of an open first volume, as far as the file has it; what it lacks stays 0.
STATUS read_volume_head(T_FILE& file, T_VOLUME_HEAD& head) {
  if (!file.READ(&head.HEADER_WORD, sizeof head.HEADER_WORD)) return cut_at(0);
  if (head.HEADER_WORD < 1) return STATUS::FAILED(REASON::NO_INFLUENCE_DATA, head.HEADER_WORD).IN_VOLUME(0);
  file.SEEK(8, 0);
  if (!file.READ(&head.N_VOLUMES, sizeof head.N_VOLUMES)) return cut_at(8);
  return {};
}

}  // namespace

std::string VOLUME_NAME(std::string_view base_path, std::int32_t volume) {
  constexpr std::size_t MOST_CHARACTERS = 1016;
  if (base_path.size() > MOST_CHARACTERS || base_path.find('\0') != std::string_view::npos) return {};
  const std::string digits = std::to_string(volume - 1);
  return std::string(base_path) + '_' + std::string(3 - std::min<std::size_t>(digits.size(), 3), '0') +
         digits + ".BLK";
}

STATUS T_MEC::LOAD(std::string_view base_path, T_GROUP_TABLE* element_nodes) {
  CLOSE();
  faulty_volume_ = VOLUME_NAME(base_path, 1);
  STATUS status = load(base_path, element_nodes);
  if (status.OK()) faulty_volume_.clear();
  return status;
}

STATUS T_MEC::open_volumes(std::string_view base_path, T_VOLUME_HEAD& head) {
  const STATUS not_opened = STATUS::FAILED(REASON::FILE_NOT_OPENED).IN_VOLUME(0);
  if (faulty_volume_.empty()) {
    return STATUS::FAILED(REASON::BAD_PATH_LENGTH, static_cast<std::int64_t>(base_path.size()));
  }
  {
    T_FILE first;
    if (!first.OPEN(faulty_volume_)) return not_opened;
    if (STATUS status = read_volume_head(first, head); !status.OK()) return status;
    if (STATUS status = CHECK_BOUNDS("N_VOLUMES", head.N_VOLUMES, 1, MOST_VOLUMES); !status.OK()) {
      return status.IN_VOLUME(8);
    }
    first.SEEK(24, 0);
    if (!first.READ(&head.LOAD_TABLE_OFFSET, sizeof head.LOAD_TABLE_OFFSET)) return cut_at(24);
  }
  volumes_ = std::vector<T_FILE>(static_cast<std::size_t>(head.N_VOLUMES));
  std::int32_t volume = 0;
  for (T_FILE& file : volumes_) {
    faulty_volume_ = VOLUME_NAME(base_path, ++volume);
    if (!file.OPEN(faulty_volume_)) return not_opened;
  }
  return {};
}

STATUS T_MEC::load(std::string_view base_path, T_GROUP_TABLE* element_nodes) {
  T_VOLUME_HEAD head;
  if (STATUS status = open_volumes(base_path, head); !status.OK()) return status;

  faulty_volume_ = volumes_.front().NAME();
  const std::int64_t table = head.LOAD_TABLE_OFFSET;
  STATUS status = CHECK_BOUNDS("LOAD_TABLE_OFFSET", table, 0, volumes_.front().SIZE() - WORD_BYTES);
  if (!status.OK()) return status.IN_VOLUME(24);
  volumes_.front().SEEK(table, WORD_BYTES);
  BLOCK_STREAM stream(volumes_.front());
  if (status = stream.COUNT("N_LOADS", WORD_BYTES, N_LOADS); !status.OK()) return status;
  if (status = stream.SKIP(WORD_BYTES * N_LOADS); !status.OK()) return status;

  LOADER loader(*this, element_nodes);
  std::int32_t volume = 0;
  for (T_FILE& file : volumes_) {
    faulty_volume_ = file.NAME();
    status = loader.READ_STREAM(file, ++volume);
    file.RELEASE_VIEW();
    if (!status.OK()) return status;
  }
  for (T_LIST& list : lists_) {
    if (list.capacity() > list.size() + list.size() / 8) list.shrink_to_fit();
  }
  return {};
}

void T_MEC::CLOSE() noexcept {
  *this = {};
}

STATUS T_MEC::REACH_RECORD(const T_NODE& node) noexcept {
  if (active_volume_ != node.VOLUME && active_volume_ != 0) {
    VOLUME(node).TAKE_OVER_VIEW(volumes_[static_cast<std::size_t>(active_volume_ - 1)]);
  }
  active_volume_ = node.VOLUME;
  const std::int64_t end = node.DATA_OFFSET + WORD_BYTES * N_LOADS * node.COMPONENTS();
  return end <= VOLUME(node).SIZE_NOW() ? STATUS{} : cut_at(node.DATA_OFFSET);
}

void REMOVE_VOLUMES(std::string_view base_path) {
  T_FILE file;
  if (!file.OPEN(VOLUME_NAME(base_path, 1))) return;
  T_VOLUME_HEAD head;
  if (!read_volume_head(file, head).OK()) return;
  file.CLOSE(DISPOSITION::DELETE_FILE);
  for (std::int32_t volume = 2; volume <= std::min(head.N_VOLUMES, MOST_VOLUMES); ++volume) {
    if (file.OPEN(VOLUME_NAME(base_path, volume))) file.CLOSE(DISPOSITION::DELETE_FILE);
  }
}

}  // namespace store
