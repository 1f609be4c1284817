// The search for the caller's own certificate.
#pragma once

#include "engine/owned.h"
#include "engine/session_owner.h"
#include "quivocom.h"

namespace operations {

/// Holds what the search has found. If the search failed, nothing goes back: the engine has handed out nothing then.
class OwnCertificateSearch {
 public:
  explicit OwnCertificateSearch(engine::SessionOwner& owner) : session_(owner), result_(session_) {}

  /// Asks for the members in `info`; returns the engine's code.
  int32_t run(Certinfo_t info) {
    FindParamRecord param{};
    param.flag = Flag_Find_My;
    param.info = info;
    int32_t code = QUIVO_FindCert(session_, &param, result_.receive());
    if (code != 0) result_.leave();
    return code;
  }
  /// Without an array there is none, whatever the engine has counted.
  int32_t count() const { return result_.get().certificates ? result_.get().count : 0; }
  const CertificateRecord& first() const { return result_.get().certificates[0]; }

 private:
  engine::SessionUse session_;
  engine::FindResult result_;
};

}  // namespace operations
