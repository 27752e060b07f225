/* movload: moving-load analysis of bridges under BS 5400 HA and HB loading. The interface for hosts, in C and
 * C++.
 *
 * A solver has left the response of every result point to every unit load in the model's files. The library
 * answers, per call: for one component of one result under one moving load case, which loading of the lanes
 * gives the greatest and the least value, what are they, and how is each loading made up.
 *
 * Call order: SET_INCLUDE_BLK_BS5400 where the model has an included set of influence files;
 * _MOV_KRNL_BS_5400_NUM_LANE; allocate the arrays for that many lanes; _MOV_KRNL_BS_5400 once for each result
 * and moving load case. Every call reads the files anew, and nothing of a run matters to the next. A host may
 * also read influence values itself; the calls for that stand in the second half.
 *
 * Threads: one call at a time in a process. No call is reentrant.
 *
 * Arrays: the host owns every array. An array [10, lanes] holds ten values of lane 1, then ten of lane 2, and
 * so on; `lanes` is the NUM_LANE that the host passes. Indices given here run from 1, as do lanes, influence
 * points and range numbers; 0 means "none".
 *
 * Strings: a pointer and a length, no terminator needed; on Windows paths are in the ANSI code page. Values:
 * in the solver's units, with no scale, sign or unit changed by the library.
 *
 * Files: the model's are only read. Where a model has vehicle classes with lane definitions of their own and
 * axles on several lanes, runs for trusses list the ordinates of its straddle lanes in "fort.78" of the
 * working folder, which stays open until the process ends.
 *
 * Failures: a call that fails sets MODE_CODE to -1, leaves every other argument as it was, and
 * movload_last_failure tells why. No input file, however damaged, ends the process.
 */
#ifndef MOVLOAD_H
#define MOVLOAD_H

#include <stdint.h>

