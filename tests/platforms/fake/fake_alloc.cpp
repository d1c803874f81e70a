// SPDX-License-Identifier: Apache-2.0
// malloc and its like as the library sees them (linked with --wrap): counted, made to fail, and
// kept track of.
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <unordered_set>

#include "fake/fake_state.h"

extern "C" {
void *__real_malloc(size_t uiSize);
void *__real_calloc(size_t uiCount, size_t uiSize);
void *__real_realloc(void *pOld, size_t uiSize);
void __real_free(void *pBuffer);
void *__wrap_malloc(size_t uiSize);
void *__wrap_calloc(size_t uiCount, size_t uiSize);
void *__wrap_realloc(void *pOld, size_t uiSize);
void __wrap_free(void *pBuffer);
}

namespace {

std::mutex g_mtxLive;

std::unordered_set<void *> &Live()
{
    static auto *g_psetLive = new std::unordered_set<void *>;
    return *g_psetLive;
}

void *Track(void *pBuffer)
{
    if (pBuffer != nullptr) {
        const std::lock_guard<std::mutex> lock(g_mtxLive);
        Live().insert(pBuffer);
    }
    return pBuffer;
}

void Forget(void *pBuffer)
{
    const std::lock_guard<std::mutex> lock(g_mtxLive);
    Live().erase(pBuffer);
}

} // namespace

namespace fake {

u32 LiveAllocations()
{
    const std::lock_guard<std::mutex> lock(g_mtxLive);
    return static_cast<u32>(Live().size());
}

} // namespace fake

void *__wrap_malloc(size_t uiSize)
{
    return fake::Fault(fake::KIND_E::ALLOC) ? nullptr : Track(__real_malloc(uiSize));
}

void *__wrap_calloc(size_t uiCount, size_t uiSize)
{
    return fake::Fault(fake::KIND_E::ALLOC) ? nullptr : Track(__real_calloc(uiCount, uiSize));
}

void *__wrap_realloc(void *pOld, size_t uiSize)
{
    if (fake::Fault(fake::KIND_E::ALLOC)) {
        return nullptr;
    }
    Forget(pOld);
    return Track(__real_realloc(pOld, uiSize));
}

void __wrap_free(void *pBuffer)
{
    Forget(pBuffer);
    __real_free(pBuffer);
}
