// The exported names: a thin shell over the kernel, and the one place where a reason becomes MODE_CODE -1 and
// a line of text. Nothing thrown leaves it.

#include <algorithm>
#include <array>
#include <exception>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string_view>

#include "kernel/failures.h"
#include "kernel/kernel_entry.h"
#include "movload.h"
#include "store/influence_reads.h"
#include "store/m_influence.h"

namespace {

/// The library's process-wide state: what one call leaves for the next, the influence store, and the text of
/// the last failure.
constinit kernel::HOST_SETTINGS host_settings;
constinit store::INFLUENCE_STORE influence_store;
constinit std::array<char, 2048> last_failure{};

/// Runs `body` with a request for the path and mode, and reports how it went.
template <class BODY>
void report(std::int32_t* mode_code, BODY body) noexcept {
  kernel::T_REQUEST request;
  STATUS status;
  try {
    status = body(request);
  } catch (const std::bad_alloc&) {
    status = STATUS::FAILED(REASON::NO_MEMORY);
  } catch (const std::length_error&) {
    status = STATUS::FAILED(REASON::NO_MEMORY);
  } catch (...) {
    status = STATUS::FAILED(REASON::UNEXPECTED);
  }
  const std::string_view file = status.in_volume ? influence_store.FAULTY_VOLUME() : request.FILE_NAME;
  kernel::FAILURE_TEXT(status, file, last_failure.data(), last_failure.size());
  if (!status.OK() && mode_code != nullptr) *mode_code = -1;
}

/// The same for a call that has no mode.
template <class BODY>
void report(BODY body) noexcept {
  report(nullptr, [&](kernel::T_REQUEST&) -> STATUS { return body(); });
}

bool any_null(std::initializer_list<const void*> pointers) {
  return std::any_of(pointers.begin(), pointers.end(),
                     [](const void* pointer) { return pointer == nullptr; });
}

/// Takes the path into the settings, cut to `room` characters, and fills what a request needs of path and
/// mode.
STATUS begin_request(const char* path, std::int32_t path_len, std::int32_t room, std::int32_t mode_code,
                     kernel::T_REQUEST& request) {
  if (path_len < 1) return STATUS::FAILED(REASON::BAD_PATH_LENGTH, path_len);
  host_settings.BASE_NAME.SET({path, static_cast<std::size_t>(std::min(path_len, room))});
  const kernel::T_MODE mode = kernel::SPLIT_MODE_CODE(mode_code);
  request.ANALYSIS_CODE = mode.ANALYSIS_CODE;
  request.STORE_MODE = mode.STORE_MODE;
  request.BASE_NAME = host_settings.BASE_NAME.TEXT();
  request.STORE = &influence_store;
  return kernel::MAKE_REQUEST_FILE_NAME(host_settings.BASE_NAME.TEXT(), mode.ANALYSIS_CODE,
                                        request.FILE_NAME);
}

/// A path of the host's; empty where its length is 0 or less.
std::string_view path_of(const std::int32_t* length, const char* characters) {
  return *length < 1 ? std::string_view() : std::string_view(characters, static_cast<std::size_t>(*length));
}

void name_included_set(const std::int32_t* length, const char* path) noexcept {
  report([&]() -> STATUS {
    if (any_null({length, path})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    influence_store.SET_INCLUDE(path_of(length, path));
    return {};
  });
}

constexpr std::int32_t NO_PART = 0;

void read_one(store::READ kind, const std::int32_t* id, const std::int32_t* load, const std::int32_t* part,
              const std::int32_t* ncomp, float* row) noexcept {
  report([&]() -> STATUS {
    if (any_null({id, load, part, ncomp, row})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    return store::READ_ONE(influence_store, {kind, *id, *ncomp, *part}, *load, row);
  });
}

void read_all(store::READ kind, const std::int32_t* id, const std::int32_t* part, const std::int32_t* ncomp,
              float* rows) noexcept {
  report([&]() -> STATUS {
    if (any_null({id, part, ncomp, rows})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    return store::READ_ALL(influence_store, {kind, *id, *ncomp, *part}, rows);
  });
}

void count_ids(store::LIST list, std::int32_t* number) noexcept {
  report([&]() -> STATUS {
    if (number == nullptr) return STATUS::FAILED(REASON::NO_ARGUMENT);
    *number = static_cast<std::int32_t>(influence_store.ROWS(list).size());
    return influence_store.IS_OPEN() ? STATUS{} : STATUS::FAILED(REASON::STORE_NOT_OPEN);
  });
}

void copy_ids(store::LIST list, std::int32_t* ids) noexcept {
  report([&]() -> STATUS {
    if (ids == nullptr) return STATUS::FAILED(REASON::NO_ARGUMENT);
    for (const store::T_NODE& node : influence_store.ROWS(list)) *ids++ = node.ID;
    return influence_store.IS_OPEN() ? STATUS{} : STATUS::FAILED(REASON::STORE_NOT_OPEN);
  });
}

TABLE<std::int32_t, FIELD, LANE> record_table(std::int32_t* values, std::int64_t lanes) {
  return {values, {static_cast<std::int64_t>(kernel::RECORD_FIELDS), lanes}};
}
TABLE<std::int32_t, NUMBER, LANE> number_table(std::int32_t* values, std::int64_t lanes) {
  return {values, {kernel::HOST_NUMBERS, lanes}};
}
TABLE<real, NUMBER, LANE> distance_table(float* values, std::int64_t lanes) {
  return {values, {kernel::HOST_DISTANCES, lanes}};
}

}  // namespace

extern "C" {

void _MOV_KRNL_BS_5400(const char* PATH, int32_t PATH_LEN, int32_t RESULT_KIND, int32_t RESULT_ID,
                       int32_t RESULT_ITEM, int32_t MV_CASE, int32_t* NUM_LANE, double* FINAL_MAX,
                       double* FINAL_MIN, int32_t* K_MXLOAD, int32_t* K_MNLOAD, int32_t* MODE_CODE,
                       int32_t* K_MAXINFL_S, int32_t* K_MININFL_S, int32_t* K_MXLOAD1ST, int32_t* K_MNLOAD1ST,
                       int32_t* K_MXLOAD2ND, int32_t* K_MNLOAD2ND, int32_t* K_MAXINFL_S1ST,
                       int32_t* K_MININFL_S1ST, int32_t* K_MAXINFL_S2ND, int32_t* K_MININFL_S2ND,
                       float* DISTANCE_MAX_RANGE, float* DISTANCE_MIN_RANGE) noexcept {
  report(MODE_CODE, [&](kernel::T_REQUEST& request) -> STATUS {
    constexpr std::int32_t PATH_ROOM = 260;
    if (kernel::RETURNS_AT_ONCE(RESULT_KIND, RESULT_ITEM)) return {};
    if (any_null({PATH, NUM_LANE, FINAL_MAX, FINAL_MIN, K_MXLOAD, K_MNLOAD, MODE_CODE, K_MAXINFL_S,
                  K_MININFL_S, K_MXLOAD1ST, K_MNLOAD1ST, K_MXLOAD2ND, K_MNLOAD2ND, K_MAXINFL_S1ST,
                  K_MININFL_S1ST, K_MAXINFL_S2ND, K_MININFL_S2ND, DISTANCE_MAX_RANGE, DISTANCE_MIN_RANGE})) {
      return STATUS::FAILED(REASON::NO_ARGUMENT);
    }
    STATUS status = begin_request(PATH, PATH_LEN, PATH_ROOM, *MODE_CODE, request);
    if (!status.OK()) return status;
    request.RESULT_KIND = RESULT_KIND;
    request.RESULT_ID = RESULT_ID;
    request.RESULT_ITEM = RESULT_ITEM;
    request.MV_CASE = MV_CASE;
    request.UNIT_78 = &host_settings.UNIT_78;

    const std::int64_t lanes = std::max(*NUM_LANE, 0);
    kernel::T_HOST_RESULTS host{NUM_LANE, FINAL_MAX, FINAL_MIN, {}};
    host.RECORDS[MAX_SIDE] = {
        record_table(K_MXLOAD, lanes),
        {record_table(K_MXLOAD1ST, lanes), record_table(K_MXLOAD2ND, lanes)},
        number_table(K_MAXINFL_S, lanes),
        {number_table(K_MAXINFL_S1ST, lanes), number_table(K_MAXINFL_S2ND, lanes)},
        distance_table(DISTANCE_MAX_RANGE, lanes),
    };
    host.RECORDS[MIN_SIDE] = {
        record_table(K_MNLOAD, lanes),
        {record_table(K_MNLOAD1ST, lanes), record_table(K_MNLOAD2ND, lanes)},
        number_table(K_MININFL_S, lanes),
        {number_table(K_MININFL_S1ST, lanes), number_table(K_MININFL_S2ND, lanes)},
        distance_table(DISTANCE_MIN_RANGE, lanes),
    };
    return kernel::RUN_KERNEL(request, host);
  });
}

void _MOV_KRNL_BS_5400_NUM_LANE(const char* PATH, int32_t PATH_LEN, int32_t* MODE_CODE,
                                int32_t* NUM_LANE) noexcept {
  report(MODE_CODE, [&](kernel::T_REQUEST& request) -> STATUS {
    if (any_null({PATH, MODE_CODE, NUM_LANE})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    constexpr std::int32_t PATH_ROOM = T_PATH::ROOM;
    if (PATH_LEN > PATH_ROOM) return STATUS::FAILED(REASON::BAD_PATH_LENGTH, PATH_LEN);
    STATUS status = begin_request(PATH, PATH_LEN, PATH_ROOM, *MODE_CODE, request);
    return status.OK() ? kernel::QUERY_NUM_LANE(request, *NUM_LANE) : status;
  });
}

void SET_INCLUDE_BLK_BS5400(const int32_t* PATH_LEN, const char* PATH) noexcept {
  name_included_set(PATH_LEN, PATH);
}

void SET_INCLUDE_BLK(const int32_t* PATH_LEN, const char* PATH) noexcept {
  name_included_set(PATH_LEN, PATH);
}

void INIT_MOVING_INFLUENCE(const int32_t* INCLUDE_LEN, const char* INCLUDE_PATH, const int32_t* BASE_LEN,
                           const char* BASE_PATH) noexcept {
  report([&]() -> STATUS {
    // A length of 0 may come with any pointer.
    if (any_null({INCLUDE_LEN, BASE_LEN}) || (*INCLUDE_LEN > 0 && INCLUDE_PATH == nullptr) ||
        (*BASE_LEN > 0 && BASE_PATH == nullptr)) {
      return STATUS::FAILED(REASON::NO_ARGUMENT);
    }
    influence_store.SET_INCLUDE(path_of(INCLUDE_LEN, INCLUDE_PATH));
    return influence_store.OPEN(path_of(BASE_LEN, BASE_PATH));
  });
}

void CLOSE_MOVING_INFLUENCE(void) noexcept {
  report([]() -> STATUS {
    influence_store.CLOSE();
    influence_store.FORGET_INCLUDE();
    return {};
  });
}

void REMOVE_MOVING_INFLUENCE(void) noexcept {
  report([]() -> STATUS { return {}; });
}

void REMOVE_MOVING_INFLUENCE_FILE_PATH(const int32_t* PATH_LEN, const char* PATH) noexcept {
  report([&]() -> STATUS {
    if (any_null({PATH_LEN, PATH})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    store::REMOVE_VOLUMES(path_of(PATH_LEN, PATH));
    return {};
  });
}

void READ_DISP_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP, float* ROW) noexcept {
  read_one(store::READ::DISP, ID, LOAD, &NO_PART, NCOMP, ROW);
}

void READ_DISP_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP, float* ROWS) noexcept {
  read_all(store::READ::DISP, ID, &NO_PART, NCOMP, ROWS);
}

void READ_REAC_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP, float* ROW) noexcept {
  read_one(store::READ::REAC, ID, LOAD, &NO_PART, NCOMP, ROW);
}

void READ_REAC_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP, float* ROWS) noexcept {
  read_all(store::READ::REAC, ID, &NO_PART, NCOMP, ROWS);
}

void READ_LREAC_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP, float* ROW) noexcept {
  read_one(store::READ::LREAC, ID, LOAD, &NO_PART, NCOMP, ROW);
}

void READ_LREAC_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP, float* ROWS) noexcept {
  read_all(store::READ::LREAC, ID, &NO_PART, NCOMP, ROWS);
}

