#include "kernel/combinations.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace kernel {
namespace {

constexpr std::int64_t MOST_USUAL_CODES = 1024;

/// The smallest whole number not below x, for x from 0 on.
std::int32_t round_up(real x) {
  const std::int32_t whole = TRUNCATE(static_cast<double>(x));
  return x > static_cast<real>(whole) ? whole + 1 : whole;
}

/// The vehicle group that a lane code names. Worked out in single precision, as the files' writer does it.
std::int32_t group_of_code(std::int32_t code) {
  return round_up(static_cast<real>(code * 0.25));
}

}  // namespace

T_CODE_BOOK::T_CODE_BOOK(const std::vector<search::T_VEHICLE>& vehicles, std::int32_t n_vehicle_class)
    : highest_code_(std::int64_t{search::SUB_CASES} * n_vehicle_class) {
  for (const search::T_VEHICLE& vehicle : vehicles) {
    groups_.push_back(vehicle.VEH_GROUP);
    if (vehicle.VEH_CLASS != 0) classes_.push_back(vehicle.VEH_CLASS);
  }
  std::sort(classes_.begin(), classes_.end());
  classes_.erase(std::unique(classes_.begin(), classes_.end()), classes_.end());

  // Codes beyond all classes and groups of the vehicles mean nothing.
  std::int64_t highest = classes_.empty() ? 0 : classes_.back();
  for (const std::int32_t group : groups_) highest = std::max<std::int64_t>(highest, group);
  const std::int64_t meaningful = std::min(highest_code_, search::SUB_CASES * highest) + 1;
  const std::int64_t codes = std::clamp<std::int64_t>(meaningful, 1, MOST_USUAL_CODES);
  for (std::int32_t code = 0; code < codes; ++code) usual_.push_back(MEANING(code).SLOT_CODE);
}

std::int32_t T_CODE_BOOK::CLASS_SLOT(std::int32_t veh_class) const noexcept {
  const auto at = std::lower_bound(classes_.begin(), classes_.end(), veh_class);
  return at != classes_.end() && *at == veh_class ? static_cast<std::int32_t>(at - classes_.begin()) + 1 : 0;
}

T_CODE_BOOK::T_MEANING T_CODE_BOOK::MEANING(std::int32_t code) const {
  T_MEANING meaning;
  if (code <= 0) return meaning;
  const std::int32_t group = group_of_code(code);
  for (std::size_t j = 0; j < groups_.size(); ++j) {
    if (groups_[j] == group) meaning.COLUMNS.set(j);
  }
  const std::int32_t slot = CLASS_SLOT((code - 1) / search::SUB_CASES + 1);
  if (slot > 0) {
    const std::int32_t sub_case = (code - 1) % search::SUB_CASES + 1;
    meaning.SLOT_CODE = static_cast<T_SLOT_CODE>(search::SUB_CASES * (slot - 1) + sub_case);
  }
  return meaning;
}

/// Which codes every lane meets while the combinations are read,
/// and which of them with a scale other than 0. Noted by code, and turned into
/// vehicle columns once at the end: a model has far more combinations than codes.
class T_COMBINATIONS::T_CODE_USE {
 public:
  T_CODE_USE(std::int32_t num_lane, const T_CODE_BOOK& book)
      : book_(book),
        usual_(static_cast<std::size_t>(num_lane) * book.USUAL_CODES()),
        lanes_(static_cast<std::size_t>(num_lane)) {}

  /// Entries noted from here on are of the case that `loaded` belongs to.
  void BEGIN_CASE(std::vector<std::uint8_t>& loaded) {
    loaded.assign(lanes_.size() * book_.SLOT_CODES(), 0);
    loaded_ = loaded.data();
  }

  void NOTE(std::size_t lane, std::int32_t code, T_SLOT_CODE slot_code, bool scaled) {
    loaded_[lane * book_.SLOT_CODES() + slot_code] |= scaled ? 1 : 0;
    const auto at = static_cast<std::size_t>(code);
    if (at < book_.USUAL_CODES()) {
      usual_[lane * book_.USUAL_CODES() + at] |= scaled ? NAMED | SCALED : NAMED;
    } else {
      note_columns(lane, code, scaled);
    }
  }

  [[nodiscard]] std::vector<T_LANE_VEHICLES> LANE_VEHICLES() {
    for (std::size_t at = 0; at < usual_.size(); ++at) {
      if (usual_[at] == 0) continue;
      const std::size_t lane = at / book_.USUAL_CODES();
      note_columns(lane, static_cast<std::int32_t>(at % book_.USUAL_CODES()), (usual_[at] & SCALED) != 0);
    }
    return std::move(lanes_);
  }

 private:
  static constexpr std::uint8_t NAMED = 1;
  static constexpr std::uint8_t SCALED = 2;

  void note_columns(std::size_t lane, std::int32_t code, bool scaled) {
    const T_COLUMN_SET columns = book_.MEANING(code).COLUMNS;
    lanes_[lane].NAMED |= columns;
    if (scaled) lanes_[lane].SCALED |= columns;
  }

  const T_CODE_BOOK& book_;
  std::vector<std::uint8_t> usual_;  // by lane, then code
  std::vector<T_LANE_VEHICLES> lanes_;
  std::uint8_t* loaded_ = nullptr;  // of the case in hand
};

void T_COMBINATIONS::MEMORY_FREE::operator()(void* memory) const noexcept {
  std::free(memory);
}

