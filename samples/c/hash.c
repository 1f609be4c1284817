/* Prints the hash of a file, in C: hash PROFILE ALGORITHM FILE
 * Needs the header and the identifiers of the SDK, and ole32 and oleaut32 of the platform. */
#define COBJMACROS
#include <windows.h>

#include <oleauto.h>
#include <stdio.h>

#include "quivocom.h"

/* Ends the program with `what` and the result when the call before failed. */
static void check(HRESULT hr, const char* what) {
  if (SUCCEEDED(hr)) return;
  printf("%s: 0x%08lX\n", what, (unsigned long)hr);
  ExitProcess(1);
}

static void print_hash(VARIANT* hash) {
  const BYTE* bytes = NULL;
  LONG last = -1;
  check(SafeArrayGetUBound(hash->parray, 1, &last), "StrHashFile");
  check(SafeArrayAccessData(hash->parray, (void**)&bytes), "StrHashFile");
  for (LONG i = 0; i <= last; ++i) printf("%02x", bytes[i]);
  printf("\n");
  SafeArrayUnaccessData(hash->parray);
}

int wmain(int count, wchar_t** arguments) {
  IQUIVO* quivo = NULL;
  BSTR profile, algorithm, file;
  VARIANT hash;
  if (count != 4) {
    printf("usage: hash PROFILE ALGORITHM FILE\n");
    return 2;
  }
  profile = SysAllocString(arguments[1]);
  algorithm = SysAllocString(arguments[2]);
  file = SysAllocString(arguments[3]);
  VariantInit(&hash);
  check(CoInitialize(NULL), "CoInitialize");
  check(CoCreateInstance(&CLSID_QUIVO, NULL, CLSCTX_INPROC_SERVER, &IID_IQUIVO, (void**)&quivo), "CoCreateInstance");
  check(IQUIVO_Initialize(quivo, profile, Flag_Init_Nocrlupdate | Flag_Init_Noldap), "Initialize");
  /* VARIANT_FALSE asks for the plain form: an array of bytes. */
  check(IQUIVO_StrHashFile(quivo, algorithm, file, &hash, VARIANT_FALSE), "StrHashFile");
  print_hash(&hash);
  VariantClear(&hash);
  check(IQUIVO_Uninitialize(quivo), "Uninitialize");
  IQUIVO_Release(quivo);
  SysFreeString(profile);
  SysFreeString(algorithm);
  SysFreeString(file);
  CoUninitialize();
  return 0;
}
