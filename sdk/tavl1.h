/* The engine library tavl1: its functions, records, flags and codes, for 64-bit Windows.
   docs/engine-contract.md states what the caller expects of each. Made by sdk/generate; do not edit. */
/* clang-format off */
#ifndef TAVL1_H
#define TAVL1_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Codes. Others are failures too: the numbers of Windows, and the engine's own. */

/* A verification with a remark: good signatures, and something that the user should know. */
#define TAVL_VERIFIED_WITH_REMARKS ((int32_t)0xE0700019u)

/* The certificate is not valid now. */
#define TAVL_OUTSIDE_VALIDITY ((int32_t)0xE0700036u)

/* The user gave up a selection, or there was nothing to select from. */
#define TAVL_SELECTION_CANCELLED ((int32_t)0xE072008Au)

/* The engine does not offer the operation: Windows' ERROR_NOT_SUPPORTED. The module reports it like
   any other failure. */
#define TAVL_ERROR_NOT_SUPPORTED 50

/* Initialization flags enum (Init_Flag_t). */
#define TAVL_FLAG_INIT_NOCRLUPDATE 0x00000001u /* Do not update revocation lists */
#define TAVL_FLAG_INIT_CHECKEXPIRED 0x00000002u /* Check whether the own keys expire */
#define TAVL_FLAG_INIT_NOLDAP 0x00000004u /* Do not use the LDAP directory */
#define TAVL_FLAG_INIT_CHECKEXPIREDREQ 0x00000010u /* Check for expired requests */
#define TAVL_FLAG_INIT_NOSAVECACHE 0x00000020u /* Do not save the cache */
#define TAVL_FLAG_INIT_REGISTRY 0x00000040u /* Take the parameters from the registry */
#define TAVL_FLAG_INIT_FORCECACHECERTS 0x00000080u /* Always put certificates into the cache */
#define TAVL_FLAG_INIT_ALLOWRAINCHAIN 0x00000100u /* Allow a registration authority in a chain */
#define TAVL_FLAG_INIT_LDAPCHAINSEARCH 0x00000200u /* Search the LDAP directory for chains */
#define TAVL_FLAG_INIT_USEAIACDP 0x00000400u /* Use the addresses of issuers and revocation lists in certificates */
#define TAVL_FLAG_INIT_SILENTKEYLOAD 0x00000800u /* Load keys without asking */
#define TAVL_FLAG_INIT_VERIFYCONTEXT 0x80000000u /* Open a session for verification only */

/* Remote server initialization flags enum (RSrv_Init_Flag_t). */
#define TAVL_RSRV_FLAG_INIT_NULL 0 /* No flags */

/* How a certificate is identified (IdChoice_t). */
#define TAVL_ID_ISSUER_AND_SERIAL 0 /* By issuer name and serial number */
#define TAVL_ID_KEYID 1 /* By key identifier */
#define TAVL_ID_CERTHASH 2 /* By a hash of the certificate */

/* Signing flags enum (SignParamFlag_t). */
#define TAVL_FLAG_SIGN_PKCS7 1 /* PKCS#7 format */
#define TAVL_FLAG_SIGN_DETACHED 2 /* The signature does not contain the data */
#define TAVL_FLAG_SIGN_SENDSERT 8 /* Send the signer's certificate along */
#define TAVL_FLAG_SIGN_MARK 32 /* Mark the signature */

/* Verification flags enum (VerifyParamFlag_t). */
#define TAVL_FLAG_VERIFY_PKCS7 1 /* PKCS#7 format */
#define TAVL_FLAG_VERIFY_DETACHED 2 /* The signature does not contain the data */
#define TAVL_FLAG_VERIFY_DELSIGN 4 /* Delete a signature */
#define TAVL_FLAG_VERIFY_KEYUSAGE 8 /* Require the key usage */
#define TAVL_FLAG_VERIFY_POLICY 16 /* Require the policies */
#define TAVL_FLAG_VERIFY_EXTKEYUSAGE 32 /* Require the extended key usage */
#define TAVL_FLAG_VERIFY_MINSIGNS 128 /* Require a minimum number of valid signatures */
#define TAVL_FLAG_VERIFY_NOTIMECHECK 1024 /* Do not check validity periods */
#define TAVL_FLAG_VERIFY_NOCACHECERT 2048 /* Do not put certificates into the cache */
#define TAVL_FLAG_VERIFY_NOATTACHEDCERT 4096 /* Do not use certificates of the message */
#define TAVL_FLAG_VERIFY_USERVTIME 8192 /* Use the verification time of the caller */
#define TAVL_DELETE_ALL_SIGNS (-1) /* Value of nSignToDelete: delete all signatures */

/* Key usages enum (Keyusage_t). */
#define TAVL_KEYUSAGE_DIGITALSIGNATURE 1 /* Digital signature */
#define TAVL_KEYUSAGE_NONREPUDATION 2 /* Non-repudiation */
#define TAVL_KEYUSAGE_KEYENCIPHERMENT 4 /* Key encipherment */
#define TAVL_KEYUSAGE_DATAENCIPHERMENT 8 /* Data encipherment */
#define TAVL_KEYUSAGE_KEYAGREEMENT 16 /* Key agreement */
#define TAVL_KEYUSAGE_KEYCERTSIGN 32 /* Signing of certificates */
#define TAVL_KEYUSAGE_CRLSIGN 64 /* Signing of revocation lists */
#define TAVL_KEYUSAGE_ENCIPHERONLY 128 /* Encipher only */
#define TAVL_KEYUSAGE_DECIPHERONLY 256 /* Decipher only */

