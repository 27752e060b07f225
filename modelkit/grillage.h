// A plane grillage by the direct stiffness method: a bridge deck as a grid of members with bending and
// torsional stiffness, loaded at right angles to its plane.
//
// Axes: x and y in the plane, z and with it the deflection w positive downward, right-handed; looking along
// x, y runs to the right. Rotations are right-handed about x and y, so that dw/dx = -rotation about y and
// dw/dy = rotation about x. Loads are positive downward.
//
// Nodes, members and supports are numbered from 1. Units are the caller's, say kN and m.
#pragma once

#include <array>
#include <limits>
#include <span>
#include <vector>

namespace modelkit {

struct T_GRILLAGE_NODE {
  double x = 0.0;
  double y = 0.0;
};

/// A straight member of constant stiffness between two nodes. Its own direction runs from start to end.
struct T_GRILLAGE_MEMBER {
  int start = 0;
  int end = 0;
  double ei = 0.0;  // bending about the horizontal axis
  double gj = 0.0;  // St Venant torsion
};

/// The degrees of freedom of a node.
enum GRILLAGE_DOF : int { GRILLAGE_W = 0, GRILLAGE_ROTATION_X = 1, GRILLAGE_ROTATION_Y = 2 };

/// Stiffness of a support that doesn't give way.
inline constexpr double RIGID = std::numeric_limits<double>::infinity();

/// A support: for each degree of freedom 0 where the node is free, a spring stiffness, or RIGID.
struct T_GRILLAGE_SUPPORT {
  int node = 0;
  std::array<double, 3> stiffness{};
};

struct T_GRILLAGE {
  std::vector<T_GRILLAGE_NODE> nodes;
  std::vector<T_GRILLAGE_MEMBER> members;
  std::vector<T_GRILLAGE_SUPPORT> supports;
};

/// Section forces at one end of a member, as seen along the member: the bending moment is positive sagging,
/// the shear its derivative (at a left support the upward reaction), the torsion GJ times the twist per
/// length.
struct T_SECTION_FORCES {
  double shear = 0.0;
  double torsion = 0.0;
  double moment = 0.0;
};

/// Section forces of a beam at one place, for a load just before the section and one just behind it.
struct T_BEAM_SECTION {
  T_SECTION_FORCES load_before;
  T_SECTION_FORCES load_behind;
};

/// The answers of a grillage to unit loads. Load k is the k-th loaded node of SOLVE_GRILLAGE.
class T_GRILLAGE_RESPONSES {
 public:
  /// Displacement of a node.
  [[nodiscard]] double DISPLACEMENT(int load, int node, GRILLAGE_DOF dof) const;
  /// Reaction of a support against the displacement of that name: upward for w. 0 where the node is free.
  [[nodiscard]] double REACTION(int load, int support, GRILLAGE_DOF dof = GRILLAGE_W) const;
  /// Section forces at a member's start and end.
  [[nodiscard]] T_SECTION_FORCES START_FORCES(int load, int member) const;
  [[nodiscard]] T_SECTION_FORCES END_FORCES(int load, int member) const;
  /// Section forces at `part` of a beam's length, from 0 to 1. The beam is members in a straight row, at
  /// least one, each beginning where the one before ends. A section on a node lies just before it, that at
  /// the beam's start just behind it. Both forms are the same but where the load stands on the very node of a
  /// section between the ends: its passing the section changes the shear by 1, and nothing else. A load on an
  /// end node goes into the node and not through the beam.
  [[nodiscard]] T_BEAM_SECTION BEAM_FORCES(int load, std::span<const int> beam, double part) const;
  [[nodiscard]] int LOADS() const { return static_cast<int>(displacements_.size()); }

 private:
  friend T_GRILLAGE_RESPONSES SOLVE_GRILLAGE(const T_GRILLAGE& grillage,
                                             const std::vector<int>& loaded_nodes);
  [[nodiscard]] std::array<double, 6> member_displacements(int load, int member) const;

  T_GRILLAGE grillage_;
  std::vector<int> loaded_nodes_;
  std::vector<std::vector<double>> displacements_;  // [load][3 * node + dof], from 0
  std::vector<std::vector<double>> reactions_;      // [load][3 * support + dof]
};

/// Solves for a unit load downward on each of the loaded nodes. A node has at most one support.
/// Throws std::invalid_argument for a reference outside the lists, a member without length and a second
/// support of a node, std::runtime_error if the structure is a mechanism, naming a node and the way in which
/// it moves.
T_GRILLAGE_RESPONSES SOLVE_GRILLAGE(const T_GRILLAGE& grillage, const std::vector<int>& loaded_nodes);

}  // namespace modelkit
