#include <platform/platform.h>

#include <pthread.h>

DWORD TlsAlloc() noexcept
{
    pthread_key_t key = 0;
    if (::pthread_key_create(&key, nullptr) == 0)
        return key;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return TLS_OUT_OF_INDEXES;
}

/// Success clears the last error, so that a null value can be told from a failure.
void* TlsGetValue(DWORD index) noexcept
{
    SetLastError(ERROR_SUCCESS);
    return ::pthread_getspecific(index);
}

BOOL TlsSetValue(DWORD index, void* value) noexcept
{
    if (::pthread_setspecific(index, value) == 0)
        return 1;
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
}

BOOL TlsFree(DWORD index) noexcept
{
    if (::pthread_key_delete(index) == 0)
        return 1;
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept
{
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    ::pthread_mutex_init(&section->mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

void EnterCriticalSection(CRITICAL_SECTION* section) noexcept
{
    ::pthread_mutex_lock(&section->mutex);
}

void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept
{
    ::pthread_mutex_unlock(&section->mutex);
}

void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept
{
    ::pthread_mutex_destroy(&section->mutex);
}
