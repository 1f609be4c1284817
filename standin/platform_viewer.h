// The platform's own viewer of certificates. Apart from the rest, as the platform's headers and libcrypto's name things
// alike.
#pragma once

#include "standin/bytes.h"

namespace standin {

/// Shows the object until the user closes the window. False when the platform's viewer cannot; its last error says why.
bool viewCertificate(ByteView der);
bool viewCrl(ByteView der);

}  // namespace standin
