// Lists of addresses: every entry lies in the list, and the walk ends.
#include "legacy/addresses.h"
#include "attack/fuzz/input.h"

void fuzz::Run(Input bytes) {
  std::string list = TextOf(bytes).c_str();
  const char *const start = list.data(), *const end = start + list.size();
  size_t entries = 0;
  legacy::AddressList addresses(list.data());
  while (!addresses.isEmpty()) {
    const legacy::RecipientAddress entry = addresses.takeLast();
    Require(entry.kind >= start && entry.kind <= end);
    Require(entry.address == nullptr || (entry.address >= start && entry.address <= end));
    FindParamRecord search = legacy::SearchFor(entry);
    legacy::LetUserSelect(search);
    Require(++entries <= list.size() + 1);
  }
}
