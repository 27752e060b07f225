#include "tests/host/result_items.h"

#include <algorithm>

namespace plain {

namespace {

constexpr int JUMP_ITEMS = 30;  // whose values, of beams and walls alike, are the first 48
constexpr int PART_ITEMS = 15;  // of walls: five of these in three parts each

/// Items of walls as their values are numbered: those that may jump, their parts, all others.
int place_of_wall_item(int item) {
  if (item <= 30 || item >= 98) return item;
  if (item <= 50) return 46 + (item - 31) / 4 * 12 + (item - 31) % 4;
  if (item <= 65) return item - 20;
  return 50 + (item - 66) / 8 * 12 + (item - 66) % 8;
}

/// The parts of the items 4, 10, 16, 22 and 28, of which the first and the last have one value.
std::vector<int> values_of_part(int item, int part) {
  if (item == 4) return {48 + part};
  if (item == 28) return {69 + part};
  const int first = 50 + (item - 10) + 2 * part;
  return {first, first + 1};
}

}  // namespace

const KIND* KIND_OF(std::int32_t result_kind) {
  const auto* const kind = std::ranges::find(KINDS, result_kind, &KIND::RESULT_KIND);
  return kind == KINDS.end() ? nullptr : kind;
}

int ITEMS_OF(const KIND& kind, const modelkit::T_MODEL& model) {
  if (kind.ITEMS == 0) return model.n_dof;
  if (kind.ITEMS > 0) return kind.ITEMS;
  switch (model.plate_form % 100) {
    case 1:
      return 8;
    case 2:
      return 40;
    case 3:
      return 14;
    case 4:
      return 70;
    default:
      return 0;
  }
}

std::vector<int> VALUES_OF(std::int32_t result_kind, int item) {
  const bool is_wall = result_kind == MOVLOAD_RK_WALL;
  if (!is_wall && result_kind != MOVLOAD_RK_BEAM) return {item};
  const int place = is_wall ? place_of_wall_item(item) : item;
  const int part = place - JUMP_ITEMS;
  if (is_wall && part > PART_ITEMS) return {place + 27};
  if (is_wall && part > 0) return values_of_part(4 + (part - 1) / 3 * 6, (part - 1) % 3 + 1);
  if (place > 6 && place <= 24) return {2 * place - 7, 2 * place - 6};
  return {place <= 6 ? place : place + 18};
}

bool MAY_JUMP(std::int32_t result_kind, int item) {
  if (result_kind == MOVLOAD_RK_BEAM) return item <= JUMP_ITEMS;
  return result_kind == MOVLOAD_RK_WALL && place_of_wall_item(item) <= JUMP_ITEMS + PART_ITEMS;
}

}  // namespace plain
