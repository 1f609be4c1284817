// Times: every time that has a DATE comes back from it, and every DATE is converted or refused.
#include "convert/dates.h"
#include "attack/fuzz/input.h"

void fuzz::Run(Input bytes) {
  const auto seconds = Take<uint32_t>(bytes);
  DATE date = 0;
  int64_t back = -1;
  Require(convert::UnixTimeToDate(seconds, &date) == S_OK);
  Require(convert::DateToUnixTime(date, &back) == S_OK);
  Require(back == seconds);
  const HRESULT hr = convert::DateToUnixTime(Take<double>(bytes), &back);
  Require(hr == E_INVALIDARG || (hr == S_OK && back >= 0));
}
