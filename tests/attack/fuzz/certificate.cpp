// Certificates: parsed with every field, and verified.
#include "attack/fuzz/session.h"

using namespace fuzz;

void fuzz::Run(Input bytes) {
  const DataBlob_t encoded = BlobOf(bytes);
  CertificateRecord record{};
  const int32_t parsed = QUIVO_ParseCert(Session(), &encoded, 0x7FFFFFFF, &record);
  RequireKnown(parsed);
  QUIVO_FreeCert(Session(), &record);
  const VerifyCertParamRecord param{1, nullptr, 0x7FFFFFFF};
  CertificateRecord verified{};
  RequireKnown(QUIVO_VerifyCert(Session(), &param, &encoded, &verified));
  QUIVO_FreeCert(Session(), &verified);
}
