// That the counts which every test ends with do see what they are for.
#include "support/contract_test.h"
#include "support/malloc_spy.h"

namespace {

using WatchTest = ContractTest;

TEST_F(WatchTest, StringsAndArraysAreSeen) {
  MallocSpy& spy = MallocSpy::get();
  const size_t mark = spy.mark();
  {
    Bstr text(L"text");
    EXPECT_EQ(1u, spy.outstandingSince(mark));
    Variant array = ByteArray({1, 2, 3});
    EXPECT_GT(spy.outstandingSince(mark), 1u);
  }
  EXPECT_EQ(0u, spy.outstandingSince(mark));
}

TEST_F(WatchTest, ReplacedStringsAreSeenOnce) {
  MallocSpy& spy = MallocSpy::get();
  const size_t mark = spy.mark();
  Bstr text(L"text");
  SysReAllocString(text.inOut(), L"a longer text in its place");
  EXPECT_EQ(1u, spy.outstandingSince(mark));
}

TEST_F(WatchTest, RefusedAllocationGivesNoString) {
  MallocSpy::get().failAllocation(0);
  Bstr text(L"text");
  EXPECT_TRUE(text.null());
  EXPECT_TRUE(MallocSpy::get().allocationFailed());
}

TEST_F(WatchTest, AllocationsOfTheModuleAreSeen) {
  const long before = Module::get().liveAllocations();
  Ptr<ICertId> id = Make<ICertId>();
  const long withObject = Module::get().liveAllocations();
  EXPECT_EQ(before + 1, withObject);
  ASSERT_OK(id->put_type(Id_KeyId));
  ASSERT_OK(id->put_keyId(Bstr(L"key")));
  EXPECT_EQ(withObject + 1, Module::get().liveAllocations());
}

TEST_F(WatchTest, EngineMemoryAndSessionsAreSeen) {
  Ptr<IQUIVO> quivo = openQuivo();
  EXPECT_EQ(1u, engine().openSessions());
  engine().on("QUIVO_GenRandom").output = {1};
  size_t during = 0;
  engine().on("QUIVO_FreeMem").during = [&] { during = engine().outstanding().size(); };
  Variant random;
  ASSERT_OK(quivo->GenRandom(1, random.out()));
  EXPECT_EQ(1u, during);
  EXPECT_EQ(1u, engine().handedOut());
}

}  // namespace
