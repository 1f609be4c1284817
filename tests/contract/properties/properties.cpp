#include "contract/properties/properties.h"

namespace {

template <class Class>
Ptr<IDispatch> plain() {
  return make<Class>().template as<IDispatch>();
}

template <IdChoice_t Type>
Ptr<IDispatch> typedId() {
  Ptr<ICertId> id = make<CertId>();
  EXPECT_OK(id->put_type(Type));
  return id.as<IDispatch>();
}

template <class Interface>
fake::Snapshot record(IDispatch* object) {
  return recordOf(static_cast<Interface*>(object));
}

template <class Interface>
StringProperty text(const char* name, MakeOwner make, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*),
                    HRESULT (STDMETHODCALLTYPE Interface::*put)(BSTR), size_t offset) {
  return {name,
          std::move(make),
          [get](IDispatch* object, BSTR* value) { return (static_cast<Interface*>(object)->*get)(value); },
          [put](IDispatch* object, BSTR value) { return (static_cast<Interface*>(object)->*put)(value); },
          record<Interface>,
          offset};
}

template <class Interface>
VariantProperty variant(const char* name, MakeOwner make, HRESULT (STDMETHODCALLTYPE Interface::*get)(VARIANT*),
                        HRESULT (STDMETHODCALLTYPE Interface::*put)(VARIANT), size_t countOffset,
                        size_t pointerOffset) {
  return {name,
          std::move(make),
          [get](IDispatch* object, VARIANT* value) { return (static_cast<Interface*>(object)->*get)(value); },
          [put](IDispatch* object, VARIANT value) { return (static_cast<Interface*>(object)->*put)(value); },
          record<Interface>,
          countOffset,
          pointerOffset};
}

template <class Interface, class Number>
NumberProperty number(const char* name, MakeOwner make, HRESULT (STDMETHODCALLTYPE Interface::*get)(Number*),
                      HRESULT (STDMETHODCALLTYPE Interface::*put)(Number), size_t offset) {
  static_assert(sizeof(Number) == sizeof(int32_t));
  return {name,
          std::move(make),
          [get](IDispatch* object, int32_t* value) {
            return (static_cast<Interface*>(object)->*get)(reinterpret_cast<Number*>(value));
          },
          [put](IDispatch* object, int32_t value) {
            return (static_cast<Interface*>(object)->*put)(static_cast<Number>(value));
          },
          record<Interface>,
          offset};
}

StringProperty extraName() {
  return {"AltName_extraName",
          plain<AltName>,
          [](IDispatch* object, BSTR* value) { return getExtraName(static_cast<IAltName*>(object), value); },
          [](IDispatch* object, BSTR value) { return putExtraName(static_cast<IAltName*>(object), value); },
          record<IAltName>,
          112};
}

}  // namespace

