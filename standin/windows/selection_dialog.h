// The window in which the user chooses certificates.
#pragma once

#include <vector>

#include "standin/base/openssl_owners.h"

namespace standin {

/// At least one certificate. Fails with kSelectionCancelled if there are no candidates or the user gives up, and with
/// kNoDisplay.
std::vector<CertPtr> SelectCertificates(const std::vector<CertPtr>& candidates);

}  // namespace standin