/* Encryption flags enum (EncryptParamFlag_t). */
#define TAVL_FLAG_ENCRYPT_PKCS7 1 /* PKCS#7 format */
#define TAVL_FLAG_ENCRYPT_REMOTE 4 /* Search for receivers in remote stores */
#define TAVL_FLAG_ENCRYPT_NOTIMECHECK 16 /* Do not check validity periods */
#define TAVL_FLAG_ENCRYPT_NOVERIFY 32 /* Do not verify the receivers' certificates */
#define TAVL_FLAG_ENCRYPT_NOKEYTIMECHECK 256 /* Do not check the periods of private keys */
#define TAVL_FLAG_ENCRYPT_PARTIALSUBJECT 512 /* Find receivers by a part of the subject */
#define TAVL_FLAG_ENCRYPT_IGNORECACHED 1024 /* Ignore cached certificates */
#define TAVL_FLAG_ENCRYPT_IGNORELOCAL 2048 /* Ignore the local store */

/* Decryption flags enum (DecryptParamFlag_t). */
#define TAVL_FLAG_DECRYPT_PKCS7 1 /* PKCS#7 format */
#define TAVL_FLAG_DECRYPT_NOCACHE 2 /* Do not put certificates into the cache */
#define TAVL_FLAG_DECRYPT_NOCRLCHECK 4 /* Do not check revocation lists */

/* Search flags enum (FindParamFlag_t). */
#define TAVL_FLAG_FIND_SIMPLE 0 /* Search by the template */
#define TAVL_FLAG_FIND_MY 1 /* Find the own certificate */
#define TAVL_FLAG_FIND_ALL 2 /* Find all certificates */
#define TAVL_FLAG_FIND_REMOTE 4 /* Search remote stores */
#define TAVL_FLAG_FIND_SELECTUI 8 /* Let the user select */
#define TAVL_FLAG_FIND_NOTIMECHECK 16 /* Do not check validity periods */
#define TAVL_FLAG_FIND_NOVERIFY 32 /* Do not verify what is found */
#define TAVL_FLAG_FIND_NOKEYTIMECHECK 256 /* Do not check the periods of private keys */
#define TAVL_FLAG_FIND_PARTIALSUBJECT 512 /* Find by a part of the subject */
#define TAVL_FLAG_FIND_IGNORECACHED 1024 /* Ignore cached certificates */
#define TAVL_FLAG_FIND_IGNORELOCAL 2048 /* Ignore the local store */

/* Export flags enum (ExportParamFlag_t). */
#define TAVL_FLAG_EXPORT_UI 1 /* Let the user select what is exported */
#define TAVL_FLAG_EXPORT_ASN1 2 /* Export as ASN.1 */
#define TAVL_FLAG_EXPORT_NEWREQUEST 4 /* Export a new request */
#define TAVL_FLAG_EXPORT_REVREQUEST 8 /* Export a revocation request */
#define TAVL_FLAG_EXPORT_ETOKENGOST 32 /* Key on an eToken GOST */
#define TAVL_FLAG_EXPORT_RUTOKENGOST 64 /* Key on a Rutoken GOST */
#define TAVL_FLAG_EXPORT_GOSTR34_10_2001 128 /* GOST R 34.10-2001 key */
#define TAVL_FLAG_EXPORT_GOSTR34_10_12_256 256 /* GOST R 34.10-2012 key of 256 bits */

/* Import flags enum (ImportParamFlag_t). */
#define TAVL_FLAG_IMPORT_UI 1 /* Let the user select what is imported */
#define TAVL_FLAG_IMPORT_CERTIFICATE 2 /* Import certificates */
#define TAVL_FLAG_IMPORT_CRL 4 /* Import revocation lists */
#define TAVL_FLAG_IMPORT_MYCERTIFICATE 8 /* Import the own certificate */
#define TAVL_FLAG_IMPORT_UPDATE 16 /* Import an update of the store */

/* Xml Request flags enum (XmlRequest_Flag_t). */
#define TAVL_FLAG_XML_REQUEST_ETOKEN_GOST 2 /* Key on an eToken GOST */
#define TAVL_FLAG_XML_REQUEST_DO_NOT_GENERATE 4 /* Do not generate a key */
#define TAVL_FLAG_XML_REQUEST_RUTOKEN_GOST 8 /* Key on a Rutoken GOST */
#define TAVL_FLAG_XML_REQUEST_GOSTR34_10_2001 16 /* GOST R 34.10-2001 key */
#define TAVL_FLAG_XML_REQUEST_GOSTR34_10_12_256 32 /* GOST R 34.10-2012 key of 256 bits */

