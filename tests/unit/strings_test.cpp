// Strings between automation and the engine, in whatever ANSI code page the process has.
#include "convert/strings.h"

#include <gtest/gtest.h>

#include "com/owner.h"

using namespace convert;

namespace {

com::Bstr Text(const wchar_t* text) { return com::Bstr(SysAllocString(text)); }

TEST(BstrToAnsi, ConvertsWithTheTerminator) {
  AnsiString out;
  ASSERT_EQ(BstrToAnsi(Text(L"profile").get(), out), S_OK);
  EXPECT_STREQ(out.get(), "profile");
}

TEST(BstrToAnsi, RefusesANullBstrWithTheErrorOfTheConversion) {
  AnsiString out;
  EXPECT_EQ(BstrToAnsi(nullptr, out), HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(out.get(), nullptr);
}

TEST(BstrToAnsi, AcceptsAnEmptyString) {
  AnsiString out;
  ASSERT_EQ(BstrToAnsi(Text(L"").get(), out), S_OK);
  EXPECT_STREQ(out.get(), "");
}

TEST(BstrToAnsi, ReplacesCharactersOutsideTheCodePage) {
  AnsiString out;
  ASSERT_EQ(BstrToAnsi(Text(L"a\u4E2Db").get(), out), S_OK);
  EXPECT_STREQ(out.get(), "a?b");
}

TEST(BstrToAnsi, StopsAtTheFirstNul) {
  com::Bstr text(SysAllocStringLen(L"ab\0cd", 5));
  AnsiString out;
  ASSERT_EQ(BstrToAnsi(text.get(), out), S_OK);
  EXPECT_STREQ(out.get(), "ab");
}

TEST(AnsiToBstr, ReplacesTheBstrInPlace) {
  com::Bstr out = Text(L"what it held before");
  ASSERT_EQ(AnsiToBstr("text", out.inOut()), S_OK);
  EXPECT_STREQ(out.get(), L"text");
}

TEST(AnsiToBstr, FillsANullBstr) {
  com::Bstr out;
  ASSERT_EQ(AnsiToBstr("text", out.inOut()), S_OK);
  EXPECT_EQ(SysStringLen(out.get()), 4u);
}

TEST(AnsiToBstr, ReadsTheSystemCodePage) {
  ASSERT_EQ(GetACP(), 1251u) << "tools/wine gives the tests this code page";
  com::Bstr out;
  ASSERT_EQ(AnsiToBstr("\xCE\xEA", out.inOut()), S_OK);
  EXPECT_STREQ(out.get(), L"Ок");
}

TEST(Format, CutsWhatIsLongerThanItsBuffer) {
  char text[6] = {};
  convert::Format(text, sizeof text, "%s-%d", "abc", 7);
  EXPECT_STREQ("abc-7", text);
  convert::Format(text, sizeof text, "%s-%d", "abcd", 7);
  EXPECT_STREQ("abcd-", text);
  convert::Format(text, sizeof text, "%s", "much longer");
  EXPECT_STREQ("much ", text);
}

}  // namespace
