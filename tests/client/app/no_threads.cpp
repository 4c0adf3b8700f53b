// tests/client/app/no_threads.cpp: stands before the system's library, and no thread can be made.
#include <pthread.h>

#include <cerrno>

extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t*, const pthread_attr_t*,
                                                                     void* (*)(void*), void*) noexcept
{
    return EAGAIN;
}
