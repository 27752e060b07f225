/* The public header as a host in plain C sees it: it compiles without extensions, every function can be
 * called, and a call that fails reports so and changes nothing else. */
#include <stdio.h>
#include <string.h>

#include "movload.h"

enum {
  LANES = 2,
  RECORDS = MOVLOAD_RECORD_FIELDS * LANES,
  NUMBERS = MOVLOAD_RANGE_NUMBERS * LANES,
  DISTANCES = MOVLOAD_RANGE_DISTANCES * LANES
};

static int faults = 0;

static void expect(int holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "not so: %s\n", what);
  ++faults;
}

static const char NO_MODEL[] = "no such folder/no such model";
static const int32_t NO_MODEL_LEN = (int32_t)sizeof NO_MODEL - 1;
static const int32_t UNTOUCHED = 4711;

static void lane_count_of_a_missing_model(void) {
  int32_t mode_code = 0;
  int32_t num_lane = UNTOUCHED;
  _MOV_KRNL_BS_5400_NUM_LANE(NO_MODEL, NO_MODEL_LEN, &mode_code, &num_lane);
  expect(mode_code == -1, "MODE_CODE of a failed lane query is -1");
  expect(num_lane == UNTOUCHED, "a failed lane query leaves NUM_LANE alone");
  expect(strstr(movload_last_failure(), "no such model.ZA3") != NULL, "the failure names the file");
}

static void envelope_of_a_missing_model(void) {
  static int32_t records[6][RECORDS];
  static int32_t numbers[6][NUMBERS];
  static float distances[2][DISTANCES];
  int32_t mode_code = 0;
  int32_t num_lane = LANES;
  double greatest = 1.0;
  double least = -1.0;
  records[0][MOVLOAD_VEHI_NO] = UNTOUCHED;
  _MOV_KRNL_BS_5400(NO_MODEL, NO_MODEL_LEN, MOVLOAD_RK_DISP, 1, 3, 1, &num_lane, &greatest, &least,
                    records[0], records[1], &mode_code, numbers[0], numbers[1], records[2], records[3],
                    records[4], records[5], numbers[2], numbers[3], numbers[4], numbers[5], distances[0],
                    distances[1]);
  expect(mode_code == -1, "MODE_CODE of a failed run is -1");
  expect(num_lane == LANES, "a failed run leaves NUM_LANE alone");
  expect(greatest > 0.5 && least < -0.5, "a failed run leaves both values alone");
  expect(records[0][MOVLOAD_VEHI_NO] == UNTOUCHED, "a failed run leaves the records alone");
  expect(strlen(movload_last_failure()) > 0, "a failed run tells why");
}

static void include_path_that_is_ignored(void) {
  const int32_t no_length = 0;
  SET_INCLUDE_BLK_BS5400(&no_length, "");
  expect(strlen(movload_last_failure()) == 0, "a call that didn't fail clears the text");
}

int main(void) {
  lane_count_of_a_missing_model();
  envelope_of_a_missing_model();
  include_path_that_is_ignored();
  expect(strcmp(movload_version(), EXPECTED_VERSION) == 0, "the version is the project's");
  return faults > 0;
}
