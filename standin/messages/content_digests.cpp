#include "standin/messages/content_digests.h"

#include <algorithm>
#include <set>

#include "standin/base/codes.h"

namespace standin {

ContentDigests::ContentDigests(const std::vector<Bytes>& algorithms) : chain_(BIO_new(BIO_s_null())) {
  std::set<const EVP_MD*> added;
  for (const Bytes& der : algorithms) {
    const unsigned char* cursor = der.data();
    const AlgorithmPtr algorithm(d2i_X509_ALGOR(nullptr, &cursor, static_cast<long>(der.size())));
    if (algorithm == nullptr) Fail(kMessageDamaged);
    const EVP_MD* digest = EVP_get_digestbyobj(algorithm->algorithm);
    BioPtr link(BIO_new(BIO_f_md()));
    if (chain_ == nullptr || link == nullptr) Fail(kWinOutOfMemory);
    // libcrypto knows some digests by name alone.
    if (digest == nullptr || !added.insert(digest).second || BIO_set_md(link.get(), digest) != 1) continue;
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
