// Sessions: how they open, what they refuse, what they give back.
#include <windows.h>

#include <string>

#include "engine_test.h"

using namespace standin;

namespace {

/// A profile in the registry for the time of a test.
class Profile {
 public:
  Profile(const char* name, const std::string& keyFile, const std::string& store, const char* pin) {
    HKEY key;
    RegCreateKeyA(HKEY_CURRENT_USER, kPath, &key);
    const std::pair<const char*, std::string> values[] = {
        {"ProfileName", name}, {"pse", keyFile}, {"localstore", store}, {"pincode", pin}};
    for (const auto& [value, text] : values) {
      RegSetValueExA(key, value, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                     static_cast<DWORD>(text.size() + 1));
    }
    RegCloseKey(key);
  }
  ~Profile() { RegDeleteKeyA(HKEY_CURRENT_USER, kPath); }

 private:
  static constexpr char kPath[] = "SOFTWARE\\KORVENTA\\tavl\\Profiles\\7001";
};

class Session : public EngineTest {};

}  // namespace

TEST_F(Session, NamedProfileIsFoundWhateverTheCase) {
  const Profile profile("Standin test", MaterialPath("alice.p12"), MaterialPath("store"), "12345678");
  EngineSession session = nullptr;
  ASSERT_CODE(0, QUIVO_Initialize("STANDIN TEST", 0, &session));
  EXPECT_FALSE(sign(session, 0, BytesOf("text")).empty());
  EXPECT_CODE(0, QUIVO_Uninitialize(session));
}

TEST_F(Session, UnknownProfileIsRefused) {
  EngineSession session = nullptr;
  EXPECT_CODE(kProfileNotFound, QUIVO_Initialize("no such profile", 0, &session));
  EXPECT_EQ(nullptr, session);
}

TEST_F(Session, WhatCannotBeOpenedHasItsOwnCode) {
  EngineSession session = nullptr;
  const std::string store = MaterialPath("store");
  EXPECT_CODE(kWrongPin, tryOpen(MaterialPath("alice.p12"), "1234567", store, session));
  EXPECT_CODE(kWrongPin, tryOpen(MaterialPath("alice.p12"), "", store, session));
  EXPECT_CODE(kKeyFileMissing, tryOpen(MaterialPath("nobody.p12"), "12345678", store, session));
  EXPECT_CODE(kKeyFileDamaged, tryOpen(MaterialPath("alice.cer"), "12345678", store, session));
  EXPECT_CODE(kStoreUnreadable, tryOpen(MaterialPath("alice.p12"), "12345678", MaterialPath("nothing"), session));
  EXPECT_CODE(kStoreUnreadable, tryOpen(MaterialPath("alice.p12"), "12345678", MaterialPath("data.bin"), session));
  EXPECT_EQ(nullptr, session);
}

TEST_F(Session, KeysAreReadFromTexts) {
  const Bytes data = BytesOf("signed");
  for (const char* name : {"alice.keys.pem", "alice.p12.pem"}) {
    EngineSession session = nullptr;
    EXPECT_CODE(0, tryOpen(MaterialPath(name), "12345678", MaterialPath("roots"), session)) << name;
    EXPECT_CODE(0, verify(session, sign(session, kSendCertificate, data)).code) << name;
    EXPECT_CODE(kWrongPin, tryOpen(MaterialPath(name), "other", MaterialPath("roots"), session)) << name;
  }
  EngineSession session = nullptr;
  EXPECT_CODE(kKeyFileDamaged, tryOpen(MaterialPath("alice.pem"), "12345678", "", session));
}

TEST_F(Session, ExpiredOwnCertificateIsNoticedWhenAsked) {
  EngineSession session = nullptr;
  EXPECT_CODE(kOwnCertificateExpired, tryOpen(MaterialPath("dave.p12"), "12345678", MaterialPath("store"), session, 2));
  EXPECT_CODE(0, tryOpen(MaterialPath("dave.p12"), "12345678", MaterialPath("store"), session));
}

