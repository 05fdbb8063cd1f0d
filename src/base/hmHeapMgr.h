#pragma once

/// @file
/// The single point of control over heap checking.
///
/// The library runs on the compiler's own heap, and by default the checks do nothing: they accept
/// every pointer and report nothing, and the dumps say so. The settings are real, and read from the
/// environment when the package `heapMgr` starts. A program that wants its heap checked during
/// development includes `hmCheckedNew.h` in one source; the same operations then do what they say.
/// @code
/// Kr::HmHeapMgr& heap = Kr::HmHeapMgr::getInstance();
/// heap.setCheckPoint(1);
/// load();
/// heap.setCheckPoint(2);
/// heap.reportLeakage(1, 2); // what was allocated between the two and is still there
/// std::cout << heap;
/// @endcode
/// | variable | setting | default |
/// |---|---|---|
/// | `KR_HEAP_SAFETY_LEVEL` | some, full or debug | full |
/// | `KR_HEAP_OUTPUT_PROMPT` | a number above 0 switches it on, as all that follow | off |
/// | `KR_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR` | go on after a fault instead of aborting | off |
/// | `KR_HEAP_USE_DEFAULT_ERROR_HANDLER` | | off |
/// | `KR_HEAP_DUMP_INFO` | write the heap manager when the package stops | off |
/// | `KR_HEAP_CHECK_MEMORY` | check all blocks every so many allocations | off |
/// | `KR_HEAP_DUMP_LEAKS` | report what is left when the package stops | off |
/// | `KR_HEAP_DO_DEFER_FREEING` | keep released blocks for a while | off |
/// | `KR_HEAP_DEFER_QUEUE_LEN` | how many of them | 1000 |
/// | `KR_HEAP_DEFER_SIZE_THRESHOLD` | up to how many bytes each | 4096 |
/// | `KR_HEAP_CHECK_FREQUENCY` | how many allocations | 1000 |
///
/// Pitfalls: a text that is not a number counts as 0, also where the default is another; the
/// level's name must match to the letter, or the default stands. The settings have no lock: change
/// them on one thread.

#include <base/inSingleton.h>
#include <base/krBaseApi.h>

#include <cstdint>
#include <iosfwd>

namespace Kr
{

class KR_BASE_API HmHeapMgr
{
public:
    /// How much a checking heap looks for. Each level includes those before it.
    enum SafetyLevel
    {
        some = 0, ///< counts
        full = 1, ///< finds writes past the end of a block
        debug = 2 ///< finds writes after the release of a block
    };

    /// What `protectPtr` asks for. Not interpreted.
    enum PtrProtect
    {
        readWrite,
        readOnly,
        noAccess
    };

    /// What `isValid` asks about. Not interpreted.
    enum PtrType
    {
        anyPtr,
        heapPtr
    };

    /// The manager. Raises `InSingletonEx::ExNotInitialized` unless the package `heapMgr` is up.
    static HmHeapMgr& getInstance();

    /// The manager that suits the heap of this process: for the package.
    static HmHeapMgr* create();

    /// Reads the environment.
    HmHeapMgr();
    HmHeapMgr(const HmHeapMgr&) = delete;
    HmHeapMgr& operator=(const HmHeapMgr&) = delete;
    virtual ~HmHeapMgr();

    /// Does nothing.
    virtual void initMultiThread();

    /// Does nothing.
    virtual void protectPtr(void* ptr, PtrProtect protection);

    /// True; with a checking heap, whether so many bytes from there lie within one block.
    virtual bool isValid(void* ptr, unsigned long size, PtrType type);

    /// Does nothing; with a checking heap, looks at every block and reports the faults.
    virtual void checkHeap() const;

    /// Marks this moment by that number. Returns 0; with a checking heap, how many blocks there
    /// are.
    virtual unsigned int setCheckPoint(unsigned int number);

    /// Does nothing; with a checking heap, reports the blocks that were allocated between two
    /// check points and are still there.
    virtual void reportLeakage(unsigned int from, unsigned int to) const;

    /// Does nothing: a place for a debugger's breakpoint, passed at each fault.
    virtual void breakpoint();

    /// Says that this is the compiler's heap; a checking heap adds its ledger.
    virtual void dump(std::ostream& os) const;

    /// What is known of a block: with a checking heap its size, package and origin.
    virtual void dumpPtrInfo(void* ptr, std::ostream& os) const;

    /// With a checking heap, the sums over all packages.
    virtual void dumpMallocStats(std::ostream& os) const;

    // The settings. Each setter returns the previous value.

    virtual SafetyLevel setSafetyLevel(SafetyLevel level);
    virtual bool setContinueOnError(bool on);
    virtual bool setUseDefaultHandler(bool on);
    virtual bool setDumpHeapInfo(bool on);
    virtual bool setCheckAllMemory(bool on);
    virtual bool setDumpLeaks(bool on);

    /// Does nothing; with a checking heap, frees the blocks whose freeing was put off.
    virtual void freeDeferred() const;

    virtual bool setDoDeferFreeing(bool on);
    virtual unsigned long setDeferQueueLen(unsigned long blocks);
    virtual unsigned long setDeferSizeThreshold(unsigned long bytes);
    virtual unsigned int setCheckFrequency(unsigned int allocations);

    SafetyLevel getSafetyLevel() const { return _safetyLevel; }
    bool getOutputPrompt() const { return _outputPrompt; }
    bool getContinueOnError() const { return _continueOnError; }
    bool getUseDefaultHandler() const { return _useDefaultHandler; }
    bool getDumpHeapInfo() const { return _dumpHeapInfo; }
    bool getCheckAllMemory() const { return _checkAllMemory; }
    bool getDumpLeaks() const { return _dumpLeaks; }
    bool getDoDeferFreeing() const { return _doDeferFreeing; }
    unsigned long getDeferQueueLen() const { return _deferQueueLen; }
    unsigned long getDeferSizeThreshold() const { return _deferSizeThreshold; }
    unsigned int getCheckFrequency() const { return _checkFrequency; }

private:
    void readSafetyLevel();

    SafetyLevel _safetyLevel = full;
    bool _outputPrompt = false;
    bool _continueOnError = false;
    bool _useDefaultHandler = false;
    bool _dumpHeapInfo = false;
    bool _checkAllMemory = false;
    bool _dumpLeaks = false;
    bool _doDeferFreeing = true;
    std::uint32_t _deferQueueLen = 1000;
    std::uint32_t _deferSizeThreshold = 4096;
    std::uint32_t _checkFrequency = 1000;
};

/// Writes `dump`.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const HmHeapMgr& heap);

} // namespace Kr

extern template class KR_BASE_API Kr::InSingleton<Kr::HmHeapMgr>;
