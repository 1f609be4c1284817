#include "standin/base/codes.h"

#include <windows.h>

namespace standin {

void FailWithLastError() {
  const DWORD error = GetLastError();
  Fail(error == 0 ? kInternal : static_cast<int32_t>(error));
}

}  // namespace standin
