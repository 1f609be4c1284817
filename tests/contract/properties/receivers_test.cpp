// Receivers given as scripts give them: an array of VARIANTs, whose objects the script keeps alive.
#include "contract/properties/records.h"
#include "support/foreign_object.h"

namespace {

class ReceiversTest : public ContractTest {
 protected:
  void SetUp() override { param_ = make<EncryptParam>(); }
  HRESULT put(VARIANT value) { return param_->put_Receivers(value); }
  std::vector<Ptr<IDispatch>> kept() {
    Variant value;
    EXPECT_OK(param_->get_Receivers(value.out()));
    return objectsOf(value);
  }
  fake::Snapshot record() { return recordOf(param_.get()); }
  std::string subject(size_t index) { return record().at(24).element(index, 408).text(24); }

 private:
  Ptr<IEncryptParam> param_;
};

Ptr<ICertificate> receiver(const wchar_t* subject) {
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_OK(certificate->put_subject(Bstr(subject)));
  return certificate;
}

TEST_F(ReceiversTest, ScriptArrayIsAccepted) {
  Ptr<ICertificate> first = receiver(L"first"), second = receiver(L"second");
  EXPECT_OK(put(variants({Variant::object(first), Variant::object(second)})));
  EXPECT_EQ(2, record().i32(16));
  EXPECT_EQ("first", subject(0));
  EXPECT_EQ("second", subject(1));
}

TEST_F(ReceiversTest, ScriptArrayReadsBackAsNullReferences) {
  Ptr<ICertificate> first = receiver(L"first"), second = receiver(L"second");
  EXPECT_OK(put(variants({Variant::object(first), Variant::object(second)})));
  ASSERT_EQ(2u, kept().size());
  EXPECT_EQ(nullptr, kept()[0].get());
  EXPECT_EQ(nullptr, kept()[1].get());
}

TEST_F(ReceiversTest, ScriptArrayByReferenceIsAccepted) {
  Ptr<ICertificate> first = receiver(L"first");
  Variant array = variants({Variant::object(first)}, 3);
  Variant reference = byRefArray(array);
  EXPECT_OK(put(reference));
  EXPECT_EQ("first", subject(0));
  EXPECT_OK(put(Variant()));
  EXPECT_OK(put(byRef(reference)));
  EXPECT_EQ("first", subject(0));
}

TEST_F(ReceiversTest, ScriptArrayIsUnlockedAfterwards) {
  Ptr<ICertificate> first = receiver(L"first");
  Variant array = variants({Variant::object(first)});
  EXPECT_OK(put(array));
  EXPECT_EQ(0u, array.safeArray()->cLocks);
}

TEST_F(ReceiversTest, ScriptArrayThatCannotBeLockedChangesNothing) {
  EXPECT_OK(put(objects({receiver(L"kept")})));
  Variant array = variants({Variant::object(receiver(L"first"))});
  array.safeArray()->cLocks = 0xFFFF;
  EXPECT_HR(E_UNEXPECTED, put(array));
  array.safeArray()->cLocks = 0;
  EXPECT_EQ("kept", subject(0));
}

TEST_F(ReceiversTest, ReleasedReceiverLeavesNoFreedPointer) {
  {
    Ptr<ICertificate> gone = receiver(L"gone");
    EXPECT_OK(put(variants({Variant::object(gone)})));
  }
  EXPECT_EQ(1, record().i32(16));
  EXPECT_EQ("gone", subject(0));
}

TEST_F(ReceiversTest, ScriptArrayReplacesHeldReceivers) {
  Ptr<ICertificate> held = receiver(L"held"), script = receiver(L"script");
  EXPECT_OK(put(objects({held})));
  EXPECT_OK(put(variants({Variant::object(script)})));
  EXPECT_EQ(1u, held.references());
  EXPECT_EQ("script", subject(0));
}

TEST_F(ReceiversTest, ObjectsGivenAfterAScriptArrayAreReadBack) {
  Ptr<ICertificate> script = receiver(L"script"), held = receiver(L"held");
  EXPECT_OK(put(variants({Variant::object(script)})));
  EXPECT_OK(put(objects({held})));
  ASSERT_EQ(1u, kept().size());
  EXPECT_EQ(static_cast<IDispatch*>(held.get()), kept()[0].get());
}

TEST_F(ReceiversTest, NothingInAScriptArrayIsAnEmptyRecord) {
  EXPECT_OK(put(variants({Variant::object(nullptr)})));
  EXPECT_EQ(1, record().i32(16));
  EXPECT_TRUE(record().at(24).element(0, 408).allZero());
}

TEST_F(ReceiversTest, RefusedScriptArrayChangesNothing) {
  EXPECT_OK(put(objects({receiver(L"kept")})));
  EXPECT_HR(E_INVALIDARG, put(variants({Variant::object(receiver(L"first")), Variant::number(1)})));
  EXPECT_EQ("kept", subject(0));
}

TEST_F(ReceiversTest, EmptyScriptArrayClears) {
  EXPECT_OK(put(objects({receiver(L"held")})));
  EXPECT_OK(put(variants({})));
  EXPECT_EQ(0, record().i32(16));
}

TEST_F(ReceiversTest, ElementThatIsNoObjectIsRefused) {
  Ptr<ICertificate> good = receiver(L"good");
  EXPECT_HR(E_INVALIDARG, put(variants({Variant::object(good), Variant::number(1)})));
  EXPECT_HR(E_INVALIDARG, put(variants({Variant::text(L"x")})));
  EXPECT_HR(E_INVALIDARG, put(variants({Variant()})));
}

TEST_F(ReceiversTest, ElementCountsOnlyAsADispatchObject) {
  Ptr<ICertificate> good = receiver(L"good");
  Variant unknown = Variant::object(good);
  V_VT(unknown.out()) = VT_UNKNOWN;
  EXPECT_HR(E_INVALIDARG, put(variants({unknown})));
}

TEST_F(ReceiversTest, ForeignElementIsRefusedUntouched) {
  ForeignObject foreign;
  {
    Variant element = Variant::object(foreign);
    EXPECT_HR(E_INVALIDARG, put(variants({element})));
  }
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
}

TEST_F(ReceiversTest, ElementOfAnotherClassIsRefused) {
  EXPECT_HR(E_INVALIDARG, put(variants({Variant::object(make<Policy>())})));
}

TEST_F(ReceiversTest, NullArraysAreRefused) {
  EXPECT_HR(E_INVALIDARG, put(nullRef(kVbsArray)));
  Variant nothing = Variant::array(VT_VARIANT, nullptr);
  EXPECT_HR(E_INVALIDARG, put(nothing));
}

TEST_F(ReceiversTest, ChangedPartsOfAReceiverLeaveNoFreedPointer) {
  Ptr<ICertificate> certificate = receiver(L"x");
  Ptr<IPolicy> policy = make<Policy>();
  Ptr<IAltName> name = make<AltName>();
  EXPECT_OK(policy->put_oid(Bstr(L"before")));
  EXPECT_OK(name->put_DNS(Bstr(L"before")));
  EXPECT_OK(certificate->put_policies(objects({policy})));
  EXPECT_OK(certificate->putref_subjectAltName(name));
  EXPECT_OK(put(objects({certificate})));
  EXPECT_OK(policy->put_oid(Bstr(L"a text that is longer than the one before")));
  EXPECT_OK(name->put_DNS(Bstr(L"a text that is longer than the one before")));
  const fake::Snapshot seen = record().at(24).element(0, 408);
  EXPECT_EQ("a text that is longer than the one before", seen.at(336).text(0));
  EXPECT_EQ("a text that is longer than the one before", seen.text(200 + 8));
}

TEST_F(ReceiversTest, ClearedPartsOfAReceiverLeaveNoFreedPointer) {
  Ptr<ICertificate> certificate = receiver(L"x");
  EXPECT_OK(certificate->put_extKeyUsage(strings({L"1.2.3"})));
  EXPECT_OK(certificate->put_extensions(objects({make<Extension>()})));
  EXPECT_OK(put(variants({Variant::object(certificate)})));
  EXPECT_OK(certificate->put_extKeyUsage(Variant()));
  EXPECT_OK(certificate->put_extensions(Variant()));
  const fake::Snapshot seen = record().at(24).element(0, 408);
  EXPECT_EQ(0, seen.i32(344));
  EXPECT_EQ(0, seen.i32(360));
}

TEST_F(ReceiversTest, WholeCertificateRecordIsCopied) {
  Ptr<ICertificate> certificate = receiver(L"subject");
  EXPECT_OK(certificate->put_certEncoded(bytes({1, 2, 3})));
  EXPECT_OK(certificate->put_keyUsage(Keyusage_KeyEncipherment));
  EXPECT_OK(put(objects({certificate})));
  EXPECT_EQ(recordOf(certificate.get()).bytes, record().at(24).element(0, 408).bytes);
}

}  // namespace
