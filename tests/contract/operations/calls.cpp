#include "contract/operations/calls.h"

Objects::Objects(Ptr<IQUIVO> main) : quivo(std::move(main)) {}

namespace {

Variant data(bool vbs) { return vbs ? vbsBytes({1, 2}) : bytes({1, 2}); }

VARIANT_BOOL flag(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

/// Fixes the form of the stream, as its first data do.
void feed(const Objects& o, bool vbs) {
  if (vbs) o.quivo->StrHashUpdateMem(o.stream, data(true));
}

Bstr path() { return Bstr(L"C:\\file"); }

}  // namespace

const std::vector<ByteInput> kByteInputs{
    {"HashMem_in", "QUIVO_HashMem", 1,
     [](const Objects& o, VARIANT v) { return o.quivo->HashMem(v, Variant().out()); }},
    {"SignMem_data", "QUIVO_SignMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->SignMem(o.sign, v, Variant(), Variant().out()); }},
    {"SignMem_sign_in", "QUIVO_SignMem", 3,
     [](const Objects& o, VARIANT v) { return o.quivo->SignMem(o.sign, Variant(), v, Variant().out()); }},
    {"VerifyMem_data", "QUIVO_VerifyMem", 2,
     [](const Objects& o, VARIANT v) {
       return o.quivo->VerifyMem(o.verify, v, Variant(), Variant().out(), Variant().out());
     }},
    {"VerifyMem_sign_in", "QUIVO_VerifyMem", 3,
     [](const Objects& o, VARIANT v) {
       return o.quivo->VerifyMem(o.verify, Variant(), v, Variant().out(), Variant().out());
     }},
    {"EncryptMem_in", "QUIVO_EncryptMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->EncryptMem(o.encrypt, v, Variant().out()); }},
    {"DecryptMem_in", "QUIVO_DecryptMem", 2,
     [](const Objects& o, VARIANT v) {
       return o.quivo->DecryptMem(o.decrypt, v, Variant().out(), Ptr<ICertificate>().out());
     }},
    {"StrSignInitMem_sign_in", "QUIVO_StrSignInitMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->StrSignInitMem(o.sign, v, o.stream); }},
    {"StrSignUpdateMem_data", "QUIVO_StrSignUpdateMem", 3,
     [](const Objects& o, VARIANT v) { return o.quivo->StrSignUpdateMem(o.sign, o.stream, v); }},
    {"StrVerifyInitMem_sign_in", "QUIVO_StrVerifyInitMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->StrVerifyInitMem(o.verify, v, o.stream); }},
    {"StrVerifyUpdateMem_data", "QUIVO_StrVerifyUpdateMem", 3,
     [](const Objects& o, VARIANT v) { return o.quivo->StrVerifyUpdateMem(o.verify, o.stream, v); }},
    {"StrEncryptUpdateMem_in", "QUIVO_StrEncryptUpdateMem", 3,
     [](const Objects& o, VARIANT v) { return o.quivo->StrEncryptUpdateMem(o.encrypt, o.stream, v, Variant().out()); }},
    {"StrDecryptInitMem_in", "QUIVO_StrDecryptInitMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->StrDecryptInitMem(o.decrypt, v, Variant().out(), o.stream); }},
    {"StrDecryptUpdateMem_in", "QUIVO_StrDecryptUpdateMem", 3,
     [](const Objects& o, VARIANT v) {
       return o.quivo->StrDecryptUpdateMem(o.decrypt, o.stream, v, Variant().out(), Variant().out());
     }},
    {"StrHashUpdateMem_data", "QUIVO_StrHashUpdateMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->StrHashUpdateMem(o.stream, v); }},
    {"ParseCert_enccert", "QUIVO_ParseCert", 1,
     [](const Objects& o, VARIANT v) { return o.quivo->ParseCert(v, Field_All, Ptr<ICertificate>().out()); }},
    {"ShowCertificate_enccert", "QUIVO_ShowCertificate", 1,
     [](const Objects& o, VARIANT v) { return o.quivo->ShowCertificate(v); }},
    {"ShowCrl_encCrl", "QUIVO_ShowCrl", 1, [](const Objects& o, VARIANT v) { return o.quivo->ShowCrl(v); }},
    {"AddCertificate_newcert", "QUIVO_AddCertificate", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->AddCertificate(o.id, v); }},
    {"AddCRL_crl", "QUIVO_AddCRL", 2, [](const Objects& o, VARIANT v) { return o.quivo->AddCRL(o.id, v); }},
    {"ImportMem_in", "QUIVO_ImportMem", 2,
     [](const Objects& o, VARIANT v) { return o.quivo->ImportMem(o.importing, v); }},
};

const std::vector<ByteOutput> kByteOutputs{
    {"HashMem_hash", "QUIVO_HashMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) { return o.quivo->HashMem(data(vbs), out); }},
    {"HashFile_hash", "QUIVO_HashFile", false, false,
     [](const Objects& o, bool, VARIANT* out) { return o.quivo->HashFile(path(), out); }},
    {"StrHashFile_hash", "QUIVO_StrHashFile", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) { return o.quivo->StrHashFile(path(), path(), out, flag(vbs)); }},
    {"GenRandom_random", "QUIVO_GenRandom", false, false,
     [](const Objects& o, bool, VARIANT* out) { return o.quivo->GenRandom(2, out); }},
    {"SignMem_sign_out", "QUIVO_SignMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) { return o.quivo->SignMem(o.sign, data(vbs), Variant(), out); }},
    {"VerifyMem_sign_out", "QUIVO_VerifyMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       return o.quivo->VerifyMem(o.verify, data(vbs), Variant(), out, Variant().out());
     }},
    {"EncryptMem_out", "QUIVO_EncryptMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) { return o.quivo->EncryptMem(o.encrypt, data(vbs), out); }},
    {"DecryptMem_out", "QUIVO_DecryptMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       return o.quivo->DecryptMem(o.decrypt, data(vbs), out, Ptr<ICertificate>().out());
     }},
    {"StrSignFinalMem_sign_out", "QUIVO_StrSignFinalMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       feed(o, vbs);
       return o.quivo->StrSignFinalMem(o.sign, o.stream, out);
     }},
    {"StrVerifyFinalMem_sign_out", "QUIVO_StrVerifyFinalMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       feed(o, vbs);
       return o.quivo->StrVerifyFinalMem(o.verify, o.stream, out, Variant().out());
     }},
    {"StrEncryptUpdateMem_out", "QUIVO_StrEncryptUpdateMem", true, true,
     [](const Objects& o, bool vbs, VARIANT* out) {
       return o.quivo->StrEncryptUpdateMem(o.encrypt, o.stream, data(vbs), out);
     }},
    {"StrEncryptFinalMem_out", "QUIVO_StrEncryptFinalMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       feed(o, vbs);
       return o.quivo->StrEncryptFinalMem(o.encrypt, o.stream, out);
     }},
    {"StrDecryptUpdateMem_out", "QUIVO_StrDecryptUpdateMem", true, true,
     [](const Objects& o, bool vbs, VARIANT* out) {
       return o.quivo->StrDecryptUpdateMem(o.decrypt, o.stream, data(vbs), Variant().out(), out);
     }},
    {"StrHashFinalMem_hash", "QUIVO_StrHashFinalMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       feed(o, vbs);
       return o.quivo->StrHashFinalMem(o.stream, out);
     }},
    {"ExportMem_out", "QUIVO_ExportMem", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) { return o.quivo->ExportMem(o.exporting, out, flag(vbs)); }},
    {"CreateXmlRequest_pXmlReq", "QUIVO_CreateXmlRequest", true, false,
     [](const Objects& o, bool vbs, VARIANT* out) {
       return o.quivo->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, o.certificate, out, flag(vbs));
     }},
};

