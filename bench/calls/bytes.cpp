// Bytes on their way in and out.
#include <quivocom.h>

#include <memory>
#include <vector>

#include "calls/client.h"
#include "stub_engine/stub_engine.h"

namespace bench {
namespace {

/// Gives the engine an output for as long as it lives.
class EngineOutput {
 public:
  explicit EngineOutput(uint32_t size) : bytes_(size, 1) { TavlStubEngine()->output = {size, bytes_.data()}; }
  EngineOutput(const EngineOutput&) = delete;
  EngineOutput& operator=(const EngineOutput&) = delete;
  ~EngineOutput() { TavlStubEngine()->output = {}; }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

void Hash(IQUIVO* quivo, const VARIANT& in) {
  VARIANT hash{};
  Check(quivo->HashMem(in, &hash), "HashMem");
  VariantClear(&hash);
}

SAFEARRAY* NewArray(VARTYPE type, ULONG size) {
  SAFEARRAY* array = SafeArrayCreateVector(type, 0, size);
  if (!array) Check(E_OUTOFMEMORY, "SafeArrayCreateVector");
  return array;
}

/// What a loop of the caller's own would make of the elements.
void CopyElements(const VARIANT& in) {
  ULONG count = V_ARRAY(&in)->rgsabound[0].cElements;
  const auto* elements = static_cast<const VARIANT*>(V_ARRAY(&in)->pvData);
  std::unique_ptr<uint8_t[]> copy(new uint8_t[count]);
  for (ULONG i = 0; i < count; ++i) copy[i] = V_UI1(&elements[i]);
  // The compiler has to believe that somebody reads the copy.
  asm volatile("" : : "r"(copy.get()) : "memory");
}

}  // namespace

void MeasureBytes(const Effort& effort) {
  auto quivo = New<QUIVO, IQUIVO>();
  const ULONG big = effort.pick<ULONG>(64 << 20, 64 << 10);
  const ULONG elements = effort.pick<ULONG>(8 << 20, 8 << 10);

  VARIANT large = ByteArray(big);
  VARIANT small = ByteArray(16);
  PrintCalls(
      "bytes in, 64 MiB", effort, [&] { Hash(quivo, large); }, [&] { Hash(quivo, small); });
  VariantClear(&large);

  VARIANT variants = VariantArray(elements);
  PrintCalls(
      "VBS form in, 8 MiB", effort, [&] { Hash(quivo, variants); }, [&] { CopyElements(variants); });
  VariantClear(&variants);

  {
    EngineOutput output(elements);
    VARIANT one = VariantArray(1);
    PrintCalls(
        "VBS form out, 8 MiB", effort, [&] { Hash(quivo, one); },
        [&] {
          SAFEARRAY* array = NewArray(VT_VARIANT, elements);
          auto* element = static_cast<VARIANT*>(array->pvData);
          for (ULONG i = 0; i < elements; ++i) {
            V_VT(&element[i]) = VT_UI1;
            V_UI1(&element[i]) = output.bytes()[i];
          }
          SafeArrayDestroy(array);
        });
    VariantClear(&one);
  }

  EngineOutput output(big);
  PrintCalls(
      "bytes out, 64 MiB", effort,
      [&] {
        VARIANT random{};
        Check(quivo->GenRandom(static_cast<LONG>(big), &random), "GenRandom");
        VariantClear(&random);
      },
      [&] {
        SAFEARRAY* array = NewArray(VT_UI1, big);
        memcpy(array->pvData, output.bytes().data(), big);
        SafeArrayDestroy(array);
      });
  VariantClear(&small);
}

}  // namespace bench
