#include "standin/certificates/index_terms.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "standin/base/ansi.h"
#include "standin/base/digest.h"
#include "standin/certificates/names.h"

namespace standin {
namespace {

constexpr uint8_t kInteger = 0x02, kBitString = 0x03, kOctetString = 0x04, kOid = 0x06, kUtcTime = 0x17,
                  kGeneralizedTime = 0x18, kSequence = 0x30, kVersion = 0xA0, kExtensions = 0xA3;
constexpr uint8_t kOidEcPublicKey[] = {0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01};
constexpr uint8_t kOidSubjectKeyId[] = {0x55, 0x1D, 0x0E};

enum class TermKind : uint64_t { kName, kSerial, kKeyId, kPublicKey, kHash };

Term TermOf(TermKind kind, ByteView bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return std::hash<std::string_view>()(text) * 8 + static_cast<uint64_t>(kind);
}

Term TermOf(TermKind kind, const std::string& text) {
  return TermOf(kind, ByteView(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

struct Element {
  uint8_t tag;
  ByteView whole;
  ByteView content;

  bool hasShortestLength() const {
    size_t lengthBytes = 1;
    for (size_t rest = content.size() < 0x80 ? 0 : content.size(); rest != 0; rest >>= 8) ++lengthBytes;
    return whole.size() - content.size() == 1 + lengthBytes;
  }
};

using Elements = std::vector<Element>;

/// None if the bytes are not a series of elements of definite length.
Elements ElementsIn(ByteView bytes) {
  Elements elements;
  while (!bytes.empty()) {
    const unsigned char* inside = bytes.data();
    long length = 0;
    int tag = 0, tagClass = 0;
    constexpr int kConstructed = 0x20;
    const int form = ASN1_get_object(&inside, &length, &tag, &tagClass, static_cast<long>(bytes.size()));
    if ((form & ~kConstructed) != 0) {
      ERR_clear_error();
      return {};
    }
    const size_t size = static_cast<size_t>(inside - bytes.data() + length);
    elements.push_back({bytes[0], bytes.first(size), {inside, static_cast<size_t>(length)}});
    bytes = bytes.subspan(size);
  }
  return elements;
}

bool HaveTags(const Elements& elements, size_t start, std::initializer_list<uint8_t> tags) {
  return elements.size() >= start + tags.size() &&
         std::equal(tags.begin(), tags.end(), elements.begin() + static_cast<ptrdiff_t>(start),
                    [](uint8_t tag, const Element& element) { return element.tag == tag; });
}

/// The elements that are signed. libcrypto keeps them as they are, but encodes what stands around them again.
Elements SignedElements(ByteView der) {
  const Elements object = ElementsIn(der);
  if (object.size() != 1 || object[0].tag != kSequence) return {};
  const Elements parts = ElementsIn(object[0].content);
  if (parts.size() != 3 || !HaveTags(parts, 0, {kSequence, kSequence, kBitString})) return {};
  const bool hasWholeBytes = !parts[2].content.empty() && parts[2].content[0] == 0;
  const bool isPlain = object[0].hasShortestLength() && std::ranges::all_of(parts, &Element::hasShortestLength) &&
                       std::ranges::all_of(ElementsIn(parts[1].content), &Element::hasShortestLength);
  return hasWholeBytes && isPlain ? ElementsIn(parts[0].content) : Elements();
}

NamePtr NameIn(const Element& element) { return Decode<NamePtr>(d2i_X509_NAME, element.whole, true); }

/// The bytes of the key, without its algorithm; none if it cannot be read.
ByteView KeyBits(const Elements& key) {
  if (key.size() != 2 || !HaveTags(key, 0, {kSequence, kBitString}) || key[1].content.empty()) return {};
  return key[1].content.subspan(1);
}

/// The content of the extension, if there is one.
std::optional<ByteView> StatedKeyId(ByteView extensions) {
  const Elements list = ElementsIn(extensions);
  if (list.size() != 1) return std::nullopt;
  for (const Element& extension : ElementsIn(list[0].content)) {
    const Elements parts = ElementsIn(extension.content);
    if (parts.size() < 2 || parts[0].tag != kOid || !Equal(parts[0].content, kOidSubjectKeyId)) continue;
    const Elements value = ElementsIn(parts.back().content);
    if (HaveTags(value, 0, {kOctetString})) return value[0].content;
  }
  return std::nullopt;
}

}  // namespace

Term NameTerm(const X509_NAME* name) {
  const unsigned long hash = X509_NAME_hash_ex(name, nullptr, nullptr, nullptr);
  return TermOf(TermKind::kName, ByteView(reinterpret_cast<const uint8_t*>(&hash), sizeof hash));
}

Term SerialTerm(const std::string& hex) { return TermOf(TermKind::kSerial, HexDigits(hex)); }
Term KeyIdTerm(const std::string& hex) { return TermOf(TermKind::kKeyId, HexDigits(hex)); }
Term HashTerm(ByteView hash) { return TermOf(TermKind::kHash, hash); }

Term PublicKeyTerm(ByteView encodedKey) {
  const Elements whole = ElementsIn(encodedKey);
  const Elements key = whole.size() == 1 ? ElementsIn(whole[0].content) : Elements();
  ByteView bits = KeyBits(key);
  const Elements algorithm = bits.empty() ? Elements() : ElementsIn(key[0].content);
  if (!algorithm.empty() && Equal(algorithm[0].content, kOidEcPublicKey)) {
    // A point has one or both coordinates: the first is in every form.
    const bool isCompressed = bits[0] == 2 || bits[0] == 3;
    bits = bits.subspan(1, isCompressed ? bits.size() - 1 : (bits.size() - 1) / 2);
  }
  return TermOf(TermKind::kPublicKey, bits);
}

std::vector<Term> TermsOfCertificate(ByteView der) {
  const Elements parts = SignedElements(der);
  const size_t serial = !parts.empty() && parts[0].tag == kVersion ? 1 : 0;
  if (!HaveTags(parts, serial, {kInteger, kSequence, kSequence, kSequence, kSequence, kSequence})) return {};
  const Element& key = parts[serial + 5];
  const auto number = Decode<Owned<ASN1_INTEGER_free>>(d2i_ASN1_INTEGER, parts[serial].whole, true);
  const NamePtr subject = NameIn(parts[serial + 4]);
  if (number == nullptr || subject == nullptr) return {};
  std::vector<Term> terms = {NameTerm(subject.get()), SerialTerm(SerialText(number.get())), PublicKeyTerm(key.whole),
                             KeyIdTerm(HexOf(HashOf(KeyBits(ElementsIn(key.content)), EVP_sha1())))};
  // libcrypto reads no identifier where another extension is damaged.
  const auto stated = parts.back().tag == kExtensions ? StatedKeyId(parts.back().content) : std::nullopt;
  if (stated) terms.push_back(KeyIdTerm(HexOf(*stated)));
  return terms;
}

std::vector<Term> TermsOfCrl(ByteView der) {
  const Elements parts = SignedElements(der);
  const size_t algorithm = !parts.empty() && parts[0].tag == kInteger ? 1 : 0;
  const bool isCrl = HaveTags(parts, algorithm, {kSequence, kSequence, kUtcTime}) ||
                     HaveTags(parts, algorithm, {kSequence, kSequence, kGeneralizedTime});
  const NamePtr issuer = isCrl ? NameIn(parts[algorithm + 1]) : nullptr;
  if (issuer == nullptr) return {};
  return {NameTerm(issuer.get())};
}

}  // namespace standin
