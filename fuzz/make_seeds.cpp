// Writes the seeds of the fuzzers into a folder: the examples and random models of every feature, undamaged,
// damaged in one place, and with calls of every kind. Usage: make_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "fuzz/description.h"

namespace {

using fuzz::T_DESCRIPTION;
using fuzz::T_STEP;

class seed_folder {
 public:
  explicit seed_folder(const std::string& folder) : folder_(folder) {
    std::filesystem::create_directories(folder_);
  }
  void write(const T_DESCRIPTION& description) {
    const std::vector<std::uint8_t> bytes = fuzz::BYTES_OF(description);
    std::ofstream out(folder_ / ("seed_" + std::to_string(++number_)), std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!out) throw std::runtime_error("can't write into " + folder_.string());
  }

 private:
  std::filesystem::path folder_;
  int number_ = 0;
};

void write_seeds(seed_folder& folder) {
  constexpr std::uint8_t EXAMPLE = 7;
  constexpr std::uint8_t INCLUDED = 32;
  std::mt19937 random(1);
  const auto byte = [&](unsigned end) { return static_cast<std::uint8_t>(random() % end); };
  const auto step = [&](std::uint8_t call_bit) {
    return T_STEP{.OP = static_cast<std::uint8_t>(byte(128) | call_bit),
                  .TARGET = byte(48),
                  .A = byte(4),
                  .B = byte(40),
                  .C = byte(20)};
  };
  for (std::uint8_t i = 0; i < 64; ++i) {
    T_DESCRIPTION description;
    description.MODEL.SOURCE =
        static_cast<std::uint8_t>((i % 4 == 3 ? EXAMPLE : 0) + (i % 2 == 0 ? INCLUDED : 0));
    description.MODEL.FEATURES = i % 4 == 3 ? byte(8) : byte(256);
    description.MODEL.FORM = i % 8 < 4 ? 0 : byte(64);
    description.MODEL.VOLUME_FORM = byte(256);
    description.MODEL.SEED = i;
    description.MODEL.POINTS = byte(30);
    description.MODEL.STEP = byte(4);
    folder.write(description);
    for (int calls = 0; calls < 3; ++calls) description.STEPS.push_back(step(T_STEP::CALL_BIT));
    folder.write(description);
    description.STEPS.insert(description.STEPS.begin(), step(0));
    folder.write(description);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_seeds FOLDER\n", stderr);
    return 2;
  }
  seed_folder folder(argv[1]);
  write_seeds(folder);
  return 0;
}
