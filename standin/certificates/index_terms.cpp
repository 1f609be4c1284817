#include "standin/certificates/index_terms.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>

#include "standin/base/ansi.h"
#include "standin/base/asn1_text.h"
#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/certificates/names.h"

namespace standin {
namespace {

constexpr uint8_t kInteger = 0x02, kBitString = 0x03, kOctetString = 0x04, kOid = 0x06, kUtcTime = 0x17,
                  kGeneralizedTime = 0x18, kSequence = 0x30, kSet = 0x31, kVersion = 0xA0, kExtensions = 0xA3;
constexpr uint8_t kOidEcPublicKey[] = {0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01};
constexpr uint8_t kOidSubjectKeyId[] = {0x55, 0x1D, 0x0E};

enum class TermKind : uint64_t { kName, kSerial, kKeyId, kPublicKey, kHash };

uint64_t Hash(std::string_view text) { return std::hash<std::string_view>()(text); }
Term TermOf(TermKind kind, uint64_t hash) { return hash * 8 + static_cast<uint64_t>(kind); }
Term TermOf(TermKind kind, ByteView bytes) {
  return TermOf(kind, Hash({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
}

struct Element {
  uint8_t tag = 0;
  ByteView whole = {};
  ByteView content = {};

  bool hasShortestLength() const {
    size_t lengthBytes = 1;
    for (size_t rest = content.size() < 0x80 ? 0 : content.size(); rest != 0; rest >>= 8) ++lengthBytes;
    return whole.size() - content.size() == 1 + lengthBytes;
  }
};

/// Takes the next element of definite length away from the bytes. If there is none, its tag is 0.
Element Take(ByteView& bytes) {
  const unsigned char* inside = bytes.data();
  long length = 0;
  int tag = 0;
  int tagClass = 0;
  constexpr int kConstructed = 0x20;
  const int form =
      bytes.empty() ? -1 : ASN1_get_object(&inside, &length, &tag, &tagClass, static_cast<long>(bytes.size()));
  if ((form & ~kConstructed) != 0) {
    ERR_clear_error();
    bytes = {};
    return {};
  }
  const ByteView whole = bytes.first(static_cast<size_t>(inside - bytes.data() + length));
  bytes = bytes.subspan(whole.size());
  return {whole[0], whole, {inside, static_cast<size_t>(length)}};
}

/// The content of the next element; empty if it has another tag.
ByteView Enter(ByteView bytes, uint8_t tag) {
  const Element element = Take(bytes);
  return element.tag == tag ? element.content : ByteView();
}

/// The part that is signed. libcrypto keeps it as it is, but encodes what stands around it again.
ByteView SignedPart(ByteView der) {
  const Element object = Take(der);
  ByteView rest = object.content;
  const Element part = Take(rest);
  const Element algorithm = Take(rest);
  const Element signature = Take(rest);
  const bool isSigned = der.empty() && rest.empty() && object.tag == kSequence && part.tag == kSequence &&
                        algorithm.tag == kSequence && signature.tag == kBitString;
  if (!isSigned || signature.content.empty() || signature.content[0] != 0) return {};
  bool isPlain = object.hasShortestLength() && part.hasShortestLength() && algorithm.hasShortestLength() &&
                 signature.hasShortestLength();
  for (ByteView members = algorithm.content; !members.empty();) {
    const Element member = Take(members);
    isPlain = isPlain && member.tag != 0 && member.hasShortestLength();
  }
  return isPlain ? part.content : ByteView();
}

constexpr unsigned long kTexts = B_ASN1_UTF8STRING | B_ASN1_BMPSTRING | B_ASN1_UNIVERSALSTRING |
                                 B_ASN1_PRINTABLESTRING | B_ASN1_T61STRING | B_ASN1_IA5STRING | B_ASN1_VISIBLESTRING;

/// Equal for attributes of names that libcrypto takes for equal: it converts texts, and looks neither at the case of
/// Latin letters nor at the number of spaces.
uint64_t HashOfAttribute(ByteView type, int valueType, ByteView value) {
  std::string text(value.begin(), value.end());
  if ((ASN1_tag2bit(valueType) & kTexts) != 0) {
    const bool isAscii = std::ranges::all_of(value, [](uint8_t byte) { return byte < 0x80; });
    const bool isWide = valueType == V_ASN1_BMPSTRING || valueType == V_ASN1_UNIVERSALSTRING;
    if (isWide || (!isAscii && valueType != V_ASN1_UTF8STRING)) {
      const Owned<ASN1_STRING_free> string(ASN1_STRING_type_new(valueType));
      if (string == nullptr) Fail(kWinOutOfMemory);
      if (ASN1_STRING_set(string.get(), value.data(), static_cast<int>(value.size())) != 1) Fail(kWinOutOfMemory);
      text = TextOf(string.get());
    }
    text.erase(std::min(text.find('\0'), text.size()));
    std::erase_if(text, [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return Hash(std::string(type.begin(), type.end()) + text);
}

/// The term of an encoded name, if it is encoded in the usual way.
std::optional<Term> EncodedNameTerm(ByteView name) {
  uint64_t sum = 0;
  const Element attributeSets = Take(name);
  if (attributeSets.tag != kSequence) return std::nullopt;
  for (ByteView sets = attributeSets.content; !sets.empty();) {
    const Element set = Take(sets);
    if (set.tag != kSet) return std::nullopt;
    for (ByteView attributes = set.content; !attributes.empty();) {
      const Element attribute = Take(attributes);
      ByteView parts = attribute.content;
      const Element type = Take(parts);
      const Element value = Take(parts);
      const bool isUsual = attribute.tag == kSequence && type.tag == kOid && value.tag < 0x20 &&
                           (ASN1_tag2bit(value.tag) & (kTexts | B_ASN1_NUMERICSTRING)) != 0;
      if (!isUsual) return std::nullopt;
      sum += HashOfAttribute(type.content, value.tag, value.content);
    }
  }
  return TermOf(TermKind::kName, sum);
}

/// The bytes of a SubjectPublicKeyInfo's key, without its algorithm.
ByteView KeyBits(ByteView encodedKey) {
  ByteView members = Enter(encodedKey, kSequence);
  Take(members);
  const ByteView bits = Enter(members, kBitString);
  return bits.empty() ? bits : bits.subspan(1);
}

/// Adds the term of the key identifier that the extensions state, if they do. False if they are encoded in another way
/// than the usual one.
bool AddStatedKeyId(ByteView extensions, std::vector<Term>& terms) {
  const Element whole = Take(extensions);
  if (whole.tag != kSequence) return false;
  for (ByteView list = whole.content; !list.empty();) {
    const Element extension = Take(list);
    ByteView parts = extension.content;
    const Element type = Take(parts);
    if (extension.tag != kSequence || type.tag != kOid) return false;
    if (!Equal(type.content, kOidSubjectKeyId)) continue;
    Element value = Take(parts);
    if (!parts.empty()) value = Take(parts);  // before it stands whether the extension is critical
    const Element keyId = Take(value.content);
    if (value.tag != kOctetString || keyId.tag != kOctetString) return false;
    terms.push_back(KeyIdTerm(HexOf(keyId.content)));
  }
  return true;
}

}  // namespace

/// The order of attributes does not count.
Term NameTerm(const X509_NAME* name) {
  uint64_t sum = 0;
  for (int i = 0; i < X509_NAME_entry_count(name); ++i) {
    const X509_NAME_ENTRY* attribute = X509_NAME_get_entry(name, i);
    const ASN1_OBJECT* type = X509_NAME_ENTRY_get_object(attribute);
    const ASN1_STRING* value = X509_NAME_ENTRY_get_data(attribute);
    sum += HashOfAttribute({OBJ_get0_data(type), OBJ_length(type)}, value->type,
                           {value->data, static_cast<size_t>(value->length)});
  }
  return TermOf(TermKind::kName, sum);
}

Term SerialTerm(const std::string& hex) { return TermOf(TermKind::kSerial, Hash(HexDigits(hex))); }
Term KeyIdTerm(const std::string& hex) { return TermOf(TermKind::kKeyId, Hash(HexDigits(hex))); }
Term HashTerm(ByteView hash) { return TermOf(TermKind::kHash, hash); }

Term PublicKeyTerm(ByteView encodedKey) {
  ByteView bits = KeyBits(encodedKey);
  const ByteView algorithm = Enter(Enter(encodedKey, kSequence), kSequence);
  if (!bits.empty() && Equal(Enter(algorithm, kOid), kOidEcPublicKey)) {
    // A point has one or both coordinates: the first is in every form.
    const bool isCompressed = bits[0] == 2 || bits[0] == 3;
    bits = bits.subspan(1, isCompressed ? bits.size() - 1 : (bits.size() - 1) / 2);
  }
  return TermOf(TermKind::kPublicKey, bits);
}

std::vector<Term> TermsOfCertificate(ByteView der) {
  ByteView rest = SignedPart(der);
  Element serial = Take(rest);
  if (serial.tag == kVersion) serial = Take(rest);
  for (int i = 0; i < 3; ++i) {
    if (Take(rest).tag != kSequence) return {};  // the algorithm, the issuer, the validity
  }
  const Element subject = Take(rest);
  const Element key = Take(rest);
  const bool isPositive = serial.tag == kInteger && !serial.content.empty() && serial.content[0] < 0x80;
  if (!isPositive || subject.tag != kSequence || key.tag != kSequence) return {};
  const std::optional<Term> name = EncodedNameTerm(subject.whole);
  const ByteView keyBits = KeyBits(key.whole);
  if (!name || keyBits.empty()) return {};
  // The identifier made of the key also counts where one is stated: libcrypto reads none if another extension is
  // damaged.
  std::vector<Term> terms = {*name, SerialTerm(HexOf(serial.content)), PublicKeyTerm(key.whole),
                             KeyIdTerm(HexOf(HashOf(keyBits, EVP_sha1())))};
  while (!rest.empty()) {
    const Element element = Take(rest);
    const bool isUsual = element.tag != 0 && (element.tag != kExtensions || AddStatedKeyId(element.content, terms));
    if (!isUsual) return {};
  }
  return terms;
}

std::vector<Term> TermsOfCrl(ByteView der) {
  ByteView rest = SignedPart(der);
  Element algorithm = Take(rest);
  if (algorithm.tag == kInteger) algorithm = Take(rest);  // the version
  const Element issuer = Take(rest);
  const Element time = Take(rest);
  const bool isCrl =
      algorithm.tag == kSequence && issuer.tag == kSequence && (time.tag == kUtcTime || time.tag == kGeneralizedTime);
  const std::optional<Term> name = isCrl ? EncodedNameTerm(issuer.whole) : std::nullopt;
  return name ? std::vector<Term>{*name} : std::vector<Term>();
}

}  // namespace standin
