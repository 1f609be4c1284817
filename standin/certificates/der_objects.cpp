#include "standin/certificates/der_objects.h"

#include <openssl/err.h>

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/pem.h"

namespace standin {
namespace {

template <typename Owner, typename Decode>
Owner DecodeWhole(ByteView der, Decode decode) {
  if (der.empty() || der.size() > kLargestObject) return nullptr;
  const unsigned char* cursor = der.data();
  Owner object(decode(nullptr, &cursor, static_cast<long>(der.size())));
  if (object == nullptr || cursor != der.data() + der.size()) {
    ERR_clear_error();
    return nullptr;
  }
  return object;
}

template <typename Object, typename Encoder>
Bytes Encode(Object* object, Encoder encodeObject) {
  unsigned char* raw = nullptr;
  const int length = encodeObject(object, &raw);
  if (length < 0) Fail(kInternal);
  const OctetsPtr owner(raw);
  return Bytes(raw, raw + length);
}

void AddFromMessage(ByteView der, FoundObjects& found) {
  const unsigned char* cursor = der.data();
  const CmsPtr message(d2i_CMS_ContentInfo(nullptr, &cursor, static_cast<long>(der.size())));
  if (message == nullptr) {
    ERR_clear_error();
    return;
  }
  if (OBJ_obj2nid(CMS_get0_type(message.get())) != NID_pkcs7_signed) return;
  // A message with signers is a document, not a bundle.
  if (sk_CMS_SignerInfo_num(CMS_get0_SignerInfos(message.get())) > 0) return;
  const CertStackPtr certificates(CMS_get1_certs(message.get()));
  for (int i = 0; certificates != nullptr && i < sk_X509_num(certificates.get()); ++i) {
    found.certificates.push_back(Share(sk_X509_value(certificates.get(), i)));
  }
  STACK_OF(X509_CRL)* crls = CMS_get1_crls(message.get());
  for (int i = 0; crls != nullptr && i < sk_X509_CRL_num(crls); ++i) {
    found.crls.emplace_back(sk_X509_CRL_value(crls, i));
  }
  sk_X509_CRL_free(crls);
}

void AddFromDer(ByteView der, bool bundlesToo, FoundObjects& found) {
  if (CertPtr certificate = CertificateFromDer(der)) {
    found.certificates.push_back(std::move(certificate));
  } else if (CrlPtr crl = CrlFromDer(der)) {
    found.crls.push_back(std::move(crl));
  } else if (RequestPtr request = RequestFromDer(der)) {
    found.requests.push_back(std::move(request));
  } else if (bundlesToo) {
    AddFromMessage(der, found);
  }
}

FoundObjects Find(ByteView bytes, bool bundlesToo) {
  FoundObjects found;
  if (bytes.empty() || bytes.size() > kLargestObject) return found;
  if (bytes[0] == 0x30) AddFromDer(bytes, bundlesToo, found);
  if (found.empty()) {
    ForEachPemBlock(bytes, [&](std::string_view label, ByteView der) {
      if (!label.ends_with("PRIVATE KEY")) AddFromDer(der, bundlesToo, found);
    });
  }
  return found;
}

}  // namespace

CertPtr CertificateFromDer(ByteView der) { return DecodeWhole<CertPtr>(der, d2i_X509); }
CrlPtr CrlFromDer(ByteView der) { return DecodeWhole<CrlPtr>(der, d2i_X509_CRL); }
RequestPtr RequestFromDer(ByteView der) { return DecodeWhole<RequestPtr>(der, d2i_X509_REQ); }

Bytes DerOf(const X509* certificate) { return Encode(certificate, i2d_X509); }
Bytes DerOf(const X509_CRL* crl) { return Encode(crl, i2d_X509_CRL); }
Bytes DerOf(const X509_REQ* request) { return Encode(request, i2d_X509_REQ); }
Bytes DerOf(const CMS_ContentInfo* message) { return Encode(message, i2d_CMS_ContentInfo); }

FoundObjects ObjectsIn(ByteView bytes) { return Find(bytes, false); }
FoundObjects ObjectsInBundle(ByteView bytes) { return Find(bytes, true); }

}  // namespace standin
