// The armour of messages in PEM form, removed as their bytes arrive: Base64 between a first and a last line.
#pragma once

#include <string>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

class Armour {
 public:
  /// The bytes of the message in a piece of less than 1 GiB; those of a file without armour pass unchanged, others are
  /// put into `decoded`. Fails with kMessageDamaged.
  ByteView remove(ByteView piece, Bytes& decoded);
  /// Whether the armour, if there is one, is complete.
  bool ended() const { return stage_ == Stage::kNone || lines_.starts_with("-----END "); }

 private:
  enum class Stage { kStart, kNone, kFirstLine, kText, kLastLine };

  /// Both return how much of the piece they used.
  size_t takeLine(ByteView piece);
  size_t takeText(ByteView piece, Bytes& decoded);

  Stage stage_ = Stage::kStart;
  Owned<EVP_ENCODE_CTX_free> base64_{EVP_ENCODE_CTX_new()};
  bool padded_ = false;
  std::string lines_;  ///< the first line, later the last one
};

}  // namespace standin
