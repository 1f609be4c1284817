#include "legacy/results_model.h"

#include <windows.h>

#include <cstring>
#include <ctime>
#include <iterator>

#include "convert/strings.h"
#include "engine/layout.h"
#include "legacy/legacy_resources.h"

namespace legacy {
namespace {

constexpr int kDecryptionControls[] = {IDC_DECRYPTION_LABEL, IDC_DECRYPTION_STATUS, IDC_DECRYPTION_ICON,
                                       IDC_ENCRYPTER_LABEL,  IDC_ENCRYPTER,         IDC_SHOW_ENCRYPTER};
constexpr int kEncrypterControls[] = {IDC_ENCRYPTER, IDC_ENCRYPTER_LABEL, IDC_SHOW_ENCRYPTER};
constexpr int kVerificationControls[] = {IDC_VERIFICATION_LABEL, IDC_VERIFICATION_STATUS,
                                         IDC_VERIFICATION_ICON,  IDC_SIGNERS,
                                         IDC_SHOW_SIGNER,        IDC_VERIFICATION_LINE};
static_assert(std::size(kDecryptionControls) + std::size(kVerificationControls) ==
              std::size(ResultsModel::Hidden().controls));

template <size_t count>
void Hide(ResultsModel::Hidden& hidden, const int (&controls)[count]) {
  for (int control : controls) hidden.controls[hidden.count++] = control;
}

/// True for the record that stands for "no certificate": nothing was asked for and nothing is pointed to.
class IsAbsent {
 public:
  explicit IsAbsent(const CertificateRecord& cert) : isAbsent_(cert.fields == 0) { engine::ForEachMember(*this, cert); }
  explicit operator bool() const { return isAbsent_; }

  void operator()(uint32_t) {}
  void operator()(const char* text) { isAbsent_ = isAbsent_ && !text; }
  void operator()(const DataBlob_t& bytes) { isAbsent_ = isAbsent_ && !bytes.data; }
  void operator()(const AltNameRecord& name) { engine::ForEachMember(*this, name); }
  template <class Element>
  void operator()(std::pair<Element* const&, const int32_t&> list) {
    isAbsent_ = isAbsent_ && !list.first;
  }

 private:
  bool isAbsent_;
};

void DescribeTime(uint32_t seconds, char (&text)[256]) {
  text[0] = '\0';
  __time64_t time = seconds;
  const std::tm* parts = _gmtime64(&time);
  if (!parts) return;
  SYSTEMTIME system{};
  system.wYear = static_cast<WORD>(parts->tm_year + 1900);
  system.wMonth = static_cast<WORD>(parts->tm_mon + 1);
  system.wDayOfWeek = static_cast<WORD>(parts->tm_wday);
  system.wDay = static_cast<WORD>(parts->tm_mday);
  system.wHour = static_cast<WORD>(parts->tm_hour);
  system.wMinute = static_cast<WORD>(parts->tm_min);
  system.wSecond = static_cast<WORD>(parts->tm_sec);
  char date[120] = {};
  char clock[120] = {};
  GetDateFormatA(LOCALE_USER_DEFAULT, DATE_LONGDATE, &system, nullptr, date, sizeof(date));
  GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &system, nullptr, clock, sizeof(clock));
  convert::Format(text, sizeof(text), "%s  %s", date, clock);
}

}  // namespace

int ResultsModel::headerIcon() const {
  bool isFailed = hasDecryption() && results_.decrypted->status != 0;
  bool hasRemarks = false;
  if (hasVerification()) {
    int32_t code = results_.verificationCode;
    isFailed = isFailed || (code != 0 && code != engine::kVerifiedWithRemarks);
    hasRemarks = code == engine::kVerifiedWithRemarks;
    for (int i = 0; i < signerCount(); ++i) hasRemarks = hasRemarks || results_.verified->entries[i].status != 0;
  }
  if (isFailed) return IDI_HEADER_FAILED;
  if (hasRemarks) return IDI_HEADER_REMARKS;
  return hasVerification() && signerCount() == 0 ? IDI_HEADER_UNSIGNED : IDI_HEADER_GOOD;
}

int ResultsModel::decryptionIcon() const {
  return results_.decrypted->status == 0 ? IDI_DECRYPTION_GOOD : IDI_DECRYPTION_FAILED;
}

void ResultsModel::decryptionStatus(char (&text)[kErrorTextSize + 1]) const {
  ErrorText(results_.decrypted->status, text);
}

const CertificateRecord* ResultsModel::encrypter() const {
  if (!hasDecryption()) return nullptr;
  return IsAbsent(results_.decrypted->cert) ? nullptr : &results_.decrypted->cert;
}

void ResultsModel::encrypterName(char (&name)[kNameSize]) const {
  const CertificateRecord* cert = encrypter();
  NameFromSubject(cert ? cert->subject : nullptr, name);
}

void ResultsModel::verificationStatus(char (&text)[kErrorTextSize + 1]) const {
  ErrorText(results_.verificationCode, text);
}

int ResultsModel::signerCount() const {
  return results_.verified && results_.verified->entries && results_.verified->count > 0 ? results_.verified->count : 0;
}

SignerRow ResultsModel::signer(int index) const {
  const SignStatusEntry& entry = results_.verified->entries[index];
  SignerRow row;
  ErrorText(entry.status, row.status);
  row.isGood = entry.status == 0;
  NameFromSubject(entry.cert ? entry.cert->subject : nullptr, row.name);
  DescribeTime(entry.time, row.time);
  return row;
}

const CertificateRecord* ResultsModel::signerCertificate(int selected) const {
  if (selected < 0 && signerCount() == 1) selected = 0;
  return selected >= 0 && selected < signerCount() ? results_.verified->entries[selected].cert : nullptr;
}

ResultsModel::Hidden ResultsModel::hidden() const {
  Hidden hidden;
  if (!hasDecryption())
    Hide(hidden, kDecryptionControls);
  else if (!encrypter())
    Hide(hidden, kEncrypterControls);
  if (!hasVerification()) Hide(hidden, kVerificationControls);
  return hidden;
}

}  // namespace legacy
