// The engine's contract. The stand-in uses its records, flags and codes without qualification.
#pragma once

#include "engine/codes.h"
#include "engine/flags.h"
#include "engine/records.h"

namespace standin {

using namespace engine;

}  // namespace standin
