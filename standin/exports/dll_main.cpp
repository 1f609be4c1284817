// Sets up and clears libcrypto, so that nothing is left in a process that unloads the library.
#include <windows.h>

#include <openssl/crypto.h>
#include <openssl/engine.h>

#include "standin/base/owned.h"
#include "standin/base/thread_blocks.h"
#include "standin/certificates/russian_names.h"
#include "standin/sessions/session.h"

extern "C" {
#include <gost-engine.h>
}

namespace __gnu_cxx {
/// Frees the memory that the C++ runtime reserves for exceptions.
void __freeres();  // NOLINT(bugprone-reserved-identifier): the runtime's name
}  // namespace __gnu_cxx

namespace {

bool AddGost() {
  ENGINE_load_gost();
  const standin::Owned<ENGINE_free> engine(ENGINE_by_id("gost"));
  return engine != nullptr && ENGINE_register_complete(engine.get()) == 1;
}

}  // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      if (!standin::StartThreadBlocks()) return FALSE;
      // libcrypto's own clean-up at exit would run after this library is unloaded.
      if (OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) != 1 || !AddGost()) return FALSE;
      standin::AddRussianNames();
      break;
    case DLL_THREAD_DETACH:
      OPENSSL_thread_stop();
      standin::FreeBlocksOfThread();
      break;
    case DLL_PROCESS_DETACH:
      // At the end of the process other threads may have stopped anywhere, with locks held.
      if (processEnds != nullptr) break;
      standin::RemoveAllSessions();
      standin::ForgetFolders();
      standin::ForgetRussianNames();
      OPENSSL_cleanup();
      standin::EndThreadBlocks();
      __gnu_cxx::__freeres();
      break;
  }
  return TRUE;
}
