#include "attack/calls/other_apartment.h"

#include <objbase.h>

#include "support/class_objects.h"
#include "support/type_library.h"

namespace {

struct Apartment {
  HANDLE ready = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  IStream* stream = nullptr;
  HANDLE thread = nullptr;
  DWORD id = 0;
  Ptr<IDispatch> proxy;
};

Apartment apartment;

DWORD WINAPI Serve(void*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    Ptr<IDispatch> object;
    FactoryOf(ClassOf("ISignParam").clsid)->CreateInstance(nullptr, IID_IDispatch, object.voidOut());
    CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object, &apartment.stream);
    SetEvent(apartment.ready);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  }
  CoUninitialize();
  return 0;
}

}  // namespace

void StartOtherApartment() {
  apartment.thread = CreateThread(nullptr, 0, Serve, nullptr, 0, &apartment.id);
  WaitForSingleObject(apartment.ready, 10000);
  CoGetInterfaceAndReleaseStream(apartment.stream, IID_IDispatch, apartment.proxy.voidOut());
}

Ptr<IDispatch> ProxyOfOtherApartment() { return apartment.proxy; }

void StopOtherApartment() {
  apartment.proxy.reset();
  PostThreadMessageW(apartment.id, WM_QUIT, 0, 0);
  WaitForSingleObject(apartment.thread, 10000);
  CloseHandle(apartment.thread);
  CloseHandle(apartment.ready);
}
