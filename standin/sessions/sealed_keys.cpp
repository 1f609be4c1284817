#include "standin/sessions/sealed_keys.h"

#include <openssl/pem.h>

#include <string>

#include "standin/base/codes.h"
#include "standin/base/gost.h"
#include "standin/base/pem.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

using SafesPtr = std::unique_ptr<STACK_OF(PKCS7), FreeStack<PKCS7_free>>;
using BagsPtr = std::unique_ptr<STACK_OF(PKCS12_SAFEBAG), FreeStack<PKCS12_SAFEBAG_free>>;
using KeyInfoPtr = Owned<PKCS8_PRIV_KEY_INFO_free>;
using PbeParamPtr = Owned<PBEPARAM_free>;
using Pbe2ParamPtr = Owned<PBE2PARAM_free>;
using Pbkdf2ParamPtr = Owned<PBKDF2PARAM_free>;

/// The limit of the rounds of key derivation in one file; without it a hostile file could cost hours.
constexpr long kMostRounds = 2'000'000;
constexpr int kDeepestNesting = 4;

template <typename Owner>
Owner Unpack(const X509_ALGOR* algorithm, const ASN1_ITEM* item) {
  const ASN1_OBJECT* object = nullptr;
  int type = 0;
  const void* value = nullptr;
  X509_ALGOR_get0(&object, &type, &value, algorithm);
  if (type != V_ASN1_SEQUENCE) return nullptr;
  return Owner(static_cast<typename Owner::pointer>(ASN1_item_unpack(static_cast<const ASN1_STRING*>(value), item)));
}

/// The rounds of key derivation that the algorithm states; 0 if it states none. Fails with kKeyFileDamaged if the
/// cipher's parameters are not its own.
long RoundsOf(const X509_ALGOR* algorithm) {
  const ASN1_OBJECT* object = nullptr;
  X509_ALGOR_get0(&object, nullptr, nullptr, algorithm);
  if (OBJ_obj2nid(object) != NID_pbes2) {
    const PbeParamPtr param = Unpack<PbeParamPtr>(algorithm, ASN1_ITEM_rptr(PBEPARAM));
    return param == nullptr ? 0 : ASN1_INTEGER_get(param->iter);
  }
  const Pbe2ParamPtr outer = Unpack<Pbe2ParamPtr>(algorithm, ASN1_ITEM_rptr(PBE2PARAM));
  if (outer == nullptr) return 0;
  if (!HasSoundParameters(outer->encryption)) Fail(kKeyFileDamaged);
  const Pbkdf2ParamPtr param = Unpack<Pbkdf2ParamPtr>(outer->keyfunc, ASN1_ITEM_rptr(PBKDF2PARAM));
  return param == nullptr ? 0 : ASN1_INTEGER_get(param->iter);
}

class Reader {
 public:
  explicit Reader(const std::string& pin) : pin_(pin) {}

  KeyFileContent read(ByteView bytes) {
    if (!bytes.empty() && bytes[0] == 0x30) {
      readDer(bytes);
    } else {
      ForEachPemBlock(bytes, [this](std::string_view label, ByteView der) {
        CertPtr certificate = CertificateFromDer(der);
        if (label == "PKCS12" || label == PEM_STRING_PKCS8) readDer(der);
        if (certificate != nullptr) content_.certificates.push_back(std::move(certificate));
      });
    }
    if (content_.keys.empty()) Fail(kKeyFileDamaged);
    return std::move(content_);
  }

 private:
  /// A PKCS#12 file, or one key of PKCS#8.
  void readDer(ByteView der) {
    const auto file = Decode<Owned<PKCS12_free>>(d2i_PKCS12, der);
    if (file == nullptr) {
      readSealedKey(der);
      return;
    }
    checkPin(file.get());
    const SafesPtr safes(PKCS12_unpack_authsafes(file.get()));
    if (safes == nullptr) Fail(kKeyFileDamaged);
    for (int i = 0; i < sk_PKCS7_num(safes.get()); ++i) readSafe(sk_PKCS7_value(safes.get(), i));
  }

  void readSealedKey(ByteView der) {
    const auto sealed = Decode<Owned<X509_SIG_free>>(d2i_X509_SIG, der);
    if (sealed == nullptr) Fail(kKeyFileDamaged);
    spendOn(sealed.get());
    const KeyInfoPtr info(PKCS8_decrypt(sealed.get(), pin_.c_str(), static_cast<int>(pin_.size())));
    if (info == nullptr) Fail(kWrongPin);
    addKey(info.get());
  }

