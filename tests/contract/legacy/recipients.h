// The base of the tests of the legacy object's recipients.
#pragma once

#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"
#include "support/records.h"

constexpr uint32_t kBadParameter = 0x80000057;
constexpr uint32_t kNoMemory = 0x80000008;
constexpr uint32_t kNotValidNow = 0xE0700036;
constexpr int32_t kCancelled = static_cast<int32_t>(0xE072008A);
constexpr size_t kTemplate = 16;
constexpr size_t kSubjectAltName = kTemplate + 200;

/// A BSTR that carries bytes, of any number.
inline Bstr DerOf(const Bytes& bytes) {
  Bstr carrier;
  *carrier.inOut() =
      SysAllocStringByteLen(reinterpret_cast<const char*>(bytes.data()), static_cast<UINT>(bytes.size()));
  return carrier;
}

class LegacyRecipients : public LegacyTest {
 protected:
  void SetUp() override {
    LegacyTest::SetUp();
    openSession();
    engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A")};
    fake::Certificate valid;
    valid.subject = "CN=B";
    valid.notBefore = now() - 10;
    valid.notAfter = now() + 10;
    engine().on("QUIVO_VerifyCert").certificate = valid;
  }
  uint32_t now() { return static_cast<uint32_t>(desktop.now); }

  std::vector<fake::Snapshot> searches() {
    std::vector<fake::Snapshot> all;
    for (const fake::Call& call : engine().calls())
      if (call.function == "QUIVO_FindCert") all.push_back(call.record(1));
    return all;
  }
  /// The recipients that an encryption would have.
  std::vector<fake::Snapshot> recipients() {
    engine().forgetCalls();
    EXPECT_OK(object->Encrypt(Bstr(L"in"), Bstr(L"out")));
    const fake::Snapshot param = engine().only("QUIVO_EncryptFile").record(1);
    std::vector<fake::Snapshot> all;
    for (int32_t i = 0; i < param.i32(16); ++i) all.push_back(CertificateAt(param.at(24), static_cast<size_t>(i)));
    return all;
  }
  void expectSelection(const fake::Snapshot& search) {
    EXPECT_EQ(8u, search.u32(0));
    EXPECT_EQ(0u, search.u64(8));
    EXPECT_EQ(0x80u, search.u32(kTemplate));
    EXPECT_EQ(5u, search.u32(kTemplate + 64));
    EXPECT_EQ(0x20000u, MaskIn(search));
  }
  /// A search by address, with the address at one member of the alternative name and no other.
  void expectAddress(const fake::Snapshot& search, size_t member, const std::string& address) {
    EXPECT_EQ(0u, search.u32(0));
    EXPECT_EQ(0x280u, search.u32(kTemplate));
    EXPECT_EQ(5u, search.u32(kTemplate + 64));
    EXPECT_EQ(0x20000u, MaskIn(search));
    for (size_t i = 0; i < 15; ++i) {
      const size_t offset = kSubjectAltName + 8 * i;
      if (i == member)
        EXPECT_EQ(address, search.text(offset));
      else
        EXPECT_EQ(0u, search.pointer(offset)) << "member " << i;
    }
  }
};
