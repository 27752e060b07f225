#include "tools/influence_values.h"

#include "movload.h"
#include "store/influence_reads.h"
#include "tools/host_run.h"
#include "tools/result_points.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

/// The store of the library, which a process has one of, while the object lives.
class HOST_STORE {
 public:
  explicit HOST_STORE(const T_VOLUME_PATHS& paths) {
    const auto base_len = static_cast<std::int32_t>(paths.base.size());
    const auto include_len = static_cast<std::int32_t>(paths.included.size());
    INIT_MOVING_INFLUENCE(&include_len, paths.included.data(), &base_len, paths.base.data());
    CHECK_LAST_CALL();
  }
  ~HOST_STORE() { CLOSE_MOVING_INFLUENCE(); }
  HOST_STORE(const HOST_STORE&) = delete;
  HOST_STORE& operator=(const HOST_STORE&) = delete;

  static void READ(const T_INFLUENCE_ROW& row, float* values) {
    const std::int32_t& id = row.id;
    const std::int32_t& ncomp = row.length;
    if (row.kind->form == ROW_FORM::COMPOSITE_BAR)
      READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(&id, &row.part, &ncomp, values);
    else if (row.kind->form == ROW_FORM::VIRTUAL_BAR)
      READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD(&id, &ncomp, values);
    else if (row.kind->name == "disp")
      READ_DISP_INFLUENCE_ALL_LOAD(&id, &ncomp, values);
    else if (row.kind->name == "reac")
      READ_REAC_INFLUENCE_ALL_LOAD(&id, &ncomp, values);
    else if (row.kind->name == "lreac")
      READ_LREAC_INFLUENCE_ALL_LOAD(&id, &ncomp, values);
    else
      READ_ELEMENT_INFLUENCE_ALL_LOAD(&id, &ncomp, values);
    CHECK_LAST_CALL();
  }

  static void READ_NODES(std::int32_t element, std::vector<std::int32_t>& nodes) {
    auto count = static_cast<std::int32_t>(nodes.size());
    if (count > 0) GET_ELEMENT_NODE_INFO(&element, &count, nodes.data());
  }
};

/// No call of a host reads displacements in local axes, which runs do.
void read_local_displacements(store::INFLUENCE_STORE& store, const T_INFLUENCE_ROW& row, float* values) {
  CHECK_STATUS(
      store::READ_ALL(store, {.KIND = store::READ::LDISP, .ID = row.id, .NCOMP = row.length}, values),
      store.FAULTY_VOLUME());
}

}  // namespace

T_INFLUENCE_VALUES READ_INFLUENCE(const T_INFLUENCE_QUESTION& question) {
  // A host knows from elsewhere which ids and how many unit loads there are; here the volumes tell.
  store::INFLUENCE_STORE store;
  OPEN_VOLUMES(question.paths, store);
  T_INFLUENCE_VALUES read;
  read.paths = question.paths;
  read.sets = READ_VOLUME_SETS(question.paths);
  read.loads = store.N_TOTAL_LOADS();
  for (const T_VOLUME_SET& set : read.sets)
    read.load_ids.insert(read.load_ids.end(), set.load_ids.begin(), set.load_ids.end());
  CHECK_STORED(store, *question.kind, question.id, question.paths.base);
  read.row = MAKE_INFLUENCE_ROW(store, *question.kind, question.id, question.part);
  read.values.resize(static_cast<std::size_t>(std::int64_t{read.loads} * read.row.length));
  if (question.kind->name == "ldisp") {
    read_local_displacements(store, read.row, read.values.data());
    return read;
  }
  if (question.kind->form != ROW_FORM::NODE)
    read.nodes.resize(static_cast<std::size_t>(store.MAPS().ELEMENT_NODES.COUNT(question.id)));
  store.CLOSE();
  const HOST_STORE host(question.paths);
  HOST_STORE::READ(read.row, read.values.data());
  HOST_STORE::READ_NODES(question.id, read.nodes);
  return read;
}

}  // namespace tools
