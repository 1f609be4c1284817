// Named profiles: HKEY_CURRENT_USER\SOFTWARE\KORVENTA\tavl\Profiles\N with ProfileName, pse, localstore and pincode.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

/// The source that the profile describes; an empty name means the selected profile ("CurSel"). The case of names does
/// not count. Fails with kProfileNotFound.
SessionSource ReadProfile(const std::string& name);

}  // namespace standin
