// The list of recipients' addresses, "KIND:address;KIND:address", and what each entry makes the engine search for.
#pragma once

#include "engine/records.h"

namespace legacy {

/// One entry; both texts live in the list. `address` is null where the entry has no ":".
struct RecipientAddress {
  char* kind;
  char* address;
};

/// Walks a list from its last entry to its first and cuts it up in place.
class AddressList {
 public:
  /// `list` must outlive this object and every entry.
  explicit AddressList(char* list) : rest_(list) {}

  bool isEmpty() const { return *rest_ == '\0'; }
  RecipientAddress takeLast();

 private:
  char* rest_;
};

/// A search for the owner of an address, by its kind: "EX", "SMTP" or "NOTES" in any case. Any other kind lets
/// the user select. The record points into the address.
FindParamRecord SearchFor(const RecipientAddress& address);

/// A search in which the user selects the certificates in the engine's dialog.
FindParamRecord SearchBySelection();

/// Turns a search into one in which the user selects; an address that it names stays in place.
void LetUserSelect(FindParamRecord& search);

}  // namespace legacy
