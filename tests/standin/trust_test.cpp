// The judgement of certificates: chains, revocation lists, weak algorithms, purposes. make-trust describes the cases.
#include "engine_test.h"

using namespace standin;

namespace {

class TrustTest : public EngineTest {
 protected:
  /// The one verdict on the message of the case.
  int32_t verdictOn(const std::string& name, VerifyParamRecord param = {}) {
    const Verified verified = verify(openIn("", MaterialPath("trust/" + name + "/store")),
                                     Material("trust/" + name + "/message.p7s"), nullptr, param);
    EXPECT_EQ(1u, verified.verdicts.size());
    if (verified.verdicts.empty()) return verified.code;
    code_ = verified.code;
    return verified.verdicts.at(0).status;
  }

  /// The status is a remark on a good signature.
  void expectRemark(int32_t status, const std::string& name, VerifyParamRecord param = {}) {
    EXPECT_CODE(status, verdictOn(name, param)) << name;
    EXPECT_CODE(kVerifiedWithRemarks, code_) << name;
  }
  void expectVerdict(int32_t status, const std::string& name, VerifyParamRecord param = {}) {
    EXPECT_CODE(status, verdictOn(name, param)) << name;
    EXPECT_CODE(status, code_) << name;
  }

 private:
  int32_t code_ = 0;
};

class Revocation : public TrustTest {};
class TrustedRoots : public TrustTest {};
class PathValidation : public TrustTest {
 protected:
  /// Of the check of a certificate alone.
  int32_t codeOf(const std::string& name) {
    const Bytes encoded = Material("trust/" + name);
    const DataBlob_t blob = BlobOf(encoded);
    const VerifyCertParamRecord param{};
    CertificateRecord record{};
    return QUIVO_VerifyCert(openIn("", MaterialPath("trust/list-good/store")), &param, &blob, &record);
  }
};
class WeakAlgorithms : public TrustTest {};
class SignerPurpose : public TrustTest {};

/// Demands one policy.
class PolicyDemand {
 public:
  explicit PolicyDemand(const char* oid) : oid_(oid) { policy_.oid = oid_.data(); }
  VerifyParamRecord param() {
    VerifyParamRecord param{};
    param.flag = 0x10;
    param.policies = &policy_;
    param.policyCount = 1;
    return param;
  }

 private:
  std::string oid_;
  PolicyRecord policy_{};
};

}  // namespace

TEST_F(Revocation, CompleteListDecides) {
  expectVerdict(0, "list-good");
  expectVerdict(kRevoked, "list-revoked");
}

TEST_F(Revocation, IssuerWithoutAListHasRevokedNobody) {
  expectVerdict(0, "no-list");
  expectVerdict(0, "indirect-of-others");
}

TEST_F(Revocation, ListOfUsersConcernsUsersAlone) {
  expectVerdict(0, "users-good");
  expectVerdict(kRevoked, "users-revoked");
  expectVerdict(0, "users-for-authority");
}

TEST_F(Revocation, ListOfAuthoritiesConcernsAuthoritiesAlone) {
  expectVerdict(0, "authorities-good");
  expectVerdict(kRevoked, "authorities-revoked");
}

TEST_F(Revocation, SignerOutsideOfTheIssuersListsIsARemark) {
  expectRemark(kRevocationUnclear, "authorities-for-user");
  expectRemark(kRevocationUnclear, "attributes-for-user");
  expectRemark(kRevocationUnclear, "users-for-signing-authority");
  expectRemark(kRevocationUnclear, "point-other");
}

TEST_F(Revocation, ListsForSomeReasonsDecideTogether) {
  expectVerdict(0, "reasons-good");
  expectVerdict(kRevoked, "reasons-revoked");
  expectRemark(kRevocationUnclear, "reasons-incomplete");
}

TEST_F(Revocation, ListOfADistributionPointDecides) {
  expectVerdict(0, "point-good");
  expectVerdict(kRevoked, "point-revoked");
}

TEST_F(Revocation, IndirectListDecides) {
  expectVerdict(0, "indirect-good");
  expectVerdict(kRevoked, "indirect-revoked");
  expectVerdict(0, "indirect-inherited-other");
  expectVerdict(kCrlUnusable, "indirect-not-marked");
}

TEST_F(Revocation, EveryListCanRevoke) { expectVerdict(kRevoked, "indirect-beside-complete"); }

TEST_F(Revocation, NewerListReplacesTheOlder) { expectVerdict(0, "list-newer"); }

TEST_F(Revocation, ListOfASeparateKeyDecides) {
  expectVerdict(0, "crl-key-good");
  expectVerdict(kRevoked, "crl-key-revoked");
}

TEST_F(Revocation, SeparateKeyHasToBeGood) {
  expectVerdict(kCrlUnusable, "crl-key-unknown");
  expectVerdict(kCrlUnusable, "crl-key-may-not");
  expectVerdict(kCrlUnusable, "crl-key-expired");
  expectVerdict(kCrlUnusable, "crl-key-of-another-root");
  expectVerdict(kCrlUnusable, "crl-key-revoked-itself");
}

TEST_F(Revocation, DeltaListChangesItsBase) {
  expectVerdict(0, "delta-good");
  expectVerdict(kRevoked, "delta-revoked");
  expectVerdict(kRevoked, "delta-revoked-without-address");
  expectVerdict(0, "delta-removes");
  expectVerdict(0, "delta-keeps-base-current");
  expectVerdict(0, "delta-before-base");
}

