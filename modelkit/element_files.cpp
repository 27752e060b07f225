#include "modelkit/element_files.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <fstream>
#include <span>
#include <stdexcept>

#include "modelkit/model_writer.h"

namespace modelkit {
namespace {

constexpr int MOST_FILES = 9;

/// The records of one element; zeros where it has no response.
std::vector<std::uint32_t> element_records(const T_ELEMENT_FAMILY& family, std::int32_t unit_loads,
                                           const T_RESPONSE* response) {
  const auto loads = static_cast<std::size_t>(std::max(unit_loads, 0));
  const auto head = static_cast<std::size_t>(family.head_words);
  const std::size_t record_words = head + static_cast<std::size_t>(family.values);
  std::vector<std::uint32_t> words(loads * record_words);
  for (std::size_t load = 0; load < loads; ++load) {
    std::uint32_t* const record = words.data() + load * record_words;
    std::fill_n(record, head, UNREAD_WORD);
    if (response == nullptr) continue;
    const std::size_t values = std::min(response->values.size(), record_words - head);
    for (std::size_t value = 0; value < values; ++value) {
      const std::vector<float>& line = response->values[value];
      if (load < line.size()) record[head + value] = std::bit_cast<std::uint32_t>(line[load]);
    }
  }
  return words;
}

/// Responses by id, from 0 to the greatest; of equal ids the last.
std::vector<const T_RESPONSE*> by_id(const T_ELEMENT_FAMILY& family) {
  std::vector<const T_RESPONSE*> responses(static_cast<std::size_t>(family.COUNT()) + 1);
  if (family.elements == nullptr) return responses;
  for (const T_RESPONSE& response : *family.elements)
    if (response.id >= 1) responses[static_cast<std::size_t>(response.id)] = &response;
  return responses;
}

}  // namespace

std::int32_t T_ELEMENT_FAMILY::COUNT() const {
  if (elements == nullptr || elements->empty()) return 0;
  return std::max(0, std::ranges::max_element(*elements, {}, &T_RESPONSE::id)->id);
}

std::array<T_ELEMENT_FAMILY, 5> ELEMENT_FAMILIES(const T_MODEL& model) {
  constexpr std::array<std::int32_t, 4> PLATE_VALUES{8, 40, 14, 70};
  const std::int32_t form = model.plate_form % 100;
  const std::size_t shape = form >= 1 && form <= 4 ? static_cast<std::size_t>(form) : 4;
  return {{{'T', 1, 2, &model.trusses},
           {'B', 1, 68, &model.beams},
           {'P', 5, PLATE_VALUES[shape - 1], &model.plates},
           {'S', 0, 0, nullptr},
           {'W', 1, 132, &model.walls}}};
}

void WRITE_ELEMENT_FILES(const T_MODEL& model, const std::string& directory_file) {
  const auto per_file = static_cast<std::size_t>(std::max(model.elements_per_file, 1));
  for (const T_ELEMENT_FAMILY& family : ELEMENT_FAMILIES(model)) {
    const std::vector<const T_RESPONSE*> responses = by_id(family);
    const std::string stem = directory_file + family.letter;
    std::size_t id = 1;
    for (int file_no = 1; file_no <= MOST_FILES; ++file_no) {
      const std::string path = stem + std::to_string(file_no);
      const std::size_t end = std::min(id + per_file, responses.size());
      const std::span in_file(responses.data() + id, responses.data() + end);
      if (std::ranges::count(in_file, nullptr) == std::ssize(in_file)) {
        std::remove(path.c_str());
        id = end;
        continue;
      }
      std::ofstream out(path, std::ios::binary | std::ios::trunc);
      for (; id < end; ++id) {
        const std::vector<std::uint32_t> words = element_records(family, model.unit_loads, responses[id]);
        out.write(reinterpret_cast<const char*>(words.data()),
                  static_cast<std::streamsize>(words.size() * sizeof words[0]));
      }
      out.close();
      if (!out) throw std::runtime_error("can't write " + path);
    }
    if (id < responses.size()) throw std::runtime_error("more than nine files " + stem);
  }
}

}  // namespace modelkit
