// What the command line tells of influence volumes: which values are the columns of which item, and what two
// sets hold together.
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "kernel/driver.h"
#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "modelkit/volume_writer.h"
#include "tests/host/result_items.h"
#include "tests/telling_response.h"
#include "tests/temporary_directory.h"
#include "tools/command_influence.h"
#include "tools/command_inspect.h"
#include "tools/influence_picture.h"
#include "tools/influence_values.h"
#include "tools/tool_failure.h"

namespace tools {
namespace {

class InfluenceVolumes : public testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return files_.NAME(name); }

  /// What a command prints, or the line that it fails with.
  [[nodiscard]] static std::string run(const std::string& arguments) {
    CLI::App program;
    ADD_INFLUENCE_COMMAND(program);
    ADD_INSPECT_COMMAND(program);
    testing::internal::CaptureStdout();
    std::string failure;
    try {
      program.parse(arguments);
    } catch (const T_TOOL_FAILURE& error) {
      failure = std::string(error.what()) + '\n' + error.ADVICE();
    }
    const std::string output = testing::internal::GetCapturedStdout();
    return failure.empty() ? output : failure;
  }
  [[nodiscard]] static nlohmann::json answer(const std::string& arguments) {
    return nlohmann::json::parse(run(arguments + " --json"));
  }

 private:
  TEMPORARY_DIRECTORY files_;
};

/// Of every item the responses and the lines of a run that reads the block directory and element files.
TEST_F(InfluenceVolumes, ItemsHaveTheValuesAndTheLinesOfARun) {
  std::mt19937_64 random(5400);
  for (int n = 0; n < 4; ++n) {
    modelkit::T_RANDOM_OPTIONS features;
    features.straddle_lanes = 0.5;
    modelkit::T_MODEL written = modelkit::NUMBER_ELEMENTS_APART(modelkit::RANDOM_MODEL(random, features));
    written.elements_per_file = 1000;
    const modelkit::T_VOLUME_FORM form{.both_codes = true, .included_loads = n % 2 * written.unit_loads / 2};
    kernel::T_REQUEST request;
    request.FILE_NAME = modelkit::WRITE_MODEL(written, path("model")).path;
    modelkit::WRITE_VOLUMES(written, path("model"), form, path("included"));
    kernel::RECORD_FILE unit;
    kernel::T_MODEL model;
    ASSERT_TRUE(kernel::READ_MODEL(unit, request, std::numeric_limits<std::int32_t>::max(), model).OK());

    for (const plain::KIND& each : plain::KINDS) {
      const std::string kind = std::to_string(each.RESULT_KIND);
      for (const modelkit::T_RESPONSE& result : written.*each.RESPONSES) {
        T_INFLUENCE_QUESTION question{.paths = {path("model")}, .kind = FIND_KIND(kind), .id = result.id};
        if (form.included_loads > 0) question.paths.included = path("included");
        const T_INFLUENCE_VALUES values = READ_INFLUENCE(question);
        request.RESULT_KIND = question.kind->result_kind;
        request.RESULT_ID = result.id;
        EXPECT_EQ(std::ssize(values.row.items), results::ITEMS_OF(request.RESULT_KIND, model.COUNTS)) << kind;
        for (const T_ROW_ITEM& item : values.row.items) {
          request.RESULT_ITEM = item.number;
          results::T_RESPONSE response;
          ASSERT_TRUE(
              results::READ_RESPONSE(model, request, kernel::COMPONENT_OF(request), unit, response).OK());
          ASSERT_EQ(response.LOAD_ORD.COLUMNS, std::ssize(item.positions)) << kind << ' ' << item.number;
          int differences = 0;
          for (std::int32_t load = 1; load <= values.loads; ++load)
            for (std::int32_t c = 1; c <= response.LOAD_ORD.COLUMNS; ++c)
              differences += values.AT(load, item.positions[static_cast<std::size_t>(c - 1)]) !=
                             (response.LOAD_ORD.IS_ZERO() ? 0.0F : response.LOAD_ORD.VALUES(c, load));
          EXPECT_EQ(differences, 0) << kind << ' ' << result.id << ", item " << item.number;
          for (std::int32_t lane = 1; lane <= model.COUNTS.NUM_LANE; ++lane)
            EXPECT_EQ(LINES_ALONG_LANE(values, item, model, lane),
                      LINES_OF_LANE(model, response.LOAD_ORD, response.FAMILY->LAYOUT, model.LANE(lane)))
                << kind << ' ' << item.number;
        }
      }
    }

#ifndef _WIN32  // where the command line test alone has a gnuplot
    const std::string picture = path("line.svg");
    (void)run("influence " + path("model") +
              (form.included_loads > 0 ? " --include " + path("included") : "") +
              " --kind disp --item 3 --lane 1 --id " + std::to_string(written.disp.front().id) +
              " --picture " + picture);
    EXPECT_TRUE(std::filesystem::remove(picture));
#endif
  }
}

