// The result codes of this engine, and its one exception. The codes lie outside the numbers of Windows errors, which
// the engine returns unchanged. They differ in their low 16 bits, because callers may keep no more of a code.
#pragma once

#include <cstdint>

#include "standin/base/contract.h"

namespace standin {

enum Code : int32_t {
  kOk = 0,

  // Windows error numbers that this engine also raises itself.
  kWinOutOfMemory = 8,
  kWinInvalidParameter = 87,
  kWinDiskFull = 112,

  // Sessions, keys and stores.
  kBadSession = 0x7001,
  kBadStream = 0x7002,
  kNotSupported = 0x7003,
  kRemoteSession = 0x7004,
  kProfileNotFound = 0x7005,
  kKeyFileMissing = 0x7006,
  kWrongPin = 0x7007,
  kKeyFileDamaged = 0x7008,
  kStoreUnreadable = 0x7009,
  kOwnCertificateNotFound = 0x700A,
  kNoStore = 0x700B,
  kNoDisplay = 0x700C,
  kStreamOrder = 0x700D,
  kOwnCertificateExpired = 0x700E,

  // Messages.
  kMessageDamaged = 0x7010,
  kNotSigned = 0x7011,
  kNotEncrypted = 0x7012,
  kContentMissing = 0x7013,
  kContentMismatch = 0x7014,
  kFileChanged = 0x7015,
  kTooLarge = 0x7016,

  // Signatures.
  kSigningFailed = 0x7020,
  kBadSignature = 0x7021,
  kSignerUnknown = 0x7022,
  kIssuerUnknown = 0x7023,
  kExpired = 0x7024,
  kNotYetValid = 0x7025,
  kRevoked = 0x7026,
  kChainBroken = 0x7027,
  kKeyUsageMissing = 0x7028,
  kPolicyMissing = 0x7029,
  kExtKeyUsageMissing = 0x702A,
  kExtensionMissing = 0x702B,
  kTooFewSignatures = 0x702C,
  kNoSuchSignature = 0x702D,
  kAlgorithmUnknown = 0x702E,
  kKeyPeriodOver = 0x702F,

  // Envelopes.
  kNoRecipients = 0x7030,
  kRecipientNotFound = 0x7031,
  kRecipientAmbiguous = 0x7032,
  kRecipientUnsuitable = 0x7033,
  kNotARecipient = 0x7034,
  kDecryptionFailed = 0x7035,
  kEncryptionFailed = 0x7036,

  // Certificates, revocation lists and requests.
  kCertificateDamaged = 0x7040,
  kCrlDamaged = 0x7041,
  kRequestDamaged = 0x7042,
  kCrlForged = 0x7043,
  kCrlOlder = 0x7044,
  kNothingToExport = 0x7045,
  kNothingToImport = 0x7046,
  kKeyDoesNotMatch = 0x7047,
  kRequestFailed = 0x7048,
  kCrlUnusable = 0x7049,

  // Hashing and random numbers.
  kHashUnknown = 0x7050,
  kLengthRefused = 0x7051,
  kRandomFailed = 0x7052,

  // Remarks on a good signature; so is kKeyPeriodOver.
  kWeakAlgorithm = 0x7060,
  kRevocationUnclear = 0x7061,

  kInternal = 0x70FF,
};

/// No exported function lets it pass.
struct EngineError {
  int32_t code;
};

[[noreturn]] inline void Fail(int32_t code) { throw EngineError{code}; }

/// Fails with the thread's last Windows error.
[[noreturn]] void FailWithLastError();

}  // namespace standin