/* Fields of a certificate (Certinfo_t). */
#define TAVL_FIELD_SERIAL 1 /* Serial number */
#define TAVL_FIELD_ISSUER 2 /* Issuer name */
#define TAVL_FIELD_SUBJECT 4 /* Subject name */
#define TAVL_FIELD_ISSUERID 8 /* Issuer unique identifier */
#define TAVL_FIELD_SUBJECTID 16 /* Subject unique identifier */
#define TAVL_FIELD_NOTBEFORE 32 /* Start of the validity period */
#define TAVL_FIELD_NOTAFTER 64 /* End of the validity period */
#define TAVL_FIELD_KEYUSAGE 128 /* Key usage */
#define TAVL_FIELD_ISSUERALTNAME 256 /* Issuer alternative name */
#define TAVL_FIELD_SUBJECTALTNAME 512 /* Subject alternative name */
#define TAVL_FIELD_EXTKEYUSAGE 1024 /* Extended key usage */
#define TAVL_FIELD_POLICY 2048 /* Policies */
#define TAVL_FIELD_EXTENSIONS 4096 /* Extensions */
#define TAVL_FIELD_NOTBEFOREPRIVATE 8192 /* Start of the private key period */
#define TAVL_FIELD_NOTAFTERPRIVATE 16384 /* End of the private key period */
#define TAVL_FIELD_KEYID 32768 /* Key identifier */
#define TAVL_FIELD_CERTENCODED 65536 /* DER encoding */
#define TAVL_FIELD_CERTHASH 131072 /* Hash of the certificate */
#define TAVL_FIELD_ALGORITHM 262144 /* Algorithm */
#define TAVL_FIELD_SUBJECTQUALIFIED 0x40000000u /* Give the subject as a qualified name */
#define TAVL_FIELD_ALGORITHMOIDFORMAT 0x80000000u /* Give the algorithm as an object identifier */
#define TAVL_FIELD_ALL 0x7FFFFu /* All fields, without the two format bits */

/* The kinds of parameter record that QUIVO_InitializeEx accepts. */
#define TAVL_ENGINE_REMOTE_PARAM 0
#define TAVL_ENGINE_LOCAL_PARAM 1
/* QUIVO_Ctrl: update the revocation lists and describe in the blob's buffer what was done. */
#define TAVL_ENGINE_CTRL_UPDATE_CRL 4
/* VerifyCertParamRecord::mode. */
#define TAVL_VERIFY_CERT_NO_TIME_CHECK 0x04u

/* A session; null where none is open. */
typedef void* EngineSession;
/* A stream; the engine alone reads and writes what it means. */
typedef void* EngineStream;

typedef struct DataBlob_t {
  /* number of bytes */
  uint32_t len;
  /* the bytes; null if there are none */
  uint8_t* data;
} DataBlob_t;

typedef struct CertIdRecord_issuerAndSerial {
  char* issuer;
  char* serialNumber;
} CertIdRecord_issuerAndSerial;

typedef struct CertIdRecord {
  /* TAVL_ID_..., or -1 if none was chosen */
  int32_t type;
  union {
    /* TAVL_ID_ISSUER_AND_SERIAL: two texts, issuer at 8 and serialNumber at 16 */
    CertIdRecord_issuerAndSerial issuerAndSerial;
    /* TAVL_ID_KEYID: a text */
    char* keyId;
    /* TAVL_ID_CERTHASH: the hash of the certificate */
    DataBlob_t certHash;
  };
} CertIdRecord;

typedef struct PolicyRecord {
  /* object identifier */
  char* oid;
  /* organisation of the notice */
  char* org_name;
  /* number of the notice */
  int32_t not_num;
  /* text of the notice */
  char* text;
} PolicyRecord;

typedef struct ExtensionRecord {
  /* object identifier */
  char* oid;
  /* type of the value */
  int32_t type;
  /* not 0 if the extension is critical */
  int32_t critical;
  /* the value */
  DataBlob_t data;
} ExtensionRecord;

typedef struct AltNameRecord {
  /* mail address */
  char* emailAddress;
  /* host name */
  char* DNS;
  /* address of a resource */
  char* URI;
  /* IP address */
  char* IP;
  /* organisation */
  char* organizationName;
  /* registered address */
  char* registredAddress;
  /* surname */
  char* surname;
  /* line of business */
  char* businessCategory;
  /* telephone */
  char* telephoneNumber;
  /* description */
  char* description;
  /* account */
  char* account_number;
  /* bank */
  char* bank_id;
  /* postal address */
  char* physicalDelivery;
  /* address in an Exchange directory */
  char* exchange_address;
  /* address in a Notes directory */
  char* extraName;
} AltNameRecord;

typedef struct CertificateRecord {
  /* mask of TAVL_FIELD_... */
  uint32_t fields;
  /* name of the issuer */
  char* issuer;
  /* serial number */
  char* serialNumber;
  /* name of the subject, with TAVL_FIELD_SUBJECTQUALIFIED as a qualified name */
  char* subject;
  /* name of the algorithm, with TAVL_FIELD_ALGORITHMOIDFORMAT its object identifier */
  char* algorithm;
  /* start of the validity */
  uint32_t notBefore;
  /* end of the validity */
  uint32_t notAfter;
  /* unique identifier of the issuer */
  char* issuerUID;
  /* unique identifier of the subject */
  char* subjectUID;
  /* mask of TAVL_KEYUSAGE_... */
  uint32_t keyUsage;
  /* start of the private key's period */
  uint32_t notBeforePrivate;
  /* end of the private key's period */
  uint32_t notAfterPrivate;
  /* alternative names of the issuer */
  AltNameRecord issuerAltName;
  /* alternative names of the subject */
  AltNameRecord subjectAltName;
  /* key identifier */
  char* keyId;
  /* number of policies */
  int32_t policyCount;
  /* the policies */
  PolicyRecord* policies;
  /* number of extended key usages */
  int32_t extKeyUsageCount;
  /* their object identifiers, texts */
  char** extKeyUsage;
  /* number of extensions */
  int32_t extensionCount;
  /* the extensions */
  ExtensionRecord* extensions;
  /* the certificate in DER */
  DataBlob_t certEncoded;
  /* hash of the certificate */
  DataBlob_t certHash;
} CertificateRecord;

