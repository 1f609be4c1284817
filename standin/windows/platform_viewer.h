// The platform's own viewer of certificates. Apart from the rest, as the platform's headers and libcrypto's name things
// alike.
#pragma once

#include "standin/base/bytes.h"

namespace standin {

/// What became of showing an object.
enum class Viewing {
  kShown,
  kRefused,      ///< the viewer gave no success; some give none when the user closes the window other than with OK
  kUnavailable,  ///< there is no viewer; the last error says why
};

/// Shows the object until the user closes the window.
Viewing ViewCertificate(ByteView der);
Viewing ViewCrl(ByteView der);

}  // namespace standin
