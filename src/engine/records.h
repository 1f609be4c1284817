// The records that the engine reads and fills, in the layout that both sides share (64-bit).
// Every string is NUL-terminated in the system ANSI code page; times are seconds since 1970-01-01 UTC.
#pragma once

#include <cstddef>
#include <cstdint>

/// A byte buffer: `len` bytes at `data`. Absent: length 0 and a null pointer.
struct DataBlob_t {
  uint32_t len;
  uint8_t* data;
};

/// Names one certificate. `type` is an IdChoice_t value, or -1 while none has been chosen.
struct CertIdRecord {
  int32_t type;
  union {
    struct {
      char* issuer;
      char* serialNumber;
    } issuerAndSerial;
    char* keyId;
    DataBlob_t certHash;
  };
};

struct PolicyRecord {
  char* oid;
  char* org_name;
  int32_t not_num;
  char* text;
};

struct ExtensionRecord {
  char* oid;
  int32_t type;
  int32_t critical;
  DataBlob_t data;
};

/// The alternative name of an issuer or a subject. The last member is the Notes address of the legacy
/// recipient list; the automation object calls it extraName.
struct AltNameRecord {
  char* emailAddress;
  char* DNS;
  char* URI;
  char* IP;
  char* organizationName;
  char* registredAddress;
  char* surname;
  char* businessCategory;
  char* telephoneNumber;
  char* description;
  char* account_number;
  char* bank_id;
  char* physicalDelivery;
  char* exchange_address;
  char* extraName;
};

/// What is known of one certificate; `fields` is a Certinfo_t mask.
struct CertificateRecord {
  uint32_t fields;
  char* issuer;
  char* serialNumber;
  char* subject;
  char* algorithm;
  uint32_t notBefore;
  uint32_t notAfter;
  char* issuerUID;
  char* subjectUID;
  uint32_t keyUsage;
  uint32_t notBeforePrivate;
  uint32_t notAfterPrivate;
  uint32_t padding;
  AltNameRecord issuerAltName;
  AltNameRecord subjectAltName;
  char* keyId;
  int32_t policyCount;
  PolicyRecord* policies;
  int32_t extKeyUsageCount;
  char** extKeyUsage;
  int32_t extensionCount;
  ExtensionRecord* extensions;
  DataBlob_t certEncoded;
  DataBlob_t certHash;
};

/// Options of signing, export, import and additions to the store.
struct SignParamRecord {
  uint32_t flag;
  const CertIdRecord* mycert;
};

struct DecryptParamRecord {
  uint32_t flag;
  const CertIdRecord* mycert;
  uint32_t info;
};

struct EncryptParamRecord {
  uint32_t flag;
  const CertIdRecord* mycert;
  int32_t receiverCount;
  CertificateRecord* receivers;
};

struct FindParamRecord {
  uint32_t flag;
  const CertIdRecord* mycert;
  CertificateRecord certTemplate;
  uint32_t info;
};

struct VerifyParamRecord {
  uint32_t flag;
  const CertIdRecord* mycert;
  uint32_t keyUsage;
  int32_t policyCount;
  PolicyRecord* policies;
  int32_t extKeyUsageCount;
  char** extKeyUsage;
  int32_t extensionCount;
  ExtensionRecord* extensions;
  int32_t nSignToDelete;
  int32_t minsigns;
  uint32_t info;
};

/// Parameters of a local session; `size` is always 48.
struct LocalParamRecord {
  uint64_t size;
  uint32_t flag;
  char* pse;
  char* localstore;
  char* ldap;
  char* pincode;
};

/// Parameters of a session served remotely; `size` is always 32.
struct RSrvParamRecord {
  uint64_t size;
  uint32_t flag;
  int32_t timeout;
  int32_t serverCount;
  char** servers;
};

/// One signature of a verification; `cert` is null when the engine has no certificate for it.
struct SignStatusEntry {
  int32_t status;
  uint32_t time;
  CertificateRecord* cert;
};

struct VerifyResultRecord {
  int32_t count;
  SignStatusEntry* entries;
};

struct FindResultRecord {
  int32_t count;
  CertificateRecord* certificates;
};

