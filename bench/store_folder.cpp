#include "store_folder.h"

#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace bench {
namespace {

template <auto free>
struct Free {
  template <class Object>
  void operator()(Object* object) const {
    free(object);
  }
};
using File = std::unique_ptr<BIO, Free<BIO_free>>;
using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using Cert = std::unique_ptr<X509, Free<X509_free>>;
using List = std::unique_ptr<X509_CRL, Free<X509_CRL_free>>;

constexpr long kYear = 365L * 24 * 3600;

void Require(bool good, const char* what) {
  if (good) return;
  std::fprintf(stderr, "%s failed\n", what);
  std::exit(1);
}

File Open(const std::string& path, const char* mode) {
  File file(BIO_new_file(path.c_str(), mode));
  Require(file != nullptr, path.c_str());
  return file;
}

/// A certification authority: its certificate and its key.
struct Authority {
  Cert cert;
  Key key;
};

Authority Read(const std::string& pki) {
  Authority read;
  read.cert.reset(PEM_read_bio_X509(Open(pki + "\\ca.pem", "rb").get(), nullptr, nullptr, nullptr));
  read.key.reset(PEM_read_bio_PrivateKey(Open(pki + "\\ca.key", "rb").get(), nullptr, nullptr, nullptr));
  Require(read.cert && read.key, "reading the authority");
  return read;
}

void Extend(X509* cert, int kind, const char* value) {
  std::unique_ptr<X509_EXTENSION, Free<X509_EXTENSION_free>> extension(
      X509V3_EXT_conf_nid(nullptr, nullptr, kind, value));
  Require(extension && X509_add_ext(cert, extension.get(), -1) == 1, "an extension");
}

/// A certificate of `key`; the subject and the key identifier follow from the number. Issued by itself without an
/// authority.
Cert Make(int number, const std::string& name, EVP_PKEY* key, const Authority* authority) {
  Cert cert(X509_new());
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), number);
  X509_gmtime_adj(X509_getm_notBefore(cert.get()), -24L * 3600);
  X509_gmtime_adj(X509_getm_notAfter(cert.get()), kYear);
  X509_NAME* subject = X509_get_subject_name(cert.get());
  X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1,
                             0);
  X509_set_issuer_name(cert.get(), authority ? X509_get_subject_name(authority->cert.get()) : subject);
  X509_set_pubkey(cert.get(), key);
  Extend(cert.get(), NID_basic_constraints, authority ? "critical,CA:FALSE" : "critical,CA:TRUE");
  Extend(cert.get(), NID_key_usage,
         authority ? "critical,digitalSignature,keyAgreement" : "critical,keyCertSign,cRLSign");
  char identifier[41];
  std::snprintf(identifier, sizeof(identifier), "%040X", static_cast<unsigned>(number));
  Extend(cert.get(), NID_subject_key_identifier, identifier);
  Require(X509_sign(cert.get(), authority ? authority->key.get() : key, EVP_sha256()) > 0, "X509_sign");
  return cert;
}

void Write(X509* cert, const std::string& path) {
  Require(i2d_X509_bio(Open(path, "wb").get(), cert) == 1, "writing a certificate");
}

/// The list of an authority, newer than what it has issued so far.
void WriteList(const Authority& authority, int revoked, const std::string& path) {
  List list(X509_CRL_new());
  X509_CRL_set_version(list.get(), 1);
  X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(authority.cert.get()));
  std::unique_ptr<ASN1_TIME, Free<ASN1_TIME_free>> now(ASN1_TIME_adj(nullptr, time(nullptr), 0, 0));
  std::unique_ptr<ASN1_TIME, Free<ASN1_TIME_free>> next(ASN1_TIME_adj(nullptr, time(nullptr), 365, 0));
  X509_CRL_set1_lastUpdate(list.get(), now.get());
  X509_CRL_set1_nextUpdate(list.get(), next.get());
  std::unique_ptr<ASN1_INTEGER, Free<ASN1_INTEGER_free>> serial(ASN1_INTEGER_new());
  for (int i = 0; i < revoked; ++i) {
    // No certificate has such a number.
    ASN1_INTEGER_set_int64(serial.get(), 0x100000000000 + i);
    X509_REVOKED* entry = X509_REVOKED_new();
    X509_REVOKED_set_serialNumber(entry, serial.get());
    X509_REVOKED_set_revocationDate(entry, now.get());
    Require(X509_CRL_add0_revoked(list.get(), entry) == 1, "X509_CRL_add0_revoked");
  }
  X509_CRL_sort(list.get());
  Require(X509_CRL_sign(list.get(), authority.key.get(), EVP_sha256()) > 0, "X509_CRL_sign");
  Require(i2d_X509_CRL_bio(Open(path, "wb").get(), list.get()) == 1, "writing a list");
}

std::string EntryPath(const std::string& folder, int number) {
  return folder + "\\user" + std::to_string(number) + ".cer";
}

}  // namespace

void MakeStore(const std::string& pki, const std::string& folder, int count, int lists, int revoked) {
  if (std::filesystem::exists(folder)) return;
  const std::string unfinished = folder + ".new";
  std::filesystem::remove_all(unfinished);
  std::filesystem::create_directories(unfinished);
  for (const char* name : {"\\ca.cer", "\\anna.cer"})
    std::filesystem::copy_file(pki + "\\store" + name, unfinished + name);
  Authority authority = Read(pki);
  Key key(EVP_EC_gen("P-256"));
  constexpr int kFirst = 0x100000;
  for (int i = 1; i < count; ++i)
    Write(Make(kFirst + i, "user " + std::to_string(i), key.get(), &authority).get(), EntryPath(unfinished, i));
  WriteList(authority, revoked, unfinished + "\\ca.crl");
  for (int i = 1; i < lists; ++i) {
    Authority other;
    other.key.reset(EVP_EC_gen("P-256"));
    other.cert = Make(i, "authority " + std::to_string(i), other.key.get(), nullptr);
    const std::string path = unfinished + "\\authority" + std::to_string(i);
    Write(other.cert.get(), path + ".cer");
    WriteList(other, 1, path + ".crl");
  }
  std::filesystem::rename(unfinished, folder);
}

void AddToStore(const std::string& pki, const std::string& folder, int number) {
  Authority authority = Read(pki);
  Write(Make(number, "added " + std::to_string(number), authority.key.get(), &authority).get(),
        EntryPath(folder, number));
}

}  // namespace bench
