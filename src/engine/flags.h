// The flags and choices in the engine's records, named after the enumerators of the type library.
#pragma once

#include <cstdint>

namespace engine {

/// Of QUIVO_Initialize and LocalParamRecord.
enum InitFlag : uint32_t {
  kInitCheckexpired = 0x00000002,
  kInitVerifyContext = 0x80000000,
};

/// CertIdRecord::type.
enum IdChoice : int32_t {
  kIdNotChosen = -1,
  kIdIssuerAndSerial = 0,
  kIdKeyId = 1,
  kIdCertHash = 2,
};

enum SignFlag : uint32_t {
  kSignPkcs7 = 0x01,
  kSignDetached = 0x02,
  kSignSendSert = 0x08,
};

enum VerifyFlag : uint32_t {
  kVerifyPkcs7 = 0x0001,
  kVerifyDelSign = 0x0004,
  kVerifyKeyUsage = 0x0008,
  kVerifyPolicy = 0x0010,
  kVerifyExtKeyUsage = 0x0020,
  kVerifyMinSigns = 0x0080,
  kVerifyNoTimeCheck = 0x0400,
  kVerifyNoAttachedCert = 0x1000,
  kVerifyUserVTime = 0x2000,
};

/// VerifyParamRecord::nSignToDelete: all of them.
constexpr int32_t kDeleteAllSigns = -1;

/// VerifyCertParamRecord::mode.
constexpr uint32_t kVerifyCertNoTimeCheck = 0x04;

enum EncryptFlag : uint32_t {
  kEncryptPkcs7 = 0x0001,
  kEncryptNoTimeCheck = 0x0010,
  kEncryptNoVerify = 0x0020,
  kEncryptNoKeyTimeCheck = 0x0100,
  kEncryptPartialSubject = 0x0200,
  kEncryptIgnoreLocal = 0x0800,
};

enum DecryptFlag : uint32_t { kDecryptPkcs7 = 0x01 };

enum FindFlag : uint32_t {
  kFindSimple = 0x0000,
  kFindMy = 0x0001,
  kFindAll = 0x0002,
  kFindSelectUI = 0x0008,
  kFindNoTimeCheck = 0x0010,
  kFindNoVerify = 0x0020,
  kFindNoKeyTimeCheck = 0x0100,
  kFindPartialSubject = 0x0200,
  kFindIgnoreLocal = 0x0800,
};

enum ExportFlag : uint32_t {
  kExportUI = 0x0001,
  kExportAsn1 = 0x0002,
  kExportNewRequest = 0x0004,
  kExportRevRequest = 0x0008,
  kExportEtokenGost = 0x0020,
  kExportRutokenGost = 0x0040,
  kExportGost2001 = 0x0080,
  kExportGost2012 = 0x0100,
};

enum ImportFlag : uint32_t {
  kImportUI = 0x01,
  kImportCertificate = 0x02,
  kImportCrl = 0x04,
  kImportMyCertificate = 0x08,
  kImportUpdate = 0x10,
};

enum XmlRequestFlag : uint32_t {
  kXmlRequestEtokenGost = 0x02,
  kXmlRequestDoNotGenerate = 0x04,
  kXmlRequestRutokenGost = 0x08,
  kXmlRequestGost2001 = 0x10,
  kXmlRequestGost2012 = 0x20,
};

/// The bits of `keyUsage`.
enum KeyUsage : uint32_t {
  kKeyUsageDigitalSignature = 0x0001,
  kKeyUsageNonRepudation = 0x0002,
  kKeyUsageKeyEncipherment = 0x0004,
  kKeyUsageDataEncipherment = 0x0008,
  kKeyUsageKeyAgreement = 0x0010,
  kKeyUsageKeyCertSign = 0x0020,
  kKeyUsageCrlSign = 0x0040,
  kKeyUsageEncipherOnly = 0x0080,
  kKeyUsageDecipherOnly = 0x0100,
};

/// The bits of `fields` and `info`; the last two choose the form of a field.
enum CertField : uint32_t {
  kFieldSerial = 1u << 0,
  kFieldIssuer = 1u << 1,
  kFieldSubject = 1u << 2,
  kFieldIssuerID = 1u << 3,
  kFieldSubjectID = 1u << 4,
  kFieldNotBefore = 1u << 5,
  kFieldNotAfter = 1u << 6,
  kFieldKeyUsage = 1u << 7,
  kFieldIssuerAltName = 1u << 8,
  kFieldSubjectAltName = 1u << 9,
  kFieldExtKeyUsage = 1u << 10,
  kFieldPolicy = 1u << 11,
  kFieldExtensions = 1u << 12,
  kFieldNotBeforePrivate = 1u << 13,
  kFieldNotAfterPrivate = 1u << 14,
  kFieldKeyID = 1u << 15,
  kFieldCertEncoded = 1u << 16,
  kFieldCertHash = 1u << 17,
  kFieldAlgorithm = 1u << 18,
  kFieldAll = (1u << 19) - 1,
  kFieldSubjectQualified = 1u << 30,
  kFieldAlgorithmOidFormat = 1u << 31,
};

}  // namespace engine
