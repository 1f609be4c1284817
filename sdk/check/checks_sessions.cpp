#include <windows.h>

#include "checks.h"
#include "trap.h"

namespace check {
namespace {

struct Worker {
  Kit& kit;
  std::string failure;
};

DWORD WINAPI Work(void* argument) {
  Worker& worker = *static_cast<Worker*>(argument);
  const std::string fault = FaultIn([&] {
    try {
      const Session session = worker.kit.open();
      for (int i = 0; i < 10; ++i) {
        const Bytes data = Payload(1000 + static_cast<size_t>(i));
        worker.kit.verifiesAs(session, worker.kit.sign(session, kSendCertificate, data), data);
      }
    } catch (const Failure& failure) {
      worker.failure = failure.seen;
    } catch (const NotSupported&) {
      worker.failure = "not supported";
    }
  });
  if (!fault.empty()) worker.failure = fault;
  return 0;
}

void WorkInTwoThreads(Kit& kit) {
  kit.ownCertificate();
  Worker workers[] = {{kit, ""}, {kit, ""}};
  HANDLE threads[] = {CreateThread(nullptr, 0, Work, &workers[0], 0, nullptr),
                      CreateThread(nullptr, 0, Work, &workers[1], 0, nullptr)};
  WaitForMultipleObjects(2, threads, TRUE, INFINITE);
  for (HANDLE thread : threads) CloseHandle(thread);
  for (const Worker& worker : workers) Expect(worker.failure.empty(), worker.failure);
}

/// Refused, without a handle.
void RefusesToOpen(const std::string& function, int32_t code, EngineSession session) {
  Fails(function, code);
  Expect(session == nullptr, function + " has failed and set the handle: the module takes the session for open");
}

void CheckOpening(Kit& kit) {
  kit.check("InitMinimal opens a session", "0 and a handle", [&] { kit.openMinimal(); });
  kit.check(kit.options.profile.empty() ? "InitializeEx opens a session" : "Initialize opens a session",
            "0 and a handle", [&] { kit.open(); });
  kit.check("Initialize refuses a profile that does not exist", "a failure, no handle", [&] {
    InText profile("no profile has this name");
    Out<EngineSession> session;
    const int32_t code = kit.engine.QUIVO_Initialize(profile.get(), 0, session.get());
    RefusesToOpen("Initialize", code, *session);
  });
  const auto refuses = [&](const char* what, const std::string& keys, const std::string& pin) {
    kit.check(std::string("InitializeEx refuses ") + what, "a failure, no handle", [&] {
      Needs(!kit.options.keys.empty(), "--keys");
      EngineSession session = nullptr;
      const int32_t code = kit.openWith(keys, pin, session);
      RefusesToOpen("InitializeEx", code, session);
    });
  };
  refuses("a wrong PIN", kit.options.keys, kit.options.pin + "0");
  refuses("keys that are not there", kit.options.keys + ".missing", kit.options.pin);
}

void CheckClosing(Kit& kit) {
  kit.check("Uninitialize closes a session that has handed out buffers", "0", [&] {
    Session session = kit.openMinimal();
    Out<DataBlob_t> random;
    Succeeds("GenRandom", kit.engine.QUIVO_GenRandom(session, 100, random.get()));
    Succeeds("Uninitialize", kit.engine.QUIVO_Uninitialize(session.release()));
  });
  kit.check("Uninitialize closes a session that has open streams", "0", [&] {
    Session session = kit.openMinimal();
    InText algorithm(kit.options.hash);
    Out<EngineStream> stream;
    Succeeds("StrHashInitMem", kit.engine.QUIVO_StrHashInitMem(session, algorithm.get(), stream.get()));
    Succeeds("Uninitialize", kit.engine.QUIVO_Uninitialize(session.release()));
  });
  kit.check("a closed session is refused", "a failure", [&] {
    Session session = kit.openMinimal();
    const EngineSession closed = session.release();
    Succeeds("Uninitialize", kit.engine.QUIVO_Uninitialize(closed));
    Out<DataBlob_t> random;
    Fails("GenRandom", kit.engine.QUIVO_GenRandom(closed, 100, random.get()));
    Fails("Uninitialize", kit.engine.QUIVO_Uninitialize(closed));
  });
}

}  // namespace

void CheckSessions(Kit& kit) {
  CheckOpening(kit);
  CheckClosing(kit);
  kit.check("two sessions are independent", "the second outlives the first", [&] {
    Session first = kit.openMinimal();
    const Session second = kit.openMinimal();
    Expect(static_cast<EngineSession>(first) != static_cast<EngineSession>(second), "one handle for two sessions");
    Succeeds("Uninitialize", kit.engine.QUIVO_Uninitialize(first.release()));
    Out<DataBlob_t> random;
    Succeeds("GenRandom", kit.engine.QUIVO_GenRandom(second, 100, random.get()));
    kit.take(second, *random, "GenRandom");
  });
  kit.check("two threads sign and verify, each in its session", "good signatures", [&] { WorkInTwoThreads(kit); });
  kit.report.check("Ctrl 4 describes what it did in the caller's buffer", "a text with its end", [&] {
    const Session session = kit.open();
    Guarded buffer(4096);
    Out<DataBlob_t> text;
    *text = {4096, buffer.data()};
    const int32_t code = kit.engine.QUIVO_Ctrl(session, kEngineCtrlUpdateCrl, text.get());
    Expect(text->data == buffer.data(), "Ctrl has exchanged the buffer");
    const void* end = std::memchr(buffer.data(), 0, buffer.size());
    Expect(end != nullptr, "a text without an end");
    if (buffer.data()[0] == 0) Succeeds("Ctrl", code);
    return "code " + Hex(code) + " and a text";
  });
}

}  // namespace check
