// The frame of every exported function: finds and locks the session, and turns exceptions into codes.
#pragma once

#include <openssl/err.h>

#include <new>

#include "standin/base/codes.h"
#include "standin/sessions/session.h"

namespace standin {

template <typename Work>
int32_t Guarded(Work work) noexcept {
  // Errors of earlier calls on this thread would be mistaken for errors of this one.
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

/// Runs `work(session)`; kBadSession if the handle is of no open session.
template <typename Work>
int32_t InSession(EngineSession handle, Work work) noexcept {
  return Guarded([&] {
    const std::shared_ptr<Session> session = FindSession(handle);
    const std::lock_guard scope(session->lock);
    work(*session);
  });
}

/// The same for work whose result goes to the caller's `out`.
template <typename Value, typename Work>
int32_t InSession(EngineSession handle, Value* out, Work work) noexcept {
  return InSession(handle, [&](Session& session) {
    Value& target = Required(out);
    target = work(session);
  });
}

}  // namespace standin
