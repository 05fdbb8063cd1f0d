#pragma once

/// @file
/// The heap manager over the checking heap.

#include <base/hmHeapMgr.h>

#include <map>
#include <string>

namespace Kr
{

class HmCheckingHeapMgr : public HmHeapMgr
{
public:
    HmCheckingHeapMgr();

    /// Writes the ledger and the leaks of the packages that have stopped, where the settings ask.
    ~HmCheckingHeapMgr() override;

    bool isValid(void* ptr, unsigned long size, PtrType type) override;
    void checkHeap() const override;
    unsigned int setCheckPoint(unsigned int number) override;
    void reportLeakage(unsigned int from, unsigned int to) const override;
    void dump(std::ostream& os) const override;
    void dumpPtrInfo(void* ptr, std::ostream& os) const override;
    void dumpMallocStats(std::ostream& os) const override;
    SafetyLevel setSafetyLevel(SafetyLevel level) override;
    bool setContinueOnError(bool on) override;
    bool setCheckAllMemory(bool on) override;
    void freeDeferred() const override;
    bool setDoDeferFreeing(bool on) override;
    unsigned long setDeferQueueLen(unsigned long blocks) override;
    unsigned long setDeferSizeThreshold(unsigned long bytes) override;
    unsigned int setCheckFrequency(unsigned int allocations) override;

private:
    template <class T>
    T applied(T previous) const;
    void applySettings() const;

    std::map<unsigned int, std::uint64_t> _checkPoints; ///< the newest block of each
    std::string _knownLeaks;
};

} // namespace Kr
