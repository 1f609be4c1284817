// Signatures by two threads with a session each, against one thread that makes them all: threads [--short] PKI
#include "session.h"

namespace {

struct Job {
  std::string pki;
  int signatures;
  HANDLE ready, start;
};

DWORD WINAPI Sign(void* argument) {
  const Job& job = *static_cast<const Job*>(argument);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    auto quivo = bench::OpenSession(job.pki, job.pki + "\\store");
    auto param = bench::Signing(0);
    VARIANT data = bench::Bytes("An agreement", 12);
    ReleaseSemaphore(job.ready, 1, nullptr);
    WaitForSingleObject(job.start, INFINITE);
    for (int i = 0; i < job.signatures; ++i) {
      VARIANT none{};
      VARIANT message{};
      bench::Check(quivo->SignMem(param, data, none, &message), "SignMem");
      VariantClear(&message);
    }
    VariantClear(&data);
  }
  CoUninitialize();
  return 0;
}

/// Seconds from the moment at which all sessions are open.
double SecondsOf(const std::string& pki, int threads, int signatures) {
  Job job{pki, signatures / threads, CreateSemaphoreW(nullptr, 0, threads, nullptr),
          CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::vector<HANDLE> running;
  for (int i = 0; i < threads; ++i) running.push_back(CreateThread(nullptr, 0, Sign, &job, 0, nullptr));
  for (int i = 0; i < threads; ++i) WaitForSingleObject(job.ready, INFINITE);
  double seconds = bench::Seconds([&] {
    SetEvent(job.start);
    WaitForMultipleObjects(static_cast<DWORD>(threads), running.data(), TRUE, INFINITE);
  });
  for (HANDLE thread : running) CloseHandle(thread);
  CloseHandle(job.ready);
  CloseHandle(job.start);
  return seconds;
}

}  // namespace

int main(int count, char** arguments) {
  const bench::Effort effort = bench::Effort::of(count, arguments).withRounds(7);
  if (count != 2) return 1;
  const int signatures = effort.pick(2000, 4);
  bench::Samples samples;
  for (int round = 0; round < effort.rounds; ++round) {
    samples.module.push_back(SecondsOf(arguments[1], 2, signatures));
    samples.yardstick.push_back(SecondsOf(arguments[1], 1, signatures));
  }
  bench::Print("two threads", "s", samples);
}