const std::vector<StringInput> kStringInputs{
    {"HashFile_file_name", "QUIVO_HashFile", 1, false,
     [](const Objects& o, BSTR s) { return o.quivo->HashFile(s, Variant().out()); }},
    {"StrHashFile_algorithm", "QUIVO_StrHashFile", 1, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrHashFile(s, path(), Variant().out(), VARIANT_FALSE); }},
    {"StrHashFile_file_name", "QUIVO_StrHashFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrHashFile(path(), s, Variant().out(), VARIANT_FALSE); }},
    {"StrHashInitMem_algorithm", "QUIVO_StrHashInitMem", 1, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrHashInitMem(s, o.stream); }},
    {"SignFile_data", "QUIVO_SignFile", 2, true,
     [](const Objects& o, BSTR s) { return o.quivo->SignFile(o.sign, s, path(), path()); }},
    {"SignFile_sign_in", "QUIVO_SignFile", 3, true,
     [](const Objects& o, BSTR s) { return o.quivo->SignFile(o.sign, path(), s, path()); }},
    {"SignFile_sign_out", "QUIVO_SignFile", 4, false,
     [](const Objects& o, BSTR s) { return o.quivo->SignFile(o.sign, path(), path(), s); }},
    {"VerifyFile_data", "QUIVO_VerifyFile", 2, true,
     [](const Objects& o, BSTR s) { return o.quivo->VerifyFile(o.verify, s, path(), path(), Variant().out()); }},
    {"VerifyFile_sign_in", "QUIVO_VerifyFile", 3, false,
     [](const Objects& o, BSTR s) { return o.quivo->VerifyFile(o.verify, path(), s, path(), Variant().out()); }},
    {"VerifyFile_sign_out", "QUIVO_VerifyFile", 4, true,
     [](const Objects& o, BSTR s) { return o.quivo->VerifyFile(o.verify, path(), path(), s, Variant().out()); }},
    {"EncryptFile_file_in", "QUIVO_EncryptFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->EncryptFile(o.encrypt, s, path()); }},
    {"EncryptFile_file_out", "QUIVO_EncryptFile", 3, false,
     [](const Objects& o, BSTR s) { return o.quivo->EncryptFile(o.encrypt, path(), s); }},
    {"DecryptFile_file_in", "QUIVO_DecryptFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->DecryptFile(o.decrypt, s, path(), Ptr<ICertificate>().out()); }},
    {"DecryptFile_file_out", "QUIVO_DecryptFile", 3, false,
     [](const Objects& o, BSTR s) { return o.quivo->DecryptFile(o.decrypt, path(), s, Ptr<ICertificate>().out()); }},
    {"StrSignFile_data", "QUIVO_StrSignFile", 2, true,
     [](const Objects& o, BSTR s) { return o.quivo->StrSignFile(o.sign, s, path(), path()); }},
    {"StrSignFile_sign_in", "QUIVO_StrSignFile", 3, true,
     [](const Objects& o, BSTR s) { return o.quivo->StrSignFile(o.sign, path(), s, path()); }},
    {"StrSignFile_sign_out", "QUIVO_StrSignFile", 4, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrSignFile(o.sign, path(), path(), s); }},
    {"StrVerifyFile_data", "QUIVO_StrVerifyFile", 2, true,
     [](const Objects& o, BSTR s) { return o.quivo->StrVerifyFile(o.verify, s, path(), path(), Variant().out()); }},
    {"StrVerifyFile_sign_in", "QUIVO_StrVerifyFile", 3, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrVerifyFile(o.verify, path(), s, path(), Variant().out()); }},
    {"StrVerifyFile_sign_out", "QUIVO_StrVerifyFile", 4, true,
     [](const Objects& o, BSTR s) { return o.quivo->StrVerifyFile(o.verify, path(), path(), s, Variant().out()); }},
    {"StrEncryptFile_file_in", "QUIVO_StrEncryptFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrEncryptFile(o.encrypt, s, path()); }},
    {"StrEncryptFile_file_out", "QUIVO_StrEncryptFile", 3, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrEncryptFile(o.encrypt, path(), s); }},
    {"StrDecryptFile_file_in", "QUIVO_StrDecryptFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrDecryptFile(o.decrypt, s, path(), Ptr<ICertificate>().out()); }},
    {"StrDecryptFile_file_out", "QUIVO_StrDecryptFile", 3, false,
     [](const Objects& o, BSTR s) { return o.quivo->StrDecryptFile(o.decrypt, path(), s, Ptr<ICertificate>().out()); }},
    {"ExportFile_file_out", "QUIVO_ExportFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->ExportFile(o.exporting, s); }},
    {"ImportFile_file_in", "QUIVO_ImportFile", 2, false,
     [](const Objects& o, BSTR s) { return o.quivo->ImportFile(o.importing, s); }},
};

const std::vector<EngineCall> kEngineCalls{
    {"AddCRL", "QUIVO_AddCRL", [](const Objects& o) { return o.quivo->AddCRL(o.id, data(false)); }},
    {"AddCertificate", "QUIVO_AddCertificate",
     [](const Objects& o) { return o.quivo->AddCertificate(o.id, data(false)); }},
    {"CreateXmlRequest", "QUIVO_CreateXmlRequest",
     [](const Objects& o) {
       return o.quivo->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, o.certificate, Variant().out(),
                                        VARIANT_FALSE);
     }},
    {"DecryptFile", "QUIVO_DecryptFile",
     [](const Objects& o) { return o.quivo->DecryptFile(o.decrypt, path(), path(), Ptr<ICertificate>().out()); }},
    {"DecryptMem", "QUIVO_DecryptMem",
     [](const Objects& o) {
       return o.quivo->DecryptMem(o.decrypt, data(false), Variant().out(), Ptr<ICertificate>().out());
     }},
    {"EncryptFile", "QUIVO_EncryptFile",
     [](const Objects& o) { return o.quivo->EncryptFile(o.encrypt, path(), path()); }},
    {"EncryptMem", "QUIVO_EncryptMem",
     [](const Objects& o) { return o.quivo->EncryptMem(o.encrypt, data(false), Variant().out()); }},
    {"ExportFile", "QUIVO_ExportFile", [](const Objects& o) { return o.quivo->ExportFile(o.exporting, path()); }},
    {"ExportMem", "QUIVO_ExportMem",
     [](const Objects& o) { return o.quivo->ExportMem(o.exporting, Variant().out(), VARIANT_FALSE); }},
    {"FindCert", "QUIVO_FindCert", [](const Objects& o) { return o.quivo->FindCert(o.find, Variant().out()); }},
    {"GenRandom", "QUIVO_GenRandom", [](const Objects& o) { return o.quivo->GenRandom(2, Variant().out()); }},
    {"GetMyCertB64", "QUIVO_FindCert", [](const Objects& o) { return o.quivo->GetMyCertB64(Variant().out()); }},
    {"HashFile", "QUIVO_HashFile", [](const Objects& o) { return o.quivo->HashFile(path(), Variant().out()); }},
    {"HashMem", "QUIVO_HashMem", [](const Objects& o) { return o.quivo->HashMem(data(false), Variant().out()); }},
    {"ImportFile", "QUIVO_ImportFile", [](const Objects& o) { return o.quivo->ImportFile(o.importing, path()); }},
    {"ImportMem", "QUIVO_ImportMem", [](const Objects& o) { return o.quivo->ImportMem(o.importing, data(false)); }},
    {"ParseCert", "QUIVO_ParseCert",
     [](const Objects& o) { return o.quivo->ParseCert(data(false), Field_All, Ptr<ICertificate>().out()); }},
    {"ShowCertificate", "QUIVO_ShowCertificate",
     [](const Objects& o) { return o.quivo->ShowCertificate(data(false)); }},
    {"ShowCrl", "QUIVO_ShowCrl", [](const Objects& o) { return o.quivo->ShowCrl(data(false)); }},
    {"SignFile", "QUIVO_SignFile", [](const Objects& o) { return o.quivo->SignFile(o.sign, path(), path(), path()); }},
    {"SignMem", "QUIVO_SignMem",
     [](const Objects& o) { return o.quivo->SignMem(o.sign, data(false), Variant(), Variant().out()); }},
    {"StrDecryptFile", "QUIVO_StrDecryptFile",
     [](const Objects& o) { return o.quivo->StrDecryptFile(o.decrypt, path(), path(), Ptr<ICertificate>().out()); }},
    {"StrDecryptFinalMem", "QUIVO_StrDecryptFinalMem",
     [](const Objects& o) { return o.quivo->StrDecryptFinalMem(o.decrypt, o.stream, Ptr<ICertificate>().out()); }},
    {"StrDecryptInitMem", "QUIVO_StrDecryptInitMem",
     [](const Objects& o) { return o.quivo->StrDecryptInitMem(o.decrypt, data(false), Variant().out(), o.stream); }},
    {"StrDecryptUpdateMem", "QUIVO_StrDecryptUpdateMem",
     [](const Objects& o) {
       return o.quivo->StrDecryptUpdateMem(o.decrypt, o.stream, data(false), Variant().out(), Variant().out());
     }},
    {"StrEncryptFile", "QUIVO_StrEncryptFile",
     [](const Objects& o) { return o.quivo->StrEncryptFile(o.encrypt, path(), path()); }},
    {"StrEncryptFinalMem", "QUIVO_StrEncryptFinalMem",
     [](const Objects& o) { return o.quivo->StrEncryptFinalMem(o.encrypt, o.stream, Variant().out()); }},
    {"StrEncryptInitMem", "QUIVO_StrEncryptInitMem",
     [](const Objects& o) { return o.quivo->StrEncryptInitMem(o.encrypt, o.stream); }},
    {"StrEncryptUpdateMem", "QUIVO_StrEncryptUpdateMem",
     [](const Objects& o) { return o.quivo->StrEncryptUpdateMem(o.encrypt, o.stream, data(false), Variant().out()); }},
    {"StrHashFile", "QUIVO_StrHashFile",
     [](const Objects& o) { return o.quivo->StrHashFile(path(), path(), Variant().out(), VARIANT_FALSE); }},
    {"StrHashFinalMem", "QUIVO_StrHashFinalMem",
     [](const Objects& o) { return o.quivo->StrHashFinalMem(o.stream, Variant().out()); }},
    {"StrHashInitMem", "QUIVO_StrHashInitMem",
     [](const Objects& o) { return o.quivo->StrHashInitMem(path(), o.stream); }},
    {"StrHashUpdateMem", "QUIVO_StrHashUpdateMem",
     [](const Objects& o) { return o.quivo->StrHashUpdateMem(o.stream, data(false)); }},
    {"StrSignFile", "QUIVO_StrSignFile",
     [](const Objects& o) { return o.quivo->StrSignFile(o.sign, path(), path(), path()); }},
    {"StrSignFinalMem", "QUIVO_StrSignFinalMem",
     [](const Objects& o) { return o.quivo->StrSignFinalMem(o.sign, o.stream, Variant().out()); }},
    {"StrSignInitMem", "QUIVO_StrSignInitMem",
     [](const Objects& o) { return o.quivo->StrSignInitMem(o.sign, data(false), o.stream); }},
    {"StrSignUpdateMem", "QUIVO_StrSignUpdateMem",
     [](const Objects& o) { return o.quivo->StrSignUpdateMem(o.sign, o.stream, data(false)); }},
    {"StrVerifyFile", "QUIVO_StrVerifyFile",
     [](const Objects& o) { return o.quivo->StrVerifyFile(o.verify, path(), path(), path(), Variant().out()); }},
    {"StrVerifyFinalMem", "QUIVO_StrVerifyFinalMem",
     [](const Objects& o) { return o.quivo->StrVerifyFinalMem(o.verify, o.stream, Variant().out(), Variant().out()); }},
    {"StrVerifyInitMem", "QUIVO_StrVerifyInitMem",
     [](const Objects& o) { return o.quivo->StrVerifyInitMem(o.verify, data(false), o.stream); }},
    {"StrVerifyUpdateMem", "QUIVO_StrVerifyUpdateMem",
     [](const Objects& o) { return o.quivo->StrVerifyUpdateMem(o.verify, o.stream, data(false)); }},
    {"UpdateCrl", "QUIVO_Ctrl", [](const Objects& o) { return o.quivo->UpdateCrl(Bstr().inOut()); }},
    {"VerifyFile", "QUIVO_VerifyFile",
     [](const Objects& o) { return o.quivo->VerifyFile(o.verify, path(), path(), path(), Variant().out()); }},
    {"VerifyMem", "QUIVO_VerifyMem",
     [](const Objects& o) {
       return o.quivo->VerifyMem(o.verify, data(false), Variant(), Variant().out(), Variant().out());
     }},
};

const std::vector<EngineCall> kFileMethods = rowsNamed(
    kEngineCalls, {"DecryptFile", "EncryptFile", "ExportFile", "HashFile", "ImportFile", "SignFile", "StrDecryptFile",
                   "StrEncryptFile", "StrHashFile", "StrSignFile", "StrVerifyFile", "VerifyFile"});
