#include "standin/messages/content_digests.h"

#include <algorithm>
#include <set>

#include "standin/base/codes.h"
#include "standin/base/digest.h"

namespace standin {

const EVP_MD* DigestOf(const X509_ALGOR* algorithm) {
  const EVP_MD* known = KnownDigest(OBJ_obj2nid(algorithm->algorithm));
  return known == nullptr || (EVP_MD_get_flags(known) & EVP_MD_FLAG_XOF) != 0 ? nullptr : known;
}

const EVP_MD* DigestOf(ByteView algorithm) {
  const AlgorithmPtr decoded = Decode<AlgorithmPtr>(d2i_X509_ALGOR, algorithm);
  if (decoded == nullptr) Fail(kMessageDamaged);
  return DigestOf(decoded.get());
}

ContentDigests::ContentDigests(const std::vector<Bytes>& algorithms) : chain_(BIO_new(BIO_s_null())) {
  std::set<const EVP_MD*> digests;
  for (const Bytes& algorithm : algorithms) digests.insert(DigestOf(algorithm));
  digests.erase(nullptr);
  for (const EVP_MD* digest : digests) {
    BioPtr link(BIO_new(BIO_f_md()));
    if (chain_ == nullptr || link == nullptr || BIO_set_md(link.get(), digest) != 1) Fail(kWinOutOfMemory);
    chain_.reset(BIO_push(link.release(), chain_.release()));
  }
}

void ContentDigests::update(ByteView content) {
  constexpr size_t kLongestStart = 32;
  constexpr size_t kLargestPiece = 1u << 30;
  if (start_.size() < kLongestStart) {
    Append(start_, content.first(std::min(content.size(), kLongestStart - start_.size())));
  }
  length_ += content.size();
  while (!content.empty()) {
    const ByteView piece = content.first(std::min(content.size(), kLargestPiece));
    BIO_write(chain_.get(), piece.data(), static_cast<int>(piece.size()));
    content = content.subspan(piece.size());
  }
}

bool ContentDigests::couldBeAttributes() const {
  const unsigned char* inside = start_.data();
  long length = 0;
  int tag = 0;
  int tagClass = 0;
  ASN1_get_object(&inside, &length, &tag, &tagClass, static_cast<long>(start_.size()));
  return tag == V_ASN1_SET && static_cast<uint64_t>(inside - start_.data() + length) == length_;
}

}  // namespace standin
