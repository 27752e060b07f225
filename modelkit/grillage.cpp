#include "modelkit/grillage.h"

#include <Eigen/Sparse>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace modelkit {
namespace {

constexpr int DOFS = 3;
constexpr const char* DOF_NAMES[DOFS] = {"deflection", "rotation about x", "rotation about y"};

using matrix6 = Eigen::Matrix<double, 6, 6>;
using sparse = Eigen::SparseMatrix<double>;

std::size_t index(int number) {
  return static_cast<std::size_t>(number) - 1;
}

struct direction {
  double length;
  double c;
  double s;
};

direction direction_of(const T_GRILLAGE& grillage, const T_GRILLAGE_MEMBER& member) {
  const T_GRILLAGE_NODE& start = grillage.nodes[index(member.start)];
  const T_GRILLAGE_NODE& end = grillage.nodes[index(member.end)];
  const double length = std::hypot(end.x - start.x, end.y - start.y);
  return {length, (end.x - start.x) / length, (end.y - start.y) / length};
}

/// From (w, rotation about x, rotation about y) at both ends to (w, slope dw/ds, twist) at both ends.
matrix6 to_member_axes(const direction& along) {
  matrix6 turn = matrix6::Zero();
  for (const int end : {0, DOFS}) {
    turn(end, end) = 1.0;
    turn(end + 1, end + 1) = along.s;
    turn(end + 1, end + 2) = -along.c;
    turn(end + 2, end + 1) = along.c;
    turn(end + 2, end + 2) = along.s;
  }
  return turn;
}

/// Stiffness for (w, slope, twist) at both ends: the cubic beam and St Venant torsion, which don't know of
/// each other.
matrix6 member_stiffness(const T_GRILLAGE_MEMBER& member, double length) {
  const double k = member.ei / (length * length * length);
  const double t = member.gj / length;
  matrix6 stiffness;
  stiffness.row(0) << 12.0 * k, 6.0 * k * length, 0.0, -12.0 * k, 6.0 * k * length, 0.0;
  stiffness.row(1) << 6.0 * k * length, 4.0 * k * length * length, 0.0, -6.0 * k * length,
      2.0 * k * length * length, 0.0;
  stiffness.row(2) << 0.0, 0.0, t, 0.0, 0.0, -t;
  stiffness.row(3) << -12.0 * k, -6.0 * k * length, 0.0, 12.0 * k, -6.0 * k * length, 0.0;
  stiffness.row(4) << 6.0 * k * length, 2.0 * k * length * length, 0.0, -6.0 * k * length,
      4.0 * k * length * length, 0.0;
  stiffness.row(5) << 0.0, 0.0, -t, 0.0, 0.0, t;
  return stiffness;
}

void check_references(const T_GRILLAGE& grillage, const std::vector<int>& loaded_nodes) {
  const int nodes = static_cast<int>(grillage.nodes.size());
  const auto check_node = [nodes](int node, const std::string& what) {
    if (node < 1 || node > nodes)
      throw std::invalid_argument("grillage: " + what + " names node " + std::to_string(node));
  };
  int number = 0;
  for (const T_GRILLAGE_MEMBER& member : grillage.members) {
    const std::string name = "member " + std::to_string(++number);
    check_node(member.start, name);
    check_node(member.end, name);
    if (!(direction_of(grillage, member).length > 0.0))
      throw std::invalid_argument("grillage: " + name + " has no length");
  }
  std::vector<bool> supported(grillage.nodes.size(), false);
  for (const T_GRILLAGE_SUPPORT& support : grillage.supports) {
    check_node(support.node, "a support");
    if (supported[index(support.node)])
      throw std::invalid_argument("grillage: node " + std::to_string(support.node) + " has two supports");
    supported[index(support.node)] = true;
  }
  for (const int node : loaded_nodes) check_node(node, "a load");
}

sparse structure_stiffness(const T_GRILLAGE& grillage) {
  std::vector<Eigen::Triplet<double>> items;
  items.reserve(36 * grillage.members.size());
  for (const T_GRILLAGE_MEMBER& member : grillage.members) {
    const direction along = direction_of(grillage, member);
    const matrix6 turn = to_member_axes(along);
    const matrix6 stiffness = turn.transpose() * member_stiffness(member, along.length) * turn;
    const auto place = [&member](int local) {
      return DOFS * ((local < DOFS ? member.start : member.end) - 1) + local % DOFS;
    };
    for (int i = 0; i < 2 * DOFS; ++i)
      for (int j = 0; j < 2 * DOFS; ++j) items.emplace_back(place(i), place(j), stiffness(i, j));
  }
  const int size = DOFS * static_cast<int>(grillage.nodes.size());
  sparse matrix(size, size);
  matrix.setFromTriplets(items.begin(), items.end());
  return matrix;
}

[[noreturn]] void report_mechanism(int dof) {
  throw std::runtime_error("grillage: the structure is a mechanism, nothing holds node " +
                           std::to_string(dof / DOFS + 1) + " against " + DOF_NAMES[dof % DOFS]);
}

/// The stiffness matrix with springs added and rigid supports held, factorised. A held degree of freedom
/// keeps its row with a 1 on the diagonal: the numbering stays as it is, and its displacement comes out as 0.
class factorised {
 public:
  factorised(const sparse& free_stiffness, const T_GRILLAGE& grillage)
      : held_(static_cast<std::size_t>(free_stiffness.rows()), false) {
    std::vector<double> springs(held_.size(), 0.0);
    for (const T_GRILLAGE_SUPPORT& support : grillage.supports) {
      for (int dof = 0; dof < DOFS; ++dof) {
        const std::size_t place = DOFS * index(support.node) + static_cast<std::size_t>(dof);
        const double stiffness = support.stiffness[static_cast<std::size_t>(dof)];
        if (stiffness == RIGID)
          held_[place] = true;
        else
          springs[place] = stiffness;
      }
    }
    std::vector<Eigen::Triplet<double>> items;
    for (int column = 0; column < free_stiffness.outerSize(); ++column) {
      for (sparse::InnerIterator item(free_stiffness, column); item; ++item)
        if (!is_held(item.row()) && !is_held(item.col()))
          items.emplace_back(item.row(), item.col(), item.value());
      items.emplace_back(column, column, is_held(column) ? 1.0 : springs[static_cast<std::size_t>(column)]);
    }
    sparse matrix(free_stiffness.rows(), free_stiffness.cols());
    matrix.setFromTriplets(items.begin(), items.end());
    solver_.compute(matrix);
    find_mechanism(matrix);
  }

