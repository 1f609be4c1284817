#include "standin/base/bytes.h"

namespace standin {

void Append(Bytes& bytes, ByteView more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

}  // namespace standin
