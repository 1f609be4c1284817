#include "checks.h"
#include "engine/flags.h"
#include "read_through.h"

namespace check {
namespace {

using engine::CertField;

bool HasText(const AltNameRecord& names) {
  bool hasText = false;
  engine::ForEachMember([&](char* const& text) { hasText = hasText || text != nullptr; }, names);
  return hasText;
}

/// A field of a certificate, and whether the engine has filled it.
struct Field {
  CertField bit;
  const char* name;
  bool (*isSet)(const CertificateRecord&);
  bool isAlwaysThere;
};

using Cert = const CertificateRecord&;
const Field kFields[] = {
    {engine::kFieldSerial, "serialNumber", [](Cert c) { return c.serialNumber != nullptr; }, true},
    {engine::kFieldIssuer, "issuer", [](Cert c) { return c.issuer != nullptr; }, true},
    {engine::kFieldSubject, "subject", [](Cert c) { return c.subject != nullptr; }, true},
    {engine::kFieldIssuerID, "issuerUID", [](Cert c) { return c.issuerUID != nullptr; }, false},
    {engine::kFieldSubjectID, "subjectUID", [](Cert c) { return c.subjectUID != nullptr; }, false},
    {engine::kFieldNotBefore, "notBefore", [](Cert c) { return c.notBefore != 0; }, true},
    {engine::kFieldNotAfter, "notAfter", [](Cert c) { return c.notAfter != 0; }, true},
    {engine::kFieldKeyUsage, "keyUsage", [](Cert c) { return c.keyUsage != 0; }, false},
    {engine::kFieldIssuerAltName, "issuerAltName", [](Cert c) { return HasText(c.issuerAltName); }, false},
    {engine::kFieldSubjectAltName, "subjectAltName", [](Cert c) { return HasText(c.subjectAltName); }, false},
    {engine::kFieldExtKeyUsage, "extKeyUsage", [](Cert c) { return c.extKeyUsageCount > 0; }, false},
    {engine::kFieldPolicy, "policies", [](Cert c) { return c.policyCount > 0; }, false},
    {engine::kFieldExtensions, "extensions", [](Cert c) { return c.extensionCount > 0; }, false},
    {engine::kFieldNotBeforePrivate, "notBeforePrivate", [](Cert c) { return c.notBeforePrivate != 0; }, false},
    {engine::kFieldNotAfterPrivate, "notAfterPrivate", [](Cert c) { return c.notAfterPrivate != 0; }, false},
    {engine::kFieldKeyID, "keyId", [](Cert c) { return c.keyId != nullptr; }, false},
    {engine::kFieldCertEncoded, "certEncoded", [](Cert c) { return c.certEncoded.len != 0; }, true},
    {engine::kFieldCertHash, "certHash", [](Cert c) { return c.certHash.len != 0; }, true},
    {engine::kFieldAlgorithm, "algorithm", [](Cert c) { return c.algorithm != nullptr; }, true},
};

/// What the mask asks for is there, as `fields` states it.
void IsFilled(const CertificateRecord& record, uint32_t info) {
  ReadThrough(record);
  for (const Field& field : kFields) {
    const bool isWanted = (info & field.bit) != 0;
    const bool isStated = (record.fields & field.bit) != 0;
    const bool isSet = field.isSet(record);
    Expect(!isStated || isSet, std::string(field.name) + " is stated in fields and not set");
    Expect(!isWanted || isSet || !field.isAlwaysThere, std::string(field.name) + " is wanted and not set");
    Expect(!isWanted || !isSet || isStated, std::string(field.name) + " is set and not stated in fields");
  }
}

void CheckParsing(Kit& kit) {
  kit.check("ParseCert fills all fields", "what fields states is set", [&] {
    const Session session = kit.openMinimal();
    InBytes encoded(kit.ownCertificate());
    Out<CertificateRecord> record;
    Succeeds("ParseCert", kit.engine.QUIVO_ParseCert(session, encoded.blob(), engine::kFieldAll, record.get()));
    IsFilled(*record, engine::kFieldAll);
    const DataBlob_t& copy = record->certEncoded;
    Expect(Bytes(copy.data, copy.data + copy.len) == kit.ownCertificate(), "certEncoded is not the certificate");
    Expect(record->notBefore < record->notAfter, "the validity ends before it starts");
    Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
  });
  kit.check("ParseCert fills each field that is wanted alone", "that field", [&] {
    const Session session = kit.openMinimal();
    InBytes encoded(kit.ownCertificate());
    for (const Field& field : kFields) {
      Out<CertificateRecord> record;
      Succeeds("ParseCert", kit.engine.QUIVO_ParseCert(session, encoded.blob(), field.bit, record.get()));
      IsFilled(*record, field.bit);
      Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
    }
  });
  kit.check("VerifyCert accepts the own certificate", "0, and the wanted fields", [&] {
    const Session session = kit.open();
    const uint32_t info = engine::kFieldSubject | engine::kFieldNotBefore | engine::kFieldNotAfter;
    InBytes encoded(kit.ownCertificate());
    In<VerifyCertParamRecord> param({5, nullptr, info});
    Out<CertificateRecord> record;
    Succeeds("VerifyCert", kit.engine.QUIVO_VerifyCert(session, param.get(), encoded.blob(), record.get()));
    IsFilled(*record, info);
    Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
  });
}

void CheckResults(Kit& kit) {
  kit.check("FindCert fills every certificate", "what fields states is set", [&] {
    const Session session = kit.open();
    FindParamRecord wanted{};
    wanted.flag = engine::kFindMy;
    wanted.info = engine::kFieldAll;
    In<FindParamRecord> param(wanted);
    Out<FindResultRecord> result;
    Succeeds("FindCert", kit.engine.QUIVO_FindCert(session, param.get(), result.get()));
    ReadThrough(*result);
    Expect(result->count > 0, "no own certificate");
    for (int32_t i = 0; i < result->count; ++i) IsFilled(result->certificates[i], engine::kFieldAll);
    Succeeds("FreeFindResult", kit.engine.QUIVO_FreeFindResult(session, result.get()));
  });
  kit.check("FindCert finds nothing without a fault", "0 and an empty list", [&] {
    const Session session = kit.open();
    InText subject("CN=nobody has this name");
    FindParamRecord wanted{};
    wanted.flag = engine::kFindAll;
    wanted.certTemplate.fields = engine::kFieldSubject;
    wanted.certTemplate.subject = subject.get();
    wanted.info = engine::kFieldSubject;
    In<FindParamRecord> param(wanted);
    Out<FindResultRecord> result;
    Succeeds("FindCert", kit.engine.QUIVO_FindCert(session, param.get(), result.get()));
    Expect(result->count == 0 && result->certificates == nullptr, "a list of " + std::to_string(result->count));
    Succeeds("FreeFindResult", kit.engine.QUIVO_FreeFindResult(session, result.get()));
  });
  kit.check("VerifyMem names the signer", "one entry with status 0 and a subject", [&] {
    const Session session = kit.open();
    const Verified verified = kit.verify(session, kit.sign(session, kSendCertificate, Payload(100)));
    Succeeds("VerifyMem", verified.code);
    Expect(verified.statuses == std::vector<int32_t>{0}, "not one good signature");
    Expect(!verified.signers[0].empty(), "no subject");
  });
  kit.check("DecryptMem reports a certificate or zeros", "fields, and pointers to match", [&] {
    const Session session = kit.open();
    InBytes message(kit.encrypt(session, Payload(100)));
    In<DecryptParamRecord> param({kPkcs7, nullptr, engine::kFieldAll});
    Out<DataBlob_t> out;
    Out<DecryptResultRecord> result;
    Succeeds("DecryptMem", kit.engine.QUIVO_DecryptMem(session, param.get(), message.blob(), out.get(), result.get()));
    IsFilled(result->cert, result->cert.fields == 0 ? 0u : engine::kFieldAll);
    if (result->cert.fields == 0) {
      for (const Field& field : kFields)
        Expect(!field.isSet(result->cert), std::string(field.name) + " without fields");
    }
    Succeeds("FreeDecryptResult", kit.engine.QUIVO_FreeDecryptResult(session, result.get()));
    kit.take(session, *out, "DecryptMem");
  });
}

}  // namespace

void CheckRecords(Kit& kit) {
  CheckParsing(kit);
  CheckResults(kit);
}

}  // namespace check