typedef struct SignParamRecord {
  /* mask of TAVL_FLAG_SIGN_..., TAVL_FLAG_EXPORT_... or TAVL_FLAG_IMPORT_...; 0 for additions */
  uint32_t flag;
  /* the caller's certificate; null: the engine chooses */
  const CertIdRecord* mycert;
} SignParamRecord;

typedef struct DecryptParamRecord {
  /* mask of TAVL_FLAG_DECRYPT_... */
  uint32_t flag;
  /* the caller's certificate; null: the engine chooses */
  const CertIdRecord* mycert;
  /* fields wanted of the certificate in the result, TAVL_FIELD_... */
  uint32_t info;
} DecryptParamRecord;

typedef struct EncryptParamRecord {
  /* mask of TAVL_FLAG_ENCRYPT_... */
  uint32_t flag;
  /* the caller's certificate, or null */
  const CertIdRecord* mycert;
  /* number of receivers */
  int32_t receiverCount;
  /* the receivers; pkiobj fills fields and certEncoded alone, or passes records of QUIVO_FindCert */
  CertificateRecord* receivers;
} EncryptParamRecord;

typedef struct FindParamRecord {
  /* mask of TAVL_FLAG_FIND_... */
  uint32_t flag;
  /* the certificate that is wanted, or null */
  const CertIdRecord* mycert;
  /* what the certificate must have */
  CertificateRecord certTemplate;
  /* fields wanted of the certificates found, TAVL_FIELD_... */
  uint32_t info;
} FindParamRecord;

typedef struct VerifyParamRecord {
  /* mask of TAVL_FLAG_VERIFY_... */
  uint32_t flag;
  /* the caller's certificate, or null */
  const CertIdRecord* mycert;
  /* key usages that a signer must have, TAVL_KEYUSAGE_... */
  uint32_t keyUsage;
  /* number of policies */
  int32_t policyCount;
  /* policies that a signer must have */
  PolicyRecord* policies;
  /* number of extended key usages */
  int32_t extKeyUsageCount;
  /* their object identifiers, texts */
  char** extKeyUsage;
  /* number of extensions */
  int32_t extensionCount;
  /* extensions that a signer must have */
  ExtensionRecord* extensions;
  /* index of the signature to delete, or TAVL_DELETE_ALL_SIGNS */
  int32_t nSignToDelete;
  /* least number of valid signatures */
  int32_t minsigns;
  /* fields wanted of the signers' certificates, TAVL_FIELD_... */
  uint32_t info;
} VerifyParamRecord;

typedef struct LocalParamRecord {
  /* 48 */
  uint64_t size;
  /* mask of TAVL_FLAG_INIT_... */
  uint32_t flag;
  /* place of the keys */
  char* pse;
  /* place of the certificate store */
  char* localstore;
  /* address of a directory */
  char* ldap;
  /* PIN of the keys */
  char* pincode;
} LocalParamRecord;

typedef struct RSrvParamRecord {
  /* 32 */
  uint64_t size;
  /* TAVL_RSRV_FLAG_INIT_NULL */
  uint32_t flag;
  /* a time, in the engine's units */
  int32_t timeout;
  /* number of servers */
  int32_t serverCount;
  /* their addresses, texts */
  char** servers;
} RSrvParamRecord;

typedef struct SignStatusEntry {
  /* its code, 0 for a good signature */
  int32_t status;
  /* its time, 0 if none is known */
  uint32_t time;
  /* the signer's certificate, or null if the engine has none */
  CertificateRecord* cert;
} SignStatusEntry;

typedef struct VerifyResultRecord {
  /* number of signatures */
  int32_t count;
  /* the signatures */
  SignStatusEntry* entries;
} VerifyResultRecord;

typedef struct FindResultRecord {
  /* number of certificates */
  int32_t count;
  /* the certificates */
  CertificateRecord* certificates;
} FindResultRecord;

typedef struct DecryptResultRecord {
  /* its code */
  int32_t status;
  /* the encrypting party's certificate; without one, fields and all its pointers are zero */
  CertificateRecord cert;
} DecryptResultRecord;

typedef struct SignedInfoResultRecord {
  /* not read */
  uint32_t reserved;
  /* number of signatures */
  uint32_t signatureCount;
  /* not read */
  uint64_t reserved2;
} SignedInfoResultRecord;

typedef struct VerifyCertParamRecord {
  /* how the certificate is checked; pkiobj passes 5, in which TAVL_VERIFY_CERT_NO_TIME_CHECK leaves
     the validity to the caller */
  uint32_t mode;
  /* null */
  const CertIdRecord* mycert;
  /* fields wanted of the certificate, TAVL_FIELD_... */
  uint32_t info;
} VerifyCertParamRecord;

/* Opens a session with a named profile. */
int32_t QUIVO_Initialize(const char* profile, uint32_t flags, EngineSession* session);

