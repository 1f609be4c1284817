#include "standin/messages/message_reader.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/oids.h"

namespace standin {
namespace {

/// The limit of the bytes before and after the content, which are kept in memory. Honest messages are far smaller.
constexpr size_t kLargestPending = 16 * 1024 * 1024;
constexpr size_t kDeepestContent = 8;
/// The longest header that ReadHeader accepts.
constexpr size_t kLongestHeader = 9;

Bytes CopyOf(ByteView bytes) { return Bytes(bytes.begin(), bytes.end()); }

}  // namespace

MessageReader::MessageReader(OnHead onHead, OnContent onContent)
    : on_head_(std::move(onHead)), on_content_(std::move(onContent)) {}

MessageReader MessageReader::whole(ByteView message, OnContent onContent) {
  MessageReader reader(std::move(onContent));
  reader.feed(message);
  reader.finish();
  return reader;
}

/// After a failure the reader is not whole: every further call fails alike.
template <typename Work>
auto MessageReader::unlessFailed(Work work) {
  if (failure_ != kOk) Fail(failure_);
  try {
    return work();
  } catch (const EngineError& error) {
    failure_ = error.code;
    throw;
  }
}

void MessageReader::feed(ByteView bytes) {
  // The head is sought in what has arrived; a whole message in memory may be larger than a head may be.
  constexpr size_t kLargestPiece = 1u << 20;
  while (!bytes.empty()) {
    Bytes decoded;
    const ByteView piece = bytes.first(std::min(bytes.size(), kLargestPiece));
    unlessFailed([&] { feedMessage(armour_.remove(piece, decoded)); });
    bytes = bytes.subspan(piece.size());
  }
}

bool MessageReader::tryFinish() {
  return stage_ == Stage::kEnd || unlessFailed([this] { return stage_ == Stage::kTail && endMessage(); });
}

void MessageReader::finish() {
  if (!tryFinish()) Fail(kMessageDamaged);
}

void MessageReader::feedMessage(ByteView bytes) {
  Bytes behindHead;
  if (stage_ == Stage::kHead) {
    Append(pending_, bytes);
    if (pending_.size() > kLargestPending) Fail(kMessageDamaged);
    if (!tryHead()) return;
    behindHead = std::move(pending_);
    behindHead.erase(behindHead.begin(), behindHead.begin() + static_cast<ptrdiff_t>(offset_));
    pending_.clear();
    bytes = behindHead;
    on_head_(head_);
  }
  while (stage_ == Stage::kContent && !bytes.empty()) bytes = takeContent(bytes);
  if (stage_ == Stage::kEnd && !bytes.empty()) Fail(kMessageDamaged);
  if (stage_ == Stage::kTail) {
    Append(pending_, bytes);
    if (pending_.size() > kLargestPending) Fail(kMessageDamaged);
  }
}

bool MessageReader::endMessage() {
  if (!armour_.ended()) return false;
  const std::vector<Level> open = levels_;
  try {
    parseTail();
  } catch (const ber::NeedMore&) {
    levels_ = open;
    tail_.clear();
    return false;
  }
  stage_ = Stage::kEnd;
  return true;
}

bool MessageReader::tryHead() {
  levels_.clear();
  head_ = {};
  ber::Cursor cursor(pending_);
  try {
    parseHead(cursor);
  } catch (const ber::NeedMore&) {
    return false;
  }
  offset_ = cursor.position();
  stage_ = Stage::kContent;
  closeEndedContent();
  return true;
}

void MessageReader::parseHead(ber::Cursor& cursor) {
  levels_.push_back(openLevel(cursor, ber::kSequence));
  const ByteView type = cursor.element(ber::kOid);
  if (Equal(type, kOidSignedData)) {
    head_.kind = MessageKind::kSigned;
  } else if (Equal(type, kOidEnvelopedData)) {
    head_.kind = MessageKind::kEnveloped;
  } else if (Equal(type, kOidAuthEnvelopedData)) {
    head_.kind = MessageKind::kAuthEnveloped;
  } else {
    Fail(kMessageDamaged);
  }
  levels_.push_back(openLevel(cursor, ber::kContext0Constructed));
  levels_.push_back(openLevel(cursor, ber::kSequence));
  head_.elements.push_back(CopyOf(cursor.element(ber::kInteger)));
  if (head_.enveloped() && cursor.peekTag() == ber::kContext0Constructed) {
    head_.elements.push_back(CopyOf(cursor.anyElement()));
  }
  head_.elements.push_back(CopyOf(cursor.element(ber::kSet)));
  levels_.push_back(openLevel(cursor, ber::kSequence));
  parseContentInfo(cursor);
}

void MessageReader::parseContentInfo(ber::Cursor& cursor) {
  head_.contentType = CopyOf(cursor.element(ber::kOid));
  if (head_.enveloped()) head_.contentCipher = CopyOf(cursor.element(ber::kSequence));
  if (!moreInside(cursor, levels_.back())) return;
  if (head_.kind == MessageKind::kSigned) levels_.push_back(openLevel(cursor, ber::kContext0Constructed));
  const ber::Header content = ber::ReadHeader(cursor.rest());
  const bool isSigned = head_.kind == MessageKind::kSigned;
  const uint8_t primitive = isSigned ? ber::kOctetString : ber::kContext0;
  const uint8_t constructed = isSigned ? ber::kConstructedOctetString : ber::kContext0Constructed;
  if (content.tag != primitive && content.tag != constructed) Fail(kMessageDamaged);
  cursor.skip(content.size);
  head_.hasContent = true;
  offset_ = cursor.position();
  beginContent(content);
}

bool MessageReader::moreInside(const ber::Cursor& cursor, const Level& level) const {
  if (!level.indefinite) return cursor.position() < level.end;
  return !ber::ReadHeader(cursor.rest()).isEndOfContents();
}

MessageReader::Level MessageReader::levelOf(const ber::Header& header, uint64_t contentOffset, const Level* parent) {
  const uint64_t end = contentOffset + header.length;
  if (parent != nullptr && !parent->indefinite && (contentOffset > parent->end || end > parent->end)) {
    Fail(kMessageDamaged);
  }
  return {header.indefinite, end};
}

MessageReader::Level MessageReader::openLevel(ber::Cursor& cursor, uint8_t tag) {
  const ber::Header header = cursor.open(tag);
  return levelOf(header, cursor.position(), levels_.empty() ? nullptr : &levels_.back());
}

/// `offset_` must be the end of the header.
void MessageReader::beginContent(const ber::Header& header) {
  const Level* parent = content_levels_.empty() ? &levels_.back() : &content_levels_.back();
  const Level level = levelOf(header, offset_, parent);
  if (!header.constructed()) {
    primitive_left_ = header.length;
  } else if (content_levels_.size() == kDeepestContent) {
    Fail(kMessageDamaged);
  } else {
    content_levels_.push_back(level);
  }
}

ByteView MessageReader::takeContent(ByteView bytes) {
  if (primitive_left_ != 0) {
    const size_t count = static_cast<size_t>(std::min<uint64_t>(primitive_left_, bytes.size()));
    primitive_left_ -= count;
    offset_ += count;
    on_content_(bytes.first(count));
    bytes = bytes.subspan(count);
  } else {
    bytes = nextContentHeader(bytes);
  }
  closeEndedContent();
  return bytes;
}

void MessageReader::closeEndedContent() {
  if (primitive_left_ != 0) return;
  while (!content_levels_.empty() && !content_levels_.back().indefinite && content_levels_.back().end == offset_) {
    content_levels_.pop_back();
  }
  if (content_levels_.empty()) stage_ = Stage::kTail;
}

ByteView MessageReader::nextContentHeader(ByteView bytes) {
  ber::Header header;
  if (pending_.empty() && bytes.size() >= kLongestHeader) {
    header = ber::ReadHeader(bytes);
    bytes = bytes.subspan(header.size);
  } else {
    // A piece ends inside the header: collect it byte by byte.
    pending_.push_back(bytes[0]);
    bytes = bytes.subspan(1);
    try {
      header = ber::ReadHeader(pending_);
    } catch (const ber::NeedMore&) {
      return bytes;
    }
    pending_.clear();
  }
  offset_ += header.size;
  if (header.isEndOfContents()) {
    if (!content_levels_.back().indefinite) Fail(kMessageDamaged);
    content_levels_.pop_back();
  } else if (header.tag == ber::kOctetString || header.tag == ber::kConstructedOctetString) {
    beginContent(header);
  } else {
    Fail(kMessageDamaged);
  }
  return bytes;
}

void MessageReader::parseTail() {
  constexpr size_t kMessageLevels = 3;
  ber::Cursor cursor(pending_);
  while (levels_.size() > kMessageLevels) closeLevel(cursor);
  const Level message = levels_.back();
  while (message.indefinite ? !ber::ReadHeader(cursor.rest()).isEndOfContents()
                            : offset_ + cursor.position() < message.end) {
    tail_.push_back(CopyOf(cursor.anyElement()));
  }
  while (!levels_.empty()) closeLevel(cursor);
  if (!cursor.atEnd()) Fail(kMessageDamaged);
}

void MessageReader::closeLevel(ber::Cursor& cursor) {
  const Level level = levels_.back();
  levels_.pop_back();
  if (level.indefinite) {
    if (!cursor.open(0).isEndOfContents()) Fail(kMessageDamaged);
  } else if (offset_ + cursor.position() != level.end) {
    Fail(kMessageDamaged);
  }
}

}  // namespace standin
