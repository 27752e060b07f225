#include "kernel/diagnostic_dump.h"

#include <array>
#include <new>
#include <string_view>

namespace kernel {
namespace {

constexpr std::array<std::string_view, 8> MLOAD_HEADINGS{
    "VEHI. NO.",      "W (HA_UDL)", "NO.LOADED RANGE",  "TYPE OF HB",
    "POSITION OF HB", "FACTOR",     "1/3 OR 1. HA UDL", " POS. OF HA KEL"};
constexpr std::array<std::string_view, 7> MLOADB_HEADINGS{
    "COMB. TYPE",     "W (HA_UDL)", "NO.LOADED RANGE", "TYPE OF HB",
    "POSITION OF HB", "FACTOR",     "0=1/3,1=1 HA_UDL"};

void append_left(std::string& text, std::string_view words, std::size_t width) {
  text.append(words.substr(0, width));
  if (words.size() < width) text.append(width - words.size(), ' ');
}

constexpr int DECIMALS = 5;

/// "LANE", a blank and a heading of 40 characters.
void append_heading(std::string& text, std::string_view heading) {
  text.append("LANE ");
  append_left(text, heading, 40);
  text.push_back('\n');
}

template <std::size_t N>
void append_headings(std::string& text, const std::array<std::string_view, N>& headings) {
  text.append("LANE ");
  for (const std::string_view heading : headings) {
    append_left(text, heading, 17);
    text.push_back(' ');
  }
  text.push_back('\n');
}

void append_distances(std::string& text, TABLE<real, NUMBER, LANE> distances, std::int32_t num_lane) {
  for (std::int32_t lane = 1; lane <= num_lane; ++lane) {
    APPEND_INTEGER(text, lane, 3);
    for (const std::int32_t i : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 199, 200}) {
      APPEND_REAL(text, static_cast<double>(distances(i, lane)), 13, DECIMALS);
    }
    text.push_back('\n');
  }
}

/// Ten integers a lane: a record, or the beginning of a range list.
template <class DIMENSION>
void append_rows(std::string& text, TABLE<std::int32_t, DIMENSION, LANE> table, std::int32_t num_lane,
                 std::size_t width) {
  for (std::int32_t lane = 1; lane <= num_lane; ++lane) {
    APPEND_INTEGER(text, lane, 3);
    for (std::int32_t i = 1; i <= 10; ++i) APPEND_INTEGER(text, table(i, lane), width);
    text.push_back('\n');
  }
}

constexpr std::size_t RECORD_WIDTH = 18;
constexpr std::size_t NUMBER_WIDTH = 8;
constexpr std::string_view SEQUENCE_HEADING = "| SEQUENTIAL NO. OF LOADED RANGE -->";

}  // namespace

std::string DIAGNOSTIC_TEXT(const T_HOST_RECORDS& host, std::int32_t num_lane, double final_max,
                            double final_min) {
  const T_HOST_SIDE& high = host[MAX_SIDE];
  const T_HOST_SIDE& low = host[MIN_SIDE];
  std::string text;
  const auto title = [&text](std::string_view line) { text.append(line).push_back('\n'); };
  const auto mload = [&](std::string_view line, const T_HOST_SIDE& side) {
    title(line);
    append_headings(text, MLOAD_HEADINGS);
    append_rows(text, side.K_MLOAD, num_lane, RECORD_WIDTH);
  };
  const auto mloadb = [&](std::string_view line, const T_HOST_SIDE& side, std::size_t plane) {
    title(line);
    append_headings(text, MLOADB_HEADINGS);
    append_rows(text, side.K_MLOADB[plane], num_lane, RECORD_WIDTH);
  };
  const auto numbers = [&](std::string_view line, TABLE<std::int32_t, NUMBER, LANE> table) {
    title(line);
    append_heading(text, SEQUENCE_HEADING);
    append_rows(text, table, num_lane, NUMBER_WIDTH);
  };

  title("DISTANCE OF RANGE");
  title("DISTANCE_MAX_RANGE=======================MAXMAXMAXMAX=========================");
  append_heading(text, "| DISTANCE OF POSITIVE INFL. RANGE -->");
  append_distances(text, high.DISTANCE_RANGE, num_lane);
  title("DISTANCE_MIN_RANGE=======================MINMINMINMIN=========================");
  append_heading(text, "| DISTANCE OF NEGATIVE INFL. RANGE -->");
  append_distances(text, low.DISTANCE_RANGE, num_lane);
  title("MLOAD");
  mload("MLOAD====K_MXLOAD========================MAXMAXMAXMAX=========================", high);
  mload("MLOAD====K_MNLOAD========================MINMINMINMIN=========================", low);
  title("INFL_S");
  numbers("INFL_S====K_MAXINFL_S========================MAXMAXMAXMAX=========================",
          high.K_INFL_S);
  numbers("INFL_S====K_MININFL_S========================MINMINMINMIN=========================", low.K_INFL_S);
  title("MLOADB");
  mloadb("MLOADB====K_MXLOAD1ST========================MAXMAXMAXMAX=========================", high, 0);
  mloadb("MLOADB====K_MNLOAD1ST========================MINMINMINMIN=========================", low, 0);
  mloadb("MLOADB====K_MXLOAD2ND========================MAXMAXMAXMAX=========================", high, 1);
  mloadb("MLOADB====K_MNLOAD2ND========================MINMINMIN=========================", low, 1);
  title("INFL_SB");
  numbers("INFL_SB==K_MAXINFL_S1ST========================MAXMAXMAXMAX=========================",
          high.K_INFL_SB[0]);
  numbers("INFL_SB==K_MININFL_S1ST========================MINMINMINMIN=========================",
          low.K_INFL_SB[0]);
  numbers("INFL_SB==K_MAXINFL_S2ND========================MAXMAXMAXMAX=========================",
          high.K_INFL_SB[1]);
  numbers("INFL_SB==K_MININFL_S2ND========================MINMINMINMIN=========================",
          low.K_INFL_SB[1]);
  title("======MAXIMUM========MINIMUM==========<FINAL>== ");
  APPEND_REAL(text, final_max, 15, DECIMALS);
  APPEND_REAL(text, final_min, 15, DECIMALS);
  text.push_back('\n');
  return text;
}

void WRITE_DIAGNOSTIC_FILE(const T_HOST_RECORDS& host, std::int32_t num_lane, double final_max,
                           double final_min, DIAGNOSTIC_UNIT& unit) {
  try {
    unit.WRITE(DIAGNOSTIC_TEXT(host, num_lane, final_max, final_min));
  } catch (const std::bad_alloc&) {
    // An aid for looking into a run must not fail it.
  }
  unit.CLOSE();
}

}  // namespace kernel
