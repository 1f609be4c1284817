// What one thread does with objects of its own apartment, and how its results are judged by those of the others.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "attack/shared/random.h"
#include "quivocom.h"
#include "support/ptr.h"

using Bytes = std::vector<uint8_t>;

/// A list that threads share.
template <class Item>
class Shared {
 public:
  Shared() { InitializeCriticalSection(&section_); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;
  ~Shared() { DeleteCriticalSection(&section_); }

  void add(Item item) {
    EnterCriticalSection(&section_);
    // As many as any reader needs.
    if (items_.size() < 64) items_.push_back(std::move(item));
    LeaveCriticalSection(&section_);
  }
  /// One of them, or an empty one.
  Item any(Random& random) {
    EnterCriticalSection(&section_);
    Item item = items_.empty() ? Item{} : items_[random.below(items_.size())];
    LeaveCriticalSection(&section_);
    return item;
  }
  std::vector<Item> all() const { return items_; }

 private:
  CRITICAL_SECTION section_;
  std::vector<Item> items_;
};

struct Signature {
  Bytes data;
  Bytes message;
};

/// What all threads of an attack share.
struct Exchange {
  Shared<Signature> signatures;
  Shared<std::string> problems;
  /// The hash of `hashed`, as the first object computed it.
  Bytes hashed = Bytes(1000, 0x5A);
  Bytes hash;
};

/// One session and the operations on it. All on one thread.
class Work {
 public:
  Work(Exchange& exchange, Random& random, std::string name);

  bool isOpen() const { return opened_ == S_OK; }
  /// One operation of chance; what is wrong with it becomes a problem of the exchange.
  void step();
  /// The hash of what all hash.
  Bytes hash();

 private:
  void properties();
  void compareHash();
  void sign();
  void verify();
  void stream();
  void makeRandom();
  void expect(HRESULT expected, HRESULT hr, const char* what);

  Exchange& exchange_;
  Random& random_;
  std::string name_;
  Ptr<IQUIVO> quivo_;
  Ptr<ISignParam> signing_;
  Ptr<IVerifyParam> verification_;
  HRESULT opened_;
};

/// A new object of a class.
template <class Class, class Interface>
Ptr<Interface> CreateObject() {
  Ptr<Interface> object;
  CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), object.voidOut());
  return object;
}
