// Numbers of chance that a seed repeats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

class Random {
 public:
  /// Another sequence for every pair.
  Random(uint64_t seed, uint64_t number) : state_(seed * 0x9E3779B97F4A7C15 + number * 0xD1B54A32D192ED03) {}

  uint64_t next() {
    uint64_t mixed = state_ += 0x9E3779B97F4A7C15;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
  }
  /// From 0 to `count` - 1.
  uint32_t below(size_t count) { return static_cast<uint32_t>(next() % count); }
  bool chance(uint32_t percent) { return below(100) < percent; }
  bool oneIn(uint32_t count) { return below(count) == 0; }

  template <class List>
  auto& pick(List& list) {
    return list[below(list.size())];
  }
  template <class Value>
  Value of(std::initializer_list<Value> values) {
    return values.begin()[below(values.size())];
  }

 private:
  uint64_t state_;
};
