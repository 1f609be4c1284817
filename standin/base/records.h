// Frees what the engine's records point to.
#pragma once

#include <type_traits>

#include "engine/layout.h"
#include "standin/base/buffers.h"

namespace standin {

/// Visits the members of records and frees what they point to.
class MemberRelease {
 public:
  explicit MemberRelease(Buffers& buffers) : buffers_(buffers) {}

  template <typename Number>
  requires std::is_integral_v<Number>
  void operator()(const Number&) const {}
  template <typename Record>
  requires std::is_class_v<Record>
  void operator()(const Record& record) const { ForEachMember(*this, record); }
  template <typename Element>
  void operator()(Element* const& element) const {
    release(element, 1);
  }
  template <typename Element>
  void operator()(std::pair<Element* const&, const int32_t&> list) const {
    release(list.first, list.second);
  }

 private:
  /// Skips an array that the session did not hand out: its count cannot be trusted either.
  template <typename Element>
  void release(Element* elements, int32_t count) const {
    if (!buffers_.owns(elements)) return;
    if constexpr (!std::is_integral_v<Element>) {
      for (int32_t i = 0; i < count; ++i) (*this)(elements[i]);
    }
    buffers_.release(elements);
  }

  Buffers& buffers_;
};

/// Frees what the record points to, and empties the record.
template <typename Record>
void FreeRecord(Record& record, Buffers& buffers) {
  ForEachMember(MemberRelease(buffers), std::as_const(record));
  record = {};
}

}  // namespace standin
