#include "standin/messages/armour.h"

#include <cctype>

#include "standin/base/codes.h"

namespace standin {

ByteView Armour::remove(ByteView piece, Bytes& decoded) {
  constexpr size_t kLongestLine = 100;
  if (stage_ == Stage::kStart && !piece.empty()) stage_ = piece[0] == '-' ? Stage::kFirstLine : Stage::kNone;
  if (stage_ == Stage::kNone) return piece;
  while (!piece.empty()) {
    const auto end = std::ranges::find(piece, stage_ == Stage::kText ? '-' : '\n');
    const ByteView part = piece.first(static_cast<size_t>(end - piece.begin()));
    const bool ended = end != piece.end();
    piece = piece.subspan(part.size() + (ended && stage_ != Stage::kText ? 1 : 0));
    if (stage_ == Stage::kText) {
      decode(part, ended, decoded);
      if (ended) stage_ = Stage::kLastLine;
      continue;
    }
    // Nothing may follow the last line.
    if (lines_.size() + part.size() > kLongestLine || lines_.ends_with('\n')) Fail(kMessageDamaged);
    lines_.append(part.begin(), part.end());
    if (!ended) continue;
    lines_ += '\n';
    if (stage_ == Stage::kLastLine) continue;
    if (!lines_.starts_with("-----BEGIN ") || base64_ == nullptr) Fail(kMessageDamaged);
    lines_.clear();
    EVP_DecodeInit(base64_.get());
    stage_ = Stage::kText;
  }
  return decoded;
}

void Armour::decode(ByteView text, bool last, Bytes& decoded) {
  constexpr size_t kLargestPiece = 1u << 26;
  constexpr size_t kBlock = 64;
  while (!text.empty() || last) {
    const ByteView part = text.first(std::min(text.size(), kLargestPiece));
    text = text.subspan(part.size());
    const size_t before = decoded.size();
    decoded.resize(before + part.size() + kBlock);
    uint8_t* place = decoded.data() + before;
    int length = 0;
    int more =
        part.empty() ? 1 : EVP_DecodeUpdate(base64_.get(), place, &length, part.data(), static_cast<int>(part.size()));
    if (more < 0 || (padded_ && length != 0)) Fail(kMessageDamaged);
    padded_ = padded_ || more == 0;
    decoded.resize(before + static_cast<size_t>(length));
    if (!text.empty() || !last) continue;
    if (EVP_DecodeFinal(base64_.get(), place, &length) != 1 || length != 0) Fail(kMessageDamaged);
    return;
  }
}

}  // namespace standin
