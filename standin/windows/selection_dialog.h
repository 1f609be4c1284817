// The window in which the user chooses certificates.
#pragma once

#include <vector>

#include "standin/base/openssl_owners.h"

namespace standin {

/// The chosen ones. Fails with kSelectionCancelled when there is nothing to choose from or the user gives up, and with
/// kNoDisplay.
std::vector<CertPtr> SelectCertificates(const std::vector<CertPtr>& candidates);

}  // namespace standin
