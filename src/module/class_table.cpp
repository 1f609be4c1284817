#include "module/class_table.h"

#include "legacy/pkiobj.h"
#include "objects/alt_name.h"
#include "objects/cert_id.h"
#include "objects/certificate.h"
#include "objects/encrypt_param.h"
#include "objects/extension.h"
#include "objects/find_param.h"
#include "objects/operation_params.h"
#include "objects/policy.h"
#include "objects/session_params.h"
#include "objects/sign_status.h"
#include "objects/stream_ctx.h"
#include "objects/verify_param.h"
#include "session/quivo.h"

namespace {

template <class Class>
ClassEntry Entry(const wchar_t* progId, const wchar_t* description, WORD script) {
  return {&__uuidof(Class), progId, description, script, com::Create<Class>};
}

}  // namespace

std::span<const ClassEntry> ClassTable() {
  static const ClassEntry table[] = {
      Entry<QUIVO>(L"TAVL.QUIVO.1", L"QUIVO Class", 101),
      Entry<LocalParam>(L"TAVL.LocalParam.1", L"LocalParam Class", 102),
      Entry<RSrvParam>(L"TAVL.RSrvParam.1", L"RSrvParam Class", 103),
      Entry<CertId>(L"TAVL.CertId.1", L"CertId Class", 104),
      Entry<SignParam>(L"TAVL.SignParam.1", L"SignParam Class", 105),
      Entry<Policy>(L"TAVL.Policy.1", L"Policy Class", 106),
      Entry<Extension>(L"TAVL.Extension.1", L"Extension Class", 108),
      Entry<VerifyParam>(L"TAVL.VerifyParam.1", L"VerifyParam Class", 109),
      Entry<AltName>(L"TAVL.AltName.1", L"AltName Class", 110),
      Entry<Certificate>(L"TAVL.Certificate.1", L"Certificate Class", 111),
      Entry<SignStatus>(L"TAVL.SignStatus.1", L"SignStatus Class", 112),
      Entry<EncryptParam>(L"TAVL.EncryptParam.1", L"EncryptParam Class", 113),
      Entry<DecryptParam>(L"TAVL.DecryptParam.1", L"DecryptParam Class", 114),
      Entry<ExportParam>(L"TAVL.ExportParam.1", L"ExportParam Class", 120),
      Entry<ImportParam>(L"TAVL.ImportParam.1", L"ImportParam Class", 121),
      Entry<FindParam>(L"TAVL.FindParam.1", L"FindParam Class", 115),
      Entry<StreamCtx>(L"TAVL.StreamCtx.1", L"StreamCtx Class", 122),
      Entry<pkiobj>(L"TAVL.pkiobj.1", L"pkiobj Class", 116),
  };
  return table;
}
