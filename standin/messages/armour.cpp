#include "standin/messages/armour.h"

#include "standin/base/codes.h"

namespace standin {

ByteView Armour::remove(ByteView piece, Bytes& decoded) {
  if (stage_ == Stage::kStart && !piece.empty()) stage_ = piece[0] == '-' ? Stage::kFirstLine : Stage::kNone;
  if (stage_ == Stage::kNone) return piece;
  while (!piece.empty()) piece = piece.subspan(stage_ == Stage::kText ? takeText(piece, decoded) : takeLine(piece));
  return decoded;
}

size_t Armour::takeLine(ByteView piece) {
  constexpr size_t kLongestLine = 100;
  const auto end = std::ranges::find(piece, '\n');
  // Nothing may follow the last line.
  if (lines_.ends_with('\n')) Fail(kMessageDamaged);
  lines_.append(piece.begin(), end == piece.end() ? end : end + 1);
  if (lines_.size() > kLongestLine) Fail(kMessageDamaged);
  if (end == piece.end()) return piece.size();
  if (stage_ == Stage::kFirstLine) {
    if (!lines_.starts_with("-----BEGIN ") || base64_ == nullptr) Fail(kMessageDamaged);
    lines_.clear();
    EVP_DecodeInit(base64_.get());
    stage_ = Stage::kText;
  }
  return static_cast<size_t>(end - piece.begin()) + 1;
}

size_t Armour::takeText(ByteView piece, Bytes& decoded) {
  constexpr size_t kBlock = 64;
  const ByteView text = piece.first(static_cast<size_t>(std::ranges::find(piece, '-') - piece.begin()));
  const size_t before = decoded.size();
  decoded.resize(before + text.size() + kBlock);
  uint8_t* place = decoded.data() + before;
  int length = 0;
  const int size = static_cast<int>(text.size());
  const int more = size == 0 ? 1 : EVP_DecodeUpdate(base64_.get(), place, &length, text.data(), size);
  if (more < 0 || (padded_ && length != 0)) Fail(kMessageDamaged);
  padded_ = padded_ || more == 0;
  decoded.resize(before + static_cast<size_t>(length));
  if (text.size() != piece.size()) {
    uint8_t rest[kBlock];
    if (EVP_DecodeFinal(base64_.get(), rest, &length) != 1) Fail(kMessageDamaged);
    stage_ = Stage::kLastLine;
  }
  return text.size();
}

}  // namespace standin
