#include "standin/operations/requests.h"

#include <windows.h>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/base/files.h"
#include "standin/base/gost.h"
#include "standin/certificates/alt_name.h"
#include "standin/certificates/cert_record.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/distinguished_name.h"
#include "standin/certificates/names.h"

namespace standin {
namespace {

constexpr uint32_t kTokens = kXmlRequestEtokenGost | kXmlRequestRutokenGost;
constexpr int kKeyUsageBits = 9;
constexpr unsigned kRsaBits = 2048;

/// The extensions of a request.
class RequestedExtensions {
 public:
  explicit RequestedExtensions(const CertificateRecord& wanted) : stack_(sk_X509_EXTENSION_new_null()) {
    addKeyUsage(wanted.keyUsage);
    addExtKeyUsage(ListOf(wanted.extKeyUsage, wanted.extKeyUsageCount));
    if (const GeneralNamesPtr names = GeneralNamesOf(wanted.subjectAltName)) {
      add(ExtensionPtr(X509V3_EXT_i2d(NID_subject_alt_name, 0, names.get())));
    }
    for (const ExtensionRecord& extension : ListOf(wanted.extensions, wanted.extensionCount)) addOther(extension);
  }

  STACK_OF(X509_EXTENSION) * get() const { return stack_.get(); }

 private:
  void add(ExtensionPtr extension) {
    if (extension == nullptr) Fail(kRequestFailed);
    if (sk_X509_EXTENSION_push(stack_.get(), extension.get()) == 0) Fail(kWinOutOfMemory);
    extension.release();
  }

  void addKeyUsage(uint32_t uses) {
    if (uses == 0) return;
    const Owned<ASN1_BIT_STRING_free> bits(ASN1_BIT_STRING_new());
    for (int bit = 0; bit < kKeyUsageBits; ++bit) {
      if ((uses >> bit & 1) != 0) ASN1_BIT_STRING_set_bit(bits.get(), bit, 1);
    }
    add(ExtensionPtr(X509V3_EXT_i2d(NID_key_usage, 1, bits.get())));
  }

  void addExtKeyUsage(std::span<char* const> uses) {
    if (uses.empty()) return;
    const ExtKeyUsagePtr usages(EXTENDED_KEY_USAGE_new());
    for (const char* use : uses) {
      ObjectPtr usage(OBJ_txt2obj(TextOrEmpty(use).c_str(), 0));
      if (usage == nullptr || sk_ASN1_OBJECT_push(usages.get(), usage.get()) == 0) Fail(kRequestFailed);
      usage.release();
    }
    add(ExtensionPtr(X509V3_EXT_i2d(NID_ext_key_usage, 0, usages.get())));
  }

  void addOther(const ExtensionRecord& wanted) {
    const ObjectPtr type(OBJ_txt2obj(TextOrEmpty(wanted.oid).c_str(), 1));
    const Owned<ASN1_OCTET_STRING_free> value(ASN1_OCTET_STRING_new());
    const ByteView data = ViewOf(&wanted.data);
    if (type == nullptr || ASN1_OCTET_STRING_set(value.get(), data.data(), static_cast<int>(data.size())) != 1) {
      Fail(kRequestFailed);
    }
    add(ExtensionPtr(X509_EXTENSION_create_by_OBJ(nullptr, type.get(), wanted.critical != 0 ? 1 : 0, value.get())));
  }

