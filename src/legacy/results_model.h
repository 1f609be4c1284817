// What the results sheet has to show, decided without a window: texts, rows, icons, hidden controls.
#pragma once

#include "engine/codes.h"
#include "engine/functions.h"
#include "legacy/messages.h"
#include "legacy/subject_name.h"

namespace legacy {

/// Owned by the operation that shows it. The records are null where the operation has no such part.
struct Results {
  EngineSession session = nullptr;
  const DecryptResultRecord* decrypted = nullptr;
  const VerifyResultRecord* verified = nullptr;
  /// What the engine returned for the verification.
  int32_t verificationCode = 0;
};

/// One row of the signer list.
struct SignerRow {
  char status[kErrorTextSize + 1];
  bool isGood;
  char name[kNameSize];
  /// Date and time of the signature in UTC, as the user's locale writes them.
  char time[256];
};

/// Reads the results and owns nothing of them.
class ResultsModel {
 public:
  explicit ResultsModel(const Results& results) : results_(results) {}

  /// The rule of the icon at the head of the page; the worst of what is shown decides:
  ///  - the decryption, or the verification as a whole, failed: "failed";
  ///  - the verification has remarks, or a signer's status is not 0: "remarks";
  ///  - a verification has been made and found no signer: "unsigned";
  ///  - otherwise: "good".
  int headerIcon() const;

  bool hasDecryption() const { return results_.decrypted != nullptr; }
  int decryptionIcon() const;
  void decryptionStatus(char (&text)[kErrorTextSize + 1]) const;
  /// The certificate of who encrypted the message; null when the result carries none.
  const CertificateRecord* encrypter() const;
  void encrypterName(char (&name)[kNameSize]) const;

  bool hasVerification() const { return results_.verified != nullptr; }
  void verificationStatus(char (&text)[kErrorTextSize + 1]) const;
  int signerCount() const;
  SignerRow signer(int index) const;
  /// The certificate that the button of the signer list shows: that of the selected row; with no selection (-1),
  /// that of the only row. Null when there is none to show.
  const CertificateRecord* signerCertificate(int selected) const;

  /// The controls to hide, in the order of hiding.
  struct Hidden {
    int count = 0;
    int controls[12];
  };
  Hidden hidden() const;

 private:
  const Results results_;
};

}  // namespace legacy
