#include "standin/certificates/names.h"

#include <openssl/x509v3.h>

#include <cctype>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/certificates/russian_names.h"

namespace standin {
namespace {

/// Escapes as in RFC 2253, except for letters of other scripts.
constexpr unsigned long kTextFlags =
    (ASN1_STRFLGS_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB)) | ASN1_STRFLGS_UTF8_CONVERT;

std::string Print(const X509_NAME* name, unsigned long flags) {
  const BioPtr out(BIO_new(BIO_s_mem()));
  if (out == nullptr) Fail(kWinOutOfMemory);
  X509_NAME_print_ex(out.get(), name, 0, kTextFlags | XN_FLAG_SEP_CPLUS_SPC | flags);
  char* text = nullptr;
  const long length = BIO_get_mem_data(out.get(), &text);
  return std::string(text, static_cast<size_t>(length));
}

/// Folded case, no spaces next to separators.
std::string Normalised(const std::string& text) {
  const std::string folded = FoldCase(text);
  std::string result;
  for (size_t i = 0; i < folded.size(); ++i) {
    if (folded[i] == ' ') {
      const size_t next = folded.find_first_not_of(' ', i);
      const bool atEdge = result.empty() || next == std::string::npos;
      const bool atSeparator = atEdge || std::string_view(",=+").find(result.back()) != std::string_view::npos ||
                               std::string_view(",=+").find(folded[next]) != std::string_view::npos;
      if (atSeparator || result.back() == ' ') continue;
    }
    result += folded[i];
  }
  return result;
}

constexpr unsigned long kForms[] = {
    XN_FLAG_FN_SN | XN_FLAG_DN_REV,
    XN_FLAG_FN_SN,
    XN_FLAG_FN_LN | XN_FLAG_DN_REV,
    XN_FLAG_FN_LN,
};

template <typename Compare>
bool AnyForm(const X509_NAME* name, Compare compare) {
  for (const unsigned long form : kForms) {
    if (compare(Normalised(Print(name, form)))) return true;
  }
  return false;
}

}  // namespace

std::string NameText(const X509_NAME* name, NameForm form) {
  return Print(name, XN_FLAG_DN_REV | (form == NameForm::kQualified ? XN_FLAG_FN_LN : XN_FLAG_FN_SN));
}

bool IsNameText(const X509_NAME* name, const std::string& text) {
  const std::string wanted = Normalised(text);
  const std::string latin = WithLatinNames(wanted);
  return AnyForm(name, [&](const std::string& form) { return form == wanted || form == latin; });
}

bool NameContains(const X509_NAME* name, const std::string& part) {
  const std::string wanted = Normalised(part);
  const std::string latin = WithLatinNames(wanted);
  return AnyForm(name, [&](const std::string& form) {
    return form.find(wanted) != std::string::npos || form.find(latin) != std::string::npos;
  });
}

std::string SerialText(const ASN1_INTEGER* serial) {
  const std::string digits = HexOf({serial->data, static_cast<size_t>(serial->length)});
  const bool negative = (serial->type & V_ASN1_NEG) != 0;
  return (negative ? "-" : "") + (digits.empty() ? "00" : digits);
}

std::string SerialText(const X509* certificate) { return SerialText(X509_get0_serialNumber(certificate)); }

std::string HexDigits(const std::string& text) {
  std::string digits;
  size_t start = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0 ? 2 : 0;
  for (; start < text.size(); ++start) {
    const unsigned char c = static_cast<unsigned char>(text[start]);
    if (c == ' ' || c == ':') continue;
    digits += static_cast<char>(std::toupper(c));
  }
  return digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
}

bool IsSameHex(const std::string& left, const std::string& right) { return HexDigits(left) == HexDigits(right); }

Bytes KeyIdOf(const X509* certificate) {
  // The function only fills the certificate's cache of extensions.
  const ASN1_OCTET_STRING* stated = X509_get0_subject_key_id(const_cast<X509*>(certificate));
  if (stated != nullptr) return Bytes(stated->data, stated->data + stated->length);
  unsigned char hash[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (X509_pubkey_digest(certificate, EVP_sha1(), hash, &length) != 1) return {};
  return Bytes(hash, hash + length);
}

}  // namespace standin
