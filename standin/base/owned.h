// Owners of objects that a C function frees.
#pragma once

#include <memory>

namespace standin {

template <typename Function>
struct Freed;
template <typename Result, typename Object>
struct Freed<Result (*)(Object*)> {
  using Type = Object;
};

template <auto freeFunction>
struct FreeWith {
  using Object = typename Freed<decltype(freeFunction)>::Type;
  void operator()(Object* object) const { freeFunction(object); }
};

/// An object that `freeFunction` frees.
template <auto freeFunction>
using Owned = std::unique_ptr<typename FreeWith<freeFunction>::Object, FreeWith<freeFunction>>;

}  // namespace standin
