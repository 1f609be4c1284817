#include "contract/properties/records.h"

namespace {

/// The record that an engine function received, when `call` made it with a main object of its own.
template <class Calling>
fake::Snapshot received(const char* function, size_t argument, Calling call) {
  Ptr<IQUIVO> quivo = make<QUIVO>();
  EXPECT_OK(call(quivo.get()));
  const auto& calls = TavlFakeEngine()->calls();
  for (size_t i = calls.size(); i-- > 0;) {
    if (calls[i].function == function) return calls[i].record(argument);
  }
  throw std::logic_error(std::string("no call of ") + function);
}

}  // namespace

fake::Snapshot recordOf(ICertId* id) {
  return received("QUIVO_AddCRL", 1, [&](IQUIVO* quivo) { return quivo->AddCRL(id, Variant()); }).at(8);
}

fake::Snapshot recordOf(ICertificate* certificate) {
  return received("QUIVO_CreateXmlRequest", 2, [&](IQUIVO* quivo) {
    return quivo->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, certificate, Variant().out(), VARIANT_FALSE);
  });
}

fake::Snapshot recordOf(IAltName* name) {
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_OK(certificate->putref_issuerAltName(name));
  return recordOf(certificate.get()).part(80, 120);
}

fake::Snapshot recordOf(IPolicy* policy) {
  Ptr<IVerifyParam> param = make<VerifyParam>();
  EXPECT_OK(param->put_policies(objects({policy})));
  return recordOf(param.get()).at(24);
}

fake::Snapshot recordOf(IExtension* extension) {
  Ptr<IVerifyParam> param = make<VerifyParam>();
  EXPECT_OK(param->put_extensions(objects({extension})));
  return recordOf(param.get()).at(56);
}

fake::Snapshot recordOf(ILocalParam* param) {
  return received("QUIVO_InitializeEx", 1, [&](IQUIVO* quivo) { return quivo->InitializeEx(param); });
}

fake::Snapshot recordOf(IRSrvParam* param) {
  return received("QUIVO_InitializeEx", 1, [&](IQUIVO* quivo) { return quivo->InitializeEx(param); });
}

fake::Snapshot recordOf(ISignParam* param) {
  return received("QUIVO_SignMem", 1,
                  [&](IQUIVO* quivo) { return quivo->SignMem(param, Variant(), Variant(), Variant().out()); });
}

fake::Snapshot recordOf(IVerifyParam* param) {
  return received("QUIVO_VerifyMem", 1, [&](IQUIVO* quivo) {
    return quivo->VerifyMem(param, Variant(), Variant(), Variant().out(), Variant().out());
  });
}

fake::Snapshot recordOf(IEncryptParam* param) {
  return received("QUIVO_EncryptMem", 1,
                  [&](IQUIVO* quivo) { return quivo->EncryptMem(param, Variant(), Variant().out()); });
}

fake::Snapshot recordOf(IDecryptParam* param) {
  return received("QUIVO_DecryptMem", 1, [&](IQUIVO* quivo) {
    return quivo->DecryptMem(param, Variant(), Variant().out(), Ptr<ICertificate>().out());
  });
}

fake::Snapshot recordOf(IFindParam* param) {
  return received("QUIVO_FindCert", 1, [&](IQUIVO* quivo) { return quivo->FindCert(param, Variant().out()); });
}

fake::Snapshot recordOf(IExportParam* param) {
  return received("QUIVO_ExportMem", 1,
                  [&](IQUIVO* quivo) { return quivo->ExportMem(param, Variant().out(), VARIANT_FALSE); });
}

fake::Snapshot recordOf(IImportParam* param) {
  return received("QUIVO_ImportMem", 1, [&](IQUIVO* quivo) { return quivo->ImportMem(param, Variant()); });
}

namespace {

/// Seven slots of IDispatch and fourteen pairs stand before the pair of the last member.
constexpr int kGetExtraName = 35, kPutExtraName = 36;

void* slot(IAltName* name, int index) { return (*reinterpret_cast<void***>(name))[index]; }

}  // namespace

HRESULT getExtraName(IAltName* name, BSTR* value) {
  return reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(IAltName*, BSTR*)>(slot(name, kGetExtraName))(name, value);
}

HRESULT putExtraName(IAltName* name, BSTR value) {
  return reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(IAltName*, BSTR)>(slot(name, kPutExtraName))(name, value);
}