/// Result of a decryption. Without a certificate, `cert.fields` and all its pointers are zero.
struct DecryptResultRecord {
  int32_t status;
  CertificateRecord cert;
};

struct SignedInfoResultRecord {
  uint32_t reserved;
  uint32_t signatureCount;
  uint64_t reserved2;
};

struct VerifyCertParamRecord {
  uint32_t mode;
  const CertIdRecord* mycert;
  uint32_t info;
};

#define TAVL_AT(record, field, offset) static_assert(offsetof(record, field) == (offset))

static_assert(sizeof(DataBlob_t) == 16);
TAVL_AT(DataBlob_t, len, 0);
TAVL_AT(DataBlob_t, data, 8);

static_assert(sizeof(CertIdRecord) == 24);
TAVL_AT(CertIdRecord, type, 0);
TAVL_AT(CertIdRecord, issuerAndSerial.issuer, 8);
TAVL_AT(CertIdRecord, issuerAndSerial.serialNumber, 16);
TAVL_AT(CertIdRecord, keyId, 8);
TAVL_AT(CertIdRecord, certHash.len, 8);
TAVL_AT(CertIdRecord, certHash.data, 16);

static_assert(sizeof(PolicyRecord) == 32);
TAVL_AT(PolicyRecord, oid, 0);
TAVL_AT(PolicyRecord, org_name, 8);
TAVL_AT(PolicyRecord, not_num, 16);
TAVL_AT(PolicyRecord, text, 24);

static_assert(sizeof(ExtensionRecord) == 32);
TAVL_AT(ExtensionRecord, oid, 0);
TAVL_AT(ExtensionRecord, type, 8);
TAVL_AT(ExtensionRecord, critical, 12);
TAVL_AT(ExtensionRecord, data, 16);

static_assert(sizeof(AltNameRecord) == 120);
TAVL_AT(AltNameRecord, emailAddress, 0);
TAVL_AT(AltNameRecord, DNS, 8);
TAVL_AT(AltNameRecord, URI, 16);
TAVL_AT(AltNameRecord, IP, 24);
TAVL_AT(AltNameRecord, organizationName, 32);
TAVL_AT(AltNameRecord, registredAddress, 40);
TAVL_AT(AltNameRecord, surname, 48);
TAVL_AT(AltNameRecord, businessCategory, 56);
TAVL_AT(AltNameRecord, telephoneNumber, 64);
TAVL_AT(AltNameRecord, description, 72);
TAVL_AT(AltNameRecord, account_number, 80);
TAVL_AT(AltNameRecord, bank_id, 88);
TAVL_AT(AltNameRecord, physicalDelivery, 96);
TAVL_AT(AltNameRecord, exchange_address, 104);
TAVL_AT(AltNameRecord, extraName, 112);

static_assert(sizeof(CertificateRecord) == 408);
TAVL_AT(CertificateRecord, fields, 0);
TAVL_AT(CertificateRecord, issuer, 8);
TAVL_AT(CertificateRecord, serialNumber, 16);
TAVL_AT(CertificateRecord, subject, 24);
TAVL_AT(CertificateRecord, algorithm, 32);
TAVL_AT(CertificateRecord, notBefore, 40);
TAVL_AT(CertificateRecord, notAfter, 44);
TAVL_AT(CertificateRecord, issuerUID, 48);
TAVL_AT(CertificateRecord, subjectUID, 56);
TAVL_AT(CertificateRecord, keyUsage, 64);
TAVL_AT(CertificateRecord, notBeforePrivate, 68);
TAVL_AT(CertificateRecord, notAfterPrivate, 72);
TAVL_AT(CertificateRecord, padding, 76);
TAVL_AT(CertificateRecord, issuerAltName, 80);
TAVL_AT(CertificateRecord, subjectAltName, 200);
TAVL_AT(CertificateRecord, keyId, 320);
TAVL_AT(CertificateRecord, policyCount, 328);
TAVL_AT(CertificateRecord, policies, 336);
TAVL_AT(CertificateRecord, extKeyUsageCount, 344);
TAVL_AT(CertificateRecord, extKeyUsage, 352);
TAVL_AT(CertificateRecord, extensionCount, 360);
TAVL_AT(CertificateRecord, extensions, 368);
TAVL_AT(CertificateRecord, certEncoded, 376);
TAVL_AT(CertificateRecord, certHash, 392);