TEST_F(Session, RemoteParametersAreRefused) {
  RSrvParamRecord remote{};
  remote.size = sizeof remote;
  EngineSession session = nullptr;
  EXPECT_CODE(kRemoteSession, QUIVO_InitializeEx(kEngineRemoteParam, &remote, &session));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_InitializeEx(kEngineLocalParam, nullptr, &session));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_InitializeEx(5, &remote, &session));
}

TEST_F(Session, MinimalSessionHashesButHasNoKeys) {
  const EngineSession session = openMinimal();
  const Bytes data = BytesOf("abc");
  const DataBlob_t in = BlobOf(data);
  DataBlob_t hash{};
  EXPECT_CODE(0, QUIVO_HashMem(session, &in, &hash));
  EXPECT_EQ(32u, take(session, hash).size());
  Bytes out;
  EXPECT_CODE(kOwnCertificateNotFound, trySign(session, 0, &data, nullptr, out));
}

TEST_F(Session, ContextForVerificationHasNoKeys) {
  EngineSession session = nullptr;
  ASSERT_CODE(0, tryOpen(MaterialPath("alice.p12"), "wrong", MaterialPath("store"), session, 0x80000000));
  Bytes out;
  const Bytes data = BytesOf("abc");
  EXPECT_CODE(kOwnCertificateNotFound, trySign(session, 0, &data, nullptr, out));
  EXPECT_CODE(0, verify(session, Material("messages/attached.p7s")).code);
}

TEST_F(Session, UnknownHandlesAreRefused) {
  const Bytes data = BytesOf("abc");
  Bytes out;
  EngineSession closed = openMinimal();
  close(closed);
  int onStack = 0;
  for (EngineSession handle : {EngineSession(nullptr), EngineSession(&onStack), closed}) {
    EXPECT_CODE(kBadSession, trySign(handle, 0, &data, nullptr, out));
    EXPECT_CODE(kBadSession, QUIVO_Uninitialize(handle));
    EXPECT_CODE(kBadSession, QUIVO_FreeMem(handle, nullptr));
    EXPECT_EQ(nullptr, QUIVO_AllocMem(handle, 10));
  }
}

TEST_F(Session, MemoryThatIsNotTheSessionsIsRefused) {
  const EngineSession session = openMinimal();
  char own[16];
  EXPECT_CODE(kWinInvalidParameter, QUIVO_FreeMem(session, own));
  void* buffer = QUIVO_AllocMem(session, 16);
  ASSERT_NE(nullptr, buffer);
  EXPECT_CODE(0, QUIVO_FreeMem(session, buffer));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_FreeMem(session, buffer));
  EXPECT_CODE(0, QUIVO_FreeMem(session, nullptr));
}

TEST_F(Session, TwoSessionsAreIndependent) {
  const EngineSession alice = open("alice");
  const EngineSession bob = open("bob");
  const Bytes byAlice = sign(alice, kSendCertificate, BytesOf("text"));
  close(alice);
  EXPECT_CODE(0, verify(bob, byAlice).code);
}

TEST_F(Session, ReloadOfRevocationListsIsDescribed) {
  const std::string folder = CopyOfStore("roots", "reload");
  const EngineSession session = openIn("alice", folder);
  WriteBytes(folder + "\\root.crl", Material("root.crl"));
  char text[4096] = {};
  DataBlob_t blob{sizeof text, reinterpret_cast<uint8_t*>(text)};
  EXPECT_CODE(0, QUIVO_Ctrl(session, kEngineCtrlUpdateCrl, &blob));
  EXPECT_NE(std::string::npos, std::string(text).find("1")) << text;
  const Bytes byCarol = sign(open("carol"), kSendCertificate, BytesOf("text"));
  EXPECT_CODE(kRevoked, verify(session, byCarol).code);
  EXPECT_CODE(kNotSupported, QUIVO_Ctrl(session, 5, &blob));
}
