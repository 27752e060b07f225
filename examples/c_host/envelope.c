/* A whole host in plain C: asks for the envelope of one result and tells which loading governs it.
 *
 *   envelope BASE KIND ID ITEM CASE      for instance: envelope example/bridge 1 178 3 1
 *
 * BASE is the path and stem of the model's files, the numbers are those of _MOV_KRNL_BS_5400. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <movload.h>

/* The arrays of one side of the envelope, for all lanes. */
typedef struct {
  int32_t *records, *records_1st, *records_2nd;
  int32_t *ranges, *ranges_1st, *ranges_2nd;
  float* distances;
} side_arrays;

static void* zeros(int32_t values_per_lane, int32_t lanes, size_t size) {
  const size_t count = (size_t)values_per_lane * (size_t)(lanes > 0 ? lanes : 1);
  void* values = calloc(count, size);
  if (values == NULL) abort();
  return values;
}

static side_arrays make_side(int32_t lanes) {
  side_arrays side;
  side.records = zeros(MOVLOAD_RECORD_FIELDS, lanes, sizeof(int32_t));
  side.records_1st = zeros(MOVLOAD_RECORD_FIELDS, lanes, sizeof(int32_t));
  side.records_2nd = zeros(MOVLOAD_RECORD_FIELDS, lanes, sizeof(int32_t));
  side.ranges = zeros(MOVLOAD_RANGE_NUMBERS, lanes, sizeof(int32_t));
  side.ranges_1st = zeros(MOVLOAD_RANGE_NUMBERS, lanes, sizeof(int32_t));
  side.ranges_2nd = zeros(MOVLOAD_RANGE_NUMBERS, lanes, sizeof(int32_t));
  side.distances = zeros(MOVLOAD_RANGE_DISTANCES, lanes, sizeof(float));
  return side;
}

static void free_side(side_arrays* side) {
  free(side->records);
  free(side->records_1st);
  free(side->records_2nd);
  free(side->ranges);
  free(side->ranges_1st);
  free(side->ranges_2nd);
  free(side->distances);
}

static void print_side(const char* title, double value, const side_arrays* side, int32_t lanes) {
  printf("%s %.6g\n", title, value);
  for (int32_t lane = 0; lane < lanes; ++lane) {
    const int32_t* record = side->records + lane * MOVLOAD_RECORD_FIELDS;
    const int32_t* ranges = side->ranges + lane * MOVLOAD_RANGE_NUMBERS;
    const float* distances = side->distances + lane * MOVLOAD_RANGE_DISTANCES;
    if (record[MOVLOAD_FACTOR] == 0) continue;
    printf("  lane %d, factor %.3f: UDL %.3f", (int)lane + 1, record[MOVLOAD_FACTOR] / 1e7,
           record[MOVLOAD_W_HA_UDL] / 1000.0);
    for (int32_t i = 0; i < record[MOVLOAD_NO_LOADED_RANGE]; ++i) {
      const int32_t pair = 2 * (ranges[i] - 1); /* range numbers run from 1 */
      if (pair < 0 || pair >= MOVLOAD_RANGE_DISTANCES) continue;
      printf("%s %.2f to %.2f", i == 0 ? " on" : ",", (double)distances[pair], (double)distances[pair + 1]);
    }
    if (record[MOVLOAD_POS_OF_HA_KEL] != 0) printf("; KEL at point %d", (int)record[MOVLOAD_POS_OF_HA_KEL]);
    printf("\n");
  }
}

int main(int argc, char** argv) {
  if (argc != 6) {
    fprintf(stderr, "usage: envelope BASE KIND ID ITEM CASE\n");
    return 2;
  }
  const char* base = argv[1];
  const int32_t base_len = (int32_t)strlen(base);
  int32_t mode_code = 0; /* analysis code 0: the model's files end in .ZA3 */

  int32_t lanes = 0;
  _MOV_KRNL_BS_5400_NUM_LANE(base, base_len, &mode_code, &lanes);
  if (mode_code == -1) {
    fprintf(stderr, "%s\n", movload_last_failure());
    return 1;
  }

  side_arrays max = make_side(lanes);
  side_arrays min = make_side(lanes);
  double final_max = 0.0;
  double final_min = 0.0;
  _MOV_KRNL_BS_5400(base, base_len, atoi(argv[2]), atoi(argv[3]), atoi(argv[4]), atoi(argv[5]), &lanes,
                    &final_max, &final_min, max.records, min.records, &mode_code, max.ranges, min.ranges,
                    max.records_1st, min.records_1st, max.records_2nd, min.records_2nd, max.ranges_1st,
                    min.ranges_1st, max.ranges_2nd, min.ranges_2nd, max.distances, min.distances);
  if (mode_code == -1) {
    fprintf(stderr, "%s\n", movload_last_failure());
  } else {
    print_side("maximum", final_max, &max, lanes);
    print_side("minimum", final_min, &min, lanes);
  }
  free_side(&max);
  free_side(&min);
  return mode_code == -1 ? 1 : 0;
}
