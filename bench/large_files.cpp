// One operation of the registered module on a large file, timed, with the memory that it took:
//   large_files PROFILE OPERATION IN OUT [SECOND]
// It prints the seconds of the calls and the MiB that the process grew above its size before them. SECOND is
// the detached signature of verify-detached. The stream operations read IN in pieces of 64 KiB.
#include <windows.h>

#include <psapi.h>

#include <cstdint>
#include <functional>
#include <map>

#include "session.h"

namespace {

constexpr ULONG kPiece = 64 * 1024;

using bench::Check;
using bench::Decryption;
using bench::New;
using bench::Text;
using bench::Verification;

double MemoryMiB(bool peak) {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return static_cast<double>(peak ? counters.PeakWorkingSetSize : counters.WorkingSetSize) / (1024 * 1024);
}

struct Job {
  Ptr<IQUIVO> quivo;
  BSTR in, out, second;
  FILE* source;
  FILE* target;
};

/// Calls `piece` with every piece of the source, as an array of bytes.
void EachPiece(const Job& job, const std::function<void(VARIANT&)>& piece) {
  const std::vector<uint8_t> empty(kPiece);
  VARIANT bytes = bench::Bytes(empty.data(), kPiece);
  while (size_t read = std::fread(V_ARRAY(&bytes)->pvData, 1, kPiece, job.source)) {
    if (read == kPiece) {
      piece(bytes);
      continue;
    }
    VARIANT rest = bench::Bytes(V_ARRAY(&bytes)->pvData, read);
    piece(rest);
    VariantClear(&rest);
  }
  VariantClear(&bytes);
}

/// Writes an output to the target and clears it.
void Write(const Job& job, VARIANT& bytes) {
  if (V_VT(&bytes) == (VT_ARRAY | VT_UI1))
    std::fwrite(V_ARRAY(&bytes)->pvData, 1, V_ARRAY(&bytes)->rgsabound[0].cElements, job.target);
  VariantClear(&bytes);
}

Ptr<ISignParam> Signing(int flags) { return bench::Signing(Flag_Sign_SendSert | flags); }
Ptr<IEncryptParam> Encryption(const Job& job) { return bench::EncryptionToOwn(job.quivo); }

void SignFile(const Job& job, int flags) {
  Check(job.quivo->StrSignFile(Signing(flags).get(), job.in, nullptr, job.out), "StrSignFile");
}

void VerifyFile(const Job& job, BSTR data, BSTR signature, BSTR content, int flags) {
  VARIANT results{};
  Check(job.quivo->StrVerifyFile(Verification(flags).get(), data, signature, content, &results), "StrVerifyFile");
  VariantClear(&results);
}

void DecryptFile(const Job& job) {
  Ptr<ICertificate> sender;
  Check(job.quivo->StrDecryptFile(Decryption().get(), job.in, job.out, sender.out()), "StrDecryptFile");
}

void HashFile(const Job& job) {
  VARIANT hash{};
  Check(job.quivo->HashFile(job.in, &hash), "HashFile");
  Write(job, hash);
}

void HashFileAsGost(const Job& job) {
  VARIANT hash{};
  BSTR algorithm = Text("md_gost12_256");
  Check(job.quivo->StrHashFile(algorithm, job.in, &hash, VARIANT_FALSE), "StrHashFile");
  SysFreeString(algorithm);
  Write(job, hash);
}

void StreamSign(const Job& job) {
  auto param = Signing(Flag_Sign_Detached);
  auto stream = New<StreamCtx, IStreamCtx>();
  VARIANT none{}, signature{};
  Check(job.quivo->StrSignInitMem(param.get(), none, stream.get()), "StrSignInitMem");
  EachPiece(job, [&](VARIANT& piece) {
    Check(job.quivo->StrSignUpdateMem(param.get(), stream.get(), piece), "StrSignUpdateMem");
  });
  Check(job.quivo->StrSignFinalMem(param.get(), stream.get(), &signature), "StrSignFinalMem");
  Write(job, signature);
}

void StreamVerify(const Job& job) {
  auto param = Verification(Flag_Verify_Detached);
  auto stream = New<StreamCtx, IStreamCtx>();
  FILE* file = _wfopen(job.second, L"rb");
  std::vector<uint8_t> buffer(1 << 20);
  size_t read = file ? std::fread(buffer.data(), 1, buffer.size(), file) : 0;
  if (file) std::fclose(file);
  VARIANT signature = bench::Bytes(buffer.data(), read);
  VARIANT content{}, results{};
  Check(job.quivo->StrVerifyInitMem(param.get(), signature, stream.get()), "StrVerifyInitMem");
  VariantClear(&signature);
  EachPiece(job, [&](VARIANT& piece) {
    Check(job.quivo->StrVerifyUpdateMem(param.get(), stream.get(), piece), "StrVerifyUpdateMem");
  });
  Check(job.quivo->StrVerifyFinalMem(param.get(), stream.get(), &content, &results), "StrVerifyFinalMem");
  VariantClear(&content);
  VariantClear(&results);
}

void StreamEncrypt(const Job& job) {
  auto param = Encryption(job);
  auto stream = New<StreamCtx, IStreamCtx>();
  VARIANT out{};
  Check(job.quivo->StrEncryptInitMem(param.get(), stream.get()), "StrEncryptInitMem");
  EachPiece(job, [&](VARIANT& piece) {
    Check(job.quivo->StrEncryptUpdateMem(param.get(), stream.get(), piece, &out), "StrEncryptUpdateMem");
    Write(job, out);
  });
  Check(job.quivo->StrEncryptFinalMem(param.get(), stream.get(), &out), "StrEncryptFinalMem");
  Write(job, out);
}

void StreamDecrypt(const Job& job) {
  auto param = Decryption();
  auto stream = New<StreamCtx, IStreamCtx>();
  bool begun = false;
  EachPiece(job, [&](VARIANT& piece) {
    VARIANT left{}, out{};
    if (begun) {
      Check(job.quivo->StrDecryptUpdateMem(param.get(), stream.get(), piece, &left, &out), "StrDecryptUpdateMem");
      Write(job, out);
    } else {
      Check(job.quivo->StrDecryptInitMem(param.get(), piece, &left, stream.get()), "StrDecryptInitMem");
      begun = true;
    }
  });
  Ptr<ICertificate> sender;
  Check(job.quivo->StrDecryptFinalMem(param.get(), stream.get(), sender.out()), "StrDecryptFinalMem");
}

void StreamHash(const Job& job) {
  auto stream = New<StreamCtx, IStreamCtx>();
  VARIANT hash{};
  BSTR algorithm = Text("SHA-256");
  Check(job.quivo->StrHashInitMem(algorithm, stream.get()), "StrHashInitMem");
  SysFreeString(algorithm);
  EachPiece(job, [&](VARIANT& piece) { Check(job.quivo->StrHashUpdateMem(stream.get(), piece), "StrHashUpdateMem"); });
  Check(job.quivo->StrHashFinalMem(stream.get(), &hash), "StrHashFinalMem");
  Write(job, hash);
}

const std::map<std::string, std::function<void(const Job&)>> kOperations = {
    {"sign-attached", [](const Job& job) { SignFile(job, 0); }},
    {"sign-detached", [](const Job& job) { SignFile(job, Flag_Sign_Detached); }},
    {"verify-attached", [](const Job& job) { VerifyFile(job, nullptr, job.in, job.out, 0); }},
    {"verify-detached", [](const Job& job) { VerifyFile(job, job.in, job.second, nullptr, Flag_Verify_Detached); }},
    {"encrypt",
     [](const Job& job) {
       Check(job.quivo->StrEncryptFile(Encryption(job).get(), job.in, job.out), "StrEncryptFile");
     }},
    {"decrypt", DecryptFile},
    {"hash", HashFile},
    {"hash-gost", HashFileAsGost},
    {"stream-sign", StreamSign},
    {"stream-verify", StreamVerify},
    {"stream-encrypt", StreamEncrypt},
    {"stream-decrypt", StreamDecrypt},
    {"stream-hash", StreamHash},
};

}  // namespace

int main(int count, char** arguments) {
  if (count < 5 || !kOperations.count(arguments[2])) {
    std::printf("usage: large_files PROFILE OPERATION IN OUT [SECOND]\n");
    return 1;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  std::string operation = arguments[2];
  bool isStream = operation.rfind("stream-", 0) == 0;
  Job job{New<QUIVO, IQUIVO>(),
          Text(arguments[3]),
          Text(arguments[4]),
          count > 5 ? Text(arguments[5]) : nullptr,
          isStream ? std::fopen(arguments[3], "rb") : nullptr,
          isStream || operation.starts_with("hash") ? std::fopen(arguments[4], "wb") : nullptr};
  BSTR profile = Text(arguments[1]);
  Check(job.quivo->Initialize(profile, static_cast<Init_Flag_t>(Flag_Init_Nocrlupdate | Flag_Init_Noldap)),
        "Initialize");
  double before = MemoryMiB(false);
  double seconds = bench::Seconds([&] { kOperations.at(operation)(job); });
  std::printf("%.3f %.1f\n", seconds, MemoryMiB(true) - before);
  job.quivo->Uninitialize();
  std::fflush(nullptr);
  return 0;
}
