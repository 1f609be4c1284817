// Null objects and null outputs: refused before the engine is called, where a method has no rule of its own.
#include "support/operations.h"

namespace {

class NullArgumentTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {};

TEST_P(NullArgumentTest, IsRefusedWithoutTheEngine) {
  Objects objects(openQuivo());
  EXPECT_HR(kInvalidArgument, GetParam().call(objects, nullptr));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

INSTANTIATE_TEST_SUITE_P(Objects, NullArgumentTest,
                         // A store may be added to without an identifier.
                         ::testing::ValuesIn(Where(ObjectInputs(),
                                                   [](const auto& row) { return row.declared().type != "ICertId*"; })),
                         NameOfRow<OperationArgument>);
INSTANTIATE_TEST_SUITE_P(Arrays, NullArgumentTest, ::testing::ValuesIn(OutputsOf(Output::kObjects)),
                         NameOfRow<OperationArgument>);
INSTANTIATE_TEST_SUITE_P(Certificates, NullArgumentTest, ::testing::ValuesIn(OutputsOf(Output::kCertificate)),
                         NameOfRow<OperationArgument>);

using NullArgumentsTest = ContractTest;

TEST_F(NullArgumentsTest, UntrustedDataModeIsCheckedFirst) {
  const Objects objects(untrustedQuivo());
  for (const Operation& operation : Operations()) {
    if (!operation.hasFiles()) continue;
    Given nothing;
    for (size_t i = 0; i < operation.member.arguments.size(); ++i) nothing.emplace(i, nullptr);
    EXPECT_HR(kAccessDenied, operation.call(objects, nothing)) << operation;
  }
}

}  // namespace