void READ_ELEMENT_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP,
                            float* ROW) noexcept {
  read_one(store::READ::ELEMENT, ID, LOAD, &NO_PART, NCOMP, ROW);
}

void READ_ELEMENT_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP, float* ROWS) noexcept {
  read_all(store::READ::ELEMENT, ID, &NO_PART, NCOMP, ROWS);
}

void READ_VIRTUAL_BAR_STRESS_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP,
                                       float* ROW) noexcept {
  read_one(store::READ::VIRTUAL_BAR, ID, LOAD, &NO_PART, NCOMP, ROW);
}

void READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP,
                                                float* ROWS) noexcept {
  read_all(store::READ::VIRTUAL_BAR, ID, &NO_PART, NCOMP, ROWS);
}

void READ_COMPOSITE_BAR_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* PART,
                                  const int32_t* NCOMP, float* ROW) noexcept {
  read_one(store::READ::COMPOSITE_BAR, ID, LOAD, PART, NCOMP, ROW);
}

void READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* PART, const int32_t* NCOMP,
                                           float* ROWS) noexcept {
  read_all(store::READ::COMPOSITE_BAR, ID, PART, NCOMP, ROWS);
}

void GET_NUM_REACTION(int32_t* NUMBER) noexcept {
  count_ids(store::LIST::REAC, NUMBER);
}

void GET_NUM_REACTION_IDS(int32_t* IDS) noexcept {
  copy_ids(store::LIST::REAC, IDS);
}

void GET_NUM_LOCAL_REACTION(int32_t* NUMBER) noexcept {
  count_ids(store::LIST::LREAC, NUMBER);
}

void GET_NUM_LOCAL_REACTION_IDS(int32_t* IDS) noexcept {
  copy_ids(store::LIST::LREAC, IDS);
}

void GET_ELEMENT_NODE_INFO(const int32_t* ID, int32_t* COUNT, int32_t* NODES) noexcept {
  report([&]() -> STATUS {
    if (any_null({ID, COUNT, NODES})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    if (!influence_store.IS_OPEN()) return STATUS::FAILED(REASON::STORE_NOT_OPEN);
    const store::T_GROUP_TABLE& groups = influence_store.MAPS().ELEMENT_NODES;
    *COUNT = groups.COUNT(*ID);
    groups.COPY(*ID, NODES);
    return {};
  });
}

const char* movload_last_failure(void) noexcept {
  return last_failure.data();
}

const char* movload_version(void) noexcept {
  return MOVLOAD_VERSION;
}

}  // extern "C"
