#include "tests/replay/published_answers.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "include/movload.h"
#include "modelkit/beam_results.h"
#include "modelkit/example_span.h"

namespace replay {
namespace {

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

/// The number in a text like "moment at 12.5 m"; 0 where the text begins otherwise or has none there.
double number_behind(std::string_view start, std::string_view text) {
  double number = 0.0;
  if (text.starts_with(start)) std::from_chars(text.begin() + start.size(), text.end(), number);
  return number;
}

void ask_for(T_QUESTION& question, const std::map<std::string, int>& items, const std::string& result) {
  const auto item = items.find(result);
  if (item == items.end()) throw std::invalid_argument("no such result: " + result);
  question.kind = MOVLOAD_RK_SIMB;
  question.item = item->second;
}

void ask_one_span(T_QUESTION& question, const T_ANSWER& answer, const modelkit::T_SPAN_LANE& lane) {
  using namespace modelkit;
  const double span = answer.spans[0];
  question.model = SIMPLE_SPAN_MODEL(span, answer.points, lane);
  if (2.0 * number_behind("shear at ", answer.result) == span) {
    question.kind = MOVLOAD_RK_BEAM;
    question.id = SPAN_BEAM;
    question.item = BEAM_FORCE_ITEM(BEAM_MIDDLE, BEAM_SHEAR);
    return;
  }
  std::map<std::string, int> items = {{"shear at start", SPAN_END_SHEAR}};
  if (2.0 * number_behind("moment at ", answer.result) == span) items[answer.result] = SPAN_MIDSPAN_MOMENT;
  ask_for(question, items, answer.result);
}

void ask_two_spans(T_QUESTION& question, const T_ANSWER& answer, const modelkit::T_SPAN_LANE& lane) {
  using namespace modelkit;
  const double first = answer.spans[0];
  const double second = answer.spans[1];
  const double section = number_behind("moment at ", answer.result);
  T_TWO_SECTIONS sections;
  std::map<std::string, int> items = {{"moment over pier", TWO_SPAN_SUPPORT_MOMENT},
                                      {"shear at start", TWO_SPAN_FIRST_REACTION},
                                      {"shear before pier", TWO_SPAN_SHEAR_BEFORE},
                                      {"shear behind pier", TWO_SPAN_SHEAR_BEHIND},
                                      {"shear at end", TWO_SPAN_LAST_REACTION}};
  if (section > first) {
    sections.second = (section - first) / second;
    items[answer.result] = TWO_SPAN_SECOND_MOMENT;
  } else if (section > 0.0) {
    sections.first = section / first;
    items[answer.result] = TWO_SPAN_FIRST_MOMENT;
  }
  question.model = TWO_SPAN_MODEL(first, second, answer.points, lane, sections);
  ask_for(question, items, answer.result);
}

void load(modelkit::T_MODEL& model, const std::string& loading) {
  if (loading == "HA") return;  // as the models come
  const double units = number_behind("HB ", loading);
  const bool is_alone = loading.ends_with(" alone");
  if (units <= 0.0 || (!is_alone && !loading.ends_with(" with HA")))
    throw std::invalid_argument("no such loading: " + loading);
  modelkit::T_VEHICLE vehicle = modelkit::HA_1978_VEHICLE(units);
  if (is_alone) vehicle.ha_w0 = vehicle.ha_k = vehicle.ha_wmin = 0.0;
  model.vehicle_groups[0].vehicles = {vehicle};
  model.moving_load_cases = {{.combinations = {{{.code = 2, .scale = 1.0}}}}};
}

}  // namespace

std::vector<T_ANSWER> READ_ANSWERS(const std::string& file) {
  constexpr std::size_t COLUMNS = 9;
  std::ifstream stream(file);
  std::vector<T_ANSWER> answers;
  std::string line;
  std::getline(stream, line);  // the names of the columns
  while (std::getline(stream, line)) {
    const std::vector<std::string> cells = split(line, ',');
    if (cells.size() != COLUMNS) throw std::runtime_error(file + ": not nine columns: " + line);
    T_ANSWER answer{.spans = {},
                    .points = std::stoi(cells[1]),
                    .beyond = std::stod(cells[2]),
                    .loading = cells[3],
                    .result = cells[4],
                    .printed = cells[5],
                    .unit = cells[6],
                    .within = std::stod(cells[7]),
                    .source = cells[8]};
    for (const std::string& span : split(cells[0], '+')) answer.spans.push_back(std::stod(span));
    answers.push_back(std::move(answer));
  }
  if (answers.empty()) throw std::runtime_error(file + ": no answers can be read");
  return answers;
}

T_QUESTION QUESTION_OF(const T_ANSWER& answer) {
  // Points off the deck stand as close as those on the longest span.
  const double step = *std::max_element(answer.spans.begin(), answer.spans.end()) / (answer.points - 1);
  const modelkit::T_SPAN_LANE lane{.overrun = answer.beyond, .overrun_step = step};
  T_QUESTION question;
  (answer.spans.size() == 1 ? ask_one_span : ask_two_spans)(question, answer, lane);
  load(question.model, answer.loading);
  return question;
}

}  // namespace replay
