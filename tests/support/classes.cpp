// The class table, written down independently of the module's own.
#include "support/classes.h"

#include <objbase.h>

// clang-format off
const std::array<ClassFacts, 18> kClasses{{
    {L"QUIVO", L"{4D9C12F3-1D48-4A4D-A2EC-E740E455FEEA}", L"IQUIVO", L"{1D7E7A5B-648D-4236-8604-8F5F3C82433A}", L"QUIVO Class", L"TAVL.QUIVO.1", 101},
    {L"LocalParam", L"{236C9B37-B991-48C2-B14A-340A28638282}", L"ILocalParam", L"{F8AA9567-BC63-447D-A6BC-8C2262AB6050}", L"LocalParam Class", L"TAVL.LocalParam.1", 102},
    {L"RSrvParam", L"{DFDABA17-D518-42A6-81DE-C90C8EC32BCF}", L"IRSrvParam", L"{E5E8F6BE-7753-4041-880B-16D31F61397E}", L"RSrvParam Class", L"TAVL.RSrvParam.1", 103},
    {L"CertId", L"{2FE53899-07E9-4CB2-BB03-D559BE2FC5D5}", L"ICertId", L"{92A25D95-3963-45EF-895F-EA42B4DD37AA}", L"CertId Class", L"TAVL.CertId.1", 104},
    {L"SignParam", L"{5B584C94-8FB4-4647-AFE6-879085600DBF}", L"ISignParam", L"{B006C93F-3057-4F95-8184-9382035E26FB}", L"SignParam Class", L"TAVL.SignParam.1", 105},
    {L"Policy", L"{931F33F5-525B-4613-A5A7-D0E28115DD9A}", L"IPolicy", L"{F089A5D3-01B2-4B44-817B-200F94489BBD}", L"Policy Class", L"TAVL.Policy.1", 106},
    {L"Extension", L"{7D42ABCB-3B36-4B75-8610-3DE59F556435}", L"IExtension", L"{8080AF8D-857A-45C4-8296-AB1301ADFA28}", L"Extension Class", L"TAVL.Extension.1", 108},
    {L"VerifyParam", L"{638DCAAF-63A6-40D2-BE7B-00E0D60B43D6}", L"IVerifyParam", L"{60393FB1-4D9A-4898-95FC-136D6584022C}", L"VerifyParam Class", L"TAVL.VerifyParam.1", 109},
    {L"AltName", L"{A87DDCC9-0E5C-4FD2-9336-C183B2068817}", L"IAltName", L"{8D5DFA7C-76D4-4C61-9F07-D096C2A73162}", L"AltName Class", L"TAVL.AltName.1", 110},
    {L"Certificate", L"{A2B25429-5D39-44B8-B48F-421BBBD18E52}", L"ICertificate", L"{1EA1D7B7-D146-418A-AAE1-AF8100DD369E}", L"Certificate Class", L"TAVL.Certificate.1", 111},
    {L"SignStatus", L"{34349D2D-14C6-414B-9771-A7BD2A7C7180}", L"ISignStatus", L"{A0C53575-7F3D-4FF2-B5A7-BFA873492510}", L"SignStatus Class", L"TAVL.SignStatus.1", 112},
    {L"EncryptParam", L"{904023D8-3EB6-4079-B062-45C68095682E}", L"IEncryptParam", L"{DFE1667E-B4CD-4F11-B90E-C13A6E704917}", L"EncryptParam Class", L"TAVL.EncryptParam.1", 113},
    {L"DecryptParam", L"{3DBDF772-F8AB-4DD8-9A7A-C9650637EE32}", L"IDecryptParam", L"{6743709E-11DE-47A9-82FD-4D580F546E2B}", L"DecryptParam Class", L"TAVL.DecryptParam.1", 114},
    {L"ExportParam", L"{5D343B47-FDD0-4802-930B-EADDA0CE37D9}", L"IExportParam", L"{565B8FB4-EE30-4EE3-9B5B-E285678F1F9D}", L"ExportParam Class", L"TAVL.ExportParam.1", 120},
    {L"ImportParam", L"{8C4D3DF5-889F-434C-BA1C-22F23FD7CB1B}", L"IImportParam", L"{A2AC77FD-36C6-4C2A-B238-F89B35DAA570}", L"ImportParam Class", L"TAVL.ImportParam.1", 121},
    {L"FindParam", L"{B67689B6-7C60-465C-A541-9878368A6AE5}", L"IFindParam", L"{9FA2BAA7-A0E4-4BB8-AFF7-443FEB3E8118}", L"FindParam Class", L"TAVL.FindParam.1", 115},
    {L"StreamCtx", L"{F0723AEE-B2DB-40C0-9205-B3CE505E8B2C}", L"IStreamCtx", L"{A49B9696-751E-4402-A733-3AD46F48A5A0}", L"StreamCtx Class", L"TAVL.StreamCtx.1", 122},
    {L"pkiobj", L"{D107033F-3A53-4406-AF19-13543470DDB2}", L"Ipkiobj", L"{FC9C803A-FEFB-4DB0-BC83-6E8BEE80E36B}", L"PKIobj Class", L"Lunacom.pkiobj.1", 116},
}};
// clang-format on

std::ostream& operator<<(std::ostream& out, const ClassFacts& facts) {
  for (const wchar_t* c = facts.name; *c != 0; ++c) out << static_cast<char>(*c);
  return out;
}

GUID guidOf(const wchar_t* text) {
  GUID guid{};
  IIDFromString(text, &guid);
  return guid;
}
