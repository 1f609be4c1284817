// The language of the registration scripts.
#include "module/registrar_script.h"

#include <gtest/gtest.h>

namespace {

using registrar::Key;
using registrar::Rule;

const HRESULT kBadScript = HRESULT_FROM_WIN32(ERROR_INVALID_DATA);

std::unique_ptr<Key> Parsed(std::string_view script) {
  std::unique_ptr<Key> keys;
  EXPECT_EQ(registrar::Parse(script, keys), S_OK) << script;
  return keys;
}

HRESULT Failure(std::string_view script) {
  std::unique_ptr<Key> keys;
  HRESULT hr = registrar::Parse(script, keys);
  EXPECT_EQ(keys == nullptr || FAILED(hr), true);
  return hr;
}

TEST(RegistrarScript, ReadsAKeyWithItsDefaultValue) {
  auto key = Parsed("HKCR { A.B.1 = s 'The text' }");
  EXPECT_EQ(key->name, "A.B.1");
  EXPECT_TRUE(key->hasDefault);
  EXPECT_EQ(key->defaultText, "The text");
}

TEST(RegistrarScript, ReadsAKeyWithoutADefaultValue) { EXPECT_FALSE(Parsed("HKCR { A }")->hasDefault); }

TEST(RegistrarScript, ReadsNestedKeysInOrder) {
  auto key = Parsed("HKCR { A { B { C } D } E }");
  EXPECT_EQ(key->children->name, "B");
  EXPECT_EQ(key->children->children->name, "C");
  EXPECT_EQ(key->children->next->name, "D");
  EXPECT_EQ(key->next->name, "E");
}

TEST(RegistrarScript, ReadsNamedValues) {
  auto key = Parsed("HKCR { A { val One = s '1' val Two = s '2' B } }");
  EXPECT_EQ(key->values->name, "One");
  EXPECT_EQ(key->values->next->text, "2");
  EXPECT_EQ(key->children->name, "B");
}

TEST(RegistrarScript, ReadsTheRulesOfKeys) {
  auto key = Parsed("HKCR { ForceRemove A NoRemove B Delete C D }");
  EXPECT_EQ(key->rule, Rule::kForceRemove);
  EXPECT_EQ(key->next->rule, Rule::kNoRemove);
  EXPECT_EQ(key->next->next->rule, Rule::kDelete);
  EXPECT_EQ(key->next->next->next->rule, Rule::kNone);
}

TEST(RegistrarScript, ReadsQuotedNamesWithBlanksAndKeywords) {
  auto key = Parsed("HKCR { 'A key' 'ForceRemove' { val 'a value' = s '' } }");
  EXPECT_EQ(key->name, "A key");
  EXPECT_EQ(key->next->name, "ForceRemove");
  EXPECT_EQ(key->next->rule, Rule::kNone);
  EXPECT_EQ(key->next->values->name, "a value");
}

TEST(RegistrarScript, ReadsIdentifiersInBraces) {
  auto key = Parsed("HKCR\r\n{\r\n\tForceRemove {236C9B37-B991-48C2-B14A-340A28638282} = s 'X'\r\n}\r\n");
  EXPECT_EQ(key->name, "{236C9B37-B991-48C2-B14A-340A28638282}");
}

TEST(RegistrarScript, ReadsSixteenLevelsAndNoMore) {
  const auto nested = [](int levels) {
    std::string script = "HKCR {";
    for (int i = 0; i < levels; ++i) script += " A {";
    for (int i = 0; i < levels; ++i) script += " }";
    return script + " }";
  };
  Parsed(nested(16));
  EXPECT_EQ(Failure(nested(17)), kBadScript);
}

TEST(RegistrarScript, KeepsTheModuleMarkForLater) {
  EXPECT_EQ(Parsed("HKCR { A = s '%MODULE%' }")->defaultText, "%MODULE%");
}

TEST(RegistrarScript, RefusesWhatIsNotWellFormed) {
  for (const char* script : {"",
                             "HKCR",
                             "HKCR {",
                             "HKCR { A",
                             "HKCR { A { }",
                             "HKCR { A } }",
                             "HKLM { A }",
                             "{ A }",
                             "HKCR { A = 'x' }",
                             "HKCR { A = s }",
                             "HKCR { A = s x }",
                             "HKCR { A = s 'x }",
                             "HKCR { = s 'x' }",
                             "HKCR { A = d '1' }",
                             "HKCR { ForceRemove }",
                             "HKCR { A { val = s 'x' } }",
                             "HKCR { A { val B } }",
                             "HKCR { val B = s 'x' }",
                             "HKCR { '' }",
                             "HKCR { A } rest"})
    EXPECT_EQ(Failure(script), kBadScript) << script;
}

TEST(RegistrarScript, RefusesNestingWithoutEnd) {
  std::string script = "HKCR { ";
  for (int i = 0; i < 100000; ++i) script += "A { ";
  EXPECT_EQ(Failure(script), kBadScript);
}

}  // namespace
