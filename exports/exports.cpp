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

namespace {

/// The library's process-wide state: what one call leaves for the next, and the text of the last failure.
constinit kernel::HOST_SETTINGS host_settings;
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
  kernel::FAILURE_TEXT(status, request.FILE_NAME, last_failure.data(), last_failure.size());
  if (!status.OK() && mode_code != nullptr) *mode_code = -1;
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
  return kernel::MAKE_REQUEST_FILE_NAME(host_settings.BASE_NAME.TEXT(), mode.ANALYSIS_CODE,
                                        request.FILE_NAME);
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
    constexpr std::int32_t PATH_ROOM = kernel::T_PATH::ROOM;
    if (PATH_LEN > PATH_ROOM) return STATUS::FAILED(REASON::BAD_PATH_LENGTH, PATH_LEN);
    STATUS status = begin_request(PATH, PATH_LEN, PATH_ROOM, *MODE_CODE, request);
    return status.OK() ? kernel::QUERY_NUM_LANE(request, *NUM_LANE) : status;
  });
}

void SET_INCLUDE_BLK_BS5400(const int32_t* PATH_LEN, const char* PATH) noexcept {
  report(nullptr, [&](kernel::T_REQUEST&) -> STATUS {
    if (any_null({PATH_LEN, PATH})) return STATUS::FAILED(REASON::NO_ARGUMENT);
    if (*PATH_LEN < 1 || static_cast<std::size_t>(*PATH_LEN) > kernel::T_PATH::ROOM) return {};
    const std::string_view path(PATH, static_cast<std::size_t>(*PATH_LEN));
    if (path.find_first_not_of(' ') == std::string_view::npos) return {};
    host_settings.INCLUDE_PATH.SET(path);
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
