#include "engine/session_owner.h"

namespace engine {

int32_t SessionOwner::close() {
  // Forgotten first: a call that arrives while the engine closes must not reach the closing session.
  EngineSession closing = std::exchange(handle_, nullptr);
  SessionUse* outermost = nullptr;
  for (SessionUse* use = innermost_; use; use = use->outer_)
    if (use->handle_ == closing) outermost = use;
  if (!outermost) return QUIVO_Uninitialize(closing);
  outermost->closesAtEnd_ = true;
  return 0;
}

}  // namespace engine