#if defined(_WIN32)
#define MOVLOAD_API
#else
#define MOVLOAD_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define MOVLOAD_NOEXCEPT noexcept
extern "C" {
#else
#define MOVLOAD_NOEXCEPT
#endif

/* RESULT_KIND: what RESULT_ID and RESULT_ITEM mean. A kind that isn't listed has nothing to search: its
 * records come back empty and FINAL_MAX and FINAL_MIN stay as they were. */
enum movload_result_kind {
  MOVLOAD_RK_DISP = 1,  /* displacement of a node; items 1 to 6, or 7 with warping */
  MOVLOAD_RK_REAC = 2,  /* reaction of a support node; items as above */
  MOVLOAD_RK_TRUSS = 3, /* truss; items 1 and 2 */
  MOVLOAD_RK_BEAM = 4,  /* beam; items 1 to 50, of which 1 to 30 may jump at a point; beyond 50 the call
                           returns at once with nothing changed */
  MOVLOAD_RK_PLATE = 5, /* plate; items 1 to 8, 40, 14 or 70, by the model's plate form 1 to 4 */
  MOVLOAD_RK_LRAC = 6,  /* reaction in local axes; items as RK_REAC */
  MOVLOAD_RK_WALL = 10, /* wall; items 1 to 105, of which 1 to 30 and 51 to 65 may jump at a point */
  MOVLOAD_RK_SIMB = 12, /* items 1 to 12 */
  MOVLOAD_RK_ELNK = 13, /* elastic link; items 1 to 12 */
  MOVLOAD_RK_NLNK = 14, /* nonlinear link; items 1 to 12 */
  MOVLOAD_RK_LDSP = 16  /* displacement in local axes; nothing to search for a node without local axes */
};

/* Fields of a record of K_MXLOAD and K_MNLOAD, as indices from 0 into the ten values of a lane. The record
 * arrays of the planes (K_MXLOAD1ST and so on) hold the first seven. */
enum movload_record_field {
  MOVLOAD_VEHI_NO = 0,         /* vehicle class of the last lane that is loaded; the same in every lane. 0: no
                                  combination has a value beyond 0 on this side */
  MOVLOAD_W_HA_UDL = 1,        /* intensity of the HA UDL times 1000, truncated; 0: no UDL */
  MOVLOAD_NO_LOADED_RANGE = 2, /* entries in use of the lane's range list; beside an HB some may be 0 */
  MOVLOAD_TYPE_OF_HB = 3,      /* 1 to 5 by inner axle spacing; 0: no HB */
  MOVLOAD_POSITION_OF_HB = 4,  /* influence point 25 m behind the last axle, where the stretch without HA UDL
                                  begins; 0: no HB. Of ordinary lanes in the lane's own numbering, of straddle
                                  lanes (and of all where three have an HB) without its repeated points, which
                                  items that may jump at a point always keep */
  MOVLOAD_FACTOR = 5,          /* scale of the lane in the governing combination, times 10000000, truncated */
  MOVLOAD_HA_UDL_PORTION = 6,  /* 1 full HA UDL, 0 one third; to be read beside the combination type. Of a
                                  straddling HB its lane, plane and portion in one number */
  MOVLOAD_POS_OF_HA_KEL = 7,   /* influence point of the knife-edge load, for a lane under HA alone; else 0 */
  MOVLOAD_COMB_TYPE = 8, /* last two digits: 1 no lane has an HB, 2 one lane has, 3 two lanes have and none
                                  has full HA UDL (also a straddle lane with full HA UDL beside its HB), 4 two
                                  lanes have and one has full HA UDL, 0 any other loading;
                                  hundreds: 1 forward pass, 2 reverse pass, 0 nothing governs the lane */
  MOVLOAD_RECORD_F10 = 9 /* 0 */
};

enum movload_sizes {
  MOVLOAD_RECORD_FIELDS = 10,   /* values of a record */
  MOVLOAD_RANGE_NUMBERS = 1000, /* values of a range list, of which the first 500 are used */
  MOVLOAD_RANGE_DISTANCES = 200 /* values of a distance list: 100 pairs of start and end */
};

/* The envelope of one result under one moving load case.
 *
 *   PATH            in      base name of the model's files: path and stem, without extension
 *   PATH_LEN        in      characters of PATH; of more than 260 the first 260 are taken
 *   RESULT_KIND     in      movload_result_kind
 *   RESULT_ID       in      node, support or element. One that the files don't hold gives 0 for both values,
 *                           has nothing to search with RK_LDSP, and fails for trusses, beams, plates and
 *                           walls
 *   RESULT_ITEM     in      component, from 1; one that the kind hasn't fails, unless the kind has nothing to
 *                           search
 *   MV_CASE         in      moving load case, from 1; one that the files don't hold gives 0 for both values
 *   NUM_LANE        in/out  in: lanes of the host's arrays, at least the model's;
 *                           out: the model's lanes, the straddle lanes last
 *   FINAL_MAX       out     greatest value, never below 0; left alone where there is nothing to search
 *   FINAL_MIN       out     least value, never above 0; likewise
 *   K_MXLOAD        out     [10, lanes] record of each lane, maximum side
 *   K_MNLOAD        out     [10, lanes] the same, minimum side
 *   MODE_CODE       in/out  in: analysis code, which chooses the extension (0 .ZA3, 1 .YA3, 2 .XA3, 3 .WA3,
 *                           4 .ZAX3, 101 .YA3), plus 100 where responses come from influence volumes;
 *                           out: -1 on failure, else unchanged
 *   K_MAXINFL_S     out     [1000, lanes] numbers of the loaded ranges, maximum side; entries 1 to 500 are
 *                           written, NO_LOADED_RANGE of them in use
 *   K_MININFL_S     out     [1000, lanes] the same, minimum side
 *   K_MXLOAD1ST     out     [10, lanes] records of a straddle lane, first plane, maximum side
 *   K_MNLOAD1ST     out     [10, lanes] first plane, minimum side
 *   K_MXLOAD2ND     out     [10, lanes] second plane, maximum side
 *   K_MNLOAD2ND     out     [10, lanes] second plane, minimum side
 *   K_MAXINFL_S1ST  out     [1000, lanes] loaded ranges of a straddle lane, first plane, maximum side
 *   K_MININFL_S1ST  out     [1000, lanes] first plane, minimum side
 *   K_MAXINFL_S2ND  out     [1000, lanes] second plane, maximum side
 *   K_MININFL_S2ND  out     [1000, lanes] second plane, minimum side
 *   DISTANCE_MAX_RANGE
 *                   out     [200, lanes] (start, end) of each range of positive influence, in lane distance:
 *                           of range k at 2 * k - 1 and 2 * k; zeros behind the last range. Beside an HB what
 *                           it leaves free of them; of a range that it splits the far piece is number 100
 *   DISTANCE_MIN_RANGE
 *                   out     [200, lanes] the same for the ranges of negative influence
 *
 * Every pointer must be given, also where a model has no lanes. Arrays of lanes beyond the model's are
 * cleared, but K_MXLOAD, K_MNLOAD, K_MAXINFL_S and K_MININFL_S, which stay as they were. */
MOVLOAD_API void _MOV_KRNL_BS_5400(const char* PATH, int32_t PATH_LEN, int32_t RESULT_KIND, int32_t RESULT_ID,
                                   int32_t RESULT_ITEM, int32_t MV_CASE, int32_t* NUM_LANE, double* FINAL_MAX,
                                   double* FINAL_MIN, int32_t* K_MXLOAD, int32_t* K_MNLOAD,
                                   int32_t* MODE_CODE, int32_t* K_MAXINFL_S, int32_t* K_MININFL_S,
                                   int32_t* K_MXLOAD1ST, int32_t* K_MNLOAD1ST, int32_t* K_MXLOAD2ND,
                                   int32_t* K_MNLOAD2ND, int32_t* K_MAXINFL_S1ST, int32_t* K_MININFL_S1ST,
                                   int32_t* K_MAXINFL_S2ND, int32_t* K_MININFL_S2ND,
                                   float* DISTANCE_MAX_RANGE, float* DISTANCE_MIN_RANGE) MOVLOAD_NOEXCEPT;

/* The number of lanes of a model, straddle lanes included: the size of a host's arrays.
 *
 *   PATH, PATH_LEN  in      as above, up to 1024 characters with the extension
 *   MODE_CODE       in/out  as above
 *   NUM_LANE        out     lanes; left alone on failure
 */
MOVLOAD_API void _MOV_KRNL_BS_5400_NUM_LANE(const char* PATH, int32_t PATH_LEN, int32_t* MODE_CODE,
                                            int32_t* NUM_LANE) MOVLOAD_NOEXCEPT;

/* Names the included set of influence files for the next run that reads influence volumes: the same as
 * SET_INCLUDE_BLK below. Such a run closes the influence store in the end, and with that forgets the set. */
MOVLOAD_API void SET_INCLUDE_BLK_BS5400(const int32_t* PATH_LEN, const char* PATH) MOVLOAD_NOEXCEPT;

/* Influence values. The solver leaves them in a set of volumes, BASE_000.BLK, BASE_001.BLK and so on, one
 * float32 for each component of each result point and each unit load. An included set may add unit loads for
 * the same result points: loads are numbered from 1 through both, the included set's first, and both together
 * are the influence store, of which a process has one.
 *
 * Call order: SET_INCLUDE_BLK where there is an included set; INIT_MOVING_INFLUENCE; any reads and queries;
 * CLOSE_MOVING_INFLUENCE. A run of _MOV_KRNL_BS_5400 that reads influence volumes closes a store that is
 * open.
 *
 * Arguments go by reference. A read gives rows of NCOMP values, positions from 1: never more, whatever a
 * record holds, and with an NCOMP of 0 or less nothing. What isn't stored reads as 0: an unknown result
 * point, a load outside 1 to the number of loads, a point that one set lacks under that set's loads, a record
 * that can't be read. Where no store is open, reads and queries leave their outputs as they are, but the two
 * GET_NUM_ that give a number give 0. */

/* Names the included set for every opening from the next one on, until CLOSE_MOVING_INFLUENCE.
 *
 *   PATH_LEN  in  characters of PATH; 0 or less, more than 1024, or blanks only change nothing
 *   PATH      in  base path of the included set; blanks at both ends don't belong to it */
MOVLOAD_API void SET_INCLUDE_BLK(const int32_t* PATH_LEN, const char* PATH) MOVLOAD_NOEXCEPT;

/* Opens the store; one that is open is closed first. Where it can't be opened, all reads and queries give
 * nothing, and movload_last_failure tells why.
 *
 *   INCLUDE_LEN, INCLUDE_PATH  in  the included set, as SET_INCLUDE_BLK takes it; 0 keeps the one named
 *                                  before
 *   BASE_LEN, BASE_PATH        in  base path of the primary set, up to 1016 characters */
MOVLOAD_API void INIT_MOVING_INFLUENCE(const int32_t* INCLUDE_LEN, const char* INCLUDE_PATH,
                                       const int32_t* BASE_LEN, const char* BASE_PATH) MOVLOAD_NOEXCEPT;

/* Closes the store, keeps its files, and forgets the included set. Does no harm where none is open. */
MOVLOAD_API void CLOSE_MOVING_INFLUENCE(void) MOVLOAD_NOEXCEPT;

/* Does nothing. */
MOVLOAD_API void REMOVE_MOVING_INFLUENCE(void) MOVLOAD_NOEXCEPT;

/* Deletes the volumes of a set from disk. Nothing is deleted where the first is missing, holds no influence
 * data or doesn't tell how many there are; later ones that are missing are passed over. */
MOVLOAD_API void REMOVE_MOVING_INFLUENCE_FILE_PATH(const int32_t* PATH_LEN,
                                                   const char* PATH) MOVLOAD_NOEXCEPT;

/* One row of a node's results: displacements, reactions, reactions in local axes.
 *
 *   ID     in   node
 *   LOAD   in   unit load, from 1
 *   NCOMP  in   values of a row
 *   ROW    out  [NCOMP] the node's components, as many as are stored, then zeros
 *
 * The _ALL_LOAD forms give the rows of all unit loads, one after the other: ROWS [NCOMP, loads]. */
MOVLOAD_API void READ_DISP_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP,
                                     float* ROW) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_DISP_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP,
                                              float* ROWS) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_REAC_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP,
                                     float* ROW) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_REAC_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP,
                                              float* ROWS) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_LREAC_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP,
                                      float* ROW) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_LREAC_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP,
                                               float* ROWS) MOVLOAD_NOEXCEPT;

