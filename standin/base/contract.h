// The engine's contract: its records, flags and codes are the words of everything here.
#pragma once

#include "engine/codes.h"
#include "engine/flags.h"
#include "engine/records.h"

namespace standin {

using namespace engine;

}  // namespace standin
