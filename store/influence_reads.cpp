#include "store/influence_reads.h"

#include <algorithm>
#include <array>
#include <span>

#include "store/transposition.h"

namespace store {
namespace {

constexpr std::int64_t WORD_BYTES = 4;
/// So many bytes between two that are wanted cost less than another call to the system.
constexpr std::int64_t READ_ALONG = 16 * 1024;

enum class ARRANGED : std::uint8_t {
  IN_ORDER,       // point by point
  INTERLEAVED,    // points 2 and 3, 4 and 5 and so on value by value, the later point first
  FIVE_STATIONS,  // points 1, 2, 4, 6 and the last
};

struct T_ITEM_RUN {
  std::int32_t FIRST = 0;
  std::int32_t COUNT = 0;
};

constexpr std::int32_t ALL_ITEMS = 0;     // in place of the items of a point
constexpr std::int32_t BEHIND_FORCE = 0;  // in place of a first position
constexpr std::int32_t NO_LIMIT = 0;
constexpr std::int32_t ITS_OWN = -1;  // in place of the row that is needed: one that holds all of the piece

/// A stretch of a row that comes out of one list.
struct T_PIECE {
  READ KIND;
  std::int32_t FAMILY;  // of an element; else 0
  LIST SOURCE;
  ARRANGED ARRANGEMENT;
  std::int32_t FIRST_POSITION;
  std::int32_t LAST_POSITION;  // as far as the layout goes
  std::int32_t PER_POINT;      // positions of a point
  std::array<T_ITEM_RUN, 2> ITEMS;
  std::int32_t NCOMP_NEEDED = NO_LIMIT;  // a shorter row does without the piece
  std::int32_t FIRST_POINT = 1;
};

// clang-format off
constexpr auto DIRECT = ARRANGED::IN_ORDER;
constexpr auto PAIRS = ARRANGED::INTERLEAVED;
constexpr auto STATIONS = ARRANGED::FIVE_STATIONS;

constexpr std::array<T_PIECE, 20> PIECES{{
    {READ::DISP,          0,       LIST::DISP,    DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::LDISP,         0,       LIST::LDISP,   DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::REAC,          0,       LIST::REAC,    DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::LREAC,         0,       LIST::LREAC,   DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::VIRTUAL_BAR,   0,       LIST::N_1152,  DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::COMPOSITE_BAR, 0,       LIST::N_2080,  STATIONS, 1,  15,       3,         {{{1, 3}}}},
    {READ::COMPOSITE_BAR, 0,       LIST::N_2176,  STATIONS, 16, 35,       4,         {{{2, 4}}}},
    {READ::ELEMENT,       0x100,   LIST::N_288,   PAIRS,    1,  48,       6,         {{{1, 6}}}},
    {READ::ELEMENT,       0x100,   LIST::N_288,   PAIRS,    49, 72,       3,         {{{7, 3}}}},
    {READ::ELEMENT,       0x100,   LIST::N_384,   STATIONS, 73, 132,     12, {{{5, 4}, {12, 8}}}, 132},
    {READ::ELEMENT,       0x200,   LIST::N_544,   PAIRS,    1,  48,       ALL_ITEMS, {}},
    {READ::ELEMENT,       0x200,   LIST::N_640,   STATIONS, 49, 68,       4,         {{{4, 4}}}, 68},
    {READ::ELEMENT,       0x400,   LIST::N_1056,  DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::ELEMENT,       0x1000,  LIST::N_4128,  DIRECT,   1,  40,       8,         {{{1, 8}}}},
    {READ::ELEMENT,       0x1000,  LIST::N_4224,  DIRECT,   BEHIND_FORCE, 70, 6, {{{5, 3}, {1, 3}}}, ITS_OWN},
    {READ::ELEMENT,       0x2000,  LIST::N_8224,  DIRECT,   1,  24,       3,         {{{1, 3}}}, NO_LIMIT, 2},
    {READ::ELEMENT,       0x2000,  LIST::N_8320,  DIRECT,   25, 78,       6,         {{{1, 6}}}, 78},
    {READ::ELEMENT,       0x4000,  LIST::N_16416, DIRECT,   1,  NO_LIMIT, 1,         {{{1, 1}}}},
    {READ::ELEMENT,       0x8000,  LIST::N_32800, DIRECT,   1,  NO_LIMIT, ALL_ITEMS, {}},
    {READ::ELEMENT,       0x10000, LIST::N_65568, DIRECT,   1,  NO_LIMIT, 1,         {{{1, 1}}}},
}};
// clang-format on
static_assert(std::all_of(PIECES.begin(), PIECES.end(),
                          [](const T_PIECE& piece) { return piece.LAST_POSITION <= LONGEST_FIXED_ROW; }));

/// The pieces that come out of one record, and the record's row in its list.
struct T_PART {
  LIST SOURCE{};
  std::int32_t ROW = 0;  // 0: the ID isn't there
  std::span<const T_PIECE> PIECES;
};
using T_PARTS = std::array<T_PART, 2>;

/// The parts of what is asked for; none for an ID that isn't stored, and for an element of no family or of
/// two.
T_PARTS find_parts(const INFLUENCE_STORE& store, const T_READ& read) {
  constexpr std::int32_t FAMILY_BITS = 0x1F700;
  T_PARTS parts;
  if (read.KIND == READ::VIRTUAL_BAR && store.PRIMARY().VIRTUAL_BAR_MARK <= 0) return parts;
  if (read.KIND == READ::COMPOSITE_BAR && (read.PART < 1 || read.PART > store.PRIMARY().N_COMPOSITE_PARTS)) {
    return parts;
  }
  const std::int32_t family =
      read.KIND == READ::ELEMENT ? store.MAPS().ELEMENT_FLAGS(read.ID) & FAMILY_BITS : 0;
  std::size_t n_parts = 0;
  for (const T_PIECE& piece : PIECES) {
    if (piece.KIND != read.KIND || piece.FAMILY != family) continue;
    if (n_parts == 0 || parts[n_parts - 1].SOURCE != piece.SOURCE) {
      parts[n_parts++] = {piece.SOURCE, store.MAPS().FIND_ROW(piece.SOURCE, read.ID), {&piece, 1}};
    } else {
      T_PART& part = parts[n_parts - 1];
      part.PIECES = {part.PIECES.data(), part.PIECES.size() + 1};
    }
  }
  return parts;
}

/// Which component of a record stands at which position of a row. The positions are those that are asked for,
/// numbered from 0; the components are numbered as the record has them, from 0.
class T_ROW_MAP {
 public:
  static constexpr std::int32_t NONE = -1;

