// The store's operations in forms that take and give plain values.
#pragma once

#include "engine_test.h"

class StoreTest : public EngineTest {
 protected:
  /// The subjects found.
  std::vector<std::string> find(EngineSession session, FindParamRecord param, int32_t expected = 0) {
    param.info = 4;
    FindResultRecord result{};
    EXPECT_CODE(expected, QUIVO_FindCert(session, &param, &result));
    std::vector<std::string> subjects;
    for (int32_t i = 0; i < result.count; ++i) subjects.push_back(result.certificates[i].subject);
    EXPECT_CODE(0, QUIVO_FreeFindResult(session, &result));
    return subjects;
  }

  static int32_t add(EngineSession session, const Bytes& encoded) {
    const SignParamRecord addition{};
    const DataBlob_t blob = BlobOf(encoded);
    return QUIVO_AddCertificate(session, &addition, &blob);
  }
  static int32_t addCrl(EngineSession session, const Bytes& encoded) {
    const SignParamRecord addition{};
    const DataBlob_t blob = BlobOf(encoded);
    return QUIVO_AddCRL(session, &addition, &blob);
  }
  Bytes exported(EngineSession session, uint32_t flags, const CertIdRecord* id, int32_t expected = 0) {
    const SignParamRecord param{flags, id};
    DataBlob_t out{};
    EXPECT_CODE(expected, QUIVO_ExportMem(session, &param, &out));
    return take(session, out);
  }
  static int32_t import(EngineSession session, uint32_t flags, const Bytes& bytes) {
    const SignParamRecord param{flags, nullptr};
    const DataBlob_t blob = BlobOf(bytes);
    return QUIVO_ImportMem(session, &param, &blob);
  }
};

inline FindParamRecord WithFlags(uint32_t flags) {
  FindParamRecord param{};
  param.flag = flags;
  return param;
}
