// What opening a file means by its path alone.
#include "legacy/file_open_plan.h"

#include <gtest/gtest.h>

#include <string>

using namespace legacy;

namespace {

OpenPlan PlanOf(const std::string& path) {
  OpenPlan plan{};
  EXPECT_TRUE(PlanOpening(path.c_str(), plan)) << path;
  return plan;
}

std::string FolderTextOf(const std::string& path) {
  char folder[MAX_PATH];
  FolderOf(path.c_str(), folder);
  return folder;
}

TEST(LegacyOpenPlan, TheResultLacksTheLastExtension) {
  EXPECT_STREQ("C:\\a.txt", PlanOf("C:\\a.txt.p7a").result);
  EXPECT_STREQ("C:\\report.doc", PlanOf("C:\\report.doc.p7e").result);
  EXPECT_STREQ("C:\\", PlanOf("C:\\.p7s").result);
}

TEST(LegacyOpenPlan, TheKindIsReadInAnyCase) {
  EXPECT_EQ(ProtectedKind::kSigned, PlanOf("a.p7s").kind);
  EXPECT_EQ(ProtectedKind::kSigned, PlanOf("REPORT.P7S").kind);
  EXPECT_EQ(ProtectedKind::kEncrypted, PlanOf("a.P7e").kind);
  EXPECT_EQ(ProtectedKind::kSignedAndEncrypted, PlanOf("a.p7A").kind);
}

TEST(LegacyOpenPlan, EverythingElseIsOther) {
  for (const char* path : {"a.p7m", "a.p7", "a.p7ss", "a.", "C:\\a.b\\file", "a.p7s "})
    EXPECT_EQ(ProtectedKind::kOther, PlanOf(path).kind) << path;
}

TEST(LegacyOpenPlan, ADotInAFolderIsADot) { EXPECT_STREQ("C:\\a", PlanOf("C:\\a.b\\file").result); }

TEST(LegacyOpenPlan, WithoutADotThereIsNone) {
  OpenPlan plan{};
  EXPECT_FALSE(PlanOpening("C:\\file", plan));
  EXPECT_FALSE(PlanOpening("", plan));
}

TEST(LegacyOpenPlan, APathOfMoreThan258CharactersIsRefused) {
  const OpenPlan longest = PlanOf(std::string(254, 'a') + ".p7s");
  EXPECT_EQ(ProtectedKind::kSigned, longest.kind);
  EXPECT_EQ(std::string(254, 'a'), longest.result);
  OpenPlan plan{};
  EXPECT_FALSE(PlanOpening((std::string(255, 'a') + ".p7s").c_str(), plan));
  EXPECT_FALSE(PlanOpening(("a.p7s" + std::string(254, 'a')).c_str(), plan));
}

TEST(LegacyOpenPlan, TheFolderIsTheTextBeforeTheLastBackslash) {
  EXPECT_EQ("C:\\a b", FolderTextOf("C:\\a b\\c.txt"));
  EXPECT_EQ("C:", FolderTextOf("C:\\c.txt"));
  EXPECT_EQ("", FolderTextOf("\\c.txt"));
  char folder[MAX_PATH];
  EXPECT_TRUE(FolderOf("\\c", folder));
  EXPECT_FALSE(FolderOf("c.txt", folder));
  EXPECT_STREQ("", folder);
}

TEST(LegacyOpenPlan, TheSignedCopyLiesBesideTheResult) {
  const SignedCopy copy = SignedCopyOf("C:\\a b\\c.txt");
  EXPECT_STREQ("C:\\a b\\P7S", copy.folder);
  EXPECT_STREQ("C:\\a b\\P7S\\c.txt.p7s", copy.file);
}

TEST(LegacyOpenPlan, TheSignedCopyOfTheLongestResultFits) {
  const std::string name = "C:\\" + std::string(MAX_PATH - 4, 'n');
  const SignedCopy copy = SignedCopyOf(name.c_str());
  EXPECT_EQ("C:\\P7S\\" + name.substr(3) + ".p7s", copy.file);
  const std::string folder = std::string(MAX_PATH - 2, 'f') + "\\";
  EXPECT_EQ(folder + "P7S\\.p7s", SignedCopyOf(folder.c_str()).file);
}

}  // namespace