  [[nodiscard]] bool is_held(Eigen::Index dof) const { return held_[static_cast<std::size_t>(dof)]; }
  [[nodiscard]] Eigen::MatrixXd solve(const Eigen::MatrixXd& loads) const { return solver_.solve(loads); }

 private:
  /// A pivot is what is left of a diagonal term once all that went before is free to move. In a mechanism one
  /// of them is nothing but rounding. A sound structure of a thousand members in a row keeps some 1e-10.
  void find_mechanism(const sparse& matrix) const {
    constexpr double ROUNDING = 1e-12;
    const Eigen::VectorXd pivots = solver_.vectorD();
    for (Eigen::Index i = 0; i < pivots.size(); ++i) {
      const int dof = solver_.permutationPinv().indices()(i);
      if (!(pivots(i) > ROUNDING * matrix.coeff(dof, dof))) report_mechanism(dof);
    }
    if (solver_.info() != Eigen::Success) throw std::runtime_error("grillage: the structure is a mechanism");
  }

  std::vector<bool> held_;
  Eigen::SimplicialLDLT<sparse> solver_;
};

/// The forces on a member's ends, conjugate to (w, slope, twist) at both ends.
Eigen::Matrix<double, 6, 1> end_actions(const T_GRILLAGE& grillage, const T_GRILLAGE_MEMBER& member,
                                        const std::array<double, 6>& displacements) {
  const direction along = direction_of(grillage, member);
  const Eigen::Map<const Eigen::Matrix<double, 6, 1>> own(displacements.data());
  return member_stiffness(member, along.length) * (to_member_axes(along) * own);
}

}  // namespace

double T_GRILLAGE_RESPONSES::DISPLACEMENT(int load, int node, GRILLAGE_DOF dof) const {
  return displacements_.at(index(load)).at(DOFS * index(node) + static_cast<std::size_t>(dof));
}

double T_GRILLAGE_RESPONSES::REACTION(int load, int support, GRILLAGE_DOF dof) const {
  return reactions_.at(index(load)).at(DOFS * index(support) + static_cast<std::size_t>(dof));
}

