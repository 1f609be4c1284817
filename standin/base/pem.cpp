#include "standin/base/pem.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include "standin/base/openssl_owners.h"

namespace standin {

void ForEachPemBlock(ByteView text, const std::function<void(std::string_view, ByteView)>& take) {
  const BioPtr source(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
  char* label = nullptr;
  char* header = nullptr;
  unsigned char* data = nullptr;
  long length = 0;
  while (PEM_read_bio(source.get(), &label, &header, &data, &length) == 1) {
    const TextPtr labelOwner(label);
    const TextPtr headerOwner(header);
    const OctetsPtr dataOwner(data);
    take(label, {data, static_cast<size_t>(length)});
  }
  ERR_clear_error();
}

}  // namespace standin
