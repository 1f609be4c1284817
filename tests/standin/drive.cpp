// The engine's file and memory functions from the command line, for tests against the openssl command:
//   standin_drive KEYS PIN STORE COMMAND ARGUMENTS...
// "-" stands for an absent file. Prints what was found, and in its last line "done", with the exit code 0, or the code
// that the engine gave, with the exit code 1.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "engine/functions.h"

namespace {

using Arguments = std::vector<const char*>;

const char* PathOrNull(const char* argument) { return std::strcmp(argument, "-") == 0 ? nullptr : argument; }
uint32_t Number(const char* argument) { return static_cast<uint32_t>(std::strtoul(argument, nullptr, 0)); }

/// sign FLAGS DATA EXISTING OUT
int32_t Sign(EngineSession session, const Arguments& a) {
  const SignParamRecord param{Number(a[0]), nullptr};
  return QUIVO_SignFile(session, &param, PathOrNull(a[1]), PathOrNull(a[2]), a[3]);
}

void PrintCertificate(const char* what, const CertificateRecord& certificate) {
  std::printf("%s %s\n", what, certificate.subject == nullptr ? "-" : certificate.subject);
}

/// verify FLAGS DATA MESSAGE OUT [INDEX]: one line a signature, "status time subject".
int32_t Verify(EngineSession session, const Arguments& a) {
  VerifyParamRecord param{};
  param.flag = Number(a[0]);
  param.info = 4;
  if (a.size() > 4) param.nSignToDelete = std::atoi(a[4]);
  VerifyResultRecord result{};
  const int32_t code = QUIVO_VerifyFile(session, &param, PathOrNull(a[1]), a[2], PathOrNull(a[3]), &result);
  for (int32_t i = 0; i < result.count; ++i) {
    const SignStatusEntry& entry = result.entries[i];
    std::printf("%08X %u ", static_cast<unsigned>(entry.status), entry.time);
    PrintCertificate("signer", entry.cert == nullptr ? CertificateRecord{} : *entry.cert);
  }
  QUIVO_FreeVerifyResult(session, &result);
  return code;
}

std::vector<uint8_t> ReadBytes(const char* path) {
  std::vector<uint8_t> bytes;
  if (FILE* file = std::fopen(path, "rb")) {
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) bytes.push_back(static_cast<uint8_t>(c));
    std::fclose(file);
  }
  return bytes;
}

/// encrypt FLAGS IN OUT CERTIFICATE...
int32_t Encrypt(EngineSession session, const Arguments& a) {
  std::vector<std::vector<uint8_t>> certificates;
  for (size_t i = 3; i < a.size(); ++i) certificates.push_back(ReadBytes(a[i]));
  std::vector<CertificateRecord> receivers(certificates.size());
  for (size_t i = 0; i < receivers.size(); ++i) {
    receivers[i].certEncoded = {static_cast<uint32_t>(certificates[i].size()), certificates[i].data()};
  }
  const EncryptParamRecord param{Number(a[0]), nullptr, static_cast<int32_t>(receivers.size()), receivers.data()};
  return QUIVO_EncryptFile(session, &param, a[1], a[2]);
}

/// decrypt IN OUT
int32_t Decrypt(EngineSession session, const Arguments& a) {
  const DecryptParamRecord param{1, nullptr, 4};
  DecryptResultRecord result{};
  const int32_t code = QUIVO_DecryptFile(session, &param, a[0], a[1], &result);
  PrintCertificate("sender", result.cert);
  QUIVO_FreeDecryptResult(session, &result);
  return code;
}

/// count MESSAGE
int32_t CountSignatures(EngineSession session, const Arguments& a) {
  SignedInfoResultRecord info{};
  const int32_t code = QUIVO_SignedInfoFile(session, a[0], &info);
  std::printf("signatures %u\n", info.signatureCount);
  QUIVO_FreeSignedInfoResult(session, &info);
  return code;
}

