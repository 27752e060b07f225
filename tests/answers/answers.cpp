// The library's answers to the same questions about the same files on two platforms, held against each other
// bit for bit.
//
//   movload_answers models FOLDER [N]  writes the example bridge, N random models, and a list of questions
//   movload_answers ask FOLDER         asks them; writes every answer, all values and arrays in hexadecimal,
//                                      and the powers that the HA curve is made of
//   movload_answers compare A B        tells how two such lists differ, and fails where they differ by more
//                                      than the last bits of the power function explain
//   movload_answers equal A B          fails where they differ at all
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>

#include "modelkit/example_bridge.h"
#include "modelkit/model_writer.h"
#include "modelkit/random_model.h"
#include "modelkit/volume_writer.h"
#include "tests/host/host_call.h"
#include "tests/host/result_items.h"

namespace {

constexpr int QUESTIONS_OF_A_KIND = 6;  // of a random model

std::ofstream new_file(const std::string& name) {
  std::ofstream file(name, std::ios::binary);
  if (!file) throw std::runtime_error(name + ": can't be written");
  return file;
}

// A question is a line of numbers behind the name of its model: lanes, mode code, kind, id, item, case.

/// Every item of some results under every case; each kind has one numbering of items.
void ask_about_bridge(const std::string& folder, std::ostream& questions) {
  const modelkit::T_EXAMPLE bridge = modelkit::EXAMPLE_BRIDGE();
  modelkit::WRITE_MODEL(bridge.model, folder + "/bridge");
  for (const plain::KIND& kind : plain::KINDS) {
    const auto& responses = bridge.model.*kind.RESPONSES;
    const std::size_t step = std::max<std::size_t>(1, responses.size() / 8);
    for (std::size_t i = 0; i < responses.size(); i += step)
      for (int item = 1; item <= plain::ITEMS_OF(kind, bridge.model); ++item)
        for (std::size_t mv_case = 1; mv_case <= bridge.model.moving_load_cases.size(); ++mv_case)
          questions << "bridge " << bridge.model.lanes.size() << " 0 " << kind.RESULT_KIND << ' '
                    << responses[i].id << ' ' << item << ' ' << mv_case << '\n';
  }
}

/// Every second model is asked through influence volumes.
void ask_about_random_model(const std::string& folder, std::uint64_t seed, std::ostream& questions) {
  std::mt19937_64 random(seed);
  const auto between = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<std::uint64_t>(high - low + 1));
  };
  modelkit::T_MODEL model = modelkit::NUMBER_ELEMENTS_APART(modelkit::RANDOM_MODEL(
      random, {.other_sub_cases = 0.5, .straddle_lanes = 0.5, .axle_lists = 0.3, .class_definitions = 0.3}));
  model.elements_per_file = 1000;
  const std::string name = "random" + std::to_string(seed);
  modelkit::WRITE_MODEL(model, folder + "/" + name);
  const bool in_volumes = seed % 2 == 0;
  if (in_volumes) modelkit::WRITE_VOLUMES(model, folder + "/" + name, {.volumes = between(1, 3)});
  for (const plain::KIND& kind : plain::KINDS) {
    const auto& responses = model.*kind.RESPONSES;
    for (int i = 0; i < QUESTIONS_OF_A_KIND && !responses.empty(); ++i) {
      const auto response = static_cast<std::size_t>(between(0, static_cast<int>(responses.size()) - 1));
      questions << name << ' ' << model.lanes.size() << (in_volumes ? " 100 " : " 0 ") << kind.RESULT_KIND
                << ' ' << responses[response].id << ' ' << between(1, plain::ITEMS_OF(kind, model)) << ' '
                << between(1, std::max(1, static_cast<int>(model.moving_load_cases.size()))) << '\n';
    }
  }
}

void write_models(const std::string& folder, std::uint64_t random_models) {
  std::ofstream questions = new_file(folder + "/questions");
  ask_about_bridge(folder, questions);
  for (std::uint64_t seed = 1; seed <= random_models; ++seed) ask_about_random_model(folder, seed, questions);
}

/// The entries of an array that are neither 0 nor untouched, each with its place.
template <class T>
void tell(const char* name, const std::vector<T>& values) {
  std::printf(" %s", name);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto bits = std::bit_cast<std::uint32_t>(values[i]);
    if (bits != 0 && values[i] != T(host::UNTOUCHED)) std::printf(",%zu:%x", i + 1, bits);
  }
}

/// Powers over the loaded lengths and exponents of HA curves, as the curve takes them.
void tell_powers() {
  for (const float p : {0.475F, 0.67F, 0.1F}) {
    for (int step = 1; step <= 40'000; ++step) {
      const float length = 0.05F * static_cast<float>(step);
      std::printf("powf,%x,%x %x\n", std::bit_cast<std::uint32_t>(p), std::bit_cast<std::uint32_t>(length),
                  std::bit_cast<std::uint32_t>(std::pow(1.0F / length, p)));
    }
  }
}

