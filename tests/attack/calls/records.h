// A user-defined type, as some languages pass one.
#pragma once

#include <oaidl.h>

/// Describes records of 16 bytes that own nothing; lives as long as the process.
IRecordInfo* AnyRecord();
