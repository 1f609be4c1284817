// Searches among the certificates that a session knows.
#pragma once

#include <vector>

#include "standin/sessions/session.h"

namespace standin {

/// The certificates that the parameters describe, own ones first. An empty result is no failure, except where the user
/// was asked to choose: then it is kSelectionCancelled, or kNoDisplay.
std::vector<CertPtr> FindCertificates(Session& session, const FindParamRecord& param);

}  // namespace standin
