#include "store_operations.h"

#include "cases.h"

namespace {

/// Whether the bytes are one DER element and nothing behind.
bool IsWholeDer(const Bytes& bytes) {
  if (bytes.size() < 2 || bytes[0] != 0x30) return false;
  if (bytes[1] < 0x80) return bytes.size() == 2u + bytes[1];
  const size_t lengthSize = bytes[1] & 0x7F;
  if (lengthSize == 0 || lengthSize > 4 || bytes.size() < 2 + lengthSize) return false;
  size_t length = 0;
  for (size_t i = 0; i < lengthSize; ++i) length = length << 8 | bytes[2 + i];
  return bytes.size() == 2 + lengthSize + length;
}

bool EndsWith(const std::wstring& text, const std::wstring& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

std::vector<StoreOperation> StoreOperations(const Folders& folders, unsigned number) {
  const std::wstring certificate = folders.materialFile(L"many\\" + std::to_wstring(number) + L".cer");
  const std::wstring bundle = folders.materialFile(L"messages\\bundle.p7b");
  const Bytes encoded = ReadFileOf(certificate);
  const Bytes crl = ReadFileOf(folders.materialFile(L"root.crl"));
  return {
      {"AddCertificate",
       [encoded](const Caller& caller) {
         Variant bytes = ByteArray(encoded);
         return caller.quivo()->AddCertificate(nullptr, bytes);
       }},
      {"AddCRL",
       [crl](const Caller& caller) {
         Variant bytes = ByteArray(crl);
         return caller.quivo()->AddCRL(nullptr, bytes);
       }},
      {"ImportFile",
       [bundle](const Caller& caller) {
         return caller.quivo()->ImportFile(caller.make<IImportParam>(__uuidof(ImportParam)), Bstr(bundle));
       }},
      {"ImportMem",
       [encoded](const Caller& caller) {
         Variant bytes = ByteArray(encoded);
         return caller.quivo()->ImportMem(caller.make<IImportParam>(__uuidof(ImportParam)), bytes);
       }},
      {"CreateXmlRequest",
       [](const Caller& caller) {
         auto wanted = caller.make<ICertificate>(__uuidof(Certificate));
         wanted->put_subject(Bstr(L"CN=attack, C=RU"));
         Variant request;
         return caller.quivo()->CreateXmlRequest(static_cast<XmlRequest_Flag_t>(0), wanted, request.out(),
                                                 VARIANT_FALSE);
       }},
  };
}

std::string BrokenEntries(const std::map<std::wstring, Bytes>& files) {
  std::string broken;
  for (const auto& [name, bytes] : files) {
    if (IsTemporary(name) || name == L"readme.txt") continue;
    if (!IsWholeDer(bytes)) broken += Narrow(name) + " is no whole entry; ";
  }
  return broken;
}

size_t CertificatesAmong(const std::map<std::wstring, Bytes>& files) {
  size_t count = 0;
  for (const auto& [name, bytes] : files) count += EndsWith(name, L".cer");
  return count;
}
