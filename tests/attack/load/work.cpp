#include "attack/load/work.h"

#include <oleauto.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "attack/shared/guard.h"

namespace {

constexpr wchar_t kAnna[] = L"Анна Петрова";

/// Owner of a VARIANT that holds bytes.
class ByteVariant {
 public:
  ByteVariant() = default;
  explicit ByteVariant(const Bytes& bytes) {
    V_VT(&value_) = VT_ARRAY | VT_UI1;
    V_ARRAY(&value_) = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    std::memcpy(V_ARRAY(&value_)->pvData, bytes.data(), bytes.size());
  }
  ByteVariant(const ByteVariant&) = delete;
  ByteVariant& operator=(const ByteVariant&) = delete;
  ~ByteVariant() { VariantClear(&value_); }

  operator VARIANT() const { return value_; }
  VARIANT* out() { return &value_; }
  Bytes bytes() const {
    if (V_VT(&value_) != (VT_ARRAY | VT_UI1)) return {};
    const auto* first = static_cast<const uint8_t*>(V_ARRAY(&value_)->pvData);
    return {first, first + V_ARRAY(&value_)->rgsabound[0].cElements};
  }

 private:
  VARIANT value_{};
};

}  // namespace

Work::Work(Exchange& exchange, Random& random, std::string name)
    : exchange_(exchange),
      random_(random),
      name_(std::move(name)),
      quivo_(CreateObject<QUIVO, IQUIVO>()),
      signing_(CreateObject<SignParam, ISignParam>()),
      verification_(CreateObject<VerifyParam, IVerifyParam>()),
      opened_(E_FAIL) {
  if (quivo_.get() == nullptr || signing_.get() == nullptr || verification_.get() == nullptr) return;
  BSTR profile = SysAllocString(kAnna);
  opened_ = quivo_->Initialize(profile, Flag_Init_Noldap);
  SysFreeString(profile);
  signing_->put_flag(static_cast<SignParamFlag_t>(Flag_Sign_Pkcs7 | 8));
  expect(S_OK, opened_, "Initialize");
}

void Work::expect(HRESULT expected, HRESULT hr, const char* what) {
  if (hr == expected) return;
  char text[64];
  std::snprintf(text, sizeof text, ": 0x%08lX", static_cast<unsigned long>(hr));
  exchange_.problems.add(name_ + ", " + what + text);
}

Bytes Work::hash() {
  ByteVariant hash;
  expect(S_OK, quivo_->HashMem(ByteVariant(exchange_.hashed), hash.out()), "HashMem");
  return hash.bytes();
}

void Work::compareHash() {
  if (hash() != exchange_.hash) exchange_.problems.add(name_ + ", HashMem: another hash than the first object's");
}

void Work::properties() {
  const auto flag = static_cast<SignParamFlag_t>(random_.below(1 << 16));
  Ptr<ISignParam> param = CreateObject<SignParam, ISignParam>();
  Ptr<ICertId> id = CreateObject<CertId, ICertId>();
  SignParamFlag_t read{};
  expect(S_OK, param->put_flag(flag), "put_flag");
  expect(S_OK, param->putref_mycert(id), "putref_mycert");
  expect(S_OK, param->get_flag(&read), "get_flag");
  if (read != flag) exchange_.problems.add(name_ + ", get_flag: another flag");
}

void Work::makeRandom() {
  ByteVariant random;
  expect(S_OK, quivo_->GenRandom(32, random.out()), "GenRandom");
  if (random.bytes().size() != 32) exchange_.problems.add(name_ + ", GenRandom: another length");
}

void Work::sign() {
  Bytes data(1 + random_.below(3000));
  for (uint8_t& byte : data) byte = static_cast<uint8_t>(random_.next());
  ByteVariant message;
  expect(S_OK, quivo_->SignMem(signing_, ByteVariant(data), ByteVariant(), message.out()), "SignMem");
  exchange_.signatures.add({data, message.bytes()});
}

void Work::verify() {
  Signature signature = exchange_.signatures.any(random_);
  if (signature.message.empty()) return;
  // The signed bytes lie inside the message as they are.
  const bool isDamaged = random_.chance(25);
  if (isDamaged) {
    const auto content =
        std::search(signature.message.begin(), signature.message.end(), signature.data.begin(), signature.data.end());
    if (content == signature.message.end()) return exchange_.problems.add(name_ + ", SignMem: no content");
    *content ^= 1;
  }
  ByteVariant content, results;
  const HRESULT hr =
      quivo_->VerifyMem(verification_, ByteVariant(), ByteVariant(signature.message), content.out(), results.out());
  if (isDamaged) {
    if (SUCCEEDED(hr)) exchange_.problems.add(name_ + ", VerifyMem: accepts a damaged message");
    return;
  }
  expect(S_OK, hr, "VerifyMem");
  if (content.bytes() != signature.data) exchange_.problems.add(name_ + ", VerifyMem: another content");
}

/// Bytes hashed in pieces have the hash of the whole.
void Work::stream() {
  Ptr<IStreamCtx> pieces = CreateObject<StreamCtx, IStreamCtx>(), whole = CreateObject<StreamCtx, IStreamCtx>();
  BSTR algorithm = SysAllocString(L"SHA256");
  const Bytes& data = exchange_.hashed;
  const auto middle = data.begin() + random_.below(data.size());
  ByteVariant hashes[2];
  expect(S_OK, quivo_->StrHashInitMem(algorithm, pieces), "StrHashInitMem");
  expect(S_OK, quivo_->StrHashInitMem(algorithm, whole), "StrHashInitMem");
  expect(S_OK, quivo_->StrHashUpdateMem(pieces, ByteVariant(Bytes(data.begin(), middle))), "StrHashUpdateMem");
  expect(S_OK, quivo_->StrHashUpdateMem(whole, ByteVariant(data)), "StrHashUpdateMem");
  expect(S_OK, quivo_->StrHashUpdateMem(pieces, ByteVariant(Bytes(middle, data.end()))), "StrHashUpdateMem");
  expect(S_OK, quivo_->StrHashFinalMem(pieces, hashes[0].out()), "StrHashFinalMem");
  expect(S_OK, quivo_->StrHashFinalMem(whole, hashes[1].out()), "StrHashFinalMem");
  if (hashes[0].bytes().empty() || hashes[0].bytes() != hashes[1].bytes())
    exchange_.problems.add(name_ + ", StrHashFinalMem: another hash in pieces");
  SysFreeString(algorithm);
}

void Work::step() {
  GuardCase(name_);
  // What creates objects or computes with keys costs a hundred times what the others cost.
  const uint32_t kind = random_.below(1000);
  if (kind < 600) {
    compareHash();
  } else if (kind < 940) {
    makeRandom();
  } else if (kind < 965) {
    properties();
  } else if (kind < 980) {
    stream();
  } else if (kind < 995) {
    verify();
  } else {
    sign();
  }
  GuardIdle();
}