/* Opens a session with explicit parameters. */
int32_t QUIVO_InitializeEx(int32_t kind, const void* param, EngineSession* session);

/* Opens a session without keys and stores. */
int32_t QUIVO_InitMinimal(EngineSession* session);

/* Closes a session. */
int32_t QUIVO_Uninitialize(EngineSession session);

/* Control code 4: updates the revocation lists and describes in a text what was done. */
int32_t QUIVO_Ctrl(EngineSession session, int32_t code, DataBlob_t* text);

/* Writes the text of a code. */
int32_t QUIVO_GetErrorText(int32_t code, char* buffer, uint32_t size);

/* Allocates a buffer that the session owns. */
void* QUIVO_AllocMem(EngineSession session, uint32_t length);

/* Takes a buffer back. */
int32_t QUIVO_FreeMem(EngineSession session, void* buffer);

/* Writes the Base64 text of bytes, without line breaks; negative on failure. */
int32_t QUIVO_EncodeMem(char* text, const uint8_t* bytes, uint32_t length);

/* Signs bytes, or adds a signature to a message. */
int32_t QUIVO_SignMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* data,
                      const DataBlob_t* sign_in, DataBlob_t* sign_out);

/* Signs a file, or adds a signature to a message. */
int32_t QUIVO_SignFile(EngineSession session, const SignParamRecord* param, const char* data,
                       const char* sign_in, const char* sign_out);

/* As QUIVO_SignFile, for files of any size. */
int32_t QUIVO_StrSignFile(EngineSession session, const SignParamRecord* param, const char* data,
                          const char* sign_in, const char* sign_out);

/* Signs a file and encrypts the message. */
int32_t QUIVO_SignAndEncryptFile(EngineSession session, const SignParamRecord* sign,
                                 const EncryptParamRecord* encrypt, const char* file_in,
                                 const char* file_out);

/* Counts the signatures of a file. A file without signatures is a failure. */
int32_t QUIVO_SignedInfoFile(EngineSession session, const char* file, SignedInfoResultRecord* info);

/* Takes back what a signature count points to. */
int32_t QUIVO_FreeSignedInfoResult(EngineSession session, SignedInfoResultRecord* info);

/* Verifies a message in memory. */
int32_t QUIVO_VerifyMem(EngineSession session, const VerifyParamRecord* param,
                        const DataBlob_t* data, const DataBlob_t* sign_in, DataBlob_t* sign_out,
                        VerifyResultRecord* result);

/* Verifies a message in a file. */
int32_t QUIVO_VerifyFile(EngineSession session, const VerifyParamRecord* param, const char* data,
                         const char* sign_in, const char* sign_out, VerifyResultRecord* result);

/* As QUIVO_VerifyFile, for files of any size. */
int32_t QUIVO_StrVerifyFile(EngineSession session, const VerifyParamRecord* param, const char* data,
                            const char* sign_in, const char* sign_out, VerifyResultRecord* result);

/* Takes back what the result of a verification points to. */
int32_t QUIVO_FreeVerifyResult(EngineSession session, VerifyResultRecord* result);

/* Encrypts bytes to the receivers. */
int32_t QUIVO_EncryptMem(EngineSession session, const EncryptParamRecord* param,
                         const DataBlob_t* in, DataBlob_t* out);

/* Encrypts a file. */
int32_t QUIVO_EncryptFile(EngineSession session, const EncryptParamRecord* param,
                          const char* file_in, const char* file_out);

/* As QUIVO_EncryptFile, for files of any size. */
int32_t QUIVO_StrEncryptFile(EngineSession session, const EncryptParamRecord* param,
                             const char* file_in, const char* file_out);

/* Decrypts a message in memory. */
int32_t QUIVO_DecryptMem(EngineSession session, const DecryptParamRecord* param,
                         const DataBlob_t* in, DataBlob_t* out, DecryptResultRecord* result);

/* Decrypts a message in a file. */
int32_t QUIVO_DecryptFile(EngineSession session, const DecryptParamRecord* param,
                          const char* file_in, const char* file_out, DecryptResultRecord* result);

/* As QUIVO_DecryptFile, for files of any size. */
int32_t QUIVO_StrDecryptFile(EngineSession session, const DecryptParamRecord* param,
                             const char* file_in, const char* file_out, DecryptResultRecord* result);

/* Decrypts a file and verifies the message in it. */
int32_t QUIVO_DecryptAndVerifyFile(EngineSession session, const DecryptParamRecord* decrypt,
                                   const VerifyParamRecord* verify, const char* file_in,
                                   const char* file_out, DecryptResultRecord* decrypted,
                                   VerifyResultRecord* verified);

/* Takes back what the result of a decryption points to. */
int32_t QUIVO_FreeDecryptResult(EngineSession session, DecryptResultRecord* result);

/* Begins a signature. */
int32_t QUIVO_StrSignInitMem(EngineSession session, const SignParamRecord* param,
                             const DataBlob_t* sign_in, EngineStream* stream);

/* Takes the next piece of the data. */
int32_t QUIVO_StrSignUpdateMem(EngineSession session, const SignParamRecord* param,
                               EngineStream* stream, const DataBlob_t* data);

/* Ends a signature. */
int32_t QUIVO_StrSignFinalMem(EngineSession session, const SignParamRecord* param,
                              EngineStream* stream, DataBlob_t* sign_out);