std::array<double, 6> T_GRILLAGE_RESPONSES::member_displacements(int load, int member) const {
  const T_GRILLAGE_MEMBER& bar = grillage_.members.at(index(member));
  const std::vector<double>& all = displacements_.at(index(load));
  std::array<double, 6> own{};
  for (std::size_t dof = 0; dof < DOFS; ++dof) {
    own[dof] = all[DOFS * index(bar.start) + dof];
    own[DOFS + dof] = all[DOFS * index(bar.end) + dof];
  }
  return own;
}

// By virtual work with M = -EI w'' and V = M': the actions on the start are (-V, M, -T), on the end (V, -M,
// T).
T_SECTION_FORCES T_GRILLAGE_RESPONSES::START_FORCES(int load, int member) const {
  const auto actions =
      end_actions(grillage_, grillage_.members.at(index(member)), member_displacements(load, member));
  return {.shear = -actions(0), .torsion = -actions(2), .moment = actions(1)};
}

T_SECTION_FORCES T_GRILLAGE_RESPONSES::END_FORCES(int load, int member) const {
  const auto actions =
      end_actions(grillage_, grillage_.members.at(index(member)), member_displacements(load, member));
  return {.shear = actions(3), .torsion = actions(5), .moment = -actions(4)};
}

T_BEAM_SECTION T_GRILLAGE_RESPONSES::BEAM_FORCES(int load, std::span<const int> beam, double part) const {
  constexpr double ON_THE_NODE = 1e-9;  // of a member's length
  const auto bar = [this](int member) -> const T_GRILLAGE_MEMBER& {
    return grillage_.members.at(index(member));
  };
  double before = 0.0;  // length of the beam before the section and behind the members passed
  for (const int member : beam) before += part * direction_of(grillage_, bar(member)).length;
  std::size_t place = 0;
  double length = direction_of(grillage_, bar(beam[0])).length;
  while (before > (1.0 + ON_THE_NODE) * length && place + 1 < beam.size()) {
    before -= length;
    length = direction_of(grillage_, bar(beam[++place])).length;
  }
  if (before < (1.0 - ON_THE_NODE) * length) {
    T_SECTION_FORCES forces = START_FORCES(load, beam[place]);
    forces.moment += before * forces.shear;
    return {.load_before = forces, .load_behind = forces};
  }
  const T_SECTION_FORCES forces = END_FORCES(load, beam[place]);
  T_BEAM_SECTION section{.load_before = forces, .load_behind = forces};
  const bool is_inner = place + 1 < beam.size();
  if (is_inner && loaded_nodes_.at(index(load)) == bar(beam[place]).end) section.load_before.shear -= 1.0;
  return section;
}

T_GRILLAGE_RESPONSES SOLVE_GRILLAGE(const T_GRILLAGE& grillage, const std::vector<int>& loaded_nodes) {
  check_references(grillage, loaded_nodes);
  const sparse free_stiffness = structure_stiffness(grillage);
  const factorised structure(free_stiffness, grillage);

  Eigen::MatrixXd loads =
      Eigen::MatrixXd::Zero(free_stiffness.rows(), static_cast<Eigen::Index>(loaded_nodes.size()));
  for (std::size_t load = 0; load < loaded_nodes.size(); ++load)
    loads(DOFS * (loaded_nodes[load] - 1) + GRILLAGE_W, static_cast<Eigen::Index>(load)) = 1.0;
  Eigen::MatrixXd held_loads = loads;
  for (Eigen::Index dof = 0; dof < loads.rows(); ++dof)
    if (structure.is_held(dof)) held_loads.row(dof).setZero();  // such a load goes straight into the support
  const Eigen::MatrixXd displacements = structure.solve(held_loads);
  // What the members don't take of a load goes into the supports, rigid and elastic alike.
  const Eigen::MatrixXd reactions = loads - free_stiffness * displacements;

  T_GRILLAGE_RESPONSES responses;
  responses.grillage_ = grillage;
  responses.loaded_nodes_ = loaded_nodes;
  for (Eigen::Index load = 0; load < loads.cols(); ++load) {
    const auto column = displacements.col(load);
    responses.displacements_.emplace_back(column.begin(), column.end());
    std::vector<double> at_supports;
    for (const T_GRILLAGE_SUPPORT& support : grillage.supports)
      for (int dof = 0; dof < DOFS; ++dof)
        at_supports.push_back(support.stiffness[static_cast<std::size_t>(dof)] > 0.0
                                  ? reactions(DOFS * (support.node - 1) + dof, load)
                                  : 0.0);
    responses.reactions_.push_back(std::move(at_supports));
  }
  return responses;
}

}  // namespace modelkit
