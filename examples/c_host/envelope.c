/* A whole host in plain C: asks for the envelope of one result and tells which loading governs it.
 *
 *   envelope BASE KIND ID ITEM CASE      for instance: envelope example/bridge 1 178 3 1
 *
 * BASE is the path and stem of the model's files, the numbers are those of _MOV_KRNL_BS_5400. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <movload.h>

/* The arrays of one side of the envelope, for all lanes: of lane 1 first, then of lane 2 and so on. */
typedef struct {
  int32_t *records, *records_1st, *records_2nd; /* MOVLOAD_RECORD_FIELDS a lane */
  int32_t *ranges, *ranges_1st, *ranges_2nd;    /* MOVLOAD_RANGE_NUMBERS a lane */
  float* distances;                             /* MOVLOAD_RANGE_DISTANCES a lane */
} side_arrays;

static void* zeros(int32_t values_per_lane, int32_t lanes, size_t size) {
  /* A model may have no lanes, but every pointer must be given. */
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

/* The HB. Its position is the influence point 25 m behind the last axle; where along the lane that is, and the
 * axles with it, is known to the host that laid the lane out. Of a straddling HB the portion tells the plane. */
static void print_hb(const int32_t* record, int32_t pass) {
  const int32_t plane = record[MOVLOAD_HA_UDL_PORTION] / 10 % 100;
  printf(" HB type %d %s, clear from point %d", (int)record[MOVLOAD_TYPE_OF_HB],
         pass == 2 ? "in reverse" : "forward", (int)record[MOVLOAD_POSITION_OF_HB]);
  if (plane > 0) printf(", plane %d", (int)plane);
  printf(";");
}

/* The HA UDL and where it lies: from the distances of its lane's ranges, else by the numbers of the ranges.
 * Beside an HB the distances may lack some of them (docs/records.md). */
static void print_udl(const int32_t* record, const int32_t* ranges, const float* distances) {
  const int32_t intensity = record[MOVLOAD_W_HA_UDL];
  if (intensity == 0) return;
  printf(" UDL %d.%03d on", (int)intensity / 1000, (int)intensity % 1000);
  for (int32_t i = 0; i < record[MOVLOAD_NO_LOADED_RANGE] && ranges[i] > 0; ++i) {
    const int32_t pair = 2 * (ranges[i] - 1); /* range numbers run from 1 */
    if (i > 0) printf(",");
    if (distances != NULL && pair < MOVLOAD_RANGE_DISTANCES && distances[pair] < distances[pair + 1])
      printf(" %.2f to %.2f", (double)distances[pair], (double)distances[pair + 1]);
    else
      printf(" range %d", (int)ranges[i]);
  }
  printf(";");
}

static void print_side(const char* title, double value, const side_arrays* side, int32_t lanes) {
  printf("%s %.7g\n", title, value);
  for (int32_t lane = 0; lane < lanes; ++lane) {
    const int32_t* record = side->records + lane * MOVLOAD_RECORD_FIELDS;
    const int32_t* ranges = side->ranges + lane * MOVLOAD_RANGE_NUMBERS;
    const float* distances = side->distances + lane * MOVLOAD_RANGE_DISTANCES;
    const int32_t pass = record[MOVLOAD_COMB_TYPE] / 100; /* 1 forward, 2 in reverse */

    /* The factor tells whether the combination that governs loads the lane. */
    if (record[MOVLOAD_FACTOR] != 0) {
      const int straddles = record[MOVLOAD_HA_UDL_PORTION] >= 100;
      /* The parent lanes of a straddling HB with full UDL on one of them tell that HB again. */
      const int told_again = straddles && record[MOVLOAD_COMB_TYPE] % 100 == 4;
      printf("  lane %d, factor %.3f:", (int)lane + 1, record[MOVLOAD_FACTOR] / 1e7);
      if (record[MOVLOAD_TYPE_OF_HB] != 0 && !told_again) print_hb(record, pass);
      if (told_again)
        printf(" beside the HB across it, %s",
               record[MOVLOAD_HA_UDL_PORTION] % 10 == 1 ? "full" : "a third of");
      /* The ranges of a straddle lane are those of its parents added up, without distances. */
      print_udl(record, ranges, straddles && !told_again ? NULL : distances);
      if (record[MOVLOAD_POS_OF_HA_KEL] != 0) printf(" KEL at point %d;", (int)record[MOVLOAD_POS_OF_HA_KEL]);
      printf("\n");
    }

    /* A straddling HB with full UDL on one parent lane and a third on the other has a record for either. */
    for (int32_t parent = 1; parent <= 2; ++parent) {
      record = (parent == 1 ? side->records_1st : side->records_2nd) + lane * MOVLOAD_RECORD_FIELDS;
      ranges = (parent == 1 ? side->ranges_1st : side->ranges_2nd) + lane * MOVLOAD_RANGE_NUMBERS;
      if (record[MOVLOAD_TYPE_OF_HB] == 0) continue;
      printf("  lane %d, factor %.3f, parent %d:", (int)lane + 1, record[MOVLOAD_FACTOR] / 1e7, (int)parent);
      print_hb(record, pass);
      print_udl(record, ranges, NULL);
      printf("\n");
    }
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

  /* First the number of lanes, for the size of the arrays. */
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
  /* A host with more questions calls this again with the same arrays, and with mode_code set anew. */
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