/* An element's results. The row depends on the family of the element, which the store knows; an element of
 * two families gives zeros. A row shorter than given here goes without the stresses.
 *
 *   trusses, two kinds       1 value a point
 *   plates                   8 forces a point, then 6 stresses a point: 8 or 14 values with one point, 40 or
 *                            70 with five
 *   beams                    48 forces, 20 stresses: 68 values
 *   walls                    72 forces, 60 stresses: 132 values
 *   solids                   24 forces, 54 stresses: 78 values
 *   general links, two kinds the record as it is stored */
MOVLOAD_API void READ_ELEMENT_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* NCOMP,
                                        float* ROW) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_ELEMENT_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP,
                                                 float* ROWS) MOVLOAD_NOEXCEPT;

/* The stresses of a virtual bar, as they are stored. */
MOVLOAD_API void READ_VIRTUAL_BAR_STRESS_INFLUENCE(const int32_t* ID, const int32_t* LOAD,
                                                   const int32_t* NCOMP, float* ROW) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_VIRTUAL_BAR_STRESS_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* NCOMP,
                                                            float* ROWS) MOVLOAD_NOEXCEPT;

/* One part of a composite bar: 3 forces at each of five stations, then 4 stresses at each: 35 values.
 *
 *   PART  in  from 1; one that the bars haven't gives zeros */