  T_ROW_MAP(T_READ_SPACE& space, const T_READ& read) : space_(&space), read_(&read) {}

  [[nodiscard]] bool ENDS_BEFORE(std::int64_t position) const {
    return position - read_->FIRST_POSITION >= read_->POSITIONS;
  }

  void PLACE(std::int64_t position, std::int32_t component) {
    const std::int64_t at = position - read_->FIRST_POSITION;
    if (at < 0 || ENDS_BEFORE(position)) return;
    while (end_ <= at) space_->POSITIONS[static_cast<std::size_t>(end_++)] = NONE;
    space_->POSITIONS[static_cast<std::size_t>(at)] = component;
  }

  /// Whether a component stands at a position, from 0.
  [[nodiscard]] bool HAS(std::int32_t at) const {
    return at < end_ && space_->POSITIONS[static_cast<std::size_t>(at)] != NONE;
  }
  [[nodiscard]] bool IS_EMPTY() const { return end_ == 0; }
  /// By position, up to the last one that has a component.
  [[nodiscard]] std::span<const std::int32_t> SOURCES() const {
    return {space_->POSITIONS.data(), static_cast<std::size_t>(end_)};
  }
  /// By component of a record, whether it stands anywhere.
  [[nodiscard]] std::span<const std::uint8_t> USED(const T_NODE& node) const {
    const auto components = static_cast<std::size_t>(node.COMPONENTS());
    std::fill_n(space_->COMPONENTS.begin(), components, std::uint8_t{0});
    for (const std::int32_t source : SOURCES()) {
      if (source != NONE) space_->COMPONENTS[static_cast<std::size_t>(source)] = 1;
    }
    return {space_->COMPONENTS.data(), components};
  }

