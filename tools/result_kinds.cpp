#include "tools/result_kinds.h"

#include <fmt/format.h>

#include <algorithm>

#include "kernel/run_state.h"

namespace tools {
namespace {

using store::LIST;

constexpr std::array<LIST, 2> one(LIST list) {
  return {list, list};
}

constexpr std::size_t N_RUN_KINDS = 11;  // the first ones
constexpr std::array<T_KIND, 14> KINDS{{
    {"disp", kernel::RK_DISP, "displacement of a node", ROW_FORM::NODE, one(LIST::DISP)},
    {"ldisp", kernel::RK_LDSP, "displacement of a node in its local axes", ROW_FORM::NODE, one(LIST::LDISP)},
    {"reac", kernel::RK_REAC, "reaction of a support node", ROW_FORM::NODE, one(LIST::REAC)},
    {"lreac", kernel::RK_LRAC, "reaction of a support node in its local axes", ROW_FORM::NODE,
     one(LIST::LREAC)},
    {"simb", kernel::RK_SIMB, "result of block SIMB", ROW_FORM::STORED, one(LIST::N_32800)},
    {"elink", kernel::RK_ELNK, "force of an elastic link", ROW_FORM::STORED, one(LIST::N_1056)},
    {"nlink", kernel::RK_NLNK, "force of a nonlinear link", ROW_FORM::STORED, one(LIST::N_1056)},
    {"truss", kernel::RK_TRUSS, "result of a truss element", ROW_FORM::TRUSS, {LIST::N_16416, LIST::N_65568}},
    {"beam", kernel::RK_BEAM, "result of a beam element", ROW_FORM::BEAM, {LIST::N_544, LIST::N_640}},
    {"plate", kernel::RK_PLATE, "result of a plate element", ROW_FORM::PLATE, {LIST::N_4128, LIST::N_4224}},
    {"wall", kernel::RK_WALL, "result of a wall element", ROW_FORM::WALL, {LIST::N_288, LIST::N_384}},
    {"solid", 0, "result of a solid element", ROW_FORM::SOLID, {LIST::N_8224, LIST::N_8320}},
    {"composite", 0, "result of a composite bar", ROW_FORM::COMPOSITE_BAR, {LIST::N_2080, LIST::N_2176}},
    {"virtual", 0, "stress of a virtual bar", ROW_FORM::VIRTUAL_BAR, one(LIST::N_1152)},
}};

}  // namespace

std::span<const T_KIND> ALL_KINDS() {
  return KINDS;
}

std::span<const T_KIND> RUN_KINDS() {
  return ALL_KINDS().first(N_RUN_KINDS);
}

const T_KIND* FIND_KIND(std::string_view name_or_number, std::span<const T_KIND> kinds) {
  const auto kind = std::ranges::find_if(kinds, [name_or_number](const T_KIND& row) {
    return row.name == name_or_number ||
           (row.result_kind != 0 && fmt::to_string(row.result_kind) == name_or_number);
  });
  return kind == kinds.end() ? nullptr : &*kind;
}

std::string BEAM_ITEM_MEANING(std::int32_t item) {
  constexpr std::int32_t ITEMS = 50;
  constexpr std::int32_t FORCE_ITEMS = 30;
  constexpr std::array<std::string_view, 6> FORCES{"axial force", "shear sideways", "shear",
                                                   "torsion",     "moment",         "moment sideways"};
  constexpr std::array<std::string_view, 4> CORNERS{"top left", "top right", "bottom left", "bottom right"};
  constexpr std::array<std::string_view, 5> STATIONS{"just behind the start", "at 1/4", "at 1/2", "at 3/4",
                                                     "just before the end"};
  if (item < 1 || item > ITEMS) return "";
  const bool is_force = item <= FORCE_ITEMS;
  const auto place = static_cast<std::size_t>(is_force ? item - 1 : item - FORCE_ITEMS - 1);
  const std::size_t station = place / (is_force ? FORCES.size() : CORNERS.size());
  return is_force ? fmt::format("{} {}", FORCES[place % FORCES.size()], STATIONS[station])
                  : fmt::format("stress {} {}", CORNERS[place % CORNERS.size()], STATIONS[station]);
}

std::string RESULT_MEANING(const T_KIND& kind, std::int32_t item) {
  const std::string item_meaning = kind.result_kind == kernel::RK_BEAM ? BEAM_ITEM_MEANING(item) : "";
  return fmt::format("{}{}{}", kind.meaning, item_meaning.empty() ? "" : ": ", item_meaning);
}

}  // namespace tools