/// Two sets of two and of three unit loads, with what only hosts read.
void write_pair(const std::string& primary, const std::string& included) {
  constexpr int LOADS = 5;
  modelkit::T_MODEL model{.unit_loads = LOADS};
  model.disp = {TELLING_RESPONSE(2, 6, LOADS), TELLING_RESPONSE(7, 6, LOADS), TELLING_RESPONSE(9, 6, LOADS)};
  model.disp[1].values.assign(6, {0, 0, 3, 4, 5});
  modelkit::T_VOLUME_FORM form{.volumes = 2, .included_loads = 2, .leave_out_zeros = true};
  form.host_elements.composite_parts = 2;
  form.host_elements.composite_bars = {TELLING_RESPONSE(30, 70, LOADS)};
  form.host_elements.virtual_bars = {TELLING_RESPONSE(31, 4, LOADS)};
  form.host_elements.solids = {TELLING_RESPONSE(32, 78, LOADS)};
  form.host_elements.element_nodes = {{32, {2, 7, 9}}};
  modelkit::WRITE_VOLUMES(model, primary, form, included);
}

TEST_F(InfluenceVolumes, TwoSetsAreShownAsOne) {
  write_pair(path("own"), path("more"));
  const std::string both = path("own") + " --include " + path("more");
  const nlohmann::json volumes = answer("inspect " + both)["influence_volumes"];
  EXPECT_EQ(volumes["loads"], 5);
  EXPECT_EQ(volumes["sets"][0]["loads"], 2);
  EXPECT_EQ(volumes["sets"][1]["first_load"], 3);
  EXPECT_EQ(volumes["sets"][1]["load_id_runs"], nlohmann::json::parse("[[3, 5]]"));
  EXPECT_EQ(volumes["sets"][1]["volumes"].size(), 2U);
  EXPECT_EQ(volumes["lists"][0]["ids_by_set"], nlohmann::json::parse("[2, 3]"));
  EXPECT_EQ(volumes["lists"][0]["id_runs"], nlohmann::json::parse("[[2, 2], [7, 7], [9, 9]]"));
  EXPECT_EQ(volumes["composite_parts"], 2);
  EXPECT_EQ(volumes["elements_with_nodes"], 1);
  EXPECT_TRUE(volumes["notes"].empty());

  EXPECT_EQ(run("influence " + both + " --kind disp --id 7 --item 3 --csv"),
            "load,load_id,item_3\n1,1,0\n2,2,0\n3,3,3\n4,4,4\n5,5,5\n");
  EXPECT_NE(run("influence " + both + " --kind disp --id 7")
                .find("more: unit loads 1 to 2; it has nothing of this id"),
            std::string::npos);
  for (const auto& [kind, length, before] : {std::tuple{"composite --id 30 --part 2", 35, 35},
                                             {"virtual --id 31", 4, 0},
                                             {"solid --id 32", 78, 0}}) {
    const nlohmann::json values = answer("influence " + both + " --load 5 --kind " + kind);
    ASSERT_EQ(values["shape"], (std::vector{1, length})) << kind;
    for (int v = 1; v <= length; ++v)
      EXPECT_EQ(values["values"][0][static_cast<std::size_t>(v - 1)], 5000 + before + v) << kind;
  }
  EXPECT_EQ(answer("influence " + path("own") + " --kind solid --id 32")["nodes"], (std::vector{2, 7, 9}));

  modelkit::T_VOLUME_BLOCK stresses{.tag = modelkit::STREAM_ELEMENTS, .ids = {40}, .result_code = 312101};
  stresses.item_codes.assign(6, 1);
  stresses.data.assign(6, 8);
  modelkit::WRITE_VOLUME_SET({.load_ids = {1}, .volumes = {{stresses}}}, path("stresses_alone"));
  EXPECT_EQ(run("influence " + path("stresses_alone") + " --kind solid --id 40 --item 30 --csv"),
            "load,load_id,item_30\n1,1,8\n");
}

/// A block of one element whose values tell their point and item: 100 p + i.
modelkit::T_VOLUME_BLOCK numbered_block(std::int32_t id, std::vector<std::int32_t> item_codes,
                                        std::int32_t result_code, std::int32_t points, std::int32_t parts) {
  modelkit::T_VOLUME_BLOCK block{.tag = modelkit::STREAM_ELEMENTS,
                                 .ids = {id},
                                 .item_codes = std::move(item_codes),
                                 .result_code = result_code,
                                 .points = points};
  const std::int32_t items = static_cast<std::int32_t>(block.item_codes.size()) / parts;
  for (std::int32_t p = 0; p < points * parts; ++p)
    for (std::int32_t i = 1; i <= items; ++i)
      block.data.push_back(static_cast<float>(100 * (p % points + 1) + i));
  return block;
}

