// The certificates to which a message is encrypted, from the records that name them.
#pragma once

#include <vector>

#include "standin/sessions/session.h"

namespace standin {

constexpr uint32_t kEncryptNoTimeCheck = 0x0010;
constexpr uint32_t kEncryptNoVerify = 0x0020;
constexpr uint32_t kEncryptNoKeyTimeCheck = 0x0100;
constexpr uint32_t kEncryptPartialSubject = 0x0200;
constexpr uint32_t kEncryptIgnoreLocal = 0x0800;

/// One certificate for each record. Fails with kNoRecipients, kRecipientNotFound, kRecipientAmbiguous,
/// kRecipientUnsuitable, kKeyPeriodOver, kCertificateDamaged, or with what is wrong with a certificate.
std::vector<CertPtr> ResolveRecipients(const Session& session, const EncryptParamRecord& param);

}  // namespace standin