/// request FLAGS SUBJECT OUT
int32_t Request(EngineSession session, const Arguments& a) {
  std::string subject = a[1];
  CertificateRecord wanted{};
  wanted.subject = subject.empty() ? nullptr : subject.data();
  wanted.keyUsage = 1 | 4;
  DataBlob_t xml{};
  const int32_t code = QUIVO_CreateXmlRequest(session, Number(a[0]), &wanted, &xml);
  if (code != 0) return code;
  if (FILE* file = std::fopen(a[2], "wb")) {
    std::fwrite(xml.data, 1, xml.len, file);
    std::fclose(file);
  }
  return QUIVO_FreeMem(session, xml.data);
}

/// import FLAGS FILE
int32_t Import(EngineSession session, const Arguments& a) {
  const SignParamRecord param{Number(a[0]), nullptr};
  return QUIVO_ImportFile(session, &param, a[1]);
}

/// export FLAGS FILE
int32_t ExportStore(EngineSession session, const Arguments& a) {
  const SignParamRecord param{Number(a[0]), nullptr};
  return QUIVO_ExportFile(session, &param, a[1]);
}

/// find FLAGS [SUBJECT]
int32_t Find(EngineSession session, const Arguments& a) {
  std::string subject = a.size() > 1 ? a[1] : "";
  FindParamRecord param{};
  param.flag = Number(a[0]);
  param.info = 4;
  param.certTemplate.subject = subject.data();
  FindResultRecord result{};
  const int32_t code = QUIVO_FindCert(session, &param, &result);
  for (int32_t i = 0; i < result.count; ++i) PrintCertificate("found", result.certificates[i]);
  QUIVO_FreeFindResult(session, &result);
  return code;
}

/// hash ALGORITHM FILE
int32_t Hash(EngineSession session, const Arguments& a) {
  DataBlob_t hash{};
  const int32_t code = QUIVO_StrHashFile(session, a[0], a[1], &hash);
  std::printf("hash ");
  for (uint32_t i = 0; i < hash.len; ++i) std::printf("%02x", static_cast<unsigned>(hash.data[i]));
  std::puts("");
  QUIVO_FreeMem(session, hash.data);
  return code;
}

/// show FILE
int32_t Show(EngineSession session, const Arguments& a) {
  std::vector<uint8_t> bytes = ReadBytes(a[0]);
  const DataBlob_t blob{static_cast<uint32_t>(bytes.size()), bytes.data()};
  const int32_t code = QUIVO_ShowCertificate(session, &blob);
  return code == 0x7040 ? QUIVO_ShowCrl(session, &blob) : code;
}

struct Command {
  const char* name;
  size_t leastArguments;
  int32_t (*run)(EngineSession, const Arguments&);
};

constexpr Command kCommands[] = {
    {"sign", 4, Sign},
    {"verify", 4, Verify},
    {"encrypt", 3, Encrypt},
    {"decrypt", 2, Decrypt},
    {"count", 1, CountSignatures},
    {"request", 3, Request},
    {"import", 2, Import},
    {"export", 2, ExportStore},
    {"find", 1, Find},
    {"hash", 2, Hash},
    {"show", 1, Show},
};

int Report(int32_t code) {
  if (code == 0) {
    std::puts("done");
    return 0;
  }
  char text[512];
  QUIVO_GetErrorText(code, text, sizeof text);
  std::printf("code %08X %s\n", static_cast<unsigned>(code), text);
  return 1;
}

}  // namespace

int main(int count, char** values) {
  if (count < 5) return 2;
  LocalParamRecord local{};
  local.size = sizeof local;
  local.pse = PathOrNull(values[1]) == nullptr ? nullptr : values[1];
  local.pincode = values[2];
  local.localstore = PathOrNull(values[3]) == nullptr ? nullptr : values[3];
  EngineSession session = nullptr;
  const int32_t opened = QUIVO_InitializeEx(kEngineLocalParam, &local, &session);
  if (opened != 0) return Report(opened);
  for (const Command& command : kCommands) {
    if (std::strcmp(command.name, values[4]) != 0) continue;
    const Arguments arguments(values + 5, values + count);
    if (arguments.size() < command.leastArguments) break;
    const int32_t code = command.run(session, arguments);
    const int32_t closed = QUIVO_Uninitialize(session);
    return Report(code == 0 ? closed : code);
  }
  return 2;
}