void ask(const std::string& folder) {
  std::ifstream questions(folder + "/questions");
  std::string model;
  int lanes = 0, mode = 0, kind = 0, id = 0, item = 0, mv_case = 0;
  while (questions >> model >> lanes >> mode >> kind >> id >> item >> mv_case) {
    const host::ARGUMENTS answer = host::RUN(lanes, folder + "/" + model, mode, kind, id, item, mv_case);
    std::printf("%s,%d,%d,%d,%d,%d FINAL,%llx,%llx,%d", model.c_str(), mode, kind, id, item, mv_case,
                static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(answer.FINAL_MAX)),
                static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(answer.FINAL_MIN)),
                answer.MODE_CODE);
    answer.EACH_ARRAY(answer,
                      [](const char* name, const auto& array, const auto&) { tell(name, array.values); });
    std::printf("\n");
  }
  tell_powers();
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, separator);) words.push_back(word);
  return words;
}

std::vector<std::vector<std::string>> lines_of(const std::string& name) {
  std::ifstream file(name);
  std::vector<std::vector<std::string>> lines;
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(split(line, ' '));
  }
  if (lines.empty()) throw std::runtime_error(name + ": no answers");
  return lines;
}

// What is more than this fails the comparison.
constexpr double MOST_RELATIVE = 2.5e-7;  // of a value: two units in the last place of single precision
constexpr double MOST_POWERS = 0.002;     // share of powers that differ, each by one unit in the last place
constexpr double MOST_RECORDS = 0.001;    // share of answers whose records differ

class COMPARISON {
 public:
  void ANSWER(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    if (a.empty() || a.size() != b.size() || a[0] != b[0]) throw std::runtime_error("other questions");
    if (a[0].starts_with("powf")) {
      ++powers_;
      const long long ulps = std::stoll(a[1], nullptr, 16) - std::stoll(b[1], nullptr, 16);
      if (ulps != 0) ++other_powers_;
      most_ulps_ = std::max(most_ulps_, std::abs(ulps));
      return;
    }
    ++answers_;
    values(split(a[1], ','), split(b[1], ','));
    bool same_records = true;
    for (std::size_t i = 2; i < a.size(); ++i) {
      if (a[i] == b[i]) continue;
      ++other_arrays_[a[i].substr(0, a[i].find(','))];
      same_records = false;
    }
    if (same_records) return;
    ++other_records_;
    if (other_records_ <= 5) std::cout << "  records of " << a[0] << " differ\n";
  }

  [[nodiscard]] bool ARE_EQUAL() const { return other_powers_ + other_values_ + other_records_ == 0; }

  /// Prints the differences, and says whether they are as small as the power function's.
  [[nodiscard]] bool TELL() const {
    std::cout << powers_ << " powers, " << other_powers_ << " differ, by " << most_ulps_
              << " units in the last place at most\n"
              << answers_ << " answers, " << other_values_ << " with another value, by " << most_relative_
              << " of it at most; " << other_records_ << " with other records\n";
    for (const auto& [name, count] : other_arrays_) std::cout << "  " << name << ": " << count << '\n';
    const auto share = [](std::int64_t part, std::int64_t of) {
      return static_cast<double>(part) / static_cast<double>(std::max<std::int64_t>(of, 1));
    };
    return most_ulps_ <= 1 && share(other_powers_, powers_) <= MOST_POWERS &&
           most_relative_ <= MOST_RELATIVE && share(other_records_, answers_) <= MOST_RECORDS;
  }

 private:
  void values(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    if (a.at(3) != b.at(3)) throw std::runtime_error("a run fails on one platform alone");
    bool same = true;
    for (const std::size_t i : {1U, 2U}) {
      if (a.at(i) == b.at(i)) continue;
      same = false;
      const auto x = std::bit_cast<double>(std::uint64_t{std::stoull(a[i], nullptr, 16)});
      const auto y = std::bit_cast<double>(std::uint64_t{std::stoull(b[i], nullptr, 16)});
      most_relative_ = std::max(most_relative_, std::abs(x - y) / std::max(std::abs(x), std::abs(y)));
    }
    if (!same) ++other_values_;
  }

  std::int64_t powers_ = 0, other_powers_ = 0, answers_ = 0, other_values_ = 0, other_records_ = 0;
  long long most_ulps_ = 0;
  double most_relative_ = 0.0;
  std::map<std::string, int> other_arrays_;
};

bool compare(const std::string& name_a, const std::string& name_b, bool shall_be_equal) {
  const auto a = lines_of(name_a);
  const auto b = lines_of(name_b);
  if (a.size() != b.size()) throw std::runtime_error("one list is longer than the other");
  COMPARISON comparison;
  for (std::size_t i = 0; i < a.size(); ++i) comparison.ANSWER(a[i], b[i]);
  return comparison.TELL() && (comparison.ARE_EQUAL() || !shall_be_equal);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 2 && words[0] == "models") return write_models(words[1], 100), 0;
    if (words.size() == 3 && words[0] == "models") return write_models(words[1], std::stoull(words[2])), 0;
    if (words.size() == 2 && words[0] == "ask") return ask(words[1]), 0;
    if (words.size() == 3 && (words[0] == "compare" || words[0] == "equal"))
      return compare(words[1], words[2], words[0] == "equal") ? 0 : 1;
    std::cerr << "usage: movload_answers models FOLDER [N] | ask FOLDER | compare A B | equal A B\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
