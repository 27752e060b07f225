#include "tools/envelope_report.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/text_layout.h"

namespace tools {
namespace {

T_LANE_SIDE lane_under_hb() {
  T_LANE_SIDE lane;
  lane.lane = 1;
  lane.carries = CARRIES::HB;
  lane.loading.factor = 1.0;
  lane.loading.hb = T_HB{3, {12, 115.5}};
  lane.pass = PASS::REVERSE;
  lane.combination_type = 2;
  T_HA_UDL& udl = lane.loading.udl.emplace();
  udl.intensity = 23.548;
  udl.loaded_length = 50.0;
  // Many ranges, not in the order of the lane.
  for (int number = 9; number >= 1; --number)
    udl.ranges.push_back({number, true, 100.0 * number, 100.0 * number + 50.0});
  return lane;
}

T_ENVELOPE_REPORT report_of(const T_LANE_SIDE& lane) {
  T_ENVELOPE_REPORT report;
  report.file = {"model", 0, "model.ZA3"};
  report.kind = FIND_KIND("disp");
  report.mv_case = 1;
  report.cases = 1;
  report.searched = true;
  report.values = {1.25, 0.0};
  report.sides[MAXIMUM] = {1, {lane}};
  report.sides[MINIMUM] = {0, {T_LANE_SIDE{}}};
  return report;
}

TEST(EnvelopeReport, NoLineOfTheTableIsWiderThanTheTerminal) {
  std::istringstream text(ENVELOPE_TEXT(report_of(lane_under_hb())));
  for (std::string line; std::getline(text, line);) EXPECT_LE(line.size(), TEXT_WIDTH) << line;
}

TEST(EnvelopeReport, AnHbIsToldWithTypePlaceAndDirection) {
  const std::string text = ENVELOPE_TEXT(report_of(lane_under_hb()));
  EXPECT_NE(text.find("HB  type 3 at 115.500 (point 12), reverse"), std::string::npos) << text;
  EXPECT_NE(text.find("UDL 23.548 kN/m over 50.000"), std::string::npos) << text;
  EXPECT_NE(text.find("100.000 to 150.000, 200.000 to 250.000"), std::string::npos) << text;
}

TEST(EnvelopeReport, TheRangesOfTheJsonKeepTheOrderOfTheSearch) {
  const auto json = nlohmann::json::parse(ENVELOPE_JSON(report_of(lane_under_hb())));
  const auto& lane = json["maximum"]["lanes"][0];
  EXPECT_EQ(lane["carries"], "HB");
  EXPECT_EQ(lane["pass"], "reverse");
  EXPECT_EQ(lane["hb"]["distance"], 115.5);
  EXPECT_EQ(lane["udl"]["ranges"][0]["number"], 9);
  EXPECT_TRUE(lane["kel"].is_null());
  EXPECT_EQ(json["minimum"]["governed"], false);
}

TEST(EnvelopeReport, ValuesAreNullWhereNothingWasSearched) {
  T_ENVELOPE_REPORT report = report_of(lane_under_hb());
  report.searched = false;
  EXPECT_TRUE(nlohmann::json::parse(ENVELOPE_JSON(report))["maximum"]["value"].is_null());
  EXPECT_NE(ENVELOPE_TEXT(report).find("Nothing was searched."), std::string::npos);
}

TEST(TextLayout, ALineBreaksBetweenPiecesAndNeverWithin) {
  EXPECT_EQ(WRAP({"ab", "cd", "ef"}, ", ", 7), (std::vector<std::string>{"ab, cd,", "ef"}));
  EXPECT_EQ(WRAP({"abcdefgh", "i"}, ", ", 4), (std::vector<std::string>{"abcdefgh,", "i"}));
  EXPECT_TRUE(WRAP({}, ", ", 4).empty());
}

TEST(TextLayout, ASinglePrecisionNumberReadsAsItWasWritten) {
  EXPECT_EQ(SHORT_DECIMAL(0.475F), 0.475);
  EXPECT_EQ(SHORT_DECIMAL(30.0F), 30.0);
}

}  // namespace
}  // namespace tools
