// The library stays loaded after dlclose: its listener thread continues and can be stopped.
#include <dlfcn.h>
#include <pthread.h>

#include <gtest/gtest.h>

#include <tarnd_qrb/listener.h>
#include <tarnd_qrb/memory_map.h>
#include <tarnd_qrb/subscription.h>

namespace {

template <typename Name>
Name* Find(void* library, const char* name)
{
    return reinterpret_cast<Name*>(dlsym(library, name));
}

TEST(Unload, RunningListenerContinues)
{
    void* library = dlopen(TARND_QRB_LIBRARY, RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    Find<decltype(MEM_EX_Init)>(library, "MEM_EX_Init")();
    ASSERT_EQ(Find<decltype(BDS_InitStart)>(library, "BDS_InitStart")(), 0U);
    auto* const thread = Find<pthread_t>(library, "g_epollDbListenerThreadId");
    auto* const exitFlag = Find<uint8_t>(library, "g_epollDbListenerThreadExit");
    ASSERT_EQ(dlclose(library), 0);

    ASSERT_NE(dlopen(TARND_QRB_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it was unloaded";
    __atomic_store_n(exitFlag, 1, __ATOMIC_RELEASE);
    EXPECT_EQ(pthread_join(*thread, nullptr), 0);
}

}  // namespace