  std::unique_ptr<STACK_OF(X509_EXTENSION), FreeStack<X509_EXTENSION_free>> stack_;
};

NamePtr SubjectOf(const CertificateRecord& wanted, const X509* own) {
  const std::string text = Utf8FromAnsi(TextOrEmpty(wanted.subject));
  if (text.empty() && own != nullptr) return NamePtr(X509_NAME_dup(X509_get_subject_name(own)));
  NamePtr name = NameFromText(text);
  if (name == nullptr) Fail(kWinInvalidParameter);
  return name;
}

RequestPtr MakeRequest(const X509_NAME* subject, EVP_PKEY* key, const RequestedExtensions& extensions) {
  RequestPtr request(X509_REQ_new());
  const bool made =
      request != nullptr && X509_REQ_set_version(request.get(), 0) == 1 &&
      X509_REQ_set_subject_name(request.get(), subject) == 1 && X509_REQ_set_pubkey(request.get(), key) == 1 &&
      (sk_X509_EXTENSION_num(extensions.get()) == 0 || X509_REQ_add_extensions(request.get(), extensions.get()) == 1) &&
      X509_REQ_sign(request.get(), key, SignatureDigest(key)) > 0;
  if (!made) Fail(kRequestFailed);
  return request;
}

std::string KeyIdText(EVP_PKEY* key) {
  X509_PUBKEY* encoded = nullptr;
  const bool known = X509_PUBKEY_set(&encoded, key) == 1;
  const Owned<X509_PUBKEY_free> owner(encoded);
  const unsigned char* bits = nullptr;
  int length = 0;
  if (!known || X509_PUBKEY_get0_param(nullptr, &bits, &length, nullptr, encoded) != 1) Fail(kRequestFailed);
  return ThumbprintText({bits, static_cast<size_t>(length)});
}

/// A key of the kind that the flags demand, or of the kind of a GOST key that the session has.
KeyPtr MakeKey(const Session& session, uint32_t flags) {
  const bool isGost = (flags & (kXmlRequestGost2001 | kXmlRequestGost2012)) != 0;
  const int type = (flags & kXmlRequestGost2012) != 0 ? NID_id_GostR3410_2012_256 : NID_id_GostR3410_2001;
  EVP_PKEY* model = nullptr;
  if (!isGost && !session.keys.own().empty()) model = session.keys.pick(nullptr, KeyPurpose::kSigning).key.get();
  if (!isGost && (model == nullptr || !IsGostKey(model))) return KeyPtr(EVP_RSA_gen(kRsaBits));
  const Owned<EVP_PKEY_CTX_free> context(isGost ? EVP_PKEY_CTX_new_id(type, nullptr)
                                                : EVP_PKEY_CTX_new(model, nullptr));
  EVP_PKEY* made = nullptr;
  const bool done = context != nullptr && EVP_PKEY_keygen_init(context.get()) == 1 &&
                    (!isGost || EVP_PKEY_CTX_ctrl_str(context.get(), "paramset", "A") == 1) &&
                    EVP_PKEY_keygen(context.get(), &made) == 1;
  return KeyPtr(done ? made : nullptr);
}

std::string Escaped(const std::string& text) {
  static constexpr std::string_view kCharacters = "&<>\"";
  static constexpr const char* kEntities[] = {"&amp;", "&lt;", "&gt;", "&quot;"};
  std::string result;
  for (const char c : text) {
    const size_t found = kCharacters.find(c);
    result += found == std::string_view::npos ? std::string(1, c) : kEntities[found];
  }
  return result;
}

void AddElement(std::string& xml, const char* name, const std::string& text) {
  xml += std::string("  <") + name + ">" + Escaped(text) + "</" + name + ">\n";
}

std::string Base64Of(ByteView bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int length =
      EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(), static_cast<int>(bytes.size()));
  text.resize(static_cast<size_t>(length));
  return text;
}

std::string XmlOf(const CertificateRecord& wanted, const X509_NAME* subject, EVP_PKEY* key, ByteView request) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CertificateRequest version=\"1\">\n";
  AddElement(xml, "Subject", NameText(subject));
  AddElement(xml, "KeyAlgorithm", OBJ_nid2ln(EVP_PKEY_get_base_id(key)));
  AddElement(xml, "KeyId", KeyIdText(key));
  if (wanted.keyUsage != 0) AddElement(xml, "KeyUsage", std::to_string(wanted.keyUsage));
  for (const char* use : ListOf(wanted.extKeyUsage, wanted.extKeyUsageCount)) {
    AddElement(xml, "ExtKeyUsage", Utf8FromAnsi(TextOrEmpty(use)));
  }
  AddElement(xml, "Pkcs10", Base64Of(request));
  return xml + "</CertificateRequest>\n";
}

}  // namespace

Bytes MakeXmlRequest(Session& session, uint32_t flags, const CertificateRecord& wanted) {
  if ((flags & kTokens) != 0) Fail(kNotSupported);
  const bool usesOwn = (flags & kXmlRequestDoNotGenerate) != 0;
  const OwnKey* own = usesOwn ? &session.keys.pick(nullptr, KeyPurpose::kAny) : nullptr;
  const NamePtr subject = SubjectOf(wanted, own == nullptr ? nullptr : own->certificate.get());
  const RequestedExtensions extensions(wanted);
  if (own == nullptr && !session.store.isOpen()) Fail(kNoStore);

  KeyPtr made;
  if (own == nullptr) {
    made = MakeKey(session, flags);
    if (made == nullptr) Fail(kRequestFailed);
  }
  EVP_PKEY* key = own == nullptr ? made.get() : own->key.get();
  const RequestPtr request = MakeRequest(subject.get(), key, extensions);
  const Bytes der = DerOf(request.get());
  const std::string name = KeyIdText(key);
  if (made != nullptr) session.keys.keep(key, session.store.folder(), name);
  if (session.store.isOpen()) WriteWholeFile(JoinPath(session.store.folder(), name + ".req").c_str(), der);

  const std::string xml = XmlOf(wanted, subject.get(), key, der);
  return Bytes(xml.begin(), xml.end());
}

Bytes NewestRequest(const Store& store) {
  if (!store.isOpen()) Fail(kNoStore);
  const std::vector<FileEntry> requests = FilesIn(store.folder(), "*.req");
  const auto newest = std::ranges::max_element(requests, {}, &FileEntry::written);
  if (newest == requests.end()) Fail(kNothingToExport);
  Bytes der = ReadWholeFile(JoinPath(store.folder(), newest->name).c_str(), kLargestObject);
  if (RequestFromDer(der) == nullptr) Fail(kRequestDamaged);
  return der;
}

}  // namespace standin