static_assert(sizeof(SignParamRecord) == 16);
TAVL_AT(SignParamRecord, flag, 0);
TAVL_AT(SignParamRecord, mycert, 8);

static_assert(sizeof(DecryptParamRecord) == 24);
TAVL_AT(DecryptParamRecord, flag, 0);
TAVL_AT(DecryptParamRecord, mycert, 8);
TAVL_AT(DecryptParamRecord, info, 16);

static_assert(sizeof(EncryptParamRecord) == 32);
TAVL_AT(EncryptParamRecord, flag, 0);
TAVL_AT(EncryptParamRecord, mycert, 8);
TAVL_AT(EncryptParamRecord, receiverCount, 16);
TAVL_AT(EncryptParamRecord, receivers, 24);

static_assert(sizeof(FindParamRecord) == 432);
TAVL_AT(FindParamRecord, flag, 0);
TAVL_AT(FindParamRecord, mycert, 8);
TAVL_AT(FindParamRecord, certTemplate, 16);
TAVL_AT(FindParamRecord, info, 424);

static_assert(sizeof(VerifyParamRecord) == 80);
TAVL_AT(VerifyParamRecord, flag, 0);
TAVL_AT(VerifyParamRecord, mycert, 8);
TAVL_AT(VerifyParamRecord, keyUsage, 16);
TAVL_AT(VerifyParamRecord, policyCount, 20);
TAVL_AT(VerifyParamRecord, policies, 24);
TAVL_AT(VerifyParamRecord, extKeyUsageCount, 32);
TAVL_AT(VerifyParamRecord, extKeyUsage, 40);
TAVL_AT(VerifyParamRecord, extensionCount, 48);
TAVL_AT(VerifyParamRecord, extensions, 56);
TAVL_AT(VerifyParamRecord, nSignToDelete, 64);
TAVL_AT(VerifyParamRecord, minsigns, 68);
TAVL_AT(VerifyParamRecord, info, 72);

static_assert(sizeof(LocalParamRecord) == 48);
TAVL_AT(LocalParamRecord, size, 0);
TAVL_AT(LocalParamRecord, flag, 8);
TAVL_AT(LocalParamRecord, pse, 16);
TAVL_AT(LocalParamRecord, localstore, 24);
TAVL_AT(LocalParamRecord, ldap, 32);
TAVL_AT(LocalParamRecord, pincode, 40);

static_assert(sizeof(RSrvParamRecord) == 32);
TAVL_AT(RSrvParamRecord, size, 0);
TAVL_AT(RSrvParamRecord, flag, 8);
TAVL_AT(RSrvParamRecord, timeout, 12);
TAVL_AT(RSrvParamRecord, serverCount, 16);
TAVL_AT(RSrvParamRecord, servers, 24);

static_assert(sizeof(SignStatusEntry) == 16);
TAVL_AT(SignStatusEntry, status, 0);
TAVL_AT(SignStatusEntry, time, 4);
TAVL_AT(SignStatusEntry, cert, 8);

static_assert(sizeof(VerifyResultRecord) == 16);
TAVL_AT(VerifyResultRecord, count, 0);
TAVL_AT(VerifyResultRecord, entries, 8);

static_assert(sizeof(FindResultRecord) == 16);
TAVL_AT(FindResultRecord, count, 0);
TAVL_AT(FindResultRecord, certificates, 8);

static_assert(sizeof(DecryptResultRecord) == 416);
TAVL_AT(DecryptResultRecord, status, 0);
TAVL_AT(DecryptResultRecord, cert, 8);

static_assert(sizeof(SignedInfoResultRecord) == 16);
TAVL_AT(SignedInfoResultRecord, reserved, 0);
TAVL_AT(SignedInfoResultRecord, signatureCount, 4);
TAVL_AT(SignedInfoResultRecord, reserved2, 8);

static_assert(sizeof(VerifyCertParamRecord) == 24);
TAVL_AT(VerifyCertParamRecord, mode, 0);
TAVL_AT(VerifyCertParamRecord, mycert, 8);
TAVL_AT(VerifyCertParamRecord, info, 16);

#undef TAVL_AT