#define TEXT_OF(class_, property, offset) \
  text(#class_ "_" #property, plain<class_>, &I##class_::get_##property, &I##class_::put_##property, offset)

std::vector<StringProperty> stringProperties() {
  return {
      text("CertId_issuer", typedId<Id_Issuer_And_Serial>, &ICertId::get_issuer, &ICertId::put_issuer, 8),
      text("CertId_serialNumber", typedId<Id_Issuer_And_Serial>, &ICertId::get_serialNumber, &ICertId::put_serialNumber,
           16),
      text("CertId_keyId", typedId<Id_KeyId>, &ICertId::get_keyId, &ICertId::put_keyId, 8),
      TEXT_OF(LocalParam, pse, 16),
      TEXT_OF(LocalParam, localstore, 24),
      TEXT_OF(LocalParam, ldap, 32),
      TEXT_OF(LocalParam, pincode, 40),
      TEXT_OF(Policy, oid, 0),
      TEXT_OF(Policy, org_name, 8),
      TEXT_OF(Policy, text, 24),
      TEXT_OF(Extension, oid, 0),
      TEXT_OF(Certificate, issuer, 8),
      TEXT_OF(Certificate, serialNumber, 16),
      TEXT_OF(Certificate, subject, 24),
      TEXT_OF(Certificate, algorithm, 32),
      TEXT_OF(Certificate, issuerUID, 48),
      TEXT_OF(Certificate, subjectUID, 56),
      TEXT_OF(Certificate, keyId, 320),
      TEXT_OF(AltName, emailAddress, 0),
      TEXT_OF(AltName, DNS, 8),
      TEXT_OF(AltName, URI, 16),
      TEXT_OF(AltName, IP, 24),
      TEXT_OF(AltName, organizationName, 32),
      TEXT_OF(AltName, registredAddress, 40),
      TEXT_OF(AltName, surname, 48),
      TEXT_OF(AltName, businessCategory, 56),
      TEXT_OF(AltName, telephoneNumber, 64),
      TEXT_OF(AltName, description, 72),
      TEXT_OF(AltName, account_number, 80),
      TEXT_OF(AltName, bank_id, 88),
      TEXT_OF(AltName, physicalDelivery, 96),
      TEXT_OF(AltName, exchange_address, 104),
      extraName(),
  };
}

std::vector<VariantProperty> byteProperties() {
  return {
      variant("CertId_certHash", typedId<Id_CertHash>, &ICertId::get_certHash, &ICertId::put_certHash, 8, 16),
      variant("Extension_data", plain<Extension>, &IExtension::get_data, &IExtension::put_data, 16, 24),
      variant("Certificate_certEncoded", plain<Certificate>, &ICertificate::get_certEncoded,
              &ICertificate::put_certEncoded, 376, 384),
      variant("Certificate_certHash", plain<Certificate>, &ICertificate::get_certHash, &ICertificate::put_certHash, 392,
              400),
  };
}

std::vector<VariantProperty> stringArrayProperties() {
  return {
      variant("RSrvParam_servers", plain<RSrvParam>, &IRSrvParam::get_servers, &IRSrvParam::put_servers, 16, 24),
      variant("VerifyParam_extKeyUsage", plain<VerifyParam>, &IVerifyParam::get_extKeyUsage,
              &IVerifyParam::put_extKeyUsage, 32, 40),
      variant("Certificate_extKeyUsage", plain<Certificate>, &ICertificate::get_extKeyUsage,
              &ICertificate::put_extKeyUsage, 344, 352),
  };
}

#define NUMBER_OF(class_, property, offset) \
  number(#class_ "_" #property, plain<class_>, &I##class_::get_##property, &I##class_::put_##property, offset)

std::vector<NumberProperty> numberProperties() {
  return {
      NUMBER_OF(LocalParam, flag, 8),
      NUMBER_OF(RSrvParam, flag, 8),
      NUMBER_OF(RSrvParam, timeout, 12),
      NUMBER_OF(SignParam, flag, 0),
      NUMBER_OF(VerifyParam, flag, 0),
      NUMBER_OF(VerifyParam, keyUsage, 16),
      NUMBER_OF(VerifyParam, nSignToDelete, 64),
      NUMBER_OF(VerifyParam, minsigns, 68),
      NUMBER_OF(VerifyParam, info, 72),
      NUMBER_OF(EncryptParam, flag, 0),
      NUMBER_OF(DecryptParam, flag, 0),
      NUMBER_OF(DecryptParam, info, 16),
      NUMBER_OF(FindParam, flag, 0),
      NUMBER_OF(FindParam, info, 424),
      NUMBER_OF(ExportParam, flag, 0),
      NUMBER_OF(ImportParam, flag, 0),
      NUMBER_OF(Policy, not_num, 16),
      NUMBER_OF(Extension, type, 8),
      NUMBER_OF(Extension, critical, 12),
      NUMBER_OF(Certificate, fields, 0),
      NUMBER_OF(Certificate, keyUsage, 64),
  };
}
