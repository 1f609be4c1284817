// The records inside the module's objects, as the engine sees them when an operation hands them over.
#pragma once

#include "support/contract_test.h"

fake::Snapshot RecordOf(IDispatch* object);

/// One certificate of a list of records.
fake::Snapshot CertificateAt(const fake::Snapshot& list, size_t index);
/// The template of a search, and the mask of fields behind it.
fake::Snapshot TemplateIn(const fake::Snapshot& search);
uint32_t MaskIn(const fake::Snapshot& search);
