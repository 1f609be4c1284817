// Updating the revocation lists.
#include "support/contract_test.h"

namespace {

class UpdateCrlTest : public ContractTest {
 protected:
  HRESULT update(Bstr& description) { return openQuivo()->UpdateCrl(description.inOut()); }
  fake::Reply& reply() { return engine().on("QUIVO_Ctrl"); }
};

TEST_F(UpdateCrlTest, EngineGetsCodeFourAndAZeroedBufferOf4096Bytes) {
  Bstr description;
  EXPECT_OK(update(description));
  const fake::Call& call = engine().only("QUIVO_Ctrl");
  EXPECT_EQ(4, call.number(1));
  EXPECT_EQ(4096u, call.blobLength(2));
  EXPECT_EQ(Bytes(4096), call.blobBytes(2));
}

TEST_F(UpdateCrlTest, DescriptionIsReturned) {
  reply().text = "\xD1\xEF\xE8\xF1\xEA\xE8";
  Bstr description(L"before");
  EXPECT_OK(update(description));
  EXPECT_EQ(L"Списки", description.text());
}

TEST_F(UpdateCrlTest, SuccessWithoutADescriptionGivesAnEmptyText) {
  Bstr description(L"before");
  EXPECT_OK(update(description));
  EXPECT_EQ(L"", description.text());
}

TEST_F(UpdateCrlTest, LongestDescriptionFits) {
  reply().text = std::string(4095, 'x');
  Bstr description;
  EXPECT_OK(update(description));
  EXPECT_EQ(4095u, description.text().size());
}

TEST_F(UpdateCrlTest, FailureWithADescriptionIsReportedByTheTextOnly) {
  reply().result = 5;
  reply().text = "failed";
  Bstr description;
  EXPECT_OK(update(description));
  EXPECT_EQ(L"failed", description.text());
}

TEST_F(UpdateCrlTest, FailureWithoutADescriptionIsReturnedMapped) {
  reply().result = 5;
  Bstr description(L"before");
  EXPECT_HR(0xE0690005, update(description));
  EXPECT_EQ(L"before", description.text());
}

TEST_F(UpdateCrlTest, ResultOneWithoutADescriptionIsReturnedAsItIs) {
  reply().result = 1;
  Bstr description(L"before");
  EXPECT_HR(S_FALSE, update(description));
  EXPECT_EQ(L"before", description.text());
}

TEST_F(UpdateCrlTest, ResultOneWithADescriptionIsReportedByTheTextOnly) {
  reply().result = 1;
  reply().text = "nothing new";
  Bstr description;
  EXPECT_OK(update(description));
  EXPECT_EQ(L"nothing new", description.text());
}

TEST_F(UpdateCrlTest, NullPointerIsRefusedBeforeTheEngineIsCalled) {
  EXPECT_HR(kInvalidArgument, openQuivo()->UpdateCrl(nullptr));
  EXPECT_EQ(0u, engine().count("QUIVO_Ctrl"));
}

TEST_F(UpdateCrlTest, TextThatCannotBeAllocatedIsReported) {
  reply().text = "text";
  reply().during = [] { Module::get().failAllocation(0); };
  Bstr description(L"before");
  EXPECT_HR(kOutOfMemory, update(description));
  EXPECT_EQ(L"before", description.text());
}

}  // namespace
