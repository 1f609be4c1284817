// The store: additions, import and export.
#include <windows.h>

#include "store_fixture.h"

using namespace standin;

namespace {

class Store : public StoreTest {};

}  // namespace

TEST_F(Store, ObjectIsAddedWhileAnotherProcessReadsItsFile) {
  const std::string folder = CopyOfStore("roots", "read-while-added");
  const EngineSession first = openIn("alice", folder);
  const EngineSession second = openIn("alice", folder);
  ASSERT_CODE(0, add(first, Material("heidi.cer")));
  WIN32_FIND_DATAA entry{};
  FindClose(FindFirstFileA((folder + "\\*.cer").c_str(), &entry));
  const HANDLE reader = CreateFileA((folder + "\\" + entry.cFileName).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, reader);
  EXPECT_CODE(0, add(second, Material("heidi.cer")));
  CloseHandle(reader);
}

TEST_F(Store, AddedCertificateIsKnownAndKept) {
  const std::string folder = CopyOfStore("roots", "add");
  const EngineSession session = openIn("alice", folder);
  const Bytes message = sign(open("bob"), 0, BytesOf("text"));
  EXPECT_CODE(kSignerUnknown, verify(session, message).code);
  EXPECT_CODE(0, add(session, Material("bob.cer")));
  EXPECT_CODE(0, add(session, Material("bob.cer")));
  EXPECT_CODE(0, verify(session, message).code);
  EXPECT_CODE(0, verify(openIn("alice", folder), message).code);
}

TEST_F(Store, AddedRevocationListCounts) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "addcrl"));
  const Bytes message = sign(open("carol"), kSendCertificate, BytesOf("text"));
  EXPECT_CODE(0, verify(session, message).code);
  EXPECT_CODE(0, addCrl(session, Material("root.crl")));
  EXPECT_CODE(kRevoked, verify(session, message).code);
}

TEST_F(Store, OlderAndForgedListsAreRefused) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "oldcrl"));
  EXPECT_CODE(kCrlForged, addCrl(session, Material("forged.crl")));
  EXPECT_CODE(0, addCrl(session, Material("root.crl")));
  EXPECT_CODE(0, addCrl(session, Material("root.crl")));
  EXPECT_CODE(kCrlOlder, addCrl(session, Material("old.crl")));
  EXPECT_CODE(kCrlOlder, import(session, 0, Material("old.crl")));
  EXPECT_CODE(0, import(session, 16, Material("old.crl")));
}

TEST_F(Store, OlderListOfAnotherScopeIsAdded) {
  const EngineSession session = openIn("alice", CopyOfStore("trust/no-list/store", "scopes"));
  for (const char* list : {"base.crl", "reasons-one.crl", "reasons-two.crl", "delta.crl"}) {
    EXPECT_CODE(0, addCrl(session, Material(std::string("trust/work/") + list))) << list;
  }
}

TEST_F(Store, OtherBytesAreNotAdded) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "bad"));
  EXPECT_CODE(kCertificateDamaged, add(session, Material("root.crl")));
  EXPECT_CODE(kCertificateDamaged, add(session, {}));
  EXPECT_CODE(kCrlDamaged, addCrl(session, Material("root.cer")));
  EXPECT_CODE(kNothingToImport, import(session, 0, Material("data.bin")));
  EXPECT_CODE(kNothingToImport, import(session, 4, Material("bob.cer")));
  EXPECT_CODE(kNothingToImport, import(session, 2, Material("root.crl")));
  EXPECT_CODE(kNoStore, add(openMinimal(), Material("bob.cer")));
}

TEST_F(Store, NamedOwnCertificateMustExist) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "named"));
  char keyId[] = "00112233";
  CertIdRecord id{};
  id.type = 1;
  id.keyId = keyId;
  const SignParamRecord addition{0, &id};
  const Bytes encoded = Material("bob.cer");
  const DataBlob_t blob = BlobOf(encoded);
  EXPECT_CODE(kOwnCertificateNotFound, QUIVO_AddCertificate(session, &addition, &blob));
}

TEST_F(Store, WholeStoreTravelsFromOneToAnother) {
  for (uint32_t flags : {0u, 2u}) {
    const Bytes bundle = exported(open("", "store"), flags, nullptr);
    EXPECT_EQ(flags == 0 ? '-' : 0x30, bundle.at(0));
    const std::string folder = ScratchPath("bundle" + std::to_string(flags));
    CreateDirectoryA(folder.c_str(), nullptr);
    const EngineSession session = openIn("alice", folder);
    EXPECT_CODE(0, import(session, 2 | 4, bundle));
    EXPECT_EQ(8u, find(session, WithFlags(2)).size());
    EXPECT_CODE(kRevoked, verify(session, sign(open("carol"), kSendCertificate, BytesOf("text"))).code);
  }
}

TEST_F(Store, OpensslBundleIsImported) {
  const std::string folder = ScratchPath("from openssl");
  CreateDirectoryA(folder.c_str(), nullptr);
  const EngineSession session = openIn("", folder);
  const std::string bundle = MaterialPath("messages/bundle.p7b");
  const SignParamRecord param{};
  EXPECT_CODE(0, QUIVO_ImportFile(session, &param, bundle.c_str()));
  EXPECT_EQ(2u, find(session, WithFlags(2)).size());
}

TEST_F(Store, OneCertificateIsExported) {
  const EngineSession session = open("alice");
  const Bytes encoded = Material("bob.cer");
  const DataBlob_t blob = BlobOf(encoded);
  CertificateRecord bob{};
  ASSERT_CODE(0, QUIVO_ParseCert(session, &blob, 0x20000, &bob));
  CertIdRecord id{};
  id.type = 2;
  id.certHash = bob.certHash;
  EXPECT_EQ(encoded, exported(session, 2, &id));
  const Bytes pem = exported(session, 0, &id);
  EXPECT_EQ("-----BEGIN CERTIFICATE-----", std::string(pem.begin(), pem.begin() + 27));
  const std::string path = ScratchPath("exported.cer");
  const SignParamRecord param{2, &id};
  EXPECT_CODE(0, QUIVO_ExportFile(session, &param, path.c_str()));
  EXPECT_EQ(encoded, ReadBytes(path));
  EXPECT_CODE(kNothingToExport, QUIVO_ExportFile(open("alice", "roots"), &param, path.c_str()));
  QUIVO_FreeCert(session, &bob);
}

TEST_F(Store, TokensAreNotSupported) {
  exported(open("alice"), 32, nullptr, kNotSupported);
  exported(open("alice"), 8, nullptr, kNotSupported);
  exported(openMinimal(), 2, nullptr, kNothingToExport);
}

TEST_F(Store, StrangersCertificateIsNotImportedAsOwn) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "own"));
  EXPECT_CODE(kKeyDoesNotMatch, import(session, 8, Material("bob.cer")));
  EXPECT_CODE(0, import(session, 8, Material("alice.cer")));
}
