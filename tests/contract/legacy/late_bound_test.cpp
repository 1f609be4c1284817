// The legacy object as scripts reach it: every method by its name, through IDispatch.
#include "contract/legacy/legacy_test.h"
#include "support/invoke.h"

namespace {

class LegacyLateBound : public LegacyTest {
 protected:
  /// Calls a method with texts and, behind them, a number if one is given.
  HRESULT call(const wchar_t* name, std::initializer_list<const wchar_t*> texts, const int* number = nullptr) {
    std::vector<Variant> arguments;
    for (const wchar_t* text : texts) arguments.push_back(Variant::text(text));
    if (number != nullptr) arguments.push_back(Variant::number(*number));
    LateCall late{name, DISPATCH_METHOD, {}, {}, false};
    for (const Variant& argument : arguments) late.positional.push_back(argument);
    return Invoke(object, late).result;
  }
};

TEST_F(LegacyLateBound, EveryMethodIsReached) {
  const int one = 1, zero = 0;
  engine().on("QUIVO_SignedInfoFile").result = 1;
  engine().on("QUIVO_FindCert").certificates.resize(1);
  EXPECT_OK(call(L"Init", {L"My"}));
  EXPECT_OK(call(L"Sign", {L"in", L"out"}, &one));
  EXPECT_EQ(3u, engine().only("QUIVO_SignFile").record(1).u32(0));
  EXPECT_OK(call(L"Verify", {L"in", L"out"}));
  EXPECT_EQ("in", engine().only("QUIVO_VerifyFile").text(3));
  EXPECT_OK(call(L"Encrypt", {L"in", L"out"}));
  EXPECT_EQ("out", engine().only("QUIVO_EncryptFile").text(3));
  EXPECT_OK(call(L"SignAndEncrypt", {L"in", L"out"}));
  EXPECT_EQ(1u, engine().count("QUIVO_SignAndEncryptFile"));
  EXPECT_OK(call(L"SetRecipients", {L"SMTP:a@b"}));
  EXPECT_EQ(1u, engine().count("QUIVO_FindCert"));
  call(L"IsSigned", {L"in"});
  EXPECT_EQ(3u, engine().count("QUIVO_SignedInfoFile"));
  call(L"Unencrypt", {L"C:\\missing", L"out"}, &zero);
  call(L"VerifyAndUnencrypt", {L"C:\\missing", L"out"});
  EXPECT_EQ(2u, desktop.messages.size());
  EXPECT_HR(0xE0700036u, call(L"AddRecipDERCert", {L"certificate"}));
  EXPECT_EQ(1u, engine().count("QUIVO_VerifyCert"));
  EXPECT_OK(call(L"FreeRecipCerts", {}));
  EXPECT_OK(call(L"Uninit", {}));
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
}

TEST_F(LegacyLateBound, AFailureIsRaisedWithItsCode) {
  engine().on("QUIVO_EncryptFile").result = 0x7030;
  EXPECT_HR(0x80007030u, call(L"Encrypt", {L"in", L"out"}));
}

}  // namespace
