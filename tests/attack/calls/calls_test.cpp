// Attacks every member of every class with calls of chance: calls_attack --calls=N [--seed=S] [--round=R].
// A round is a number of calls on fresh objects. --round repeats one and prints its calls.
#include <algorithm>
#include <iostream>

#include "attack/calls/caller.h"
#include "attack/calls/other_apartment.h"
#include "attack/shared/guard.h"
#include "attack/shared/options.h"
#include "attack/shared/usage.h"
#include "contract/legacy/desktop.h"
#include "quivocom.h"
#include "support/malloc_spy.h"
#include "support/module.h"
#include "support/pe_image.h"
#include "support/registry.h"
#include "support/results.h"

namespace {

constexpr size_t kCallsOfARound = 60;
constexpr size_t kMaxNesting = 2;
constexpr DWORD kLimitOfACall = 2000;
constexpr size_t kMaxGrowth = 4 << 20;
constexpr uint64_t kAllRounds = UINT64_MAX;

class CallsAttack : public ::testing::Test {
 protected:
  CallsAttack() {
    WriteDword(user_.key(), L"SOFTWARE\\KORVENTA\\tavl\\Profiles", L"CurSel", 0);
    WriteText(user_.key(), L"SOFTWARE\\KORVENTA\\tavl\\Profiles\\0", L"ProfileName", L"Anna");
    StartGuard(kLimitOfACall);
    StartOtherApartment();
    MakeLargeArrays();
  }
  ~CallsAttack() override {
    FreeLargeArrays();
    StopOtherApartment();
    EXPECT_OK(Module::get().canUnloadNow());
  }

  void runRound(uint64_t round, size_t calls);
  /// Gives the objects what most calls want of them.
  void prepare(const Actors& actors, Random& random);
  void expectCoverage();
  void complain(const std::string& call, const std::string& problem) {
    if (++problems_ <= 20) ADD_FAILURE() << "--seed=" << seed_ << " --round=" << call << ": " << problem;
  }

  const uint64_t seed_ = Option("seed", 20261122);
  const uint64_t only_ = Option("round", kAllRounds);
  PrivateRoot machine_{HKEY_LOCAL_MACHINE}, user_{HKEY_CURRENT_USER};
  TempFile file_{{1, 2, 3}};
  LegacyDesktop desktop_;
  Coverage coverage_;
  std::set<std::string> functions_;
  size_t problems_ = 0;
};

/// Wine 10's VariantChangeType leaves blocks of 16 bytes behind in calls in which Wine 8's leaves none: the stack of
/// their allocation lies in it, and what it returned was cleared.
bool PlatformLosesMemory() {
  const FARPROC version = GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version");
  return version != nullptr && std::atoi(reinterpret_cast<const char* (*)()>(reinterpret_cast<void*>(version))()) >= 10;
}

/// The counts that a round has to leave as they were.
struct Counts {
  long objects = Module::get().liveObjects();
  long allocations = Module::get().liveAllocations();
  size_t comMark = MallocSpy::get().mark();
};

void CallsAttack::runRound(uint64_t round, size_t calls) {
  fake::FakeEngine& engine = *TavlFakeEngine();
  const std::string name = std::to_string(round);
  engine.reset();
  const Counts before;
  bool usedProxy = false;
  {
    Random random(seed_, round);
    size_t nesting = 0, number = 0;
    Caller* caller = nullptr;
    std::unique_ptr<Actors> actors;
    const auto next = [&] { caller->call(name + ", call " + std::to_string(number++)); };
    const auto reenter = [&] {
      if (nesting >= kMaxNesting || caller == nullptr) return;
      ++nesting;
      if (random.chance(30)) actors->replaceOne();
      next();
      --nesting;
    };
    EngineReplies replies(random, reenter);
    engine.improvise = [&](const fake::Call& call) {
      functions_.insert(call.function);
      return replies.replyTo(call);
    };
    actors = std::make_unique<Actors>(random, file_, reenter);
    Caller theCaller(
        random, *actors, replies, coverage_,
        [&](const std::string& call, const std::string& problem) { complain(call, problem); }, only_ != kAllRounds);
    desktop_.duringMessage = reenter;
    desktop_.duringSheet = reenter;
    desktop_.messageAnswer = random.of({0, IDOK, IDCANCEL, IDYES, IDNO});
    prepare(*actors, random);
    caller = &theCaller;
    while (number < calls) {
      next();
      engine.forgetCalls();
    }
    usedProxy = actors->usedProxy();
    caller = nullptr;
    const std::string complaint = actors->complaint();
    if (!complaint.empty()) complain(name, complaint);
    desktop_.duringMessage = desktop_.duringSheet = {};
    // The end of a session is answered too.
    actors.reset();
  }
  desktop_.messages.clear();
  desktop_.sheets.clear();
  desktop_.writes.clear();
  engine.reset();
  const Counts after;
  if (after.objects != before.objects) complain(name, std::to_string(after.objects - before.objects) + " objects left");
  if (after.allocations != before.allocations)
    complain(name, std::to_string(after.allocations - before.allocations) + " allocations left");
  MallocSpy& spy = MallocSpy::get();
  for (const std::string& violation : spy.violations()) complain(name, "COM memory " + violation);
  if (!usedProxy && !PlatformLosesMemory() && spy.outstandingSince(before.comMark) != 0)
    complain(name, "COM memory left\n" + spy.since(before.comMark));
}

void CallsAttack::prepare(const Actors& actors, Random& random) {
  // The engine refuses some.
  for (int i = 0; i < 3; ++i) {
    actors.own("IQUIVO").as<IQUIVO>()->InitMinimal();
    actors.own("Ipkiobj").as<Ipkiobj>()->Init(Bstr(L"Anna"));
  }
  actors.own("ICertId").as<ICertId>()->put_type(static_cast<IdChoice_t>(random.below(3)));
}

void CallsAttack::expectCoverage() {
  for (const Target& target : Targets()) {
    const Reached& reached = coverage_[target.name() + "#" + std::to_string(target.member.kind)];
    EXPECT_LT(0u, reached.direct) << target.name();
    EXPECT_LT(0u, reached.late) << target.name();
    EXPECT_LT(0u, reached.succeeded) << target.name() << " never succeeded";
  }
  for (const std::string& function : PeImage(ProgramFolder() + L"\\tavl1.dll").exports()) {
    if (!function.starts_with("QUIVO_")) continue;
    EXPECT_TRUE(functions_.contains(function)) << function << " was not called";
  }
}

TEST_F(CallsAttack, EveryCallEndsInAResult) {
  if (only_ != kAllRounds) {
    runRound(only_, kCallsOfARound);
    return;
  }
  const size_t rounds = Option("calls", 50000) / kCallsOfARound + 1;
  Usage warm{};
  for (size_t round = 0; round < rounds && problems_ == 0; ++round) {
    if (round == rounds / 5) warm = UsageOfProcess();
    runRound(round, kCallsOfARound);
  }
  ASSERT_EQ(0u, problems_);
  const Usage end = UsageOfProcess();
  std::cout << "after the warm-up: " << warm << "\nat the end: " << end << std::endl;
  EXPECT_LE(end.privateBytes, warm.privateBytes + kMaxGrowth);
  expectCoverage();
}

}  // namespace
