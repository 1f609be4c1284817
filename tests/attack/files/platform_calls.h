// The calls of the engine to the platform's files: each can be made to fail, to end the process, or to give other
// bytes.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "support/import_patch.h"

enum class FileCall { kCreate, kRead, kWrite, kSeek, kMove };
constexpr FileCall kFileCalls[] = {FileCall::kCreate, FileCall::kRead, FileCall::kWrite, FileCall::kSeek,
                                   FileCall::kMove};
const char* NameOf(FileCall call);

/// What is done instead of the call, or with it.
enum class Deed {
  kNone,
  kFail,       ///< the call fails
  kHalf,       ///< a write writes half of its bytes and reports a full disk
  kDieBefore,  ///< the process ends
  kDieHalf,    ///< the process ends in the middle of a write
  kDieAfter,   ///< the process ends after the call
  kEnd,        ///< this read and the further ones of the file find its end
  kGrow,       ///< the end of the file comes a thousand bytes later
  kOther,      ///< this read and all further ones, of whatever file, give other bytes
  kReplace,    ///< the file of this read is replaced by another of the same size
};

/// Does a deed at the call number `at`, counted from 0, of a kind, as long as it lives. One at a time.
class PlatformCalls {
 public:
  PlatformCalls(HMODULE engine, FileCall call, unsigned at, Deed deed);
  PlatformCalls(const PlatformCalls&) = delete;
  PlatformCalls& operator=(const PlatformCalls&) = delete;
  ~PlatformCalls();

  /// Whether the call was reached.
  bool reached() const;

 private:
  std::vector<std::unique_ptr<ImportPatch>> patches_;
};
