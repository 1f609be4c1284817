#include "standin/certificates/der_objects.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/pem.h"

namespace standin {
namespace {

template <typename Object, typename Encoder>
Bytes Encode(Object* object, Encoder encodeObject) {
  unsigned char* raw = nullptr;
  const int length = encodeObject(object, &raw);
  if (length < 0) Fail(kInternal);
  const OctetsPtr owner(raw);
  return Bytes(raw, raw + length);
}

void AddFromMessage(ByteView der, FoundObjects& found) {
  const CmsPtr message = Decode<CmsPtr>(d2i_CMS_ContentInfo, der);
  if (message == nullptr || OBJ_obj2nid(CMS_get0_type(message.get())) != NID_pkcs7_signed) return;
  // A message with signers is a document, not a bundle.
  if (sk_CMS_SignerInfo_num(CMS_get0_SignerInfos(message.get())) > 0) return;
  const CertStackPtr certificates(CMS_get1_certs(message.get()));
  for (int i = 0; i < sk_X509_num(certificates.get()); ++i) {
    found.certificates.push_back(Share(sk_X509_value(certificates.get(), i)));
  }
  STACK_OF(X509_CRL)* crls = CMS_get1_crls(message.get());
  for (int i = 0; i < sk_X509_CRL_num(crls); ++i) found.crls.emplace_back(sk_X509_CRL_value(crls, i));
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
  ForEachEncoding(bytes, [&](ByteView der) {
    AddFromDer(der, bundlesToo, found);
    return !found.empty();
  });
  return found;
}

}  // namespace

CertPtr CertificateFromDer(ByteView der) { return Decode<CertPtr>(d2i_X509, der, true); }
CrlPtr CrlFromDer(ByteView der) { return Decode<CrlPtr>(d2i_X509_CRL, der, true); }
RequestPtr RequestFromDer(ByteView der) { return Decode<RequestPtr>(d2i_X509_REQ, der, true); }

Bytes DerOf(const X509* certificate) { return Encode(certificate, i2d_X509); }
Bytes DerOf(const X509_CRL* crl) { return Encode(crl, i2d_X509_CRL); }
Bytes DerOf(const X509_REQ* request) { return Encode(request, i2d_X509_REQ); }
Bytes DerOf(const CMS_ContentInfo* message) { return Encode(message, i2d_CMS_ContentInfo); }

void ForEachEncoding(ByteView bytes, const std::function<bool(ByteView)>& take) {
  if (bytes.empty() || bytes.size() > kLargestObject) return;
  if (bytes[0] == 0x30 && take(bytes)) return;
  ForEachPemBlock(bytes, [&](std::string_view label, ByteView der) {
    if (!label.ends_with("PRIVATE KEY")) take(der);
  });
}

FoundObjects ObjectsIn(ByteView bytes) { return Find(bytes, false); }
FoundObjects ObjectsInBundle(ByteView bytes) { return Find(bytes, true); }

}  // namespace standin
