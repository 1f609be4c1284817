// The attributes of Russian names: the numbers of a person, an organisation, a taxpayer.
#pragma once

#include <string>

namespace standin {

/// Registers those that libcrypto does not know; once in a process, before any name is read.
void AddRussianNames();
/// Frees what AddRussianNames has left to libcrypto.
void ForgetRussianNames();

/// Replaces what an attribute is called in Russian by its name in certificates: "ИНН=7707083893" is "INN=7707083893".
/// `text` has folded case and no spaces next to separators.
std::string WithLatinNames(std::string text);
/// The same for one name in capitals.
const char* LatinName(const std::string& type);

}  // namespace standin
