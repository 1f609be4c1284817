// What FindCert costs beyond the making of the objects that it returns.
//
// Every returned object is activated through COM, as any client's would be; that is most of the time. The
// bench compares a search with a loop that only activates and releases the same objects, in turn, and looks
// at how the time grows with the number of certificates. Its exit code is 1 when a limit is exceeded.
#include <objbase.h>
#include <quivocom.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "fake_engine/fake_engine.h"
#include "support/module.h"
#include "support/ptr.h"

namespace {

constexpr int kRounds = 5;
constexpr double kMostOverActivation = 1.15;
constexpr double kMostForTenTimes = 11.0;

template <class Work>
double Seconds(Work work) {
  auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

fake::Certificate SmallCertificate(int number) {
  fake::Certificate certificate;
  certificate.subject = "CN=user " + std::to_string(number);
  certificate.serialNumber = std::to_string(number);
  certificate.certHash.assign(20, static_cast<uint8_t>(number));
  return certificate;
}

template <class Class, class Interface>
Ptr<Interface> Activate() {
  Ptr<Interface> made;
  HRESULT hr =
      CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_ALL, __uuidof(Interface), reinterpret_cast<void**>(made.out()));
  if (FAILED(hr)) {
    std::printf("activation failed: 0x%08lX\n", hr);
    std::exit(1);
  }
  return made;
}

/// The objects of `count` certificates, held until all are made: one and two names each.
void ActivateOnly(int count) {
  std::vector<Ptr<IUnknown>> held;
  held.reserve(3 * count);
  for (int i = 0; i < count; ++i) {
    held.push_back(Ptr<IUnknown>::share(Activate<Certificate, ICertificate>().get()));
    for (int name = 0; name < 2; ++name) held.push_back(Ptr<IUnknown>::share(Activate<AltName, IAltName>().get()));
  }
}

void Find(IQUIVO* quivo, IFindParam* param, int count) {
  VARIANT found{};
  HRESULT hr = quivo->FindCert(param, &found);
  if (hr != S_OK || V_ARRAY(&found)->rgsabound[0].cElements != static_cast<ULONG>(count)) {
    std::printf("FindCert failed: 0x%08lX\n", hr);
    std::exit(1);
  }
  VariantClear(&found);
}

struct Row {
  double find;
  double overActivation;
};

/// A search and the plain activation in turn, so that a drift of the machine meets both.
Row Measure(IQUIVO* quivo, IFindParam* param, int count) {
  auto& certificates = TavlFakeEngine()->on("QUIVO_FindCert").certificates;
  certificates.clear();
  for (int i = 0; i < count; ++i) certificates.push_back(SmallCertificate(i));
  std::vector<double> find, ratio;
  for (int round = 0; round < kRounds; ++round) {
    double activation = Seconds([&] { ActivateOnly(count); });
    find.push_back(Seconds([&] { Find(quivo, param, count); }));
    ratio.push_back(find.back() / activation);
    TavlFakeEngine()->forgetCalls();
  }
  Row row{Median(find), Median(ratio)};
  std::printf("FindCert of %6d certificates: %7.3f s, %.3f x the activation of its objects\n", count, row.find,
              row.overActivation);
  return row;
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (Module::get().registerServer() != S_OK) {
    std::printf("the module cannot be registered\n");
    return 1;
  }
  bool good = false;
  {
    auto quivo = Activate<QUIVO, IQUIVO>();
    auto param = Activate<FindParam, IFindParam>();
    Find(quivo.get(), param.get(), 0);
    Row thousand = Measure(quivo.get(), param.get(), 1000);
    Row tenThousand = Measure(quivo.get(), param.get(), 10000);
    double growth = tenThousand.find / thousand.find;
    std::printf("Ten times the certificates take %.2f times as long (at most %.0f); over the activation at most %.2f\n",
                growth, kMostForTenTimes, kMostOverActivation);
    good = growth <= kMostForTenTimes && tenThousand.overActivation <= kMostOverActivation;
  }
  CoUninitialize();
  return good ? 0 : 1;
}
