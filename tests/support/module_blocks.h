// Where the tested builds of the module take their memory from: support/plain_blocks.cpp, or the guarded blocks of
// attack/memory.
#pragma once

#include <cstddef>

/// Null without memory.
void* TakeBlock(size_t size) noexcept;
/// `block` is not null. What it held cannot be read any more.
void GiveBlock(void* block) noexcept;
