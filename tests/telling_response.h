// Responses whose values tell where they belong.
#pragma once

#include <cstdint>
#include <vector>

#include "modelkit/model.h"

/// Value v under load j is 1000 * j + v.
inline modelkit::T_RESPONSE TELLING_RESPONSE(std::int32_t id, int values, int loads) {
  modelkit::T_RESPONSE response{.id = id};
  for (int v = 1; v <= values; ++v) {
    std::vector<float>& line = response.values.emplace_back();
    for (int load = 1; load <= loads; ++load) line.push_back(static_cast<float>(1000 * load + v));
  }
  return response;
}
