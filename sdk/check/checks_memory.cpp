#include <windows.h>

#include "checks.h"
#include "engine/flags.h"
#include "read_through.h"

namespace check {
namespace {

/// Counted by hand: not every system that runs this keeps the figure.
size_t PrivateBytes() {
  size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  const char* address = nullptr;
  while (VirtualQuery(address, &region, sizeof region) != 0) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    address = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
  }
  return bytes;
}

constexpr size_t kMebibyte = 1 << 20;

/// Fails if `rounds` of work keep more than a quarter of what they take.
template <class Round>
std::string Keeps(size_t rounds, size_t taken, Round round) {
  for (size_t i = 0; i < rounds / 8; ++i) round();
  const size_t before = PrivateBytes();
  for (size_t i = 0; i < rounds; ++i) round();
  const size_t after = PrivateBytes();
  const size_t kept = after > before ? after - before : 0;
  const std::string seen = std::to_string(kept / 1024) + " of " + std::to_string(taken / 1024) + " KiB stay";
  Expect(kept < taken / 4, seen);
  return seen;
}

void CheckThatMemoryReturns(Kit& kit) {
  kit.report.check("FreeMem frees", "the memory of 64 buffers of 1 MiB returns", [&] {
    const Session session = kit.openMinimal();
    return Keeps(64, 64 * kMebibyte, [&] {
      Out<DataBlob_t> random;
      Succeeds("GenRandom", kit.engine.QUIVO_GenRandom(session, kMebibyte, random.get()));
      Succeeds("FreeMem", kit.engine.QUIVO_FreeMem(session, random->data));
    });
  });
  kit.report.check("FreeCert frees what a certificate points to", "the memory of 2,000 certificates returns", [&] {
    const Session session = kit.openMinimal();
    InBytes encoded(kit.ownCertificate());
    Out<CertificateRecord> record;
    return Keeps(2000, 2000 * encoded.size(), [&] {
      *record = {};
      Succeeds("ParseCert", kit.engine.QUIVO_ParseCert(session, encoded.blob(), engine::kFieldAll, record.get()));
      Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
    });
  });
}

}  // namespace

void CheckMemory(Kit& kit) {
  kit.check("AllocMem gives memory that FreeMem takes back", "0", [&] {
    const Session session = kit.openMinimal();
    for (uint32_t length : {1, 100, 70000}) {
      void* buffer = kit.engine.QUIVO_AllocMem(session, length);
      if (buffer == nullptr) throw NotSupported{};
      std::memset(buffer, 1, length);
      Succeeds("FreeMem", kit.engine.QUIVO_FreeMem(session, buffer));
    }
  });
  kit.check("FreeCert takes back a record made with AllocMem", "0", [&] {
    const Session session = kit.openMinimal();
    Out<CertificateRecord> record;
    void* buffer = kit.engine.QUIVO_AllocMem(session, 100);
    if (buffer == nullptr) throw NotSupported{};
    std::memset(buffer, 1, 100);
    record->fields = engine::kFieldCertEncoded;
    record->certEncoded = {100, static_cast<uint8_t*>(buffer)};
    Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
  });
  kit.check("a list of certificates comes apart", "FreeMem takes the array, FreeCert the records", [&] {
    const Session session = kit.open();
    FindParamRecord wanted{};
    wanted.flag = engine::kFindMy;
    wanted.info = engine::kFieldAll;
    In<FindParamRecord> param(wanted);
    Out<FindResultRecord> result;
    Succeeds("FindCert", kit.engine.QUIVO_FindCert(session, param.get(), result.get()));
    Expect(result->count > 0, "FindCert: no own certificate");
    const std::vector<CertificateRecord> copies(result->certificates, result->certificates + result->count);
    Succeeds("FreeMem", kit.engine.QUIVO_FreeMem(session, result->certificates));
    for (const CertificateRecord& copy : copies) {
      Out<CertificateRecord> record;
      *record = copy;
      ReadThrough(*record);
      Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
    }
  });
  CheckThatMemoryReturns(kit);
}

}  // namespace check