/* Begins a verification. */
int32_t QUIVO_StrVerifyInitMem(EngineSession session, const VerifyParamRecord* param,
                               const DataBlob_t* sign_in, EngineStream* stream);

/* Takes the next piece of the data or of the message. */
int32_t QUIVO_StrVerifyUpdateMem(EngineSession session, const VerifyParamRecord* param,
                                 EngineStream* stream, const DataBlob_t* data);

/* Ends a verification. */
int32_t QUIVO_StrVerifyFinalMem(EngineSession session, const VerifyParamRecord* param,
                                EngineStream* stream, DataBlob_t* sign_out,
                                VerifyResultRecord* result);

/* Begins an encryption. */
int32_t QUIVO_StrEncryptInitMem(EngineSession session, const EncryptParamRecord* param,
                                EngineStream* stream);

/* Encrypts the next piece. */
int32_t QUIVO_StrEncryptUpdateMem(EngineSession session, const EncryptParamRecord* param,
                                  EngineStream* stream, const DataBlob_t* in, DataBlob_t* out);

/* Ends an encryption. */
int32_t QUIVO_StrEncryptFinalMem(EngineSession session, const EncryptParamRecord* param,
                                 EngineStream* stream, DataBlob_t* out);

/* Begins a decryption. */
int32_t QUIVO_StrDecryptInitMem(EngineSession session, const DecryptParamRecord* param,
                                const DataBlob_t* in, int32_t* left, EngineStream* stream);

/* Decrypts the next piece. */
int32_t QUIVO_StrDecryptUpdateMem(EngineSession session, const DecryptParamRecord* param,
                                  EngineStream* stream, const DataBlob_t* in, int32_t* left,
                                  DataBlob_t* out);

/* Ends a decryption, all of whose data the Updates have returned. */
int32_t QUIVO_StrDecryptFinalMem(EngineSession session, const DecryptParamRecord* param,
                                 EngineStream* stream, DecryptResultRecord* result);

/* Begins a hash. */
int32_t QUIVO_StrHashInitMem(EngineSession session, const char* algorithm, EngineStream* stream);

/* Takes the next piece of the data. */
int32_t QUIVO_StrHashUpdateMem(EngineSession session, EngineStream* stream, const DataBlob_t* data);

/* Ends a hash. */
int32_t QUIVO_StrHashFinalMem(EngineSession session, EngineStream* stream, DataBlob_t* hash);

/* Hash of bytes, by the engine's usual algorithm. */
int32_t QUIVO_HashMem(EngineSession session, const DataBlob_t* in, DataBlob_t* hash);

/* Hash of a file, by the engine's usual algorithm. */
int32_t QUIVO_HashFile(EngineSession session, const char* file, DataBlob_t* hash);

/* Hash of a file of any size. */
int32_t QUIVO_StrHashFile(EngineSession session, const char* algorithm, const char* file,
                          DataBlob_t* hash);

/* Random bytes. */
int32_t QUIVO_GenRandom(EngineSession session, int32_t length, DataBlob_t* random);

/* Searches the store. Finding nothing is a success. */
int32_t QUIVO_FindCert(EngineSession session, const FindParamRecord* param,
                       FindResultRecord* result);

/* Takes a list of certificates back with all contents. */
int32_t QUIVO_FreeFindResult(EngineSession session, FindResultRecord* result);

/* Decodes a certificate. */
int32_t QUIVO_ParseCert(EngineSession session, const DataBlob_t* encoded, uint32_t info,
                        CertificateRecord* result);

/* Decodes a certificate and checks it. */
int32_t QUIVO_VerifyCert(EngineSession session, const VerifyCertParamRecord* param,
                         const DataBlob_t* encoded, CertificateRecord* result);

/* Takes back what a certificate record points to, not the record itself. */
int32_t QUIVO_FreeCert(EngineSession session, CertificateRecord* certificate);

/* Shows a certificate in a window. */
int32_t QUIVO_ShowCertificate(EngineSession session, const DataBlob_t* encoded);

/* Shows a revocation list in a window. */
int32_t QUIVO_ShowCrl(EngineSession session, const DataBlob_t* encoded);

/* Adds a certificate to the store. */
int32_t QUIVO_AddCertificate(EngineSession session, const SignParamRecord* addition,
                             const DataBlob_t* encoded);

/* Adds a revocation list to the store. */
int32_t QUIVO_AddCRL(EngineSession session, const SignParamRecord* addition,
                     const DataBlob_t* encoded);

/* Exports certificates or a request. */
int32_t QUIVO_ExportMem(EngineSession session, const SignParamRecord* param, DataBlob_t* out);

/* The same into a file. */
int32_t QUIVO_ExportFile(EngineSession session, const SignParamRecord* param, const char* file);

/* Imports certificates, revocation lists or an issued certificate. */
int32_t QUIVO_ImportMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* in);

/* The same from a file. */
int32_t QUIVO_ImportFile(EngineSession session, const SignParamRecord* param, const char* file);

/* Makes a certificate request in XML. */
int32_t QUIVO_CreateXmlRequest(EngineSession session, uint32_t flag,
                               const CertificateRecord* certTemplate, DataBlob_t* request);

#ifdef __cplusplus
}
#endif

