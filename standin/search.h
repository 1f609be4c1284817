// Searches among the certificates that a session knows.
#pragma once

#include "standin/session.h"

namespace standin {

constexpr uint32_t kFindMy = 1;

/// The certificates that the parameters describe, own ones first. An empty result is no failure.
std::vector<CertPtr> findCertificates(Session& session, const FindParamRecord& param);

}  // namespace standin
