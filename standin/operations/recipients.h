// Finds and checks the certificates of a message's recipients.
#pragma once

#include <vector>

#include "standin/sessions/session.h"

namespace standin {

/// One certificate per record. Fails with kNoRecipients, kRecipientNotFound, kRecipientAmbiguous, kRecipientUnsuitable,
/// kKeyPeriodOver, kCertificateDamaged, or the code of a check.
std::vector<CertPtr> ResolveRecipients(const Session& session, const EncryptParamRecord& param);

}  // namespace standin
