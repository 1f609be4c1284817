// What every exported function does around its work: finds and holds the session, and turns whatever is thrown into a
// code.
#pragma once

#include <openssl/err.h>

#include <new>

#include "standin/base/codes.h"
#include "standin/sessions/session.h"

namespace standin {

/// Runs `work()`, which throws or returns nothing.
template <typename Work>
int32_t Guarded(Work work) noexcept {
  // Errors of earlier calls on this thread would be taken for those of this one.
  ERR_clear_error();
  int32_t code = kOk;
  try {
    work();
  } catch (const EngineError& error) {
    code = error.code;
  } catch (const std::bad_alloc&) {
    code = kWinOutOfMemory;
  } catch (...) {
    code = kInternal;
  }
  ERR_clear_error();
  return code;
}

/// A pointer that the caller must give.
template <typename T>
T& Required(T* pointer) {
  if (pointer == nullptr) Fail(kWinInvalidParameter);
  return *pointer;
}

/// Runs `work(session)` on the live session behind the handle; kBadSession when there is none.
template <typename Work>
int32_t InSession(EngineSession handle, Work work) noexcept {
  return Guarded([&] {
    const std::shared_ptr<Session> session = FindSession(handle);
    const std::lock_guard scope(session->lock);
    work(*session);
  });
}

/// The same for work that returns a value for the caller's `out`.
template <typename Value, typename Work>
int32_t InSession(EngineSession handle, Value* out, Work work) noexcept {
  return InSession(handle, [&](Session& session) {
    Value& target = Required(out);
    target = work(session);
  });
}

}  // namespace standin
