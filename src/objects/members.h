// The members of a record that an object owns, allocated with array-new: freed and copied member by member.
#pragma once

#include <windows.h>

#include "engine/layout.h"

namespace objects {

/// Frees a member and leaves it empty.
void Reset(char*& text);
void Reset(DataBlob_t& bytes);
void Reset(char**& texts, int32_t& count);

/// Replaces a member by a copy of an engine's. A missing text stays missing. E_OUTOFMEMORY leaves it empty.
HRESULT Copy(const char* from, char*& to);
HRESULT Copy(const DataBlob_t& from, DataBlob_t& to);
HRESULT Copy(char* const* from, int32_t fromCount, char**& to, int32_t& count);

/// Frees the texts, bytes and lists of texts of a record. What a record holds of other objects is theirs. Most members
/// of most records are empty.
struct FreeMember {
  void operator()(char*& text) const {
    if (text) Reset(text);
  }
  void operator()(DataBlob_t& bytes) const {
    if (bytes.data) Reset(bytes);
  }
  void operator()(std::pair<char**&, int32_t&> texts) const {
    if (texts.first) Reset(texts.first, texts.second);
  }
  template <class Other>
  void operator()(Other&&) const {}
};

/// Copies numbers, texts, bytes and lists of texts, until one fails. What a record holds of other objects is left out.
class CopyMember {
 public:
  HRESULT result() const { return result_; }

  void operator()(char* from, char*& to) {
    keep([&] { return Copy(from, to); });
  }
  void operator()(const DataBlob_t& from, DataBlob_t& to) {
    keep([&] { return Copy(from, to); });
  }
  void operator()(std::pair<char** const&, const int32_t&> from, std::pair<char**&, int32_t&> to) {
    keep([&] { return Copy(from.first, from.second, to.first, to.second); });
  }
  template <class Number>
  requires(sizeof(Number) == 4) void operator()(const Number& from, Number& to) { to = from; }
  template <class From, class To>
  void operator()(From&&, To&&) {}

 private:
  template <class Step>
  void keep(Step step) {
    if (SUCCEEDED(result_)) result_ = step();
  }

  HRESULT result_ = S_OK;
};

template <class Record>
void FreeMembers(Record& record) {
  engine::ForEachMember(FreeMember(), record);
}

/// E_OUTOFMEMORY.
template <class Record>
HRESULT CopyMembers(const Record& from, Record& to) {
  CopyMember copy;
  engine::ForEachMember(copy, from, to);
  return copy.result();
}

}  // namespace objects