 private:
  T_READ_SPACE* space_;
  const T_READ* read_;
  std::int32_t end_ = 0;
};

/// A stretch of the points of a record.
struct T_POINTS {
  std::int32_t BEFORE = 0;  // points of the record in front of it
  std::int32_t COUNT = 0;
};

/// The points of a record that a read takes: all of them, or those of one part of a composite bar.
T_POINTS points_of(const T_NODE& node, const T_READ& read, std::int32_t composite_parts) {
  if (read.KIND != READ::COMPOSITE_BAR) return {0, node.VALUES_PER_ITEM};
  const std::int32_t points = node.VALUES_PER_ITEM / composite_parts;
  return {(read.PART - 1) * points, points};
}

class PIECE_PLACER {
 public:
  PIECE_PLACER(const T_PIECE& piece, const T_NODE& node, const T_POINTS& points, std::int32_t first_position,
               T_ROW_MAP& map)
      : piece_(piece),
        node_(node),
        points_(points),
        first_(first_position),
        per_point_(piece.PER_POINT == ALL_ITEMS ? node.ITEMS : piece.PER_POINT),
        map_(map) {}

  void PLACE() {
    if (piece_.ARRANGEMENT == ARRANGED::FIVE_STATIONS) {
      place_stations();
      return;
    }
    const std::int32_t count = points_.COUNT;
    const bool pairs = piece_.ARRANGEMENT == ARRANGED::INTERLEAVED;
    for (std::int32_t point = piece_.FIRST_POINT; point <= count; ++point) {
      const std::int32_t first_of_pair = point - point % 2;
      const bool is_paired = pairs && point > 1 && first_of_pair < count;
      const std::int32_t points_before = is_paired ? first_of_pair - 1 : point - piece_.FIRST_POINT;
      const std::int64_t position = first_ + std::int64_t{points_before} * per_point_;
      if (map_.ENDS_BEFORE(position) || is_behind_layout(position)) return;
      place_point(point, is_paired && point == first_of_pair ? position + 1 : position, is_paired ? 2 : 1);
    }
  }

 private:
  void place_stations() {
    const std::int32_t count = points_.COUNT;
    if (count < 1) return;
    place_point(1, first_, 1);
    for (std::int32_t slot = 1; slot <= std::min(3, (count - 1) / 2); ++slot) {
      place_point(2 * slot, first_ + slot * per_point_, 1);
    }
    place_point(count, first_ + 4 * per_point_, 1);
  }

  [[nodiscard]] bool is_behind_layout(std::int64_t position) const {
    return piece_.LAST_POSITION != NO_LIMIT && position > piece_.LAST_POSITION;
  }

  /// The items of a point at positions `stride` apart.
  void place_point(std::int32_t point, std::int64_t position, std::int32_t stride) {
    if (piece_.PER_POINT == ALL_ITEMS) {
      place_items(point, {1, node_.ITEMS}, position, stride);
      return;
    }
    for (const T_ITEM_RUN& run : piece_.ITEMS) {
      place_items(point, run, position, stride);
      position += std::int64_t{run.COUNT} * stride;
    }
  }

  void place_items(std::int32_t point, const T_ITEM_RUN& run, std::int64_t position, std::int32_t stride) {
    const std::int32_t components_before = (points_.BEFORE + point - 1) * node_.ITEMS;
    const std::int32_t last = std::min(run.FIRST + run.COUNT - 1, node_.ITEMS);
    for (std::int32_t item = run.FIRST; item <= last; ++item, position += stride) {
      if (is_behind_layout(position)) return;
      map_.PLACE(position, components_before + item - 1);
    }
  }

  const T_PIECE& piece_;
  const T_NODE& node_;
  const T_POINTS points_;
  const std::int32_t first_;
  const std::int32_t per_point_;
  T_ROW_MAP& map_;
};

/// One read, its parts found.
class READER {
 public:
  READER(INFLUENCE_STORE& store, const T_READ& read)
      : store_(store), read_(read), parts_(find_parts(store, read)) {}

