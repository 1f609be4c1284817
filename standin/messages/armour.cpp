#include "standin/messages/armour.h"

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
      decode(part, decoded);
      if (!ended) continue;
      stage_ = Stage::kLastLine;
      uint8_t rest[64];
      int length = 0;
      if (EVP_DecodeFinal(base64_.get(), rest, &length) != 1) Fail(kMessageDamaged);
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

void Armour::decode(ByteView text, Bytes& decoded) {
  constexpr size_t kBlock = 64;
  if (text.empty()) return;
  const size_t before = decoded.size();
  decoded.resize(before + text.size() + kBlock);
  int length = 0;
  const int more =
      EVP_DecodeUpdate(base64_.get(), decoded.data() + before, &length, text.data(), static_cast<int>(text.size()));
  if (more < 0 || (padded_ && length != 0)) Fail(kMessageDamaged);
  padded_ = padded_ || more == 0;
  decoded.resize(before + static_cast<size_t>(length));
}

}  // namespace standin
