// The companion library, libravikopt.so, which carries implementations for the DSP and the GPU. It is optional.
#pragma once

#include <atomic>

namespace rvk {

// One reference to the loaded companion library; false where the library is absent.
class Companion
{
public:
    Companion();
    ~Companion();
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    explicit operator bool() const { return m_handle != nullptr; }

    // A function that the library exports; null when it does not, and loaderError() then says why.
    template <class Function>
    Function* function(const char* name) const
    {
        return reinterpret_cast<Function*>(symbol(name));
    }

    // The function whose address an exported word holds; null when the word is absent or 0.
    template <class Function>
    Function* functionInWord(const char* name) const
    {
        void* word = symbol(name);
        return word ? *static_cast<Function**>(word) : nullptr;
    }

    // Hands the reference to `holder`, which drops the one that it held.
    void keepIn(std::atomic<void*>& holder);
    // Drops the reference that `holder` holds, if any.
    static void drop(std::atomic<void*>& holder);

    static const char* loaderError();

private:
    void* symbol(const char* name) const;

    void* m_handle;
};

// The session with the companion library is open while it offers a DSP or a GPU.
struct CompanionSession
{
    std::atomic<bool> gpu;
    std::atomic<bool> dsp;
    std::atomic<void*> library; // reference held from the first look-up to rvkCleanUp

    bool isOpen() const { return gpu || dsp; }
};
extern CompanionSession companionSession;

} // namespace rvk
