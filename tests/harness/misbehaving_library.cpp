// A library that stands where the module is looked for, and goes wrong in the way that TAVL_MISBEHAVIOUR names.
#include "harness/misbehave.h"

extern "C" __declspec(dllexport) void CALLBACK FileOpen(HWND, HINSTANCE, LPSTR, int) {
  Misbehave(RequestedMisbehaviour());
}

extern "C" __declspec(dllexport) HRESULT WINAPI DllRegisterServer() {
  Misbehave(RequestedMisbehaviour());
  return S_OK;
}
