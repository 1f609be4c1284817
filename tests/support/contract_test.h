// The base of every contract test: a fresh fake engine, and at the end of each test the counts of module objects,
// module allocations, engine memory and COM memory where they were at its beginning.
#pragma once

#include <gtest/gtest.h>

#include "fake_engine/fake_engine.h"
#include "quivocom.h"
#include "support/class_objects.h"
#include "support/module.h"
#include "support/ptr.h"
#include "support/results.h"
#include "support/type_library.h"
#include "support/values.h"

/// A new object of a class of the module, from the module's own class object.
Ptr<IUnknown> MakeUnknown(REFCLSID clsid, REFIID iid);

/// An object of the class whose default interface is `Interface`.
template <class Interface>
Ptr<Interface> Make() {
  Ptr<IUnknown> made = MakeUnknown(ClassOf(__uuidof(Interface)).clsid, __uuidof(Interface));
  return Ptr<Interface>::share(static_cast<Interface*>(static_cast<void*>(made.get())));
}

class ContractTest : public ::testing::Test {
 protected:
  // Construction and destruction, so that the members of a fixture stand between the two counts.
  ContractTest();
  ~ContractTest() override;

  fake::FakeEngine& engine() { return *TavlFakeEngine(); }
  /// A main object with an open session; the calls made for it are forgotten.
  Ptr<IQUIVO> openQuivo();
  /// The main object in untrusted-data mode, as a script host of the untrusting kind sets it.
  Ptr<IQUIVO> untrustedQuivo();
  /// For calls that show windows of the platform, which keep COM memory of their own: only the module's is counted.
  void leaveOutComMemory() { countsComMemory_ = false; }
  /// For calls of the platform's own functions that leak: neither COM memory nor the module's objects are counted.
  void leaveOutLeaks() { countsComMemory_ = countsObjects_ = false; }

 private:
  long objects_ = 0;
  long allocations_ = 0;
  size_t comMark_ = 0;
  bool countsComMemory_ = true;
  bool countsObjects_ = true;
};
