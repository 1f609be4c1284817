#include "support/contract_test.h"
using CertIdTest = ContractTest;
TEST_F(CertIdTest, A) { auto id = make<CertId>(); }
