// A result as a list of named numbers, to be held against another bit for bit.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

struct FIELD_LIST {
  struct T_FIELD {
    const char* NAME;
    std::int32_t BITS;
    bool operator==(const T_FIELD& other) const { return BITS == other.BITS; }
  };

  void ADD(const char* name, std::int32_t value) { fields.push_back({name, value}); }
  void ADD(const char* name, float value) { ADD(name, std::bit_cast<std::int32_t>(value)); }
  void ADD(const char* name, const std::vector<std::int32_t>& numbers) {
    ADD(name, static_cast<std::int32_t>(numbers.size()));
    for (const std::int32_t number : numbers) ADD(name, number);
  }

  std::vector<T_FIELD> fields;
};

/// The first difference in words, empty where there is none.
inline std::string DIFFERENCE(const FIELD_LIST& got, const FIELD_LIST& judged) {
  const auto& fields = got.fields;
  const auto [is, should] = std::ranges::mismatch(fields, judged.fields);
  if (is == fields.end() && should == judged.fields.end()) return {};
  if (is == fields.end() || should == judged.fields.end()) return "one has more fields than the other";
  std::ostringstream text;
  text << "field " << is - fields.begin() << ", " << is->NAME << ", is " << is->BITS << " ("
       << std::bit_cast<float>(is->BITS) << " as a real) and should be " << should->BITS << " ("
       << std::bit_cast<float>(should->BITS) << ")";
  return text.str();
}
