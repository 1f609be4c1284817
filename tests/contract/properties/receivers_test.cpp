// Receivers given as scripts give them: an array of VARIANTs, whose objects the script keeps alive.
#include "support/foreign_object.h"
#include "support/records.h"

namespace {

class ReceiversTest : public ContractTest {
 protected:
  void SetUp() override { param_ = Make<IEncryptParam>(); }
  HRESULT put(VARIANT value) { return param_->put_Receivers(value); }
  std::vector<Ptr<IDispatch>> kept() {
    Variant value;
    EXPECT_OK(param_->get_Receivers(value.out()));
    return ObjectsOf(value);
  }
  fake::Snapshot record() { return RecordOf(param_.get()); }
  std::string subject(size_t index) { return CertificateAt(record().at(24), index).text(24); }

 private:
  Ptr<IEncryptParam> param_;
};

Ptr<ICertificate> Receiver(const wchar_t* subject) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_subject(Bstr(subject)));
  return certificate;
}

TEST_F(ReceiversTest, ScriptArrayIsAccepted) {
  Ptr<ICertificate> first = Receiver(L"first"), second = Receiver(L"second");
  EXPECT_OK(put(VariantArray({Variant::object(first), Variant::object(second)})));
  EXPECT_EQ(2, record().i32(16));
  EXPECT_EQ("first", subject(0));
  EXPECT_EQ("second", subject(1));
}

TEST_F(ReceiversTest, ScriptArrayReadsBackAsNullReferences) {
  Ptr<ICertificate> first = Receiver(L"first"), second = Receiver(L"second");
  EXPECT_OK(put(VariantArray({Variant::object(first), Variant::object(second)})));
  ASSERT_EQ(2u, kept().size());
  EXPECT_EQ(nullptr, kept()[0].get());
  EXPECT_EQ(nullptr, kept()[1].get());
}

TEST_F(ReceiversTest, ScriptArrayByReferenceIsAccepted) {
  Ptr<ICertificate> first = Receiver(L"first");
  Variant array = VariantArray({Variant::object(first)}, 3);
  Variant reference = ByRefArray(array);
  EXPECT_OK(put(reference));
  EXPECT_EQ("first", subject(0));
  EXPECT_OK(put(Variant()));
  EXPECT_OK(put(ByRef(reference)));
  EXPECT_EQ("first", subject(0));
}

TEST_F(ReceiversTest, ScriptArrayIsUnlockedAfterwards) {
  Ptr<ICertificate> first = Receiver(L"first");
  Variant array = VariantArray({Variant::object(first)});
  EXPECT_OK(put(array));
  EXPECT_EQ(0u, array.safeArray()->cLocks);
}

TEST_F(ReceiversTest, ScriptArrayThatCannotBeLockedChangesNothing) {
  EXPECT_OK(put(ObjectArray({Receiver(L"kept")})));
  Variant array = VariantArray({Variant::object(Receiver(L"first"))});
  array.safeArray()->cLocks = 0xFFFF;
  EXPECT_HR(E_UNEXPECTED, put(array));
  array.safeArray()->cLocks = 0;
  EXPECT_EQ("kept", subject(0));
}

TEST_F(ReceiversTest, ReleasedReceiverLeavesNoFreedPointer) {
  {
    Ptr<ICertificate> gone = Receiver(L"gone");
    EXPECT_OK(put(VariantArray({Variant::object(gone)})));
  }
  EXPECT_EQ(1, record().i32(16));
  EXPECT_EQ("gone", subject(0));
}

TEST_F(ReceiversTest, ScriptArrayReplacesHeldReceivers) {
  Ptr<ICertificate> held = Receiver(L"held"), script = Receiver(L"script");
  EXPECT_OK(put(ObjectArray({held})));
  EXPECT_OK(put(VariantArray({Variant::object(script)})));
  EXPECT_EQ(1u, held.references());
  EXPECT_EQ("script", subject(0));
}

TEST_F(ReceiversTest, ObjectsGivenAfterAScriptArrayAreReadBack) {
  Ptr<ICertificate> script = Receiver(L"script"), held = Receiver(L"held");
  EXPECT_OK(put(VariantArray({Variant::object(script)})));
  EXPECT_OK(put(ObjectArray({held})));
  ASSERT_EQ(1u, kept().size());
  EXPECT_EQ(static_cast<IDispatch*>(held.get()), kept()[0].get());
}

TEST_F(ReceiversTest, NothingInAScriptArrayIsAnEmptyRecord) {
  EXPECT_OK(put(VariantArray({Variant::object(nullptr)})));
  EXPECT_EQ(1, record().i32(16));
  EXPECT_TRUE(CertificateAt(record().at(24), 0).allZero());
}

TEST_F(ReceiversTest, RefusedScriptArrayChangesNothing) {
  EXPECT_OK(put(ObjectArray({Receiver(L"kept")})));
  EXPECT_HR(E_INVALIDARG, put(VariantArray({Variant::object(Receiver(L"first")), Variant::number(1)})));
  EXPECT_EQ("kept", subject(0));
}

TEST_F(ReceiversTest, EmptyScriptArrayClears) {
  EXPECT_OK(put(ObjectArray({Receiver(L"held")})));
  EXPECT_OK(put(VariantArray({})));
  EXPECT_EQ(0, record().i32(16));
}

