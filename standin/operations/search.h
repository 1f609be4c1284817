// Searches among the certificates that a session knows.
#pragma once

#include <vector>

#include "standin/sessions/session.h"

namespace standin {

/// The certificates that fit the parameters, own ones first; perhaps none. A selection by the user fails with
/// kSelectionCancelled or kNoDisplay.
std::vector<CertPtr> FindCertificates(Session& session, const FindParamRecord& param);

}  // namespace standin
