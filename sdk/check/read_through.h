// Reads everything that a record of the engine's points to.
#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "engine/layout.h"
#include "kit.h"

namespace check {

class Reader {
 public:
  template <class Number>
  requires std::is_integral_v<Number>
  void operator()(const Number&) const {}
  void operator()(const char* text) const {
    if (text == nullptr) return;
    size_t length = 0;
    while (text[length] != 0) Expect(++length < kLongestText, "a text without an end");
  }
  void operator()(char* const& text) const { (*this)(static_cast<const char*>(text)); }
  void operator()(const DataBlob_t& blob) const {
    Expect((blob.len == 0) == (blob.data == nullptr), "a length without bytes, or bytes without a length");
    volatile uint8_t byte = 0;
    for (uint32_t i = 0; i < blob.len; ++i) byte = blob.data[i];
    static_cast<void>(byte);
  }
  template <class Record>
  requires std::is_class_v<Record>
  void operator()(const Record& record) const { engine::ForEachMember(*this, record); }
  template <class Record>
  requires std::is_class_v<Record>
  void operator()(Record* const& record) const {
    if (record != nullptr) (*this)(*record);
  }
  template <class Element>
  void operator()(std::pair<Element* const&, const int32_t&> list) const {
    Expect(list.second >= 0, "a list of " + std::to_string(list.second) + " elements");
    Expect((list.second == 0) == (list.first == nullptr), "a count without a list, or a list without a count");
    for (int32_t i = 0; i < list.second; ++i) (*this)(list.first[i]);
  }

 private:
  static constexpr size_t kLongestText = 1 << 20;
};

template <class Record>
void ReadThrough(const Record& record) {
  Reader()(record);
}

}  // namespace check
