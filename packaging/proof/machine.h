// What the report states about the machine and of the files that were tried on it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace proof {

using Facts = std::vector<std::pair<std::string, std::string>>;

/// Windows with its version and language, the processor, the user's rights, the time.
Facts MachineFacts();
/// Version, size and SHA-256 of every program and library below `folder`, by their path in it.
Facts FileFacts(const std::wstring& folder);

bool IsElevated();
/// The path of the kit's own program.
std::wstring ProgramPath();
/// A window can be created here, and a user may see it.
bool HasDesktop();

}  // namespace proof
