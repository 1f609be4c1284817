// What one call is given: plausible and hostile values, kept until the call has returned, then examined and freed.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <deque>
#include <string>
#include <vector>

#include "attack/calls/actors.h"
#include "attack/shared/random.h"
#include "support/values.h"

/// The size of a variable that a by-reference VARIANT of `type` points to; 0 if the type is unknown.
size_t SizeOfVariable(VARTYPE type);

class CallValues {
 public:
  CallValues(Random& random, Actors& actors) : random_(random), actors_(actors) {}
  CallValues(const CallValues&) = delete;
  CallValues& operator=(const CallValues&) = delete;
  ~CallValues() = default;

  /// A VARIANT of any type, lent to the call.
  VARIANT any();
  /// Bytes in a form that the module takes.
  VARIANT bytes();
  VARIANT object(IDispatch* object);
  /// A string, or null.
  BSTR text();
  VARIANT number(VARTYPE type);
  /// A by-reference VARIANT to a variable of `type`, empty.
  VARIANT reference(VARTYPE type);
  /// The address of a variable of `type`, which the call may write.
  void* variable(VARTYPE type);
  /// A VARIANT that the call may write. One that is overwritten without being cleared must not own anything.
  VARIANT* output(bool mayOwn);
  /// Keeps an object alive until the call is over.
  IDispatch* hold(Ptr<IDispatch> object);

  /// Frees everything; what the call left wrong.
  std::vector<std::string> finish();

 private:
  struct Kept {
    VARIANT value;
    VARTYPE madeAs;      // of what was made
    size_t guardedFrom;  // the bytes of the value that no write may reach; 0 for none
    SAFEARRAY* locked;   // an array that the caller has locked
  };

  VARIANT hostile(int depth);
  VARIANT hostileReference(int depth);
  VARIANT unknownType();
  VARIANT array(int depth);
  SAFEARRAY* arrayOf(VARTYPE element, int depth);
  /// A string that is its receiver's.
  BSTR newText();
  VARIANT* keep(const VARIANT& value);
  void* scratch();
  static bool release(Kept& kept, std::string& problem);

  Random& random_;
  Actors& actors_;
  // The addresses stay when more is kept.
  std::deque<Kept> kept_;
  std::deque<std::vector<uint8_t>> scratch_;
  std::vector<Ptr<IDispatch>> held_;
};

/// Arrays of 4 Mi elements, which are made once and freed before the memory of COM is counted no more.
void MakeLargeArrays();
void FreeLargeArrays();
