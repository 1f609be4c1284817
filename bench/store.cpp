// What the size of the certificate store costs: store [--short] search|sessions PKI FOLDER
//   search    finding, verifying and encrypting in stores of growing size, against the smallest
//   sessions  opening the largest, first in this process, once more, and after a file was added; against reading its
//   files
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "session.h"
#include "store_folder.h"

namespace {

using bench::Argument;
using bench::Check;

constexpr int kLists = 50;
constexpr int kRevoked = 290'000;  // a list of 10 MB
constexpr int kLargest = 10'000;

/// A session on a store, with what its operations need.
class Store {
 public:
  Store(const std::string& pki, const std::string& folder) : quivo_(bench::OpenSession(pki, folder)) {
    // Anna's certificate, as the engine reports it.
    VARIANT own = find(Flag_Find_My, nullptr);
    LONG first = 0;
    Ptr<IDispatch> found;
    Check(SafeArrayGetElement(V_ARRAY(&own), &first, found.out()), "the own certificate");
    VariantClear(&own);
    auto anna = found.as<ICertificate>();
    copy(anna, &ICertificate::get_issuer, serial_, &ICertificate::put_issuer);
    copy(anna, &ICertificate::get_serialNumber, serial_, &ICertificate::put_serialNumber);
    serial_->put_fields(static_cast<Certinfo_t>(Field_Issuer | Field_Serial));
    copy(anna, &ICertificate::get_keyId, key_, &ICertificate::put_keyId);
    key_->put_fields(static_cast<Certinfo_t>(Field_KeyID));

    VARIANT none{};
    data_ = bench::Bytes("An agreement", 12);
    Check(quivo_->SignMem(bench::Signing(0), data_, none, &message_), "SignMem");
    VARIANT receivers{};
    V_VT(&receivers) = VT_ARRAY | VT_DISPATCH;
    V_ARRAY(&receivers) = SafeArrayCreateVector(VT_DISPATCH, 0, 1);
    SafeArrayPutElement(V_ARRAY(&receivers), &first, serial_.get());
    encryption_ = bench::Encryption(receivers);
    VariantClear(&receivers);
  }

  void findBySerial() { findOne(serial_); }
  void findByKey() { findOne(key_); }
  void verify() {
    VARIANT none{}, content{}, results{};
    Check(quivo_->VerifyMem(verification_, none, message_, &content, &results), "VerifyMem");
    VariantClear(&content);
    VariantClear(&results);
  }
  void encrypt() {
    VARIANT out{};
    Check(quivo_->EncryptMem(encryption_, data_, &out), "EncryptMem");
    VariantClear(&out);
  }

 private:
  using Get = HRESULT (STDMETHODCALLTYPE ICertificate::*)(BSTR*);
  using Put = HRESULT (STDMETHODCALLTYPE ICertificate::*)(BSTR);
  static void copy(ICertificate* from, Get get, ICertificate* to, Put put) {
    BSTR text = nullptr;
    Check((from->*get)(&text), "a property");
    Check((to->*put)(text), "a property");
    SysFreeString(text);
  }

  VARIANT find(int flags, ICertificate* wanted) {
    auto param = bench::New<FindParam, IFindParam>();
    param->put_flag(static_cast<FindParamFlag_t>(flags));
    param->put_info(static_cast<Certinfo_t>(Field_All));
    if (wanted) param->putref_certTemplate(wanted);
    VARIANT found{};
    Check(quivo_->FindCert(param, &found), "FindCert");
    return found;
  }
  void findOne(ICertificate* wanted) {
    VARIANT found =
        find(Flag_Find_Simple | Flag_Find_NoVerify | Flag_Find_NoTimeCheck | Flag_Find_NoKeyTimeCheck, wanted);
    if (V_VT(&found) != (VT_ARRAY | VT_DISPATCH) || V_ARRAY(&found)->rgsabound[0].cElements != 1)
      Check(E_UNEXPECTED, "one certificate");
    VariantClear(&found);
  }

  Ptr<IQUIVO> quivo_;
  Ptr<ICertificate> serial_ = bench::New<Certificate, ICertificate>();
  Ptr<ICertificate> key_ = bench::New<Certificate, ICertificate>();
  Ptr<IVerifyParam> verification_ = bench::Verification(0);
  Ptr<IEncryptParam> encryption_;
  VARIANT data_{}, message_{};
};

std::string MakeStoreOf(const std::string& pki, const std::string& folder, int count, const bench::Effort& effort) {
  std::string path = folder + "\\store-" + std::to_string(count);
  bench::MakeStore(pki, path, count, effort.pick(kLists, 2), effort.pick(kRevoked, 100));
  return path;
}

void Search(const std::string& pki, const std::string& folder, const bench::Effort& effort) {
  using Operation = void (Store::*)();
  static const std::map<std::string, Operation> kOperations = {{"find by serial number", &Store::findBySerial},
                                                               {"find by key", &Store::findByKey},
                                                               {"verify", &Store::verify},
                                                               {"encrypt", &Store::encrypt}};
  Store smallest(pki, MakeStoreOf(pki, folder, 10, effort));
  for (int count : {100, 1000, kLargest}) {
    Store store(pki, MakeStoreOf(pki, folder, effort.pick(count, 11), effort));
    for (const auto& entry : kOperations)
      bench::PrintCalls(
          "store of " + std::to_string(count) + ", " + entry.first, effort, [&] { (store.*entry.second)(); },
          [&] { (smallest.*entry.second)(); });
  }
}

/// Reads every file of a folder; returns their bytes.
size_t ReadFiles(const std::string& folder) {
  size_t size = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    size += std::string(std::istreambuf_iterator<char>(file), {}).size();
  }
  return size;
}

void Sessions(const std::string& pki, const std::string& folder, const bench::Effort& effort) {
  std::string store = MakeStoreOf(pki, folder, effort.pick(kLargest, 10), effort);
  // Once before, so that the files are in memory for both.
  ReadFiles(store);
  auto open = [&] { return 1e3 * bench::Seconds([&] { bench::OpenSession(pki, store); }); };
  bench::Samples first{{}, {1e3 * bench::Seconds([&] { ReadFiles(store); })}};
  first.module = {open()};
  bench::Print("first session", "ms", first);
  bench::Print("second session", "ms", {{open()}, {}});
  constexpr int kAdded = 0x200000;
  bench::AddToStore(pki, store, kAdded);
  bench::Print("session after an addition", "ms", {{open()}, {}});
  std::filesystem::remove(store + "\\user" + std::to_string(kAdded) + ".cer");
}

}  // namespace

int main(int count, char** arguments) {
  const bench::Effort effort = bench::Effort::of(count, arguments);
  if (count != 4) return 1;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  std::string mode = arguments[1];
  if (mode == "search") Search(arguments[2], arguments[3], effort);
  if (mode == "sessions") Sessions(arguments[2], arguments[3], effort);
  std::fflush(nullptr);
}
