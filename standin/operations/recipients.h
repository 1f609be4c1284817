// The certificates to which a message is encrypted, from the records that name them.
#pragma once

#include <vector>

#include "standin/sessions/session.h"

namespace standin {

/// One certificate for each record. Fails with kNoRecipients, kRecipientNotFound, kRecipientAmbiguous,
/// kRecipientUnsuitable, kKeyPeriodOver, kCertificateDamaged, or with what is wrong with a certificate.
std::vector<CertPtr> ResolveRecipients(const Session& session, const EncryptParamRecord& param);

}  // namespace standin