  /// The rows of the loads of a set, from its load `first` (from 1) on. `layout_set` is the set whose force
  /// record says where the stresses of plates stand.
  void READ_LOADS(std::size_t set, std::size_t layout_set, std::int64_t first, std::int64_t loads,
                  float* rows) {
    if (loads < 1) return;
    std::array<T_ROW_MAP, 2> maps{T_ROW_MAP(store_.READ_SPACES()[0], read_),
                                  T_ROW_MAP(store_.READ_SPACES()[1], read_)};
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      const T_NODE* node = store_.NODE(set, parts_[i].SOURCE, parts_[i].ROW);
      if (node != nullptr) place_part(parts_[i], *node, layout_set, maps[i]);
    }
    if (!fills_rows(maps)) std::fill_n(rows, loads * read_.POSITIONS, 0.0F);
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      if (maps[i].IS_EMPTY()) continue;
      const T_NODE& node = *store_.NODE(set, parts_[i].SOURCE, parts_[i].ROW);
      if (node.VOLUME > 0) {
        const STATUS status = copy_part(store_.SETS()[set], node, maps[i], first, loads, rows);
        if (status.OK()) continue;
        outcome_ = status;
      }
      // Of a set without the record zeros, over values of the other part where the two overlap.
      clear_part(maps[i], loads, rows);
    }
  }

  [[nodiscard]] const STATUS& OUTCOME() const { return outcome_; }

 private:
  /// Whether every position is about to be written. The parts may overlap where the sets disagree on the
  /// points of a plate.
  [[nodiscard]] bool fills_rows(const std::array<T_ROW_MAP, 2>& maps) const {
    for (std::int32_t at = 0; at < read_.POSITIONS; ++at) {
      if (!maps[0].HAS(at) && !maps[1].HAS(at)) return false;
    }
    return true;
  }

  void place_part(const T_PART& part, const T_NODE& node, std::size_t layout_set, T_ROW_MAP& map) const {
    const T_POINTS points = points_of(node, read_, store_.PRIMARY().N_COMPOSITE_PARTS);
    for (const T_PIECE& piece : part.PIECES) {
      const std::int32_t first =
          piece.FIRST_POSITION == BEHIND_FORCE ? position_behind_force(layout_set) : piece.FIRST_POSITION;
      const std::int64_t needed = piece.NCOMP_NEEDED == ITS_OWN
                                      ? first + std::int64_t{piece.PER_POINT} * points.COUNT - 1
                                      : piece.NCOMP_NEEDED;
      if (read_.NCOMP >= needed) PIECE_PLACER(piece, node, points, first, map).PLACE();
    }
  }

  [[nodiscard]] std::int32_t position_behind_force(std::size_t layout_set) const {
    const T_NODE* force = store_.NODE(layout_set, parts_[0].SOURCE, parts_[0].ROW);
    if (force == nullptr) return 1;
    return force->VALUES_PER_ITEM > 1 ? 41 : 9;
  }

  /// Copies the components that are used out of a record: each stretch of neighbours in one go, or word by
  /// word where one load is wanted and its words lie far apart.
  STATUS copy_part(T_MEC& set, const T_NODE& node, const T_ROW_MAP& map, std::int64_t first,
                   std::int64_t loads, float* rows) {
    T_FILE& volume = set.VOLUME(node);
    const bool in_stretches = loads == set.N_LOADS || WORD_BYTES * set.N_LOADS <= READ_ALONG;
    STATUS status = set.REACH_RECORD(node);
    if (status.OK() && !(in_stretches ? copy_stretches(volume, node, map, set.N_LOADS, first, loads, rows)
                                      : copy_one(volume, node, map, set.N_LOADS, first, rows))) {
      status = STATUS::FAILED(REASON::VOLUME_CUT).IN_VOLUME(node.DATA_OFFSET);
    }
    if (!status.OK()) store_.SET_FAULTY_VOLUME(volume);
    return status;
  }