TEST_F(InfluenceVolumes, ElementsOfAnyPointsAreNamedByThem) {
  using CODES = std::vector<std::int32_t>;
  const CODES composite{30001001, 30001002, 30001003, 30002001, 30002002, 30002003};
  for (const std::int32_t points : {1, 2, 5, 7, 9}) {
    modelkit::WRITE_VOLUME_SET({.load_ids = {1},
                                .volumes = {{numbered_block(1, CODES(6, 140001), 140401, points, 1),
                                             numbered_block(1, CODES(7, 140001), 142101, points, 1),
                                             numbered_block(2, CODES(9, 150001), 140401, points, 1),
                                             numbered_block(2, CODES(19, 150001), 142101, points, 1),
                                             numbered_block(3, composite, 30000601, points, 2)}}},
                               path("model"));
    for (const auto& [kind, forces] : {std::pair{"beam --id 1", std::min(6 * points, 48)},
                                       {"wall --id 2", std::min(6 * points, 48) + std::min(3 * points, 24)},
                                       {"composite --id 3 --part 2", 3 * std::min((points + 3) / 2, 5)}}) {
      const nlohmann::json values = answer("influence " + path("model") + " --kind " + kind);
      int named = 0;
      for (std::size_t c = 0; c < values["columns"].size(); ++c) {
        const auto meaning = values["columns"][c]["meaning"].get<std::string>();
        int item = 0;
        int point = 0;
        if (std::sscanf(meaning.c_str(), "%*s %d at point %d", &item, &point) != 2) continue;
        EXPECT_EQ(values["values"][0][c], 100 * point + item) << kind << ", " << points << ": " << meaning;
        named += meaning.starts_with("force");
      }
      EXPECT_EQ(named, forces) << kind << ", " << points;
    }
  }
}

TEST_F(InfluenceVolumes, WhatIsNotThereIsTold) {
  write_pair(path("own"), path("more"));
  const auto says = [](const std::string& told, const std::string& wanted) {
    EXPECT_NE(told.find(wanted), std::string::npos) << told;
  };
  says(run("influence " + path("own") + " --kind disp --id 8"), "give an --id that they hold: 2, 7, 9");
  says(run("influence " + path("own") + " --kind beam --id 32"), "that number is of kind solid");
  says(run("influence " + path("own") + " --kind disp --id 2 --item 7"), "--item of 1 to 6");
  says(run("influence " + path("own") + " --kind disp --id 2 --load 4"), "--load of 1 to 3");
  says(run("influence " + path("own") + " --kind composite --id 30 --part 3"), "--part of 1 to 2");
  says(run("influence " + path("ow") + " --kind disp --id 2"), "In that folder: more, own");
  says(run("influence " + path("own") + " --kind disp --id 2 --include " + path("own_000.BLK")),
       "the same one");
  std::filesystem::resize_file(path("more_001.BLK"), 60);
  for (const char* command : {"inspect ", "influence --kind disp --id 2 "})
    says(run(command + path("own") + " --include " + path("more")), "more_001.BLK");

  modelkit::T_VOLUME_BLOCK nodes{.ids = {1, 2, 9}, .item_codes = {101}, .result_code = 101};
  nodes.data = {1, std::numeric_limits<float>::quiet_NaN(), 3};
  modelkit::WRITE_VOLUME_SET({.load_ids = {1, 2, 3}, .volumes = {{nodes}}}, path("nodes"));
  says(run("influence " + path("nodes") + " --kind disp --id 1"), "nan        2    nan        2");

  // Sets that the library joins all the same.
  modelkit::T_VOLUME_BLOCK others = nodes;
  others.ids = {1, 3, 9};
  modelkit::WRITE_VOLUME_SET({.load_ids = {1}, .volumes = {{nodes}}}, path("nodes"));
  modelkit::WRITE_VOLUME_SET({.load_ids = {1}, .volumes = {{others}}}, path("others"));
  const std::string told = run("inspect " + path("nodes") + " --include " + path("others"));
  says(told, "2 is read with values of 3");
  others.ids = {1, 3, 8, 10, 11};
  modelkit::WRITE_VOLUME_SET({.load_ids = {1}, .volumes = {{others}}}, path("others"));
  says(run("inspect " + path("nodes") + " --include " + path("others")),
       "2 ids of the included set behind the last one");
  others.ids = {5, 7, 6};
  modelkit::WRITE_VOLUME_SET({.load_ids = {1}, .volumes = {{others}}}, path("others"));
  says(run("inspect " + path("others")), "the ids don't ascend, 6 comes behind 7");
}

}  // namespace
}  // namespace tools
