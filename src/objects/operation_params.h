// The parameter objects whose record is flags and a certificate, and that of decryption with one more member.
#pragma once

#include "objects/param_object.h"

class SignParam : public objects::ParamObject<ISignParam, SignParamRecord, SignParamFlag_t> {};
class ExportParam : public objects::ParamObject<IExportParam, SignParamRecord, ExportParamFlag_t> {};
class ImportParam : public objects::ParamObject<IImportParam, SignParamRecord, ImportParamFlag_t> {};

class DecryptParam : public objects::ParamObject<IDecryptParam, DecryptParamRecord, DecryptParamFlag_t> {
 public:
  STDMETHODIMP get_info(Certinfo_t* value) override { return getNumber(record_.info, value); }
  STDMETHODIMP put_info(Certinfo_t value) override { return putNumber(record_.info, value); }
};
