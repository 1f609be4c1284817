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
