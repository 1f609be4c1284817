// Processes that end in the middle of what they write, and many at once: the store holds whole entries only.
#include <algorithm>
#include <optional>
#include <random>

#include "attacks.h"
#include "child.h"
#include "platform_calls.h"
#include "store_operations.h"

namespace {

constexpr DWORD kDied = 77;
constexpr DWORD kPatience = 30000;
constexpr unsigned kCrowd = 50;

/// Where a process ends by itself.
struct Point {
  unsigned which;
  FileCall call;
  unsigned at;
  Deed deed;

  std::wstring work() const {
    return L"die " + std::to_wstring(which) + L" " + std::to_wstring(static_cast<int>(call)) + L" " +
           std::to_wstring(at) + L" " + std::to_wstring(static_cast<int>(deed));
  }
};

std::vector<Point> PointsOf(unsigned operations) {
  std::vector<Point> points;
  for (unsigned which = 0; which < operations; ++which) {
    for (unsigned at = 0; at < 4; ++at) {
      points.push_back({which, FileCall::kCreate, at, Deed::kDieAfter});
      points.push_back({which, FileCall::kWrite, at, Deed::kDieHalf});
      points.push_back({which, FileCall::kMove, at, Deed::kDieBefore});
      points.push_back({which, FileCall::kMove, at, Deed::kDieAfter});
    }
  }
  return points;
}

class Attack {
 public:
  Attack(Cases& cases, const Folders& folders) : cases_(cases), folders_(folders), store_(folders.scratch + L".store") {
    EmptyFolder(folders.scratch);
    freshStore();
    caller_.emplace(folders, store_);
    for (Operation& operation : FileOperations(*caller_, folders)) operations_.push_back(std::move(operation));
    WriteFileOf(folders_.file(L"old.bin"), {'o', 'l', 'd'});
    inputs_ = FilesOf(folders_.scratch);
  }

  /// The operations that write, and behind them those of the store.
  std::vector<unsigned> writing() const {
    std::vector<unsigned> numbers;
    for (unsigned i = 0; i < operations_.size(); ++i) {
      if (operations_[i].writes) numbers.push_back(i);
    }
    for (unsigned i = 0; i < storeOperations().size(); ++i)
      numbers.push_back(static_cast<unsigned>(operations_.size()) + i);
    return numbers;
  }
  std::string nameOf(unsigned which) const {
    return which < operations_.size() ? operations_[which].name : storeOperations()[which - operations_.size()].name;
  }
  bool isOfStore(unsigned which) const { return which >= operations_.size(); }

  void dieAt(const Point& point) {
    if (!cases_.begin(nameOf(point.which) + ", dies at " + NameOf(point.call) + " " + std::to_string(point.at) + ", " +
                      std::to_string(static_cast<int>(point.deed)))) {
      return;
    }
    const Child child(folders_, point.work());
    const DWORD code = child.wait(kPatience);
    cases_.check(code == kDied || code == 0, "the process ended with " + std::to_string(code));
    look(point.which);
  }

  void killAfter(unsigned which, unsigned milliseconds, unsigned number) {
    if (!cases_.begin(nameOf(which) + ", killed after " + std::to_string(milliseconds) + " ms, " +
                      std::to_string(number))) {
      return;
    }
    const Child child(folders_, L"loop " + std::to_wstring(which));
    cases_.check(child.waitForWork(), "the process did not begin");
    Sleep(milliseconds);
    cases_.check(child.wait(0) == STILL_ACTIVE, "the process ended by itself");
    child.kill();
    look(which);
  }

  void freshStore() const {
    CopyFolder(folders_.materialFile(L"store"), store_);
    DeleteFileW((store_ + L"\\root.crl").c_str());
  }

 private:
  std::vector<StoreOperation> storeOperations() const { return StoreOperations(folders_, 0); }

  /// What the process has left: whole files, and files with temporary names that nobody takes for others.
  void look(unsigned which) {
    if (isOfStore(which)) {
      lookAtStore();
    } else {
      lookAtOutput(operations_[which]);
    }
  }

  void lookAtOutput(const Operation& operation) {
    const std::wstring old = folders_.file(L"old.bin");
    auto after = FilesOf(folders_.scratch);
    for (const auto& [name, bytes] : after) {
      if (inputs_.count(name) == 0) {
        cases_.check(IsTemporary(name), "left " + Narrow(name));
        DeleteFileW(folders_.file(name).c_str());
      }
    }
    for (const auto& [name, bytes] : inputs_) {
      if (name != L"old.bin") cases_.check(after[name] == bytes, "changed " + Narrow(name));
    }
    const bool whole = after[L"old.bin"] == inputs_.at(L"old.bin") || operation.isWhole(*caller_, old);
    cases_.check(whole, "the output is neither the old one nor whole");
    WriteFileOf(old, inputs_.at(L"old.bin"));
  }

