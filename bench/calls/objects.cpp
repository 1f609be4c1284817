// Objects: made by the factories of their classes, and made as the results of methods.
#include <objbase.h>
#include <quivocom.h>

#include <vector>

#include "calls/client.h"
#include "stub_engine/stub_engine.h"

namespace bench {
namespace {

constexpr int kPolicies = 3;
constexpr int kExtensions = 5;

void MakeAndRelease(IClassFactory* factory) {
  Ptr<IDispatch> made;
  Check(factory->CreateInstance(nullptr, IID_IDispatch, made.voidOut()), "CreateInstance");
}

/// The certificates that the engine finds: names, three policies and five extensions each.
class EngineCertificates {
 public:
  explicit EngineCertificates(int count) : certificates_(count) {
    for (PolicyRecord& policy : policies_) policy = {text("1.3.6.1.4.1.55555.1"), text("Example"), 1, text("Notice")};
    for (ExtensionRecord& extension : extensions_) extension = {text("2.999.7"), 4, 0, {sizeof(bytes_), bytes_}};
    for (CertificateRecord& record : certificates_) {
      record.fields = 0x7FFFF;
      record.issuer = text("CN=Example authority, O=Example, C=RU");
      record.serialNumber = text("1F4C");
      record.subject = text("CN=Anna, O=Example, C=RU");
      record.algorithm = text("sha256WithRSAEncryption");
      record.keyId = text("8D1F0E5A8D1F0E5A8D1F0E5A8D1F0E5A8D1F0E5A");
      record.issuerAltName.emailAddress = text("ca@example.test");
      record.subjectAltName.emailAddress = text("anna@example.test");
      record.policyCount = kPolicies;
      record.policies = policies_;
      record.extensionCount = kExtensions;
      record.extensions = extensions_;
      record.certEncoded = {sizeof(encoded_), encoded_};
      record.certHash = {sizeof(bytes_), bytes_};
      statuses_.push_back({0, 1700000000, &record});
    }
    auto size = static_cast<int32_t>(count);
    TavlStubEngine()->found = {size, certificates_.data()};
    TavlStubEngine()->verified = {size, statuses_.data()};
  }
  EngineCertificates(const EngineCertificates&) = delete;
  EngineCertificates& operator=(const EngineCertificates&) = delete;
  ~EngineCertificates() {
    TavlStubEngine()->found = {};
    TavlStubEngine()->verified = {};
  }

 private:
  // The module reads these, and never writes.
  static char* text(const char* text) { return const_cast<char*>(text); }

  uint8_t bytes_[20] = {};
  uint8_t encoded_[1024] = {};
  PolicyRecord policies_[kPolicies] = {};
  ExtensionRecord extensions_[kExtensions] = {};
  std::vector<CertificateRecord> certificates_;
  std::vector<SignStatusEntry> statuses_;
};

template <class Class, class Interface>
void Activate(std::vector<Ptr<IUnknown>>& held, int count) {
  for (int i = 0; i < count; ++i) {
    Interface* made = nullptr;
    Check(CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_ALL, __uuidof(Interface), reinterpret_cast<void**>(&made)),
          "CoCreateInstance");
    held.push_back(Ptr<IUnknown>::adopt(made));
  }
}

/// The objects of `count` certificates, held until all are made.
void ActivateCertificates(int count, bool withStatus) {
  std::vector<Ptr<IUnknown>> held;
  held.reserve(static_cast<size_t>(count) * (4 + kPolicies + kExtensions));
  for (int i = 0; i < count; ++i) {
    if (withStatus) Activate<SignStatus, ISignStatus>(held, 1);
    Activate<Certificate, ICertificate>(held, 1);
    Activate<AltName, IAltName>(held, 2);
    Activate<Policy, IPolicy>(held, kPolicies);
    Activate<Extension, IExtension>(held, kExtensions);
  }
}

/// Clears an array of objects that has to have `count`.
void Clear(VARIANT& objects, int count) {
  if (V_VT(&objects) != (VT_ARRAY | VT_DISPATCH) ||
      V_ARRAY(&objects)->rgsabound[0].cElements != static_cast<ULONG>(count))
    Check(E_UNEXPECTED, "the number of objects");
  VariantClear(&objects);
}

Samples MeasureFindCert(const Effort& effort, IQUIVO* quivo, int count) {
  EngineCertificates certificates(count);
  auto param = New<FindParam, IFindParam>();
  return InTurn(
      effort.rounds,
      [&] {
        VARIANT found{};
        Check(quivo->FindCert(param, &found), "FindCert");
        Clear(found, count);
      },
      [&] { ActivateCertificates(count, false); });
}

void MeasureVerifyMem(const Effort& effort, IQUIVO* quivo, int count) {
  EngineCertificates certificates(count);
  auto param = New<VerifyParam, IVerifyParam>();
  VARIANT message = ByteArray(16);
  Samples samples = InTurn(
      effort.rounds,
      [&] {
        VARIANT none{};
        VARIANT content{};
        VARIANT results{};
        Check(quivo->VerifyMem(param, none, message, &content, &results), "VerifyMem");
        Clear(results, count);
      },
      [&] { ActivateCertificates(count, true); });
  VariantClear(&message);
  Print("VerifyMem, 1,000 signatures", "s", samples);
}

}  // namespace

void MeasureFactories(const Effort& effort) {
  auto dictionary = DictionaryFactory();
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(TheModule(), path, MAX_PATH);
  Ptr<ITypeLib> library;
  Check(LoadTypeLibEx(path, REGKIND_NONE, library.out()), "LoadTypeLibEx");
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    Check(library->GetTypeInfo(i, info.out()), "GetTypeInfo");
    Check(info->GetTypeAttr(&attributes), "GetTypeAttr");
    const CLSID clsid = attributes->guid;
    const bool isClass = attributes->typekind == TKIND_COCLASS;
    info->ReleaseTypeAttr(attributes);
    if (!isClass) continue;
    BSTR name = nullptr;
    Check(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), "GetDocumentation");
    std::string row = "factory, ";
    for (const wchar_t* letter = name; *letter; ++letter) row += static_cast<char>(*letter);
    SysFreeString(name);
    auto factory = FactoryIn(TheModule(), clsid);
    PrintCalls(
        row, effort, [&] { MakeAndRelease(factory); }, [&] { MakeAndRelease(dictionary); });
  }
}

void MeasureResults(const Effort& effort) {
  auto quivo = New<QUIVO, IQUIVO>();
  const Effort few = effort.withRounds(7);
  const int count = effort.pick(1000, 10);
  Samples thousand = MeasureFindCert(few, quivo, count);
  Print("FindCert, 1,000 certificates", "s", thousand);
  MeasureVerifyMem(few, quivo, count);
  Samples tenThousand = MeasureFindCert(few, quivo, 10 * count);
  Print("FindCert, 10,000 certificates", "s", tenThousand);
  Samples growth{tenThousand.module, thousand.module};
  for (double& seconds : growth.yardstick) seconds *= 10;
  Print("FindCert, growth", "s", growth);
}

}  // namespace bench
