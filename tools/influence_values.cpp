#include "tools/influence_values.h"

#include <limits>

#include "movload.h"
#include "store/influence_reads.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

void check_last_call() {
  const std::string line = movload_last_failure();
  if (!line.empty()) throw T_TOOL_FAILURE(line, ADVICE_FOR(line));
}

/// The store of the library, which a process has one of, while the object lives.
class HOST_STORE {
 public:
  HOST_STORE(const std::string& base_path, const std::string& included) {
    const auto base_len = static_cast<std::int32_t>(base_path.size());
    const auto include_len = static_cast<std::int32_t>(included.size());
    INIT_MOVING_INFLUENCE(&include_len, included.data(), &base_len, base_path.data());
    check_last_call();
  }
  ~HOST_STORE() { CLOSE_MOVING_INFLUENCE(); }
  HOST_STORE(const HOST_STORE&) = delete;
  HOST_STORE& operator=(const HOST_STORE&) = delete;

  static void READ(const T_STORED_POINT& point, float* rows) {
    const std::int32_t& id = point.id;
    const std::int32_t& ncomp = point.row_length;
    if (point.kind->form == ROW_FORM::COMPOSITE_BAR)
      READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(&id, &point.part, &ncomp, rows);
    else if (point.kind->form == ROW_FORM::VIRTUAL_BAR)
      READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD(&id, &ncomp, rows);
    else if (point.kind->name == "disp")
      READ_DISP_INFLUENCE_ALL_LOAD(&id, &ncomp, rows);
    else if (point.kind->name == "reac")
      READ_REAC_INFLUENCE_ALL_LOAD(&id, &ncomp, rows);
    else if (point.kind->name == "lreac")
      READ_LREAC_INFLUENCE_ALL_LOAD(&id, &ncomp, rows);
    else
      READ_ELEMENT_INFLUENCE_ALL_LOAD(&id, &ncomp, rows);
    check_last_call();
  }

  static void READ_NODES(std::int32_t element, std::vector<std::int32_t>& nodes) {
    auto count = static_cast<std::int32_t>(nodes.size());
    if (count > 0) GET_ELEMENT_NODE_INFO(&element, &count, nodes.data());
  }
};

/// No call of a host reads displacements in local axes, which runs do.
void read_local_displacements(store::INFLUENCE_STORE& store, const T_STORED_POINT& point, float* rows) {
  const STATUS status =
      store::READ_ALL(store, {.KIND = store::READ::LDISP, .ID = point.id, .NCOMP = point.row_length}, rows);
  if (status.OK()) return;
  const std::string line = FAILURE_LINE(status, store.FAULTY_VOLUME());
  throw T_TOOL_FAILURE(line, ADVICE_FOR(line));
}

}  // namespace

T_INFLUENCE_VALUES READ_INFLUENCE(const T_INFLUENCE_QUESTION& question) {
  // A host knows from elsewhere which ids and how many unit loads there are; here the volumes tell.
  store::INFLUENCE_STORE store;
  OPEN_STORE(store, question.base_path, question.included);
  T_INFLUENCE_VALUES values;
  values.base_path = question.base_path;
  values.sets = READ_VOLUME_SETS(question.base_path, question.included);
  values.loads = store.N_TOTAL_LOADS();
  for (const T_VOLUME_SET& set : values.sets)
    values.load_ids.insert(values.load_ids.end(), set.load_ids.begin(), set.load_ids.end());
  values.point = FIND_STORED_POINT(store, *question.kind, question.id, question.part, question.base_path);
  values.rows.resize(static_cast<std::size_t>(std::int64_t{values.loads} * values.point.row_length));
  if (question.kind->name == "ldisp") {
    read_local_displacements(store, values.point, values.rows.data());
    return values;
  }
  if (question.kind->form != ROW_FORM::NODE)
    values.nodes.resize(static_cast<std::size_t>(store.MAPS().ELEMENT_NODES.COUNT(question.id)));
  store.CLOSE();
  const HOST_STORE host(question.base_path, question.included.value_or(""));
  HOST_STORE::READ(values.point, values.rows.data());
  HOST_STORE::READ_NODES(question.id, values.nodes);
  return values;
}

}  // namespace tools