MOVLOAD_API void READ_COMPOSITE_BAR_INFLUENCE(const int32_t* ID, const int32_t* LOAD, const int32_t* PART,
                                              const int32_t* NCOMP, float* ROW) MOVLOAD_NOEXCEPT;
MOVLOAD_API void READ_COMPOSITE_BAR_INFLUENCE_ALL_LOAD(const int32_t* ID, const int32_t* PART,
                                                       const int32_t* NCOMP, float* ROWS) MOVLOAD_NOEXCEPT;

/* The supports that have reactions, or reactions in local axes: how many there are, and their nodes in
 * the order of the files, which ascends in a sound set.
 *
 *   NUMBER  out  0 where no store is open
 *   IDS     out  [NUMBER] */
MOVLOAD_API void GET_NUM_REACTION(int32_t* NUMBER) MOVLOAD_NOEXCEPT;
MOVLOAD_API void GET_NUM_REACTION_IDS(int32_t* IDS) MOVLOAD_NOEXCEPT;
MOVLOAD_API void GET_NUM_LOCAL_REACTION(int32_t* NUMBER) MOVLOAD_NOEXCEPT;
MOVLOAD_API void GET_NUM_LOCAL_REACTION_IDS(int32_t* IDS) MOVLOAD_NOEXCEPT;

/* The nodes of an element.
 *
 *   ID     in   element
 *   COUNT  out  number of nodes; 0 for an unknown element
 *   NODES  out  [COUNT] in the order of the file; there must be room for the longest list */
MOVLOAD_API void GET_ELEMENT_NODE_INFO(const int32_t* ID, int32_t* COUNT, int32_t* NODES) MOVLOAD_NOEXCEPT;

/* Why the last call failed: one line that names the file, the block, the record and what was wrong; empty
 * after a call that didn't fail. The text is the library's and stands until the next call. */
MOVLOAD_API const char* movload_last_failure(void) MOVLOAD_NOEXCEPT;

/* The library's version, "major.minor.patch". */
MOVLOAD_API const char* movload_version(void) MOVLOAD_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
