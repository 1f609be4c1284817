// What the type library has to declare, member by member.
#include "contract/com/interface_tables.h"

const std::vector<InterfaceTable> kInterfaces{
    {"IQUIVO",
     "{1D7E7A5B-648D-4236-8604-8F5F3C82433A}",
     {
         "1 Initialize([in] BSTR profile, [in] Init_Flag_t flag)",
         "2 Uninitialize()",
         "3 GetPKIErrorText([in] long err_code, [in, out] BSTR* err_text)",
         "4 InitializeEx([in] IDispatch* param)",
         "5 HashMem([in] VARIANT in, [in, out] VARIANT* hash)",
         "6 HashFile([in] BSTR file_name, [in, out] VARIANT* hash)",
         "7 SignMem([in] ISignParam* param, [in] VARIANT data, [in] VARIANT sign_in, [in, out] VARIANT* sign_out)",
         "8 SignFile([in] ISignParam* param, [in] BSTR data, [in] BSTR sign_in, [in] BSTR sign_out)",
         "9 VerifyMem([in] IVerifyParam* pIVerifyParam, [in] VARIANT data, [in] VARIANT sign_in, [in, out] VARIANT* "
         "sign_out, [in, out] VARIANT* VerifyResults)",
         "10 VerifyFile([in] IVerifyParam* pIVerifyParam, [in] BSTR data, [in] BSTR sign_in, [in] BSTR sign_out, [in, "
         "out] VARIANT* VerifyResults)",
         "11 FindCert([in] IFindParam* pIFindParam, [in, out] VARIANT* FindResult)",
         "12 GenRandom([in] long len, [in, out] VARIANT* random)",
         "13 ParseCert([in] VARIANT enccert, [in] Certinfo_t info, [out, retval] ICertificate** pICertificate)",
         "14 ShowCertificate([in] VARIANT enccert)",
         "15 AddCertificate([in] ICertId* mycert, [in] VARIANT newcert)",
         "16 EncryptMem([in] IEncryptParam* pIParam, [in] VARIANT in, [in, out] VARIANT* out)",
         "17 EncryptFile([in] IEncryptParam* pIParam, [in] BSTR file_in, [in] BSTR file_out)",
         "18 DecryptMem([in] IDecryptParam* pIParam, [in] VARIANT in, [in, out] VARIANT* out, [out, retval] "
         "ICertificate** pICert)",
         "19 DecryptFile([in] IDecryptParam* pIParam, [in] BSTR file_in, [in] BSTR file_out, [out, retval] "
         "ICertificate** pICert)",
         "20 AddCRL([in] ICertId* mycert, [in] VARIANT crl)",
         "21 UpdateCrl([in, out] BSTR* description)",
         "22 GetPKIErrorTextVBS([in] long err_code, [in, out] VARIANT* err_text)",
         "23 ExportMem([in] IExportParam* pIParam, [in, out] VARIANT* out, [in] VARIANT_BOOL bVBS)",
         "24 ExportFile([in] IExportParam* pIParam, [in] BSTR file_out)",
         "25 ImportMem([in] IImportParam* pIParam, [in] VARIANT in)",
         "26 ImportFile([in] IImportParam* pIParam, [in] BSTR file_in)",
         "27 ShowCrl([in] VARIANT encCrl)",
         "28 StrSignFile([in] ISignParam* param, [in] BSTR data, [in] BSTR sign_in, [in] BSTR sign_out)",
         "29 StrVerifyFile([in] IVerifyParam* pIVerifyParam, [in] BSTR data, [in] BSTR sign_in, [in] BSTR sign_out, "
         "[in, out] VARIANT* VerifyResults)",
         "30 StrEncryptFile([in] IEncryptParam* pIParam, [in] BSTR file_in, [in] BSTR file_out)",
         "31 StrDecryptFile([in] IDecryptParam* pIParam, [in] BSTR file_in, [in] BSTR file_out, [out, retval] "
         "ICertificate** pICert)",
         "32 StrSignInitMem([in] ISignParam* param, [in] VARIANT sign_in, [in] IStreamCtx* hStr)",
         "33 StrSignUpdateMem([in] ISignParam* param, [in] IStreamCtx* hStr, [in] VARIANT data)",
         "34 StrSignFinalMem([in] ISignParam* param, [in] IStreamCtx* hStr, [in, out] VARIANT* sign_out)",
         "35 StrVerifyInitMem([in] IVerifyParam* param, [in] VARIANT sign_in, [in] IStreamCtx* hStr)",
         "36 StrVerifyUpdateMem([in] IVerifyParam* param, [in] IStreamCtx* hStr, [in] VARIANT data)",
         "37 StrVerifyFinalMem([in] IVerifyParam* param, [in] IStreamCtx* hStr, [in, out] VARIANT* sign_out, [in, out] "
         "VARIANT* VerifyResults)",
         "38 StrEncryptInitMem([in] IEncryptParam* param, [in] IStreamCtx* hStr)",
         "39 StrEncryptUpdateMem([in] IEncryptParam* param, [in] IStreamCtx* hStr, [in] VARIANT in, [in, out] VARIANT* "
         "out)",
         "40 StrEncryptFinalMem([in] IEncryptParam* param, [in] IStreamCtx* hStr, [in, out] VARIANT* out)",
         "41 StrDecryptInitMem([in] IDecryptParam* pIParam, [in] VARIANT in, [in, out] VARIANT* left, [in] IStreamCtx* "
         "hStr)",
         "42 StrDecryptUpdateMem([in] IDecryptParam* pIParam, [in] IStreamCtx* hStr, [in] VARIANT in, [in, out] "
         "VARIANT* left, [in, out] VARIANT* out)",
         "43 StrDecryptFinalMem([in] IDecryptParam* pIParam, [in] IStreamCtx* hStr, [out, retval] ICertificate** "
         "pICert)",
         "44 SignFile2B64Mem([in] ISignParam* param, [in] BSTR FileName, [in, out] VARIANT* Signature, [in, out] "
         "VARIANT* var_err_text)",
         "45 GetMyCertB64([in, out] VARIANT* var_cert_str)",
         "46 GetCurrentProfileNameVBS([in, out] VARIANT* var_profile)",
         "47 InitMinimal()",
         "48 CreateXmlRequest([in] XmlRequest_Flag_t flag, [in] ICertificate* pICertTempl, [in, out] VARIANT* pXmlReq, "
         "[in] VARIANT_BOOL bVBS)",
         "49 CheckOID([in] BSTR oid, [in, out] VARIANT* var_err_text)",
         "50 StrHashInitMem([in] BSTR algorithm, [in] IStreamCtx* hStr)",
         "51 StrHashUpdateMem([in] IStreamCtx* hStr, [in] VARIANT data)",
         "52 StrHashFinalMem([in] IStreamCtx* hStr, [in, out] VARIANT* hash)",
         "53 StrHashFile([in] BSTR algorithm, [in] BSTR file_name, [in, out] VARIANT* hash, [in] VARIANT_BOOL bVBS)",
     }},
    {"ILocalParam",
     "{F8AA9567-BC63-447D-A6BC-8C2262AB6050}",
     {
         "1 pse BSTR @16",
         "2 localstore BSTR @24",
         "3 ldap BSTR @32",
         "4 flag Init_Flag_t @8",
         "5 pincode BSTR @40",
     }},
    {"IRSrvParam",
     "{E5E8F6BE-7753-4041-880B-16D31F61397E}",
     {
         "1 timeout long @12",
         "2 flag RSrv_Init_Flag_t @8",
         "3 servers VARIANT @16 strings",
     }},
    {"ICertId",
     "{92A25D95-3963-45EF-895F-EA42B4DD37AA}",
     {
         "1 type IdChoice_t @0",
         "2 issuer BSTR @8",
         "3 serialNumber BSTR @16",
         "4 keyId BSTR @8",
         "5 certHash VARIANT @8 bytes",
     }},
    {"ISignParam",
     "{B006C93F-3057-4F95-8184-9382035E26FB}",
     {
         "1 flag SignParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
     }},
    {"IPolicy",
     "{F089A5D3-01B2-4B44-817B-200F94489BBD}",
     {
         "1 oid BSTR @0",
         "2 org_name BSTR @8",
         "3 not_num long @16",
         "4 text BSTR @24",
     }},
    {"IExtension",
     "{8080AF8D-857A-45C4-8296-AB1301ADFA28}",
     {
         "1 oid BSTR @0",
         "2 type long @8",
         "3 critical long @12",
         "4 data VARIANT @16 bytes",
     }},
    {"IVerifyParam",
     "{60393FB1-4D9A-4898-95FC-136D6584022C}",
     {
         "1 flag VerifyParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
         "3 keyUsage Keyusage_t @16",
         "4 policies VARIANT @20 IPolicy",
         "5 extKeyUsage VARIANT @32 strings",
         "6 extensions VARIANT @48 IExtension",
         "7 nSignToDelete long @64",
         "8 minsigns long @68",
         "9 info Certinfo_t @72",
     }},
    {"IAltName",
     "{8D5DFA7C-76D4-4C61-9F07-D096C2A73162}",
     {
         "1 emailAddress BSTR @0",
         "2 DNS BSTR @8",
         "3 URI BSTR @16",
         "4 IP BSTR @24",
         "5 organizationName BSTR @32",
         "6 registredAddress BSTR @40",
         "7 surname BSTR @48",
         "8 businessCategory BSTR @56",
         "9 telephoneNumber BSTR @64",
         "10 description BSTR @72",
         "11 account_number BSTR @80",
         "12 bank_id BSTR @88",
         "13 physicalDelivery BSTR @96",
         "14 exchange_address BSTR @104",
     }},
    {"ICertificate",
     "{1EA1D7B7-D146-418A-AAE1-AF8100DD369E}",
     {
         "1 fields Certinfo_t @0",
         "2 issuer BSTR @8",
         "3 serialNumber BSTR @16",
         "4 subject BSTR @24",
         "5 notBefore DATE @40",
         "6 notAfter DATE @44",
         "7 issuerUID BSTR @48",
         "8 subjectUID BSTR @56",
         "9 keyUsage Keyusage_t @64",
         "10 notBeforePrivate DATE @68",
         "11 notAfterPrivate DATE @72",
         "12 issuerAltName IAltName* by reference @80",
         "13 subjectAltName IAltName* by reference @200",
         "14 keyId BSTR @320",
         "15 policies VARIANT @328 IPolicy",
         "16 extKeyUsage VARIANT @344 strings",
         "17 extensions VARIANT @360 IExtension",
         "18 certEncoded VARIANT @376 bytes",
         "19 certHash VARIANT @392 bytes",
         "20 algorithm BSTR @32",
     }},
    {"ISignStatus",
     "{A0C53575-7F3D-4FF2-B5A7-BFA873492510}",
     {
         "1 status long",
         "2 time DATE",
         "3 cert ICertificate* by reference",
     }},
    {"IEncryptParam",
     "{DFE1667E-B4CD-4F11-B90E-C13A6E704917}",
     {
         "1 flag EncryptParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
         "3 Receivers VARIANT @16 ICertificate",
     }},
    {"IDecryptParam",
     "{6743709E-11DE-47A9-82FD-4D580F546E2B}",
     {
         "1 flag DecryptParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
         "3 info Certinfo_t @16",
     }},
    {"IExportParam",
     "{565B8FB4-EE30-4EE3-9B5B-E285678F1F9D}",
     {
         "1 flag ExportParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
     }},
    {"IImportParam",
     "{A2AC77FD-36C6-4C2A-B238-F89B35DAA570}",
     {
         "1 flag ImportParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
     }},
    {"IFindParam",
     "{9FA2BAA7-A0E4-4BB8-AFF7-443FEB3E8118}",
     {
         "1 flag FindParamFlag_t @0",
         "2 mycert ICertId* by reference @8",
         "3 certTemplate ICertificate* by reference @16",
         "4 info Certinfo_t @424",
     }},
    {"IStreamCtx", "{A49B9696-751E-4402-A733-3AD46F48A5A0}", {}},
    {"Ipkiobj",
     "{FC9C803A-FEFB-4DB0-BC83-6E8BEE80E36B}",
     {
         "1610743808 Init([in] BSTR profile)",
         "1610743809 Uninit()",
         "1610743810 Sign([in] BSTR fname_in, [in] BSTR fname_out, [in] long bDetached)",
         "1610743811 Verify([in] BSTR fname_in, [in] BSTR fname_out)",
         "1610743812 Encrypt([in] BSTR fname_in, [in] BSTR fname_out)",
         "1610743813 Unencrypt([in] BSTR fname_in, [in] BSTR fname_out, [in] long bShowResult)",
         "1610743814 SignAndEncrypt([in] BSTR fname_in, [in] BSTR fname_out)",
         "1610743815 VerifyAndUnencrypt([in] BSTR fname_in, [in] BSTR fname_out)",
         "1610743816 SetRecipients([in] BSTR addresses)",
         "1610743817 IsSigned([in] BSTR fname)",
         "1610743818 AddRecipDERCert([in] BSTR cert)",
         "1610743819 FreeRecipCerts()",
     }},
};

