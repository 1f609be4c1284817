// Watches the task memory of COM: every BSTR and SAFEARRAY of the process, once oleaut32 keeps no cache. A block has
// some bytes behind its end that nobody may write, and stays in place for a while after it was freed.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <map>
#include <string>
#include <vector>

class MallocSpy final : public IMallocSpy {
 public:
  static MallocSpy& get();

  /// False when the platform does not take the spy.
  bool start();
  void stop();

  size_t outstanding() const { return blocks_.size(); }
  /// Blocks that are alive and were allocated after `mark()`, with their sizes, for the report of a leak.
  std::string since(size_t mark) const;
  size_t mark() const { return serial_; }
  size_t outstandingSince(size_t mark) const;

  /// What was done to blocks that none may do: freed twice, written behind their end or after they were freed. Ends the
  /// time in which freed blocks stay in place, and forgets what it returns.
  std::vector<std::string> violations();

  /// Lets the allocation after `succeeding` further ones fail; a negative number lets none fail.
  void failAllocation(long succeeding) { untilFailure_ = succeeding; }
  bool allocationFailed() const { return untilFailure_ < -1; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP_(SIZE_T) PreAlloc(SIZE_T size) override;
  STDMETHODIMP_(void*) PostAlloc(void* block) override;
  STDMETHODIMP_(void*) PreFree(void* block, BOOL spied) override;
  STDMETHODIMP_(void) PostFree(BOOL) override {}
  STDMETHODIMP_(SIZE_T) PreRealloc(void* block, SIZE_T size, void** actual, BOOL spied) override;
  STDMETHODIMP_(void*) PostRealloc(void* block, BOOL spied) override;
  STDMETHODIMP_(void*) PreGetSize(void* block, BOOL) override { return actual(block); }
  STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, BOOL) override { return size; }
  STDMETHODIMP_(void*) PreDidAlloc(void* block, BOOL) override { return actual(block); }
  STDMETHODIMP_(int) PostDidAlloc(void*, BOOL, int actual) override { return actual; }
  STDMETHODIMP_(void) PreHeapMinimize() override {}
  STDMETHODIMP_(void) PostHeapMinimize() override {}

 private:
  struct Block {
    void* actual;  ///< COM's
    SIZE_T size;
    size_t serial;
  };

  bool fails();
  /// The block that a caller gets in the place of COM's.
  void* replace(void* actual, SIZE_T size);
  /// Ends the life of a caller's block and returns COM's; a block from before the spy is COM's itself.
  void* withdraw(void* block);
  void* actual(void* block) const;
  void checkEnd(const void* block, SIZE_T size);
  void checkFreed(const void* block, SIZE_T size);

  std::map<void*, Block> blocks_;
  /// Freed blocks that are still in place, with their sizes.
  std::map<void*, SIZE_T> freed_;
  std::vector<std::string> violations_;
  SIZE_T size_ = 0;
  void* moved_ = nullptr;
  size_t serial_ = 0;
  long untilFailure_ = -1;
};
