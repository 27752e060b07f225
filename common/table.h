// 1-based tables, typed by their dimensions, first index fastest.
//
// A TABLE is a view: a pointer and extents. Its dimension tags make a table of another shape a compile error,
// and name the culprit where KERNEL_CHECKS is set ("index entry = 3 outside 1..2"). An ARRAY owns the values
// of a table. Index 0 means "none" throughout the library and never addresses an entry.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#if KERNEL_CHECKS
#include <cstdio>
#include <cstdlib>
#endif

// The dimensions of the library's tables.
struct POINT {
  static constexpr char NAME[] = "influence point";
};
struct ENTRY {
  static constexpr char NAME[] = "transverse entry";
};
struct LINK {
  static constexpr char NAME[] = "link";
};
struct LOAD {
  static constexpr char NAME[] = "unit load";
};
struct LANE {
  static constexpr char NAME[] = "lane";
};
struct PLANE {
  static constexpr char NAME[] = "plane";
};
struct COLUMN {
  static constexpr char NAME[] = "column";
};
struct RANGE {
  static constexpr char NAME[] = "range";
};

template <class T, class... DIMENSIONS>
class TABLE {
 public:
  static constexpr std::size_t RANK = sizeof...(DIMENSIONS);
  using EXTENTS = std::array<std::int64_t, RANK>;

  constexpr TABLE() noexcept = default;
  constexpr TABLE(T* values, EXTENTS extents) noexcept : values_(values), extents_(extents) {}

  /// A table of values reads as a table of const values.
  constexpr operator TABLE<const T, DIMENSIONS...>() const noexcept requires(!std::is_const_v<T>) {
    return {values_, extents_};
  }

  template <class... INDEX>
  constexpr T& operator()(INDEX... index) const noexcept {
    static_assert(sizeof...(INDEX) == RANK, "one index for each dimension");
#if KERNEL_CHECKS
    std::size_t dimension = 0;
    (check(DIMENSIONS::NAME, static_cast<std::int64_t>(index), extents_[dimension++]), ...);
#endif
    // A fold over the index pack, which the compiler turns into plain address arithmetic.
    std::int64_t offset = 0;
    std::int64_t stride = 1;
    std::size_t at = 0;
    ((offset += (static_cast<std::int64_t>(index) - 1) * stride, stride *= extents_[at++]), ...);
    return values_[offset];
  }

  [[nodiscard]] constexpr std::int64_t EXTENT(std::size_t dimension = 0) const noexcept {
    return extents_[dimension];
  }
  [[nodiscard]] constexpr T* begin() const noexcept {
    return values_;
  }
  [[nodiscard]] constexpr T* end() const noexcept {
    std::int64_t count = RANK == 0 ? 0 : 1;
    for (const std::int64_t extent : extents_) count *= extent;
    return values_ + count;
  }

 private:
#if KERNEL_CHECKS
  static void check(const char* name, std::int64_t index, std::int64_t extent) noexcept {
    if (index >= 1 && index <= extent) return;
    std::fprintf(stderr, "index %s = %lld outside 1..%lld\n", name, static_cast<long long>(index),
                 static_cast<long long>(extent));
    std::abort();
  }
#endif

  T* values_ = nullptr;
  EXTENTS extents_{};
};

/// The owner of a table's values, cleared when it is sized. Sizes stand in 64 bits; std::bad_alloc passes
/// through.
template <class T, class... DIMENSIONS>
class ARRAY {
 public:
  ARRAY() = default;

  template <class... COUNT>
  explicit ARRAY(COUNT... count) {
    RESIZE(count...);
  }

  template <class... COUNT>
  void RESIZE(COUNT... count) {
    static_assert(sizeof...(COUNT) == sizeof...(DIMENSIONS), "one count for each dimension");
    extents_ = {static_cast<std::int64_t>(count)...};
    std::size_t size = 1;
    for (const std::int64_t extent : extents_) size *= static_cast<std::size_t>(extent);
    values_.assign(size, T{});
  }

  template <class... INDEX>
  T& operator()(INDEX... index) noexcept {
    return TABLE<T, DIMENSIONS...>(values_.data(), extents_)(index...);
  }
  template <class... INDEX>
  const T& operator()(INDEX... index) const noexcept {
    return VIEW()(index...);
  }

  [[nodiscard]] TABLE<T, DIMENSIONS...> VIEW() noexcept { return {values_.data(), extents_}; }
  [[nodiscard]] TABLE<const T, DIMENSIONS...> VIEW() const noexcept { return {values_.data(), extents_}; }
  [[nodiscard]] std::int64_t EXTENT(std::size_t dimension = 0) const noexcept { return extents_[dimension]; }
  [[nodiscard]] bool EMPTY() const noexcept { return values_.empty(); }

 private:
  std::vector<T> values_;
  std::array<std::int64_t, sizeof...(DIMENSIONS)> extents_{};
};
