// The name of a person from the subject of a certificate, as the results sheet shows it.
#pragma once

#include <cstddef>

namespace legacy {

/// Room for a name with its terminator; a longer one is cut.
constexpr size_t kNameSize = 512;

/// Composes the name of a subject: its common name, then its organisation, separated by ", "; one of them alone
/// where the other is missing; the whole subject where it has neither. A null subject gives an empty name.
///
/// Subjects are read in both usual notations, "CN=..., O=..." (also with "+", ";" or line ends between the
/// attributes, with quotes and backslashes in the values) and "/O=.../CN=...". An attribute is known by its
/// short name, its long name or its number. Of several equal attributes the first counts.
void NameFromSubject(const char* subject, char (&name)[kNameSize]);

}  // namespace legacy