const std::vector<EnumTable> kEnums{
    {"Certinfo_t",
     "Field_Serial=1, Field_Issuer=2, Field_Subject=4, Field_IssuerID=8, Field_SubjectID=16, Field_NotBefore=32, "
     "Field_NotAfter=64, Field_KeyUsage=128, Field_IssuerAltName=256, Field_SubjectAltName=512, "
     "Field_ExtKeyUsage=1024, Field_Policy=2048, Field_Extensions=4096, Field_NotBeforePrivate=8192, "
     "Field_NotAfterPrivate=16384, Field_KeyID=32768, Field_CertEncoded=65536, Field_CertHash=131072, "
     "Field_Algorithm=262144, Field_SubjectQualified=1073741824, Field_AlgorithmOidFormat=-2147483648, "
     "Field_All=524287"},
    {"DecryptParamFlag_t", "Flag_Decrypt_Pkcs7=1, Flag_Decrypt_NoCache=2, Flag_Decrypt_NoCrlCheck=4"},
    {"EncryptParamFlag_t",
     "Flag_Encrypt_Pkcs7=1, Flag_Encrypt_Remote=4, Flag_Encrypt_NoTimeCheck=16, Flag_Encrypt_NoVerify=32, "
     "Flag_Encrypt_NoKeyTimeCheck=256, Flag_Encrypt_PartialSubject=512, Flag_Encrypt_IgnoreCached=1024, "
     "Flag_Encrypt_IgnoreLocal=2048"},
    {"ExportParamFlag_t",
     "Flag_Export_UI=1, Flag_Export_Asn1=2, Flag_Export_NewRequest=4, Flag_Export_RevRequest=8, "
     "Flag_Export_EtokenGost=32, Flag_Export_RutokenGost=64, Flag_Export_GostR34_10_2001=128, "
     "Flag_Export_GostR34_10_12_256=256"},
    {"FindParamFlag_t",
     "Flag_Find_Simple=0, Flag_Find_My=1, Flag_Find_All=2, Flag_Find_Remote=4, Flag_Find_SelectUI=8, "
     "Flag_Find_NoTimeCheck=16, Flag_Find_NoVerify=32, Flag_Find_NoKeyTimeCheck=256, Flag_Find_PartialSubject=512, "
     "Flag_Find_IgnoreCached=1024, Flag_Find_IgnoreLocal=2048"},
    {"IdChoice_t", "Id_Issuer_And_Serial=0, Id_KeyId=1, Id_CertHash=2"},
    {"ImportParamFlag_t",
     "Flag_Import_UI=1, Flag_Import_Certificate=2, Flag_Import_Crl=4, Flag_Import_MyCertificate=8, "
     "Flag_Import_Update=16"},
    {"Init_Flag_t",
     "Flag_Init_Nocrlupdate=1, Flag_Init_Checkexpired=2, Flag_Init_Noldap=4, Flag_Init_CheckExpiredReq=16, "
     "Flag_Init_NoSaveCache=32, Flag_Init_Registry=64, Flag_Init_ForceCacheCerts=128, Flag_Init_AllowRAinChain=256, "
     "Flag_Init_LdapChainSearch=512, Flag_Init_UseAiaCdp=1024, Flag_Init_SilentKeyload=2048, "
     "Flag_Init_VerifyContext=-2147483648"},
    {"Keyusage_t",
     "Keyusage_DigitalSignature=1, Keyusage_NonRepudation=2, Keyusage_KeyEncipherment=4, Keyusage_DataEncipherment=8, "
     "Keyusage_KeyAgreement=16, Keyusage_KeyCertSign=32, Keyusage_CrlSign=64, Keyusage_EncipherOnly=128, "
     "Keyusage_DecipherOnly=256"},
    {"RSrv_Init_Flag_t", "RSrv_Flag_Init_Null=0"},
    {"SignParamFlag_t", "Flag_Sign_Pkcs7=1, Flag_Sign_Detached=2, Flag_Sign_SendSert=8, Flag_Sign_Mark=32"},
    {"VerifyParamFlag_t",
     "Flag_Verify_Pkcs7=1, Flag_Verify_Detached=2, Flag_Verify_DelSign=4, Flag_Verify_KeyUsage=8, "
     "Flag_Verify_Policy=16, Flag_Verify_ExtKeyUsage=32, Flag_Verify_MinSigns=128, Flag_Verify_NoTimeCheck=1024, "
     "Flag_Verify_NoCacheCert=2048, Flag_Verify_NoAttachedCert=4096, Flag_Verify_UserVTime=8192, Delete_All_Signs=-1"},
    {"XmlRequest_Flag_t",
     "Flag_Xml_Request_Etoken_Gost=2, Flag_Xml_Request_Do_Not_Generate=4, Flag_Xml_Request_Rutoken_Gost=8, "
     "Flag_Xml_Request_GostR34_10_2001=16, Flag_Xml_Request_GostR34_10_12_256=32"},
};
