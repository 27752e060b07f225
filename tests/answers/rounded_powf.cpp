// Takes the place of the C library's powf, for the library too: as good as always the correctly rounded value,
// as mingw-w64 has it.
#include <cmath>

extern "C" __attribute__((visibility("default"))) float powf(float x, float y) noexcept {
  return static_cast<float>(std::pow(static_cast<double>(x), static_cast<double>(y)));
}
