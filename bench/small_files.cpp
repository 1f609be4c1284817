// Many small files through the module, against libcrypto called directly: small_files [--short] PKI FOLDER
#include <openssl/cms.h>
#include <openssl/pem.h>
#include "session.h"

namespace {

using bench::Argument;
using bench::Check;

/// The module, with Anna's key.
struct Module {
  explicit Module(const std::string& pki) : quivo(bench::OpenSession(pki, pki + "\\store")) {}
  void sign(const std::string& in, const std::string& out) {
    Check(quivo->SignFile(signing, Argument(in), nullptr, Argument(out)), "SignFile");
  }
  void verify(const std::string& in, const std::string& out) {
    VARIANT results{};
    Check(quivo->VerifyFile(verification, nullptr, Argument(in), Argument(out), &results), "VerifyFile");
    VariantClear(&results);
  }
  void encrypt(const std::string& in, const std::string& out) {
    Check(quivo->EncryptFile(encryption, Argument(in), Argument(out)), "EncryptFile");
  }
  void decrypt(const std::string& in, const std::string& out) {
    Ptr<ICertificate> sender;
    Check(quivo->DecryptFile(decryption, Argument(in), Argument(out), sender.out()), "DecryptFile");
  }

  Ptr<IQUIVO> quivo;
  Ptr<ISignParam> signing = bench::Signing(Flag_Sign_SendSert);
  Ptr<IVerifyParam> verification = bench::Verification(0);
  Ptr<IEncryptParam> encryption = bench::EncryptionToOwn(quivo);
  Ptr<IDecryptParam> decryption = bench::Decryption();
};

void Require(bool good, const char* what) {
  if (!good) Check(E_FAIL, what);
}

/// libcrypto with the same key, certificate, root and revocation list.
class Direct {
 public:
  explicit Direct(const std::string& pki) {
    BIO* file = BIO_new_file((pki + "\\anna.key").c_str(), "rb");
    key_ = PEM_read_bio_PrivateKey(file, nullptr, nullptr, nullptr);
    BIO_free(file);
    cert_ = certificate(pki + "\\anna.pem");
    store_ = X509_STORE_new();
    X509_STORE_add_cert(store_, certificate(pki + "\\ca.pem"));
    file = BIO_new_file((pki + "\\store\\ca.crl").c_str(), "rb");
    X509_STORE_add_crl(store_, d2i_X509_CRL_bio(file, nullptr));
    BIO_free(file);
    X509_STORE_set_flags(store_, X509_V_FLAG_CRL_CHECK);
    receivers_ = sk_X509_new_null();
    sk_X509_push(receivers_, cert_);
    Require(key_ && cert_, "the keys");
  }

  void sign(const std::string& in, const std::string& out) {
    BIO* source = BIO_new_file(in.c_str(), "rb");
    CMS_ContentInfo* message = CMS_sign(cert_, key_, nullptr, source, CMS_BINARY);
    Require(message, "CMS_sign");
    write(message, out);
    BIO_free(source);
  }
  void verify(const std::string& in, const std::string& out) {
    CMS_ContentInfo* message = read(in);
    BIO* target = BIO_new_file(out.c_str(), "wb");
    Require(CMS_verify(message, nullptr, store_, nullptr, target, CMS_BINARY) == 1, "CMS_verify");
    BIO_free(target);
    CMS_ContentInfo_free(message);
  }
  void encrypt(const std::string& in, const std::string& out) {
    BIO* source = BIO_new_file(in.c_str(), "rb");
    CMS_ContentInfo* message = CMS_encrypt(receivers_, source, EVP_aes_256_cbc(), CMS_BINARY);
    Require(message, "CMS_encrypt");
    write(message, out);
    BIO_free(source);
  }
  void decrypt(const std::string& in, const std::string& out) {
    CMS_ContentInfo* message = read(in);
    BIO* target = BIO_new_file(out.c_str(), "wb");
    Require(CMS_decrypt(message, key_, cert_, nullptr, target, CMS_BINARY) == 1, "CMS_decrypt");
    BIO_free(target);
    CMS_ContentInfo_free(message);
  }

 private:
  static X509* certificate(const std::string& path) {
    BIO* file = BIO_new_file(path.c_str(), "rb");
    X509* read = PEM_read_bio_X509(file, nullptr, nullptr, nullptr);
    BIO_free(file);
    return read;
  }
  static CMS_ContentInfo* read(const std::string& path) {
    BIO* file = BIO_new_file(path.c_str(), "rb");
    CMS_ContentInfo* message = d2i_CMS_bio(file, nullptr);
    BIO_free(file);
    return message;
  }
  static void write(CMS_ContentInfo* message, const std::string& path) {
    BIO* file = BIO_new_file(path.c_str(), "wb");
    Require(i2d_CMS_bio(file, message) == 1, "i2d_CMS_bio");
    BIO_free(file);
    CMS_ContentInfo_free(message);
  }

  EVP_PKEY* key_ = nullptr;
  X509* cert_ = nullptr;
  X509_STORE* store_ = nullptr;
  STACK_OF(X509) * receivers_ = nullptr;
};

class Files {
 public:
  Files(std::string folder, int count) : folder_(std::move(folder)), count_(count) {
    std::string content(4096, 'x');
    for (int i = 0; i < count_; ++i) {
      CreateDirectoryA(folderOf(i).c_str(), nullptr);
      FILE* file = std::fopen(path(i, "txt").c_str(), "wb");
      Require(file && std::fwrite(content.data(), 1, content.size(), file) == content.size(), "a small file");
      std::fclose(file);
    }
  }

  /// A row of one operation, from files of one ending to files of another.
  template <class OfModule, class OfDirect>
  void measure(const char* row, int rounds, const char* from, const char* to, OfModule module, OfDirect direct) {
    auto each = [&](auto& work, const std::string& maker) {
      for (int i = 0; i < count_; ++i) work(path(i, from), path(i, maker + to));
    };
    bench::Print(row, "s",
                 bench::InTurn(
                     rounds, [&] { each(module, ""); }, [&] { each(direct, "direct-"); }));
  }

 private:
  /// Few to a folder: Wine reads the whole folder for a name that is not there, as that of a temporary file.
  std::string folderOf(int number) const { return folder_ + "\\" + std::to_string(number / kInFolder); }
  std::string path(int number, const std::string& ending) const {
    return folderOf(number) + "\\" + std::to_string(number) + "." + ending;
  }

  static constexpr int kInFolder = 20;

  std::string folder_;
  int count_;
};

}  // namespace

int main(int count, char** arguments) {
  const bench::Effort effort = bench::Effort::of(count, arguments).withRounds(7);
  if (count != 3) return 1;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Module module(arguments[1]);
  Direct direct(arguments[1]);
  Files files(arguments[2], effort.pick(1000, 2));
  auto row = [&](const char* name, const char* from, const char* to, auto ofModule, auto ofDirect) {
    files.measure(
        name, effort.rounds, from, to,
        [&](const std::string& in, const std::string& out) { (module.*ofModule)(in, out); },
        [&](const std::string& in, const std::string& out) { (direct.*ofDirect)(in, out); });
  };
  row("small files, sign", "txt", "p7s", &Module::sign, &Direct::sign);
  row("small files, verify", "p7s", "content", &Module::verify, &Direct::verify);
  row("small files, encrypt", "txt", "p7e", &Module::encrypt, &Direct::encrypt);
  row("small files, decrypt", "p7e", "plain", &Module::decrypt, &Direct::decrypt);
  std::fflush(nullptr);
}