  void lookAtStore() {
    const auto after = FilesOf(store_);
    cases_.check(BrokenEntries(after).empty(), BrokenEntries(after));
    for (const auto& [name, bytes] : FilesOf(folders_.materialFile(L"store"))) {
      if (name != L"root.crl") cases_.check(after.count(name) == 1, "lost " + Narrow(name));
    }
    const Caller reader(folders_, store_);
    const size_t found = reader.certificatesFound();
    cases_.check(found == CertificatesAmong(after),
                 std::to_string(found) + " certificates are found, of " + std::to_string(CertificatesAmong(after)));
    for (const StoreOperation& operation : storeOperations()) {
      if (std::string(operation.name) == "CreateXmlRequest") continue;
      cases_.check(SUCCEEDED(operation.run(reader)), std::string(operation.name) + " fails afterwards");
    }
    freshStore();
  }

  Cases& cases_;
  const Folders& folders_;
  std::wstring store_;
  std::optional<Caller> caller_;
  std::vector<Operation> operations_;
  std::map<std::wstring, Bytes> inputs_;
};

}  // namespace

void AttackKills(Cases& cases, const Folders& folders, unsigned seed, unsigned points, unsigned kills) {
  Attack attack(cases, folders);
  const std::vector<unsigned> writing = attack.writing();
  std::mt19937 random(seed);
  std::vector<Point> all = PointsOf(static_cast<unsigned>(writing.size()));
  for (Point& point : all) point.which = writing[point.which];
  std::ranges::shuffle(all, random);
  // The first calls are made by every operation, and a store has more to lose than an output.
  std::ranges::stable_sort(all, {},
                           [&](const Point& point) { return std::pair(point.at, !attack.isOfStore(point.which)); });
  for (size_t i = 0; i < all.size() && i < points; ++i) attack.dieAt(all[i]);
  for (unsigned i = 0; i < kills; ++i) {
    const unsigned which = writing[random() % writing.size()];
    // Making a key takes long, and writing it a moment at the end.
    const unsigned longest = attack.nameOf(which) == "CreateXmlRequest" ? 400 : 40;
    attack.killAfter(which, random() % longest, i);
  }
}

void AttackCrowd(Cases& cases, const Folders& folders) {
  if (!cases.begin("fifty processes")) return;
  const Attack attack(cases, folders);
  const std::wstring store = folders.scratch + L".store";
  const auto before = FilesOf(store);
  const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, kGo);
  std::vector<Child> children;
  for (unsigned i = 0; i < kCrowd; ++i) children.emplace_back(folders, L"crowd " + std::to_wstring(i));
  for (const Child& child : children) cases.check(child.waitForWork(), "a process did not begin");
  SetEvent(go);
  for (const Child& child : children) {
    const DWORD code = child.wait(kPatience);
    cases.check(code == 0, "a process ended with " + std::to_string(code));
  }
  CloseHandle(go);

  const auto after = FilesOf(store);
  cases.check(BrokenEntries(after).empty(), BrokenEntries(after));
  for (const auto& [name, bytes] : before) cases.check(after.count(name) == 1, "lost " + Narrow(name));
  const auto holds = [&](const Bytes& wanted) {
    return std::ranges::any_of(after, [&](const auto& file) { return file.second == wanted; });
  };
  size_t keys = 0, requests = 0;
  for (const auto& [name, bytes] : after) {
    cases.check(!IsTemporary(name), "left " + Narrow(name));
    keys += name.find(L".key") != std::wstring::npos;
    requests += name.find(L".req") != std::wstring::npos;
  }
  for (unsigned i = 0; i < kCrowd; i += 5) {
    const std::wstring name = L"many\\" + std::to_wstring(i) + L".cer";
    cases.check(holds(ReadFileOf(folders.materialFile(name))), "lacks the certificate " + std::to_string(i));
  }
  cases.check(holds(ReadFileOf(folders.materialFile(L"root.crl"))), "lacks the revocation list");
  cases.check(keys == kCrowd / 5 && requests == keys,
              std::to_string(keys) + " keys, " + std::to_string(requests) + " requests");
  const Caller reader(folders, store);
  cases.check(reader.certificatesFound() == CertificatesAmong(after), "not every certificate is found");
}
