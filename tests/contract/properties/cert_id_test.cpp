// The certificate identifier: its type decides which of its properties exist.
#include "support/records.h"

namespace {

class CertIdTest : public ContractTest {
 protected:
  void SetUp() override { id_ = Make<ICertId>(); }
  Ptr<ICertId>& id() { return id_; }
  void setType(int type) { EXPECT_OK(id_->put_type(static_cast<IdChoice_t>(type))); }
  int type() {
    IdChoice_t value = Id_KeyId;
    EXPECT_OK(id_->get_type(&value));
    return value;
  }
  std::wstring issuer() { return read(&ICertId::get_issuer); }
  std::wstring serialNumber() { return read(&ICertId::get_serialNumber); }
  std::wstring keyId() { return read(&ICertId::get_keyId); }
  VARTYPE hashType() {
    Variant value = Variant::text(L"before");
    EXPECT_OK(id_->get_certHash(value.out()));
    return value.type();
  }
  fake::Snapshot record() { return RecordOf(id_.get()); }

 private:
  std::wstring read(HRESULT (STDMETHODCALLTYPE ICertId::*get)(BSTR*)) {
    Bstr value(L"before");
    EXPECT_OK((id_.get()->*get)(value.inOut()));
    EXPECT_FALSE(value.null());
    return value.text();
  }

