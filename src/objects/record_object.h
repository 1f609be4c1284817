// Base of the classes whose state is the very record that the engine reads.
#pragma once

#include "com/object.h"
#include "objects/members.h"
#include "objects/properties.h"
#include "quivocom.h"

namespace objects {

template <class Interface, class RecordType>
class RecordObject : public com::Object<Interface>, protected Properties {
 public:
  using Record = RecordType;

  /// The record as the engine is to see it, valid until the object changes.
  const Record* record() const { return &record_; }
  /// Replaces the members that are the object's own by copies of an engine's. E_OUTOFMEMORY.
  HRESULT copyFrom(const Record& from) { return CopyMembers(from, record_); }

 protected:
  RecordObject() {
    if constexpr (requires { record_.size; }) record_.size = sizeof(record_);
  }
  ~RecordObject() { FreeMembers(record_); }

  Record record_{};
};

}  // namespace objects
