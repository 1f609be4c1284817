// Attaching and detaching: libcrypto is set up and cleared by hand, so that the library leaves nothing in a process
// that unloads it.
#include <windows.h>

#include <openssl/crypto.h>

#include "standin/sessions/session.h"

namespace __gnu_cxx {
/// Gives back what the C++ runtime holds ready for exceptions when there is no memory left.
void __freeres();  // NOLINT(bugprone-reserved-identifier): the runtime's name
}  // namespace __gnu_cxx

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      // Its own clean-up at exit would run when this library is gone.
      return OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) == 1;
    case DLL_THREAD_DETACH:
      OPENSSL_thread_stop();
      break;
    case DLL_PROCESS_DETACH:
      // When the process ends, other threads were stopped wherever they were: nothing may be touched.
      if (processEnds != nullptr) break;
      standin::RemoveAllSessions();
      OPENSSL_cleanup();
      __gnu_cxx::__freeres();
      break;
  }
  return TRUE;
}
