#include "standin/messages/content_digests.h"

#include <algorithm>
#include <set>

#include "standin/base/codes.h"
#include "standin/messages/ber.h"

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
  try {
    ber::Cursor cursor(start_);
    const ber::Header set = cursor.open(ber::kSet);
    cursor.open(ber::kSequence);
    return set.size + set.length == length_ && cursor.peekTag() == ber::kOid;
  } catch (const EngineError&) {
    return false;
  } catch (const ber::NeedMore&) {
    return false;
  }
}

}  // namespace standin
