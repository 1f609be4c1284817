// Searches among the certificates that a session knows.
#pragma once

#include <vector>

#include "standin/sessions/session.h"

namespace standin {

constexpr uint32_t kFindMy = 0x0001;
constexpr uint32_t kFindAll = 0x0002;
constexpr uint32_t kFindSelect = 0x0008;
constexpr uint32_t kFindNoTimeCheck = 0x0010;
constexpr uint32_t kFindNoVerify = 0x0020;
constexpr uint32_t kFindNoKeyTimeCheck = 0x0100;
constexpr uint32_t kFindPartialSubject = 0x0200;
constexpr uint32_t kFindIgnoreLocal = 0x0800;

/// The certificates that the parameters describe, own ones first. An empty result is no failure, except where the user
/// was asked to choose: then it is kSelectionCancelled, or kNoDisplay.
std::vector<CertPtr> FindCertificates(Session& session, const FindParamRecord& param);

}  // namespace standin
