#include "companion.h"

#include "log.h"

#include <ravik/frame.h>

#include <dlfcn.h>

namespace rvk {

constinit CompanionSession companionSession = {};

// Function table, hooks and callers may keep addresses from the library after the last reference to it is dropped,
// hence RTLD_NODELETE.
Companion::Companion() : m_handle(dlopen("libravikopt.so", RTLD_NOW | RTLD_NODELETE)) {}

Companion::~Companion()
{
    if (m_handle)
        dlclose(m_handle);
}

void* Companion::symbol(const char* name) const
{
    return m_handle ? dlsym(m_handle, name) : nullptr;
}

void Companion::keepIn(std::atomic<void*>& holder)
{
    m_handle = holder.exchange(m_handle);
}

void Companion::drop(std::atomic<void*>& holder)
{
    if (void* handle = holder.exchange(nullptr))
        dlclose(handle);
}

const char* Companion::loaderError()
{
    const char* text = dlerror();
    return text ? text : "";
}

} // namespace rvk

void rvkCleanUp(void)
{
    using namespace rvk;
    if (!companionSession.isOpen())
        return;
    if (const Companion companion; companion) {
        if (auto* cleanUp = companion.function<void()>("rvkCleanUp"))
            cleanUp();
        else
            logLibraryError("Error: rvkCleanUp NULL. %s", Companion::loaderError());
    }
    companionSession.gpu = false;
    companionSession.dsp = false;
    Companion::drop(companionSession.library);
}
