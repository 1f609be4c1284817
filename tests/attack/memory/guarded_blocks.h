// Blocks that end the process when they are overrun: each lies against a page that cannot be read, and a block that was
// given back cannot be read either, nor is its place used again.
#pragma once

#include "support/module_blocks.h"

/// The environment variable that puts the page before the blocks; without it, it lies behind them.
constexpr const char* kGuardBefore = "TAVL_GUARD_BEFORE";
/// What is left of a block's pages holds this; it is compared when the block is given back.
constexpr unsigned char kGuardFill = 0xFD;