TEST_F(ReceiversTest, FirstBoundRecordOfTwoDimensionsGivesTheCount) {
  Ptr<ICertificate> script = Receiver(L"script");
  Variant grid = ManyDimensions(VT_VARIANT, {{2, 0}, {3, 0}});
  Variant element = Variant::object(script);
  for (int i = 0; i < 6; ++i) VariantCopy(static_cast<VARIANT*>(grid.safeArray()->pvData) + i, element.out());
  EXPECT_OK(put(grid));
  EXPECT_EQ(3, record().i32(16));
}

TEST_F(ReceiversTest, DimensionWithoutElementsClears) {
  for (const std::initializer_list<SAFEARRAYBOUND>& bounds :
       {std::initializer_list<SAFEARRAYBOUND>{{0, 0}, {3, 0}}, {{3, 0}, {0, 0}}, {{2, 0}, {0, 0}, {3, 0}}}) {
    EXPECT_OK(put(ObjectArray({Receiver(L"held")})));
    EXPECT_OK(put(ManyDimensions(VT_VARIANT, bounds)));
    EXPECT_EQ(0, record().i32(16));
  }
}

TEST_F(ReceiversTest, ElementThatIsNoObjectIsRefused) {
  Ptr<ICertificate> good = Receiver(L"good");
  EXPECT_HR(E_INVALIDARG, put(VariantArray({Variant::object(good), Variant::number(1)})));
  EXPECT_HR(E_INVALIDARG, put(VariantArray({Variant::text(L"x")})));
  EXPECT_HR(E_INVALIDARG, put(VariantArray({Variant()})));
}

TEST_F(ReceiversTest, ElementCountsOnlyAsADispatchObject) {
  Ptr<ICertificate> good = Receiver(L"good");
  Variant unknown = Variant::object(good);
  V_VT(unknown.out()) = VT_UNKNOWN;
  EXPECT_HR(E_INVALIDARG, put(VariantArray({unknown})));
}

TEST_F(ReceiversTest, ForeignElementIsRefusedUntouched) {
  ForeignObject foreign;
  {
    Variant element = Variant::object(foreign);
    EXPECT_HR(E_INVALIDARG, put(VariantArray({element})));
  }
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
}

TEST_F(ReceiversTest, ElementOfAnotherClassIsRefused) {
  EXPECT_HR(E_INVALIDARG, put(VariantArray({Variant::object(Make<IPolicy>())})));
}

TEST_F(ReceiversTest, NullArraysAreRefused) {
  EXPECT_HR(E_INVALIDARG, put(NullRef(kVbsArray)));
  Variant nothing = Variant::array(VT_VARIANT, nullptr);
  EXPECT_HR(E_INVALIDARG, put(nothing));
}

TEST_F(ReceiversTest, ChangedPartsOfAReceiverLeaveNoFreedPointer) {
  Ptr<ICertificate> certificate = Receiver(L"x");
  Ptr<IPolicy> policy = Make<IPolicy>();
  Ptr<IAltName> name = Make<IAltName>();
  EXPECT_OK(policy->put_oid(Bstr(L"before")));
  EXPECT_OK(name->put_DNS(Bstr(L"before")));
  EXPECT_OK(certificate->put_policies(ObjectArray({policy})));
  EXPECT_OK(certificate->putref_subjectAltName(name));
  EXPECT_OK(put(ObjectArray({certificate})));
  EXPECT_OK(policy->put_oid(Bstr(L"a text that is longer than the one before")));
  EXPECT_OK(name->put_DNS(Bstr(L"a text that is longer than the one before")));
  const fake::Snapshot seen = CertificateAt(record().at(24), 0);
  EXPECT_EQ("a text that is longer than the one before", seen.at(336).text(0));
  EXPECT_EQ("a text that is longer than the one before", seen.text(200 + 8));
}

TEST_F(ReceiversTest, ClearedPartsOfAReceiverLeaveNoFreedPointer) {
  Ptr<ICertificate> certificate = Receiver(L"x");
  EXPECT_OK(certificate->put_extKeyUsage(StringArray({L"1.2.3"})));
  EXPECT_OK(certificate->put_extensions(ObjectArray({Make<IExtension>()})));
  EXPECT_OK(put(VariantArray({Variant::object(certificate)})));
  EXPECT_OK(certificate->put_extKeyUsage(Variant()));
  EXPECT_OK(certificate->put_extensions(Variant()));
  const fake::Snapshot seen = CertificateAt(record().at(24), 0);
  EXPECT_EQ(0, seen.i32(344));
  EXPECT_EQ(0, seen.i32(360));
}

TEST_F(ReceiversTest, WholeCertificateRecordIsCopied) {
  Ptr<ICertificate> certificate = Receiver(L"subject");
  EXPECT_OK(certificate->put_certEncoded(ByteArray({1, 2, 3})));
  EXPECT_OK(certificate->put_keyUsage(Keyusage_KeyEncipherment));
  EXPECT_OK(put(ObjectArray({certificate})));
  EXPECT_EQ(RecordOf(certificate.get()).bytes, CertificateAt(record().at(24), 0).bytes);
}

}  // namespace
