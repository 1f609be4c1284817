// The records inside the module's objects, as the engine sees them when an operation hands them over.
#pragma once

#include "support/contract_test.h"

fake::Snapshot recordOf(ICertId* id);
fake::Snapshot recordOf(ICertificate* certificate);
fake::Snapshot recordOf(IAltName* name);
fake::Snapshot recordOf(IPolicy* policy);
fake::Snapshot recordOf(IExtension* extension);
fake::Snapshot recordOf(ILocalParam* param);
fake::Snapshot recordOf(IRSrvParam* param);
fake::Snapshot recordOf(ISignParam* param);
fake::Snapshot recordOf(IVerifyParam* param);
fake::Snapshot recordOf(IEncryptParam* param);
fake::Snapshot recordOf(IDecryptParam* param);
fake::Snapshot recordOf(IFindParam* param);
fake::Snapshot recordOf(IExportParam* param);
fake::Snapshot recordOf(IImportParam* param);

/// Where the string members of an alternative name stand in its record; the last has no name in the type library.
HRESULT getExtraName(IAltName* name, BSTR* value);
HRESULT putExtraName(IAltName* name, BSTR value);
