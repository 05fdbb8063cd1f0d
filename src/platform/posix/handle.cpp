#include <platform/posix/handle.h>

char krInvalidHandle = 0;

KrHandleObject::~KrHandleObject() = default;

BOOL CloseHandle(HANDLE handle) noexcept
{
    const KrHandleObject* object = krObject<KrHandleObject>(handle);
    delete object;
    return object != nullptr;
}
