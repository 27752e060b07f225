"""movload from Python: ctypes for the calls, numpy for the arrays. `movload.h` is the reference."""

import ctypes
import dataclasses
import os
import sys
import threading

import numpy

# Fields of a record, as indices from 0.
(VEHI_NO, W_HA_UDL, NO_LOADED_RANGE, TYPE_OF_HB, POSITION_OF_HB, FACTOR, HA_UDL_PORTION, POS_OF_HA_KEL,
 COMB_TYPE) = range(9)

# Values that each lane has in the arrays.
RECORD_FIELDS = 10
RANGE_NUMBERS = 1000
RANGE_DISTANCES = 200

_integers = numpy.ctypeslib.ndpointer(numpy.int32, flags="C_CONTIGUOUS,WRITEABLE")
_floats = numpy.ctypeslib.ndpointer(numpy.float32, flags="C_CONTIGUOUS,WRITEABLE")
_int = ctypes.c_int32
_int_reference = ctypes.POINTER(_int)
_double_reference = ctypes.POINTER(ctypes.c_double)


class Failure(Exception):
    """A call failed; the text is one line that names the file and what was wrong with it."""


@dataclasses.dataclass
class Side:
    """One side of an envelope. The first index of each array is the lane, from 0."""

    value: float
    records: numpy.ndarray
    records_1st: numpy.ndarray  # of straddle lanes: what stands on the first parent lane
    records_2nd: numpy.ndarray
    ranges: numpy.ndarray
    ranges_1st: numpy.ndarray
    ranges_2nd: numpy.ndarray
    distances: numpy.ndarray

    @staticmethod
    def for_lanes(lanes):
        def integers(values):
            # A model may have no lanes, but every pointer must be given.
            return numpy.zeros((max(lanes, 1), values), numpy.int32)

        return Side(0.0, integers(RECORD_FIELDS), integers(RECORD_FIELDS), integers(RECORD_FIELDS),
                    integers(RANGE_NUMBERS), integers(RANGE_NUMBERS), integers(RANGE_NUMBERS),
                    numpy.zeros((max(lanes, 1), RANGE_DISTANCES), numpy.float32))

    def stretches(self, lane):
        """Start and end of each loaded range of a lane, from 0, as an array of two columns. Beside an HB the
        distances may lack a range (docs/records.md), which is left out then."""
        numbers = self.ranges[lane, :self.records[lane, NO_LOADED_RANGE]]
        pairs = self.distances[lane].reshape(-1, 2)
        pairs = pairs[numbers[(numbers > 0) & (numbers <= len(pairs))] - 1]
        return pairs[pairs[:, 0] < pairs[:, 1]]


class Library:
    """The library: one object serves a process. Calls wait for each other, as the library takes one at a time and
    ctypes would let other threads run meanwhile."""

    def __init__(self, file=None):
        """`file`: the shared library; else $MOVLOAD_LIBRARY, or the one that the system finds."""
        usual = "movload.dll" if sys.platform == "win32" else "libmovload.so.1"
        library = ctypes.CDLL(file or os.environ.get("MOVLOAD_LIBRARY", usual))
        self._lock = threading.Lock()
        self._last_failure = library.movload_last_failure
        self._last_failure.argtypes, self._last_failure.restype = [], ctypes.c_char_p
        self._num_lane = library._MOV_KRNL_BS_5400_NUM_LANE
        self._num_lane.argtypes = [ctypes.c_char_p, _int, _int_reference, _int_reference]
        self._num_lane.restype = None
        self._envelope = library._MOV_KRNL_BS_5400
        self._envelope.argtypes = ([ctypes.c_char_p] + 5 * [_int] + [_int_reference] + 2 * [_double_reference] +
                                   2 * [_integers] + [_int_reference] + 10 * [_integers] + 2 * [_floats])
        self._envelope.restype = None

    def lanes(self, base, mode_code=0):
        """Number of lanes of the model with these files, straddle lanes included."""
        path, mode, lanes = os.fsencode(base), _int(mode_code), _int()
        with self._lock:
            self._num_lane(path, len(path), mode, lanes)
            self._check(mode)
        return lanes.value

    def envelope(self, base, kind, id, item, mv_case, mode_code=0):
        """Maximum and minimum of one result under one moving load case, as two `Side`s."""
        path, mode, lanes = os.fsencode(base), _int(mode_code), _int(self.lanes(base, mode_code))
        high, low = Side.for_lanes(lanes.value), Side.for_lanes(lanes.value)
        greatest, least = ctypes.c_double(), ctypes.c_double()
        with self._lock:
            self._envelope(path, len(path), kind, id, item, mv_case, lanes, greatest, least, high.records,
                           low.records, mode, high.ranges, low.ranges, high.records_1st, low.records_1st,
                           high.records_2nd, low.records_2nd, high.ranges_1st, low.ranges_1st, high.ranges_2nd,
                           low.ranges_2nd, high.distances, low.distances)
            self._check(mode)
        high.value, low.value = greatest.value, least.value
        return high, low

    def _check(self, mode):
        if mode.value == -1:
            raise Failure(self._last_failure().decode(errors="replace"))