  /// Views all loads of a component even where one is wanted: the next read of the record may want another.
  bool copy_stretches(T_FILE& volume, const T_NODE& node, const T_ROW_MAP& map, std::int64_t set_loads,
                      std::int64_t first, std::int64_t loads, float* rows) const {
    const std::span<const std::uint8_t> used = map.USED(node);
    const auto used_from = [used](std::size_t k) {
      while (k < used.size() && used[k] == 0) ++k;
      return k;
    };
    const auto bytes_of = [set_loads](std::size_t components) {
      return WORD_BYTES * set_loads * static_cast<std::int64_t>(components);
    };
    std::size_t next = used_from(0);
    while (next < used.size()) {
      const std::size_t begin = next;
      std::size_t end = begin + 1;
      for (next = used_from(end); next < used.size() && bytes_of(next - end) <= READ_ALONG;) {
        end = next + 1;
        next = used_from(end);
      }
      volume.SEEK(node.DATA_OFFSET, bytes_of(begin));
      const std::byte* values = volume.VIEW(bytes_of(end - begin));
      if (values == nullptr) return false;
      TRANSPOSE(values + WORD_BYTES * (first - 1),
                {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end - 1), set_loads, loads},
                map.SOURCES(), read_.POSITIONS, rows);
    }
    return true;
  }

  static bool copy_one(T_FILE& volume, const T_NODE& node, const T_ROW_MAP& map, std::int64_t loads,
                       std::int64_t load, float* row) {
    for (const std::int32_t source : map.SOURCES()) {
      volume.SEEK(node.DATA_OFFSET, WORD_BYTES * (source * loads + load - 1));
      if (source != T_ROW_MAP::NONE && !volume.READ(row, sizeof *row)) return false;
      ++row;
    }
    return true;
  }

  void clear_part(const T_ROW_MAP& map, std::int64_t loads, float* rows) const {
    for (std::int64_t load = 0; load < loads; ++load) {
      float* row = rows + load * read_.POSITIONS;
      for (const std::int32_t source : map.SOURCES()) {
        if (source != T_ROW_MAP::NONE) *row = 0;
        ++row;
      }
    }
  }

  INFLUENCE_STORE& store_;
  const T_READ& read_;
  const T_PARTS parts_;
  STATUS outcome_;
};

}  // namespace

STATUS READ_ONE(INFLUENCE_STORE& store, const T_READ& read, std::int32_t load, float* row) {
  if (!store.IS_OPEN()) return STATUS::FAILED(REASON::STORE_NOT_OPEN);
  if (read.POSITIONS < 1) return {};
  std::fill_n(row, read.POSITIONS, 0.0F);
  if (load < 1) return {};
  std::size_t set = 0;
  for (const T_MEC& candidate : store.SETS()) {
    if (load <= candidate.N_LOADS) {
      READER reader(store, read);
      reader.READ_LOADS(set, set, load, 1, row);
      return reader.OUTCOME();
    }
    load -= candidate.N_LOADS;
    ++set;
  }
  return {};
}

STATUS READ_ALL(INFLUENCE_STORE& store, const T_READ& read, float* rows) {
  if (!store.IS_OPEN()) return STATUS::FAILED(REASON::STORE_NOT_OPEN);
  if (read.POSITIONS < 1) return {};
  READER reader(store, read);
  const std::size_t sets = store.SETS().size();
  for (std::size_t set = 0; set < sets; ++set) {
    const std::int64_t loads = store.SETS()[set].N_LOADS;
    reader.READ_LOADS(set, sets - 1, 1, loads, rows);
    rows += loads * read.POSITIONS;
  }
  return reader.OUTCOME();
}

bool IS_STORED(const INFLUENCE_STORE& store, READ kind, std::int32_t id) noexcept {
  if (!store.IS_OPEN()) return false;
  const T_PARTS parts = find_parts(store, {kind, id, 0, 1});
  // An element may have stresses alone.
  if (kind != READ::REAC && kind != READ::LREAC) return parts[0].ROW > 0 || parts[1].ROW > 0;
  // An included set's support may have a row of another that the primary set has in its place.
  const std::span<const T_NODE> supports = store.ROWS(parts[0].SOURCE);
  return std::any_of(supports.begin(), supports.end(), [id](const T_NODE& node) { return node.ID == id; });
}

}  // namespace store
