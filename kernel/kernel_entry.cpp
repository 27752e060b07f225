#include "kernel/kernel_entry.h"

#include <cstdio>
#include <optional>

#include "kernel/block_file.h"
#include "kernel/diagnostic_dump.h"
#include "kernel/driver.h"
#include "store/m_influence.h"

namespace kernel {
namespace {

/// The one way for words to the console, which is the host's.
/// Only messages that belong to the system take it.
void write_message(const char* line) {
  std::puts(line);
  std::fflush(stdout);
}

constexpr const char* BAD_PORTION = " HA UDL SEARCH ERROR IS ENCOUNTERED. PLEASE CONTACT KORVA SUPPORT ";
constexpr const char* CLASS_TABLE_FULL = " AN ERROR OCCURRED WHILE READING B-DOUBLE LAND INFORMATION";

/// Closes the store, and forgets the included set, when the run ends, whichever way.
class STORE_OF_RUN {
 public:
  explicit STORE_OF_RUN(store::INFLUENCE_STORE& store) : store_(store) {}
  ~STORE_OF_RUN() {
    store_.CLOSE();
    store_.FORGET_INCLUDE();
  }
  STORE_OF_RUN(const STORE_OF_RUN&) = delete;
  STORE_OF_RUN& operator=(const STORE_OF_RUN&) = delete;

 private:
  store::INFLUENCE_STORE& store_;
};

/// Reads, searches and combines; everything but the host's arrays.
STATUS work_out(const T_REQUEST& request, std::int32_t host_lanes, T_MODEL& model, T_ENVELOPE& envelope) {
  RECORD_FILE unit;
  std::optional<STORE_OF_RUN> store;
  if (request.STORE_MODE) {
    if (STATUS status = CHECK_INFLUENCE_FORMAT(unit, request.FILE_NAME); !status.OK()) return status;
    store.emplace(*request.STORE);
    if (STATUS status = request.STORE->OPEN(request.BASE_NAME); !status.OK()) return status;
  }
  STATUS status = READ_MODEL(unit, request, host_lanes, model);
  if (!status.OK()) {
    if (status.reason == REASON::CLASS_LANE_TABLE_FULL) {
      write_message("");
      write_message(CLASS_TABLE_FULL);
    }
    return status;
  }
  if (request.STORE_MODE && request.STORE->N_TOTAL_LOADS() != model.COUNTS.N_UNIT_LOAD) {
    status = STATUS::FAILED(REASON::UNIT_LOADS_DIFFER, request.STORE->N_TOTAL_LOADS());
    status.high = model.COUNTS.N_UNIT_LOAD;
    return status;
  }
  envelope = T_ENVELOPE(model.COUNTS.NUM_LANE);
  return RUN_LANE_ANALYSIS(model, request, unit, envelope);
}

}  // namespace

STATUS MAKE_REQUEST_FILE_NAME(std::string_view base_name, std::int32_t analysis_code,
                              std::string& file_name) {
  file_name = MAKE_BLOCK_FILE_NAME(base_name, analysis_code);
  if (file_name.empty()) return STATUS::FAILED(REASON::UNKNOWN_ANALYSIS_CODE, analysis_code);
  if (base_name.find('\0') != std::string_view::npos) return STATUS::FAILED(REASON::BAD_PATH);
  const bool fits = !base_name.empty() && file_name.size() <= static_cast<std::size_t>(MAX_FILE_NAME);
  return fits ? STATUS{}
              : STATUS::FAILED(REASON::BAD_PATH_LENGTH, static_cast<std::int64_t>(base_name.size()));
}

STATUS RUN_KERNEL(const T_REQUEST& request, const T_HOST_RESULTS& host) {
  T_MODEL model;
  T_ENVELOPE envelope(0);
  if (STATUS status = work_out(request, *host.NUM_LANE, model, envelope); !status.OK()) return status;

  // The answer stands, and the host's arrays take it. Nothing from here on fails or asks for memory.
  *host.NUM_LANE = model.COUNTS.NUM_LANE;
  if (envelope.SEARCHED) {
    *host.FINAL_MAX = envelope.FINAL_MAX;
    *host.FINAL_MIN = envelope.FINAL_MIN;
  }
  COPY_TO_HOST(envelope, host.RECORDS);
  FOLD_STRADDLE_LANES(model.LANES, envelope, host.RECORDS);
  const T_POINT_RULES rules{model.POINTS_PER_SEGMENT, model.COUNTS.KEEP_POINTS, model.COUNTS.CLASS_LANES != 0,
                            IS_SECTION_ITEM(request.RESULT_KIND, request.RESULT_ITEM)};
  const std::int32_t bad_portions =
      CHECK_LOAD_COMBINATION(host.RECORDS, model.COUNTS.NUM_LANE, model.COUNTS.N_STRADDLE, rules);
  for (std::int32_t i = 0; i < bad_portions; ++i) write_message(BAD_PORTION);
  TRIM_RECORDS({model.LANES, model.VEHICLES, model.COUNTS.MAX_POINTS}, envelope, host.RECORDS);
  ADD_PASS_DIRECTION(envelope, host.RECORDS);
#if MOVLOAD_DIAGNOSTIC_DUMP
  if (request.UNIT_78 != nullptr) {
    WRITE_DIAGNOSTIC_FILE(host.RECORDS, model.COUNTS.NUM_LANE, *host.FINAL_MAX, *host.FINAL_MIN,
                          *request.UNIT_78);
  }
#endif
  return {};
}

STATUS QUERY_NUM_LANE(const T_REQUEST& request, std::int32_t& num_lane) {
  RECORD_FILE unit;
  if (request.STORE_MODE) {
    if (STATUS status = CHECK_INFLUENCE_FORMAT(unit, request.FILE_NAME); !status.OK()) return status;
  }
  return READ_NUM_LANE(unit, request.FILE_NAME, num_lane);
}

}  // namespace kernel
