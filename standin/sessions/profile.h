// Named profiles: HKEY_CURRENT_USER\SOFTWARE\KORVENTA\tavl\Profiles\N with ProfileName, pse, localstore and pincode.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

/// The source that the profile describes; an empty name stands for the selected one ("CurSel"). Names are compared
/// without regard to case. Fails with kProfileNotFound.
SessionSource ReadProfile(const std::string& name);

}  // namespace standin