/* The places that both sides rely on; checked where the language can. */
#if defined(__cplusplus) && __cplusplus >= 201103L
#define TAVL_ASSERT(condition) static_assert(condition, #condition)
#elif !defined(__cplusplus) && defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define TAVL_ASSERT(condition) _Static_assert(condition, #condition)
#endif
#ifdef TAVL_ASSERT
TAVL_ASSERT(sizeof(DataBlob_t) == 16);
TAVL_ASSERT(offsetof(DataBlob_t, len) == 0);
TAVL_ASSERT(offsetof(DataBlob_t, data) == 8);
TAVL_ASSERT(sizeof(CertIdRecord) == 24);
TAVL_ASSERT(offsetof(CertIdRecord, type) == 0);
TAVL_ASSERT(offsetof(CertIdRecord, issuerAndSerial) == 8);
TAVL_ASSERT(offsetof(CertIdRecord, keyId) == 8);
TAVL_ASSERT(offsetof(CertIdRecord, certHash) == 8);
TAVL_ASSERT(sizeof(PolicyRecord) == 32);
TAVL_ASSERT(offsetof(PolicyRecord, oid) == 0);
TAVL_ASSERT(offsetof(PolicyRecord, org_name) == 8);
TAVL_ASSERT(offsetof(PolicyRecord, not_num) == 16);
TAVL_ASSERT(offsetof(PolicyRecord, text) == 24);
TAVL_ASSERT(sizeof(ExtensionRecord) == 32);
TAVL_ASSERT(offsetof(ExtensionRecord, oid) == 0);
TAVL_ASSERT(offsetof(ExtensionRecord, type) == 8);
TAVL_ASSERT(offsetof(ExtensionRecord, critical) == 12);
TAVL_ASSERT(offsetof(ExtensionRecord, data) == 16);
TAVL_ASSERT(sizeof(AltNameRecord) == 120);
TAVL_ASSERT(offsetof(AltNameRecord, emailAddress) == 0);
TAVL_ASSERT(offsetof(AltNameRecord, DNS) == 8);
TAVL_ASSERT(offsetof(AltNameRecord, URI) == 16);
TAVL_ASSERT(offsetof(AltNameRecord, IP) == 24);
TAVL_ASSERT(offsetof(AltNameRecord, organizationName) == 32);
TAVL_ASSERT(offsetof(AltNameRecord, registredAddress) == 40);
TAVL_ASSERT(offsetof(AltNameRecord, surname) == 48);
TAVL_ASSERT(offsetof(AltNameRecord, businessCategory) == 56);
TAVL_ASSERT(offsetof(AltNameRecord, telephoneNumber) == 64);
TAVL_ASSERT(offsetof(AltNameRecord, description) == 72);
TAVL_ASSERT(offsetof(AltNameRecord, account_number) == 80);
TAVL_ASSERT(offsetof(AltNameRecord, bank_id) == 88);
TAVL_ASSERT(offsetof(AltNameRecord, physicalDelivery) == 96);
TAVL_ASSERT(offsetof(AltNameRecord, exchange_address) == 104);
TAVL_ASSERT(offsetof(AltNameRecord, extraName) == 112);
TAVL_ASSERT(sizeof(CertificateRecord) == 408);
TAVL_ASSERT(offsetof(CertificateRecord, fields) == 0);
TAVL_ASSERT(offsetof(CertificateRecord, issuer) == 8);
TAVL_ASSERT(offsetof(CertificateRecord, serialNumber) == 16);
TAVL_ASSERT(offsetof(CertificateRecord, subject) == 24);
TAVL_ASSERT(offsetof(CertificateRecord, algorithm) == 32);
TAVL_ASSERT(offsetof(CertificateRecord, notBefore) == 40);
TAVL_ASSERT(offsetof(CertificateRecord, notAfter) == 44);
TAVL_ASSERT(offsetof(CertificateRecord, issuerUID) == 48);
TAVL_ASSERT(offsetof(CertificateRecord, subjectUID) == 56);
TAVL_ASSERT(offsetof(CertificateRecord, keyUsage) == 64);
TAVL_ASSERT(offsetof(CertificateRecord, notBeforePrivate) == 68);
TAVL_ASSERT(offsetof(CertificateRecord, notAfterPrivate) == 72);
TAVL_ASSERT(offsetof(CertificateRecord, issuerAltName) == 80);
TAVL_ASSERT(offsetof(CertificateRecord, subjectAltName) == 200);
TAVL_ASSERT(offsetof(CertificateRecord, keyId) == 320);
TAVL_ASSERT(offsetof(CertificateRecord, policyCount) == 328);
TAVL_ASSERT(offsetof(CertificateRecord, policies) == 336);
TAVL_ASSERT(offsetof(CertificateRecord, extKeyUsageCount) == 344);
TAVL_ASSERT(offsetof(CertificateRecord, extKeyUsage) == 352);
TAVL_ASSERT(offsetof(CertificateRecord, extensionCount) == 360);
TAVL_ASSERT(offsetof(CertificateRecord, extensions) == 368);
TAVL_ASSERT(offsetof(CertificateRecord, certEncoded) == 376);
TAVL_ASSERT(offsetof(CertificateRecord, certHash) == 392);
TAVL_ASSERT(sizeof(SignParamRecord) == 16);
TAVL_ASSERT(offsetof(SignParamRecord, flag) == 0);
TAVL_ASSERT(offsetof(SignParamRecord, mycert) == 8);
TAVL_ASSERT(sizeof(DecryptParamRecord) == 24);
TAVL_ASSERT(offsetof(DecryptParamRecord, flag) == 0);
TAVL_ASSERT(offsetof(DecryptParamRecord, mycert) == 8);
TAVL_ASSERT(offsetof(DecryptParamRecord, info) == 16);
TAVL_ASSERT(sizeof(EncryptParamRecord) == 32);
TAVL_ASSERT(offsetof(EncryptParamRecord, flag) == 0);
TAVL_ASSERT(offsetof(EncryptParamRecord, mycert) == 8);
TAVL_ASSERT(offsetof(EncryptParamRecord, receiverCount) == 16);
TAVL_ASSERT(offsetof(EncryptParamRecord, receivers) == 24);
TAVL_ASSERT(sizeof(FindParamRecord) == 432);
TAVL_ASSERT(offsetof(FindParamRecord, flag) == 0);
TAVL_ASSERT(offsetof(FindParamRecord, mycert) == 8);
TAVL_ASSERT(offsetof(FindParamRecord, certTemplate) == 16);
TAVL_ASSERT(offsetof(FindParamRecord, info) == 424);
TAVL_ASSERT(sizeof(VerifyParamRecord) == 80);
TAVL_ASSERT(offsetof(VerifyParamRecord, flag) == 0);
TAVL_ASSERT(offsetof(VerifyParamRecord, mycert) == 8);
TAVL_ASSERT(offsetof(VerifyParamRecord, keyUsage) == 16);
TAVL_ASSERT(offsetof(VerifyParamRecord, policyCount) == 20);
TAVL_ASSERT(offsetof(VerifyParamRecord, policies) == 24);
TAVL_ASSERT(offsetof(VerifyParamRecord, extKeyUsageCount) == 32);
TAVL_ASSERT(offsetof(VerifyParamRecord, extKeyUsage) == 40);
TAVL_ASSERT(offsetof(VerifyParamRecord, extensionCount) == 48);
TAVL_ASSERT(offsetof(VerifyParamRecord, extensions) == 56);
TAVL_ASSERT(offsetof(VerifyParamRecord, nSignToDelete) == 64);
TAVL_ASSERT(offsetof(VerifyParamRecord, minsigns) == 68);
TAVL_ASSERT(offsetof(VerifyParamRecord, info) == 72);
TAVL_ASSERT(sizeof(LocalParamRecord) == 48);
TAVL_ASSERT(offsetof(LocalParamRecord, size) == 0);
TAVL_ASSERT(offsetof(LocalParamRecord, flag) == 8);
TAVL_ASSERT(offsetof(LocalParamRecord, pse) == 16);
TAVL_ASSERT(offsetof(LocalParamRecord, localstore) == 24);
TAVL_ASSERT(offsetof(LocalParamRecord, ldap) == 32);
TAVL_ASSERT(offsetof(LocalParamRecord, pincode) == 40);
TAVL_ASSERT(sizeof(RSrvParamRecord) == 32);
TAVL_ASSERT(offsetof(RSrvParamRecord, size) == 0);
TAVL_ASSERT(offsetof(RSrvParamRecord, flag) == 8);
TAVL_ASSERT(offsetof(RSrvParamRecord, timeout) == 12);
TAVL_ASSERT(offsetof(RSrvParamRecord, serverCount) == 16);
TAVL_ASSERT(offsetof(RSrvParamRecord, servers) == 24);
TAVL_ASSERT(sizeof(SignStatusEntry) == 16);
TAVL_ASSERT(offsetof(SignStatusEntry, status) == 0);
TAVL_ASSERT(offsetof(SignStatusEntry, time) == 4);
TAVL_ASSERT(offsetof(SignStatusEntry, cert) == 8);
TAVL_ASSERT(sizeof(VerifyResultRecord) == 16);
TAVL_ASSERT(offsetof(VerifyResultRecord, count) == 0);
TAVL_ASSERT(offsetof(VerifyResultRecord, entries) == 8);
TAVL_ASSERT(sizeof(FindResultRecord) == 16);
TAVL_ASSERT(offsetof(FindResultRecord, count) == 0);
TAVL_ASSERT(offsetof(FindResultRecord, certificates) == 8);
TAVL_ASSERT(sizeof(DecryptResultRecord) == 416);
TAVL_ASSERT(offsetof(DecryptResultRecord, status) == 0);
TAVL_ASSERT(offsetof(DecryptResultRecord, cert) == 8);
TAVL_ASSERT(sizeof(SignedInfoResultRecord) == 16);
TAVL_ASSERT(offsetof(SignedInfoResultRecord, reserved) == 0);
TAVL_ASSERT(offsetof(SignedInfoResultRecord, signatureCount) == 4);
TAVL_ASSERT(offsetof(SignedInfoResultRecord, reserved2) == 8);
TAVL_ASSERT(sizeof(VerifyCertParamRecord) == 24);
TAVL_ASSERT(offsetof(VerifyCertParamRecord, mode) == 0);
TAVL_ASSERT(offsetof(VerifyCertParamRecord, mycert) == 8);
TAVL_ASSERT(offsetof(VerifyCertParamRecord, info) == 16);
#undef TAVL_ASSERT
#endif

#endif
