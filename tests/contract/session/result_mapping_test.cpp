// What callers get for the results of the engine.
#include "support/operations.h"

namespace {

class ResultMappingTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  HRESULT run(uint32_t engineResult) {
    engine().on(GetParam().function).result = static_cast<int32_t>(engineResult);
    Objects objects(openQuivo());
    return GetParam().call(objects);
  }
};

TEST_P(ResultMappingTest, OneIsFalse) { EXPECT_HR(S_FALSE, run(1)); }

TEST_P(ResultMappingTest, PositiveCodeIsRebased) {
  EXPECT_HR(0xE0691234, run(0x1234));
  EXPECT_HR(0xE0690002, run(2));
  EXPECT_HR(0xE069FEDC, run(0xFEDC));
}

TEST_P(ResultMappingTest, HighBitsOfAPositiveCodeAreDropped) { EXPECT_HR(0xE0690019, run(0x70700019)); }

TEST_P(ResultMappingTest, Win32FacilityIsRebased) {
  EXPECT_HR(0xE0690002, run(0x80070002));
  EXPECT_HR(0xE0690005, run(0xC0070005));
}

TEST_P(ResultMappingTest, OtherFacilitiesPassUnchanged) {
  EXPECT_HR(0x80004005u, run(0x80004005));
  EXPECT_HR(0xE0700019u, run(0xE0700019));
  EXPECT_HR(0x80000057u, run(0x80000057));
  EXPECT_HR(0xFFFFFFFFu, run(0xFFFFFFFF));
}

TEST_P(ResultMappingTest, FacilityIsReadFromAllItsBits) {
  EXPECT_HR(0x90070005u, run(0x90070005));
  EXPECT_HR(0x81070005u, run(0x81070005));
}

TEST_P(ResultMappingTest, SessionIsTheFirstArgument) {
  Objects objects(openQuivo());
  const auto session = reinterpret_cast<void*>(0x7000);
  objects.quivo->Uninitialize();
  engine().on("QUIVO_InitMinimal").handle = session;
  ASSERT_OK(objects.quivo->InitMinimal());
  engine().on(GetParam().function).result = 2;
  GetParam().call(objects);
  EXPECT_EQ(0x7000u, engine().only(GetParam().function).value(0));
}

TEST_P(ResultMappingTest, WithoutASessionTheEngineReceivesANullHandle) {
  Objects objects(Make<IQUIVO>());
  engine().on(GetParam().function).result = static_cast<int32_t>(0xE0700001);
  EXPECT_HR(0xE0700001, GetParam().call(objects));
  EXPECT_EQ(0u, engine().only(GetParam().function).value(0));
}

INSTANTIATE_TEST_SUITE_P(Methods, ResultMappingTest, ::testing::ValuesIn(Operations()), NameOfRow<Operation>);

}  // namespace
