// The name of a person from a subject, broken subjects included.
#include "legacy/subject_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string NameOf(const std::string& subject) {
  char name[legacy::kNameSize];
  legacy::NameFromSubject(subject.c_str(), name);
  return name;
}

TEST(SubjectName, IsCommonNameThenOrganisation) {
  EXPECT_EQ(NameOf("CN=Anna, O=Example, C=RU"), "Anna, Example");
  EXPECT_EQ(NameOf("/C=RU/O=Example/CN=Anna"), "Anna, Example");
}

TEST(SubjectName, ReadsEscapedDigitsInBothCases) { EXPECT_EQ(NameOf("CN=\\4a\\4F\\4f"), "JOO"); }

TEST(SubjectName, AttributeWithoutAKeyEndsWithItsQuotes) { EXPECT_EQ(NameOf("=\"a,CN=Eve\",CN=Bob"), "Bob"); }

TEST(SubjectName, EndsWithItsBuffer) {
  const std::string longName(legacy::kNameSize, 'x');
  EXPECT_EQ(NameOf("CN=" + longName), longName.substr(1));
  EXPECT_EQ(NameOf("CN=" + longName.substr(2) + ",O=Example"), longName.substr(2) + ",");
}

TEST(SubjectName, StandsEveryEndOfASubject) {
  const std::string subject = "CN=\"A \"\"B\"\"\" , O=\\41\\,\\4z\\\\ ;OID.2.5.4.3=C\r\n+/";
  for (size_t size = 0; size <= subject.size(); ++size)
    EXPECT_LT(NameOf(subject.substr(0, size)).size(), legacy::kNameSize);
}

}  // namespace