  Ptr<ICertId> id_;
};

TEST_F(CertIdTest, NewObjectHasNoTypeAndNoValues) {
  EXPECT_EQ(-1, type());
  EXPECT_EQ(L"", issuer());
  EXPECT_EQ(L"", serialNumber());
  EXPECT_EQ(L"", keyId());
  EXPECT_EQ(VT_EMPTY, hashType());
  EXPECT_EQ(-1, record().i32(0));
  EXPECT_TRUE(record().part(8, 16).allZero());
}

TEST_F(CertIdTest, NothingCanBeSetBeforeTheType) {
  EXPECT_HR(0x80070057u, id()->put_issuer(Bstr(L"x")));
  EXPECT_HR(0x80070057u, id()->put_serialNumber(Bstr(L"x")));
  EXPECT_HR(0x80070057u, id()->put_keyId(Bstr(L"x")));
  EXPECT_HR(0x80070057u, id()->put_certHash(ByteArray({1})));
  EXPECT_TRUE(record().part(8, 16).allZero());
}

TEST_F(CertIdTest, TypeIsCheckedBeforeTheValue) {
  setType(Id_KeyId);
  EXPECT_HR(E_INVALIDARG, id()->put_issuer(nullptr));
  EXPECT_HR(E_INVALIDARG, id()->put_certHash(Variant::text(L"x")));
  EXPECT_HR(E_INVALIDARG, id()->put_certHash(Variant()));
}

TEST_F(CertIdTest, IssuerAndSerialNumberBelongToTypeZero) {
  setType(Id_Issuer_And_Serial);
  EXPECT_OK(id()->put_issuer(Bstr(L"CN=CA")));
  EXPECT_OK(id()->put_serialNumber(Bstr(L"0102")));
  EXPECT_HR(E_INVALIDARG, id()->put_keyId(Bstr(L"x")));
  EXPECT_HR(E_INVALIDARG, id()->put_certHash(ByteArray({1})));
  EXPECT_EQ(L"CN=CA", issuer());
  EXPECT_EQ(L"0102", serialNumber());
  EXPECT_EQ(L"", keyId());
  EXPECT_EQ(VT_EMPTY, hashType());
}

TEST_F(CertIdTest, KeyIdBelongsToTypeOne) {
  setType(Id_KeyId);
  EXPECT_OK(id()->put_keyId(Bstr(L"key")));
  EXPECT_HR(E_INVALIDARG, id()->put_issuer(Bstr(L"x")));
  EXPECT_HR(E_INVALIDARG, id()->put_serialNumber(Bstr(L"x")));
  EXPECT_EQ(L"key", keyId());
  EXPECT_EQ(L"", issuer());
  EXPECT_EQ(L"", serialNumber());
  EXPECT_EQ(VT_EMPTY, hashType());
}

TEST_F(CertIdTest, HashBelongsToTypeTwo) {
  setType(Id_CertHash);
  EXPECT_OK(id()->put_certHash(ByteArray({1, 2})));
  EXPECT_HR(E_INVALIDARG, id()->put_keyId(Bstr(L"x")));
  EXPECT_EQ(kByteArray, hashType());
  EXPECT_EQ(L"", issuer());
  EXPECT_EQ(L"", serialNumber());
  EXPECT_EQ(L"", keyId());
}

TEST_F(CertIdTest, SettingTheSameTypeKeepsTheValues) {
  setType(Id_Issuer_And_Serial);
  EXPECT_OK(id()->put_issuer(Bstr(L"CN=CA")));
  EXPECT_OK(id()->put_serialNumber(Bstr(L"0102")));
  setType(Id_Issuer_And_Serial);
  EXPECT_EQ(L"CN=CA", issuer());
  EXPECT_EQ(L"0102", serialNumber());
}

TEST_F(CertIdTest, ChangingTypeDropsOldValue) {
  setType(Id_Issuer_And_Serial);
  EXPECT_OK(id()->put_issuer(Bstr(L"CN=CA")));
  EXPECT_OK(id()->put_serialNumber(Bstr(L"0102")));
  setType(Id_KeyId);
  EXPECT_EQ(L"", keyId());
  setType(Id_Issuer_And_Serial);
  EXPECT_EQ(L"", issuer());
  EXPECT_EQ(L"", serialNumber());
}

TEST_F(CertIdTest, EveryTypeStartsEmptyAfterEveryOther) {
  for (int from : {0, 1, 2, 5}) {
    for (int to : {0, 1, 2, 5}) {
      if (from == to) continue;
      setType(from);
      id()->put_issuer(Bstr(L"x"));
      id()->put_serialNumber(Bstr(L"x"));
      id()->put_keyId(Bstr(L"x"));
      id()->put_certHash(ByteArray({1}));
      setType(to);
      EXPECT_TRUE(record().part(8, 16).allZero()) << from << " to " << to;
    }
  }
}

TEST_F(CertIdTest, UnknownTypeIsAcceptedAndRefusesEverySetter) {
  setType(5);
  EXPECT_EQ(5, type());
  EXPECT_HR(E_INVALIDARG, id()->put_issuer(Bstr(L"x")));
  EXPECT_HR(E_INVALIDARG, id()->put_serialNumber(Bstr(L"x")));
  EXPECT_HR(E_INVALIDARG, id()->put_keyId(Bstr(L"x")));
  EXPECT_HR(E_INVALIDARG, id()->put_certHash(ByteArray({1})));
  EXPECT_EQ(5, record().i32(0));
}

TEST_F(CertIdTest, AnyTypeCanBeSet) {
  for (int value : {INT32_MIN, -1, 3, INT32_MAX}) {
    setType(value);
    EXPECT_EQ(value, type());
    EXPECT_EQ(value, record().i32(0));
  }
}

TEST_F(CertIdTest, NullPointerForTheTypeIsRefused) { EXPECT_TRUE(FAILED(id()->get_type(nullptr))); }

TEST_F(CertIdTest, EngineReadsIssuerAndSerialNumber) {
  setType(Id_Issuer_And_Serial);
  EXPECT_OK(id()->put_issuer(Bstr(L"CN=\x0411")));
  EXPECT_OK(id()->put_serialNumber(Bstr(L"0102")));
  EXPECT_EQ(0, record().i32(0));
  EXPECT_EQ("CN=\xC1", record().text(8));
  EXPECT_EQ("0102", record().text(16));
}

TEST_F(CertIdTest, EngineReadsTheHash) {
  setType(Id_CertHash);
  EXPECT_OK(id()->put_certHash(ByteArray({7, 8, 9})));
  EXPECT_EQ(2, record().i32(0));
  EXPECT_EQ(3u, record().u32(8));
  EXPECT_EQ((Bytes{7, 8, 9}), record().blob(8));
}

TEST_F(CertIdTest, IncompleteIdentifierIsHandedOverAsItIs) {
  setType(Id_Issuer_And_Serial);
  EXPECT_OK(id()->put_issuer(Bstr(L"CN=CA")));
  EXPECT_EQ("CN=CA", record().text(8));
  EXPECT_EQ(0u, record().pointer(16));
}

TEST_F(CertIdTest, EngineReadsTheRecordInsideTheObject) {
  const uintptr_t first = record().address, second = record().address;
  EXPECT_EQ(first, second);
  const auto object = reinterpret_cast<uintptr_t>(static_cast<void*>(id().get()));
  EXPECT_GT(first, object);
  EXPECT_LT(first, object + 64);
}

}  // namespace
