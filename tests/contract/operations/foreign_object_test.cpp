// Objects in the arguments of operations: only the module's own, of the right class, in either of their forms.
#include "support/foreign_object.h"
#include "contract/operations/calls.h"
#include "contract/properties/records.h"
#include "support/object_safety.h"
#include "support/outer_object.h"

namespace {

struct ObjectArgument {
  const char* name;
  /// The class that belongs here.
  const wchar_t* expected;
  HRESULT (*call)(const Objects&, void* object);
};

template <class Interface>
Interface* as(void* object) {
  return static_cast<Interface*>(object);
}

Bstr path() { return Bstr(L"x"); }

const ObjectArgument kArguments[]{
    {"SignMem", L"SignParam",
     [](const Objects& o, void* x) {
       return o.quivo->SignMem(as<ISignParam>(x), Variant(), Variant(), Variant().out());
     }},
    {"SignFile", L"SignParam",
     [](const Objects& o, void* x) { return o.quivo->SignFile(as<ISignParam>(x), path(), path(), path()); }},
    {"StrSignFile", L"SignParam",
     [](const Objects& o, void* x) { return o.quivo->StrSignFile(as<ISignParam>(x), path(), path(), path()); }},
    {"StrSignInitMem", L"SignParam",
     [](const Objects& o, void* x) { return o.quivo->StrSignInitMem(as<ISignParam>(x), Variant(), o.stream); }},
    {"StrSignUpdateMem", L"SignParam",
     [](const Objects& o, void* x) { return o.quivo->StrSignUpdateMem(as<ISignParam>(x), o.stream, Variant()); }},
    {"StrSignFinalMem", L"SignParam",
     [](const Objects& o, void* x) { return o.quivo->StrSignFinalMem(as<ISignParam>(x), o.stream, Variant().out()); }},
    {"VerifyMem", L"VerifyParam",
     [](const Objects& o, void* x) {
       return o.quivo->VerifyMem(as<IVerifyParam>(x), Variant(), Variant(), Variant().out(), Variant().out());
     }},
    {"VerifyFile", L"VerifyParam",
     [](const Objects& o, void* x) {
       return o.quivo->VerifyFile(as<IVerifyParam>(x), path(), path(), path(), Variant().out());
     }},
    {"StrVerifyFile", L"VerifyParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrVerifyFile(as<IVerifyParam>(x), path(), path(), path(), Variant().out());
     }},
    {"StrVerifyInitMem", L"VerifyParam",
     [](const Objects& o, void* x) { return o.quivo->StrVerifyInitMem(as<IVerifyParam>(x), Variant(), o.stream); }},
    {"StrVerifyUpdateMem", L"VerifyParam",
     [](const Objects& o, void* x) { return o.quivo->StrVerifyUpdateMem(as<IVerifyParam>(x), o.stream, Variant()); }},
    {"StrVerifyFinalMem", L"VerifyParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrVerifyFinalMem(as<IVerifyParam>(x), o.stream, Variant().out(), Variant().out());
     }},
    {"EncryptMem", L"EncryptParam",
     [](const Objects& o, void* x) { return o.quivo->EncryptMem(as<IEncryptParam>(x), Variant(), Variant().out()); }},
    {"EncryptFile", L"EncryptParam",
     [](const Objects& o, void* x) { return o.quivo->EncryptFile(as<IEncryptParam>(x), path(), path()); }},
    {"StrEncryptFile", L"EncryptParam",
     [](const Objects& o, void* x) { return o.quivo->StrEncryptFile(as<IEncryptParam>(x), path(), path()); }},
    {"StrEncryptInitMem", L"EncryptParam",
     [](const Objects& o, void* x) { return o.quivo->StrEncryptInitMem(as<IEncryptParam>(x), o.stream); }},
    {"StrEncryptUpdateMem", L"EncryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrEncryptUpdateMem(as<IEncryptParam>(x), o.stream, Variant(), Variant().out());
     }},
    {"StrEncryptFinalMem", L"EncryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrEncryptFinalMem(as<IEncryptParam>(x), o.stream, Variant().out());
     }},
    {"DecryptMem", L"DecryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->DecryptMem(as<IDecryptParam>(x), Variant(), Variant().out(), Ptr<ICertificate>().out());
     }},
    {"DecryptFile", L"DecryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->DecryptFile(as<IDecryptParam>(x), path(), path(), Ptr<ICertificate>().out());
     }},
    {"StrDecryptFile", L"DecryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrDecryptFile(as<IDecryptParam>(x), path(), path(), Ptr<ICertificate>().out());
     }},
    {"StrDecryptInitMem", L"DecryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrDecryptInitMem(as<IDecryptParam>(x), Variant(), Variant().out(), o.stream);
     }},
    {"StrDecryptUpdateMem", L"DecryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrDecryptUpdateMem(as<IDecryptParam>(x), o.stream, Variant(), Variant().out(), Variant().out());
     }},
    {"StrDecryptFinalMem", L"DecryptParam",
     [](const Objects& o, void* x) {
       return o.quivo->StrDecryptFinalMem(as<IDecryptParam>(x), o.stream, Ptr<ICertificate>().out());
     }},
    {"FindCert", L"FindParam",
     [](const Objects& o, void* x) { return o.quivo->FindCert(as<IFindParam>(x), Variant().out()); }},
    {"ExportMem", L"ExportParam",
     [](const Objects& o, void* x) { return o.quivo->ExportMem(as<IExportParam>(x), Variant().out(), VARIANT_FALSE); }},
    {"ExportFile", L"ExportParam",
     [](const Objects& o, void* x) { return o.quivo->ExportFile(as<IExportParam>(x), path()); }},
    {"ImportMem", L"ImportParam",
     [](const Objects& o, void* x) { return o.quivo->ImportMem(as<IImportParam>(x), Variant()); }},
    {"ImportFile", L"ImportParam",
     [](const Objects& o, void* x) { return o.quivo->ImportFile(as<IImportParam>(x), path()); }},
    {"AddCertificate", L"CertId",
     [](const Objects& o, void* x) { return o.quivo->AddCertificate(as<ICertId>(x), Variant()); }},
    {"AddCRL", L"CertId", [](const Objects& o, void* x) { return o.quivo->AddCRL(as<ICertId>(x), Variant()); }},
    {"CreateXmlRequest", L"Certificate",
     [](const Objects& o, void* x) {
       return o.quivo->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, as<ICertificate>(x), Variant().out(),
                                        VARIANT_FALSE);
     }},
    {"StrSignUpdateMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) { return o.quivo->StrSignUpdateMem(o.sign, as<IStreamCtx>(x), Variant()); }},
    {"StrVerifyFinalMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) {
       return o.quivo->StrVerifyFinalMem(o.verify, as<IStreamCtx>(x), Variant().out(), Variant().out());
     }},
    {"StrEncryptInitMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) { return o.quivo->StrEncryptInitMem(o.encrypt, as<IStreamCtx>(x)); }},
    {"StrDecryptInitMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) {
       return o.quivo->StrDecryptInitMem(o.decrypt, Variant(), Variant().out(), as<IStreamCtx>(x));
     }},
    {"StrHashInitMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) { return o.quivo->StrHashInitMem(path(), as<IStreamCtx>(x)); }},
    {"StrHashUpdateMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) { return o.quivo->StrHashUpdateMem(as<IStreamCtx>(x), Variant()); }},
    {"StrHashFinalMem_hStr", L"StreamCtx",
     [](const Objects& o, void* x) { return o.quivo->StrHashFinalMem(as<IStreamCtx>(x), Variant().out()); }},
};

void PrintTo(const ObjectArgument& row, std::ostream* out) { *out << row.name; }

class ForeignObjectTest : public ContractTest, public ::testing::WithParamInterface<ObjectArgument> {
 protected:
  HRESULT pass(void* object) { return GetParam().call(objects, object); }
  const ClassFacts& expectedClass() {
    return *std::find_if(kClasses.begin(), kClasses.end(),
                         [](const ClassFacts& facts) { return std::wstring(facts.name) == GetParam().expected; });
  }

  Objects objects{openQuivo()};
};

TEST_P(ForeignObjectTest, ForeignObjectIsRefusedUntouched) {
  ForeignObject foreign;
  EXPECT_HR(kInvalidArgument, pass(foreign.as<void>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(ForeignObjectTest, ObjectOfAnotherClassIsRefused) {
  for (const ClassFacts& facts : kClasses) {
    if (std::wstring(facts.name) == GetParam().expected) continue;
    Ptr<IUnknown> wrong = makeUnknown(guidOf(facts.clsid), guidOf(facts.iid));
    EXPECT_HR(kInvalidArgument, pass(wrong.get())) << facts;
  }
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(ForeignObjectTest, ObjectOfTheRightClassIsAccepted) {
  Ptr<IUnknown> right = makeUnknown(guidOf(expectedClass().clsid), guidOf(expectedClass().iid));
  EXPECT_OK(pass(right.get()));
}

TEST_P(ForeignObjectTest, AggregatedObjectOfTheRightClassIsAccepted) {
  Ptr<IClassFactory> factory;
  ASSERT_OK(Module::get().classObject(guidOf(expectedClass().clsid), IID_IClassFactory, factory.voidOut()));
  OuterObject outer(factory);
  ASSERT_OK(outer.created);
  Ptr<IUnknown> right;
  ASSERT_OK(outer.inner->QueryInterface(guidOf(expectedClass().iid), right.voidOut()));
  EXPECT_OK(pass(right.get()));
}

INSTANTIATE_TEST_SUITE_P(Arguments, ForeignObjectTest, ::testing::ValuesIn(kArguments),
                         [](const auto& info) { return std::string(info.param.name); });

using AggregatedArgumentTest = ContractTest;

/// The interface of an aggregated object, and what has to live as long.
template <class Class>
struct Aggregated {
  using Interface = typename InterfaceOf<Class>::type;
  static Ptr<IClassFactory> factory() {
    Ptr<IClassFactory> factory;
    EXPECT_OK(Module::get().classObject(__uuidof(Class), IID_IClassFactory, factory.voidOut()));
    return factory;
  }
  OuterObject outer{factory()};
  Ptr<Interface> object = outer.inner.template as<Interface>();
};

TEST_F(AggregatedArgumentTest, EngineReadsTheRecordOfAnAggregatedObject) {
  Aggregated<CertId> id;
  EXPECT_OK(id.object->put_type(Id_KeyId));
  EXPECT_OK(id.object->put_keyId(Bstr(L"key")));
  EXPECT_EQ("key", recordOf(id.object.get()).text(8));
}

TEST_F(AggregatedArgumentTest, AggregatedObjectsAreAcceptedAsProperties) {
  Aggregated<CertId> id;
  Aggregated<Certificate> certificate;
  Aggregated<AltName> name;
  Aggregated<Policy> policy;
  EXPECT_OK(make<SignParam>()->putref_mycert(id.object));
  EXPECT_OK(make<FindParam>()->putref_certTemplate(certificate.object));
  EXPECT_OK(make<Certificate>()->putref_issuerAltName(name.object));
  EXPECT_OK(make<VerifyParam>()->put_policies(objects({policy.object})));
  EXPECT_OK(make<EncryptParam>()->put_Receivers(variants({Variant::object(certificate.object)})));
}

TEST_F(AggregatedArgumentTest, AggregatedParametersOpenASession) {
  Aggregated<LocalParam> local;
  EXPECT_OK(make<QUIVO>()->InitializeEx(local.object));
  Aggregated<RSrvParam> remote;
  EXPECT_OK(make<QUIVO>()->InitializeEx(remote.object));
}

TEST_F(AggregatedArgumentTest, AggregatedMainObjectNegotiatesSafety) {
  Aggregated<QUIVO> quivo;
  Ptr<IObjectSafety> safety = quivo.outer.inner.as<IObjectSafety>();
  ASSERT_NE(nullptr, safety.get());
  EXPECT_OK(safety->SetInterfaceSafetyOptions(IID_IDispatch, 2, 2));
  EXPECT_HR(kAccessDenied, quivo.object->HashFile(Bstr(L"x"), Variant().out()));
  EXPECT_EQ(static_cast<IUnknown*>(&quivo.outer), safety.as<IUnknown>().get());
}

TEST_F(AggregatedArgumentTest, AggregatedMainObjectWorks) {
  Aggregated<QUIVO> quivo;
  EXPECT_OK(quivo.object->InitMinimal());
  Variant text;
  EXPECT_OK(quivo.object->GetPKIErrorTextVBS(static_cast<long>(0xE0680001), text.out()));
  EXPECT_EQ(VT_BSTR, text.type());
}

}  // namespace
