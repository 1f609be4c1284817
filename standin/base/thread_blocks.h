// Memory from blocks that each thread keeps for itself. Threads that sign at the same time would otherwise wait for
// each other in the one heap of the process, from which a signature takes hundreds of blocks.
#pragma once

namespace standin {

/// Makes libcrypto and C++ use it; to be called before libcrypto has any memory.
bool StartThreadBlocks();
/// Frees what the calling thread keeps, at its end.
void FreeBlocksOfThread();
/// Frees what all threads keep, before the library is unloaded. Nothing is kept any more.
void EndThreadBlocks();

}  // namespace standin
