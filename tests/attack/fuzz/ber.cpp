// Elements: whatever the bytes are, those that are read lie inside them, and a definite one can be written again.
#include "standin/messages/ber.h"
#include "attack/fuzz/input.h"
#include "standin/base/codes.h"

using namespace standin;

namespace {

void Read(ByteView bytes, int depth) {
  ber::Cursor cursor(bytes);
  while (!cursor.atEnd()) {
    const ByteView element = cursor.anyElement();
    fuzz::Require(element.data() + element.size() == bytes.data() + cursor.position());
    const ber::Header header = ber::ReadHeader(element);
    fuzz::Require(header.size + header.length <= element.size());
    if (!header.indefinite) {
      const ByteView content = ber::ContentOf(element);
      fuzz::Require(ber::Encode(header.tag, content).size() <= element.size());
    }
    if (!header.constructed() || depth == 0) continue;
    size_t inside = 0;
    for (const ByteView& child : ber::ChildrenOf(element)) {
      inside += child.size();
      Read(child, depth - 1);
    }
    fuzz::Require(inside < element.size());
  }
}

}  // namespace

void fuzz::Run(Input bytes) {
  try {
    Read(bytes, 8);
  } catch (const ber::NeedMore&) {
  } catch (const EngineError& error) {
    Require(error.code == kMessageDamaged);
  }
}
