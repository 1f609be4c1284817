// The list of recipients' addresses, and the searches that its entries make.
#include "legacy/addresses.h"

#include <gtest/gtest.h>

#include <string>

#include "quivocom.h"

namespace {

using legacy::AddressList;
using legacy::RecipientAddress;
using legacy::SearchFor;

/// The entries of a list in the order of the walk, as "kind|address"; "kind" alone where there is no address.
std::string Walked(std::string list) {
  std::string entries;
  AddressList addresses(list.data());
  while (!addresses.isEmpty()) {
    const RecipientAddress entry = addresses.takeLast();
    entries += entry.kind + (entry.address ? "|" + std::string(entry.address) : "") + " ";
  }
  return entries;
}

TEST(Addresses, AreWalkedFromTheLastToTheFirst) { EXPECT_EQ(Walked("SMTP:a;EX:b;c"), "c EX|b SMTP|a "); }

TEST(Addresses, KeepWhatFollowsTheFirstColon) { EXPECT_EQ(Walked("EX:/o=A:B"), "EX|/o=A:B "); }

TEST(Addresses, MayBeEmptyOrWithoutEntries) {
  EXPECT_EQ(Walked(""), "");
  EXPECT_EQ(Walked(";"), " ");
  EXPECT_EQ(Walked(":;:"), "| | ");
}

TEST(Addresses, AreSearchedByTheMemberOfTheirKind) {
  char kind[] = "sMTP", address[] = "a@b";
  const FindParamRecord search = SearchFor({kind, address});
  EXPECT_EQ(search.flag, Flag_Find_Simple);
  EXPECT_EQ(search.certTemplate.subjectAltName.emailAddress, address);
}

TEST(Addresses, OfAnUnknownKindLetTheUserSelect) {
  char kind[] = "X400", address[] = "a";
  EXPECT_EQ(SearchFor({kind, address}).flag, Flag_Find_SelectUI);
}

}  // namespace
