// The platform's viewer of certificates, in a unit of its own: the platform's headers and libcrypto's share names.
#pragma once

#include "standin/base/bytes.h"

namespace standin {

enum class Viewing {
  kShown,
  kRefused,      ///< the viewer failed; some also report failure unless the user closes the window with OK
  kUnavailable,  ///< there is no viewer; the last error is the reason
};

/// Shows the object until the user closes the window.
Viewing ViewCertificate(ByteView der);
Viewing ViewCrl(ByteView der);

}  // namespace standin
