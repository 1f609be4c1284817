// Watches the task memory of COM: every BSTR and SAFEARRAY of the process, once oleaut32 keeps no cache.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <map>
#include <string>

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
  STDMETHODIMP_(void*) PreGetSize(void* block, BOOL) override { return block; }
  STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, BOOL) override { return size; }
  STDMETHODIMP_(void*) PreDidAlloc(void* block, BOOL) override { return block; }
  STDMETHODIMP_(int) PostDidAlloc(void*, BOOL, int actual) override { return actual; }
  STDMETHODIMP_(void) PreHeapMinimize() override {}
  STDMETHODIMP_(void) PostHeapMinimize() override {}

 private:
  struct Block {
    SIZE_T size;
    size_t serial;
  };

  bool fails();

  std::map<void*, Block> blocks_;
  SIZE_T size_ = 0;
  void* moved_ = nullptr;
  size_t serial_ = 0;
  long untilFailure_ = -1;
};
