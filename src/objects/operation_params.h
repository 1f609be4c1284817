// The parameter objects whose record is just flags and a certificate, and decryption's with one more field.
#pragma once

#include "objects/param_object.h"
#include "quivocom.h"

class SignParam : public ParamObject<ISignParam, SignParamRecord, SignParamFlag_t> {};
class ExportParam : public ParamObject<IExportParam, SignParamRecord, ExportParamFlag_t> {};
class ImportParam : public ParamObject<IImportParam, SignParamRecord, ImportParamFlag_t> {};

class DecryptParam : public ParamObject<IDecryptParam, DecryptParamRecord, DecryptParamFlag_t> {
 public:
  STDMETHODIMP get_info(Certinfo_t* value) override { return GetValue(record_.info, value); }
  STDMETHODIMP put_info(Certinfo_t value) override { return PutValue(record_.info, value); }
};