  void spend(long rounds) {
    // -1: the number does not fit into a long.
    if (rounds < 0 || rounds > kMostRounds - rounds_) Fail(kKeyFileDamaged);
    rounds_ += rounds;
  }

  void spendOn(const X509_SIG* sealed) {
    const X509_ALGOR* algorithm = nullptr;
    X509_SIG_get0(sealed, &algorithm, nullptr);
    spend(RoundsOf(algorithm));
  }

  void checkPin(PKCS12* file) {
    if (PKCS12_mac_present(file) != 1) {
      password_ = pin_.c_str();
      return;
    }
    const ASN1_INTEGER* rounds = nullptr;
    PKCS12_get0_mac(nullptr, nullptr, nullptr, &rounds, file);
    const long stated = rounds == nullptr ? 1 : ASN1_INTEGER_get(rounds);
    spend(stated);
    if (PKCS12_verify_mac(file, pin_.c_str(), -1) == 1) {
      password_ = pin_.c_str();
      return;
    }
    // An empty PIN has two encodings: no text, and a text without characters.
    spend(stated);
    if (!pin_.empty() || PKCS12_verify_mac(file, nullptr, 0) != 1) Fail(kWrongPin);
    password_ = nullptr;
  }

  void readSafe(PKCS7* safe) {
    if (PKCS7_type_is_data(safe)) {
      readBags(BagsPtr(PKCS12_unpack_p7data(safe)), 0);
    } else if (PKCS7_type_is_encrypted(safe) && safe->d.encrypted != nullptr &&
               safe->d.encrypted->enc_data != nullptr) {
      spend(RoundsOf(safe->d.encrypted->enc_data->algorithm));
      readBags(BagsPtr(PKCS12_unpack_p7encdata(safe, password_, -1)), 0);
    }
  }

  void readBags(const BagsPtr& bags, int depth) {
    if (bags == nullptr) Fail(kKeyFileDamaged);
    for (int i = 0; i < sk_PKCS12_SAFEBAG_num(bags.get()); ++i) {
      readBag(sk_PKCS12_SAFEBAG_value(bags.get(), i), depth);
    }
  }

  void readBag(PKCS12_SAFEBAG* bag, int depth) {
    switch (PKCS12_SAFEBAG_get_nid(bag)) {
      case NID_keyBag:
        addKey(PKCS12_SAFEBAG_get0_p8inf(bag));
        break;
      case NID_pkcs8ShroudedKeyBag: {
        spendOn(PKCS12_SAFEBAG_get0_pkcs8(bag));
        const KeyInfoPtr key(PKCS12_decrypt_skey(bag, password_, -1));
        if (key == nullptr) Fail(kKeyFileDamaged);
        addKey(key.get());
        break;
      }
      case NID_certBag:
        if (CertPtr certificate{PKCS12_SAFEBAG_get1_cert(bag)}) content_.certificates.push_back(std::move(certificate));
        break;
      case NID_safeContentsBag:
        if (depth >= kDeepestNesting) Fail(kKeyFileDamaged);
        for (int i = 0; i < sk_PKCS12_SAFEBAG_num(PKCS12_SAFEBAG_get0_safes(bag)); ++i) {
          readBag(sk_PKCS12_SAFEBAG_value(PKCS12_SAFEBAG_get0_safes(bag), i), depth + 1);
        }
        break;
      default:
        break;
    }
  }

  void addKey(const PKCS8_PRIV_KEY_INFO* info) {
    KeyPtr key(EVP_PKCS82PKEY(info));
    if (key == nullptr) Fail(kKeyFileDamaged);
    content_.keys.push_back(std::move(key));
  }

  const std::string& pin_;
  const char* password_ = nullptr;
  long rounds_ = 0;
  KeyFileContent content_;
};

}  // namespace

KeyFileContent ReadKeys(ByteView bytes, const std::string& pin) { return Reader(pin).read(bytes); }

Bytes SealKey(EVP_PKEY* key, const std::string& pin) {
  const BioPtr out(BIO_new(BIO_s_mem()));
  // The function does not change the text.
  char* text = const_cast<char*>(pin.c_str());
  if (out == nullptr || i2d_PKCS8PrivateKey_bio(out.get(), key, EVP_aes_256_cbc(), text, static_cast<int>(pin.size()),
                                                nullptr, nullptr) != 1) {
    Fail(kRequestFailed);
  }
  char* der = nullptr;
  const long length = BIO_get_mem_data(out.get(), &der);
  return Bytes(der, der + length);
}

}  // namespace standin