STATUS T_COMBINATIONS::LOAD(RECORD_FILE& unit, const std::string& file_name, std::int32_t num_lane,
                            const std::vector<std::int32_t>& counts, T_CODE_BOOK book,
                            COMBINATION_MEMORY memory) {
  file_name_ = file_name;
  num_lane_ = num_lane;
  book_ = std::move(book);
  BLOCK_READER block;
  if (STATUS status = block.OPEN_MANDATORY(unit, file_name, "MVLC", 0); !status.OK()) return status;

  // Every group costs a head record, also the groups of other cases.
  const std::int64_t lanes = num_lane;
  const std::int64_t row_bytes = lanes * static_cast<std::int64_t>(sizeof(std::int32_t) + sizeof(double));
  std::int64_t rows = 0;
  std::int64_t record = 0;
  cases_.clear();
  for (const std::int32_t count : counts) {
    ++record;
    cases_.push_back({rows, record + 1, count, {}});
    if (STATUS status = block.CHECK_ROOM(record + 1, count, row_bytes); !status.OK()) return status;
    rows += count;
    record += count;
  }
  T_CODE_USE use(num_lane, book_);

  const auto values = static_cast<std::size_t>(std::max<std::int64_t>(rows * lanes, 1));
  codes_.reset(static_cast<T_SLOT_CODE*>(memory(values * sizeof(T_SLOT_CODE))));
  scales_.reset(static_cast<real*>(memory(values * sizeof(real))));
  on_disk_ = codes_ == nullptr || scales_ == nullptr;
  std::vector<T_SLOT_CODE> row_codes;
  std::vector<real> row_scales;
  if (on_disk_) {
    codes_.reset();
    scales_.reset();
    row_codes.resize(static_cast<std::size_t>(lanes));
    row_scales.resize(static_cast<std::size_t>(lanes));
  }
  for (T_CASE& mv_case : cases_) {
    use.BEGIN_CASE(mv_case.LOADED);
    for (std::int64_t c = 0; c < mv_case.COUNT; ++c) {
      const std::int64_t at = (mv_case.FIRST_ROW + c) * lanes;
      T_SLOT_CODE* codes = on_disk_ ? row_codes.data() : codes_.get() + at;
      real* scales = on_disk_ ? row_scales.data() : scales_.get() + at;
      STATUS status = read_row(block, mv_case.FIRST_RECORD + c, codes, scales, &use);
      if (!status.OK()) return status;
    }
  }
  lane_vehicles_ = use.LANE_VEHICLES();
  return {};
}

STATUS T_COMBINATIONS::read_row(BLOCK_READER& block, std::int64_t record, T_SLOT_CODE* codes, real* scales,
                                T_CODE_USE* use) const {
  const auto lanes = static_cast<std::size_t>(num_lane_);
  const std::byte* bytes = nullptr;
  const std::size_t row_bytes = lanes * (sizeof(std::int32_t) + sizeof(double));
  if (STATUS status = block.READ(record, static_cast<std::int64_t>(row_bytes), bytes); !status.OK())
    return status;
  UNPACK code_items(bytes);
  UNPACK scale_items(bytes + lanes * sizeof(std::int32_t));
  for (std::size_t lane = 0; lane < lanes; ++lane) {
    const auto code = code_items.NEXT<std::int32_t>();
    if (code < 0 || code > book_.HIGHEST_CODE()) {
      return block.BOUNDS(record, "LANE_CODE", code, 0, book_.HIGHEST_CODE());
    }
    const auto at = static_cast<std::size_t>(code);
    codes[lane] = at < book_.USUAL_CODES() ? book_.USUAL_SLOT_CODE(at) : book_.MEANING(code).SLOT_CODE;
    scales[lane] = static_cast<real>(scale_items.NEXT<double>());
    if (use != nullptr) use->NOTE(lane, code, codes[lane], scales[lane] != 0);
  }
  return {};
}

const T_COMBINATIONS::T_CASE* T_COMBINATIONS::find(std::int32_t mv_case) const {
  const bool exists = mv_case >= 1 && static_cast<std::size_t>(mv_case) <= cases_.size();
  return exists ? &cases_[static_cast<std::size_t>(mv_case - 1)] : nullptr;
}

bool T_COMBINATIONS::LOADS(std::int32_t mv_case, std::int32_t lane, T_SLOT_CODE code) const {
  const T_CASE* its_case = find(mv_case);
  return its_case != nullptr &&
         its_case->LOADED[static_cast<std::size_t>(lane - 1) * book_.SLOT_CODES() + code] != 0;
}

STATUS T_COMBINATION_CURSOR::BEGIN(std::int32_t mv_case) {
  case_ = combinations_.find(mv_case);
  done_ = 0;
  if (!combinations_.on_disk_ || COUNT() == 0) return {};
  row_codes_.resize(static_cast<std::size_t>(combinations_.num_lane_));
  row_scales_.resize(static_cast<std::size_t>(combinations_.num_lane_));
  return block_.OPEN_MANDATORY(unit_, combinations_.file_name_, "MVLC", 0);
}

STATUS T_COMBINATION_CURSOR::NEXT(T_COMBINATION_VIEW& combination) {
  const std::int64_t c = done_++;
  if (!combinations_.on_disk_) {
    const std::int64_t at = (case_->FIRST_ROW + c) * combinations_.num_lane_;
    combination = {combinations_.codes_.get() + at, combinations_.scales_.get() + at};
    return {};
  }
  combination = {row_codes_.data(), row_scales_.data()};
  return combinations_.read_row(block_, case_->FIRST_RECORD + c, row_codes_.data(), row_scales_.data(),
                                nullptr);
}

}  // namespace kernel