TEST_F(Revocation, DeltaListThatDoesNotFitIsNeverGood) {
  expectVerdict(kCrlUnusable, "delta-without-base");
  expectRemark(kRevocationUnclear, "delta-late");
  expectVerdict(kRevoked, "delta-late-revoked");
  expectRemark(kVerifiedWithRemarks, "delta-outdated");
  expectVerdict(kCrlForged, "delta-removes-forged");
}

TEST_F(Revocation, ListThatCannotBeUsedIsNeverGood) {
  expectVerdict(kCrlForged, "list-forged");
  expectVerdict(kCrlUnusable, "list-critical");
  expectVerdict(kCrlUnusable, "list-critical-entry");
  expectVerdict(kCrlUnusable, "list-garbled");
  expectRemark(kVerifiedWithRemarks, "list-outdated");
  expectVerdict(0, "list-critical-and-good");
}

TEST_F(Revocation, ListForARootCountsOnlyIfItRevokesTheRoot) {
  expectVerdict(0, "list-critical-for-root");
  expectVerdict(0, "list-outdated-for-root");
  expectVerdict(kRevoked, "root-revoked");
}

TEST_F(TrustedRoots, KeyChangeIsALinkAndNoRoot) {
  expectVerdict(0, "root-key-change");
  expectVerdict(kIssuerUnknown, "root-key-change-alone");
}

TEST_F(TrustedRoots, SignatureOfTheRootIsChecked) { expectVerdict(kIssuerUnknown, "root-changed"); }

TEST_F(TrustedRoots, RootsOfOneNameStandSideBySide) { expectVerdict(0, "root-both-keys"); }

TEST_F(PathValidation, PathLengthCountsOtherIssuersAlone) {
  expectVerdict(0, "path-length-itself");
  expectVerdict(kChainBroken, "path-length");
}

TEST_F(PathValidation, IssuersAreAuthorities) {
  expectVerdict(kChainBroken, "authority-no-ca");
  expectVerdict(kChainBroken, "authority-no-sign");
}

TEST_F(PathValidation, UnknownCriticalExtensionIsRefused) { expectVerdict(kChainBroken, "critical-extension"); }

TEST_F(PathValidation, UnreadableCertificatesHaveCodesOfTheirOwn) {
  EXPECT_CODE(kAlgorithmUnknown, codeOf("unknown-key.cer"));
  EXPECT_CODE(kCertificateDamaged, codeOf("garbled.cer"));
}

TEST_F(PathValidation, NameConstraintsAreKept) {
  expectVerdict(0, "name-good");
  for (const char* name : {"name-mail", "name-excluded", "name-directory"}) expectVerdict(kChainBroken, name);
}

TEST_F(PathValidation, PoliciesThatTheAuthoritiesRequireAreThere) {
  expectVerdict(0, "policy-stated");
  expectVerdict(kChainBroken, "policy-none");
}

TEST_F(PathValidation, AnyPolicyCanBeInhibited) {
  expectVerdict(0, "policy-under-any");
  expectVerdict(kChainBroken, "policy-any-inhibited");
}

TEST_F(PathValidation, PoliciesAreMappedWhereThatIsNotInhibited) {
  expectVerdict(0, "policy-mapped");
  expectVerdict(kChainBroken, "policy-mapping-inhibited");
}

TEST_F(PathValidation, DemandedPolicyHoldsAlongThePath) {
  PolicyDemand demand("1.2.643.99.2");
  expectVerdict(0, "policy-stated", demand.param());
  expectVerdict(0, "policy-mapped", demand.param());
  expectVerdict(kPolicyMissing, "policy-claimed", demand.param());
  PolicyDemand mapped("1.2.643.99.7");
  expectVerdict(kPolicyMissing, "policy-mapped", mapped.param());
}

TEST_F(WeakAlgorithms, AreRemarks) {
  for (const char* name : {"short-rsa", "short-curve", "md5", "sha1", "authority", "message"}) {
    expectRemark(kWeakAlgorithm, std::string("weak-") + name);
  }
}

TEST_F(WeakAlgorithms, SignatureOfARootDoesNotCount) { expectVerdict(0, "weak-root-signature"); }

TEST_F(WeakAlgorithms, AreAdmittedByThePolicyOfTheStore) {
  expectVerdict(0, "admitted-short-rsa");
  expectVerdict(0, "admitted-message");
  expectRemark(kWeakAlgorithm, "admitted-other");
}

TEST_F(WeakAlgorithms, OldestDigestsAreUnknown) { expectVerdict(kAlgorithmUnknown, "unknown-digest"); }

TEST_F(SignerPurpose, CriticalPurposesOfServersAreRefused) {
  for (const char* purpose : {"serverAuth", "OCSPSigning", "timeStamping"}) {
    expectVerdict(kExtKeyUsageMissing, std::string("purpose-") + purpose);
  }
}

TEST_F(SignerPurpose, OtherPurposesAreAccepted) {
  expectVerdict(0, "purpose-serverAuth,emailProtection");
  expectVerdict(0, "purpose-mild");
}

TEST_F(SignerPurpose, SigningAfterTheKeyPeriodIsARemark) {
  expectVerdict(0, "period-2100");
  expectRemark(kKeyPeriodOver, "period-2020");
}
