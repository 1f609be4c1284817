// What calls of the shipped module cost, with an engine that does nothing: calls [--short] [FAMILIES...]
#include <objbase.h>

#include <map>

#include "calls/client.h"

namespace {

const std::map<std::string, void (*)(const bench::Effort&)> kFamilies = {{"bytes", bench::MeasureBytes},
                                                                         {"late-bound", bench::MeasureLateBound},
                                                                         {"factories", bench::MeasureFactories},
                                                                         {"results", bench::MeasureResults}};

}  // namespace

int main(int count, char** arguments) {
  bench::Effort effort = bench::Effort::of(count, arguments);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  // The results of methods are activated as any client's objects would be.
  auto registerServer = reinterpret_cast<HRESULT(WINAPI*)()>(
      reinterpret_cast<void*>(GetProcAddress(bench::TheModule(), "DllRegisterServer")));
  bench::Check(registerServer(), "DllRegisterServer");
  for (const auto& [name, measure] : kFamilies) {
    bool isNamed = count == 1;
    for (int i = 1; i < count; ++i) isNamed |= name == arguments[i];
    if (isNamed) measure(effort);
  }
  std::fflush(nullptr);
  // Objects of the platform's libraries are not released in order here.
  TerminateProcess(GetCurrentProcess(), 0);
}
