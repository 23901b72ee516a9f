#pragma once

#include <atomic>

/// Work goes from thread to thread through queues and semaphores of the toolkit, which the thread
/// sanitizer can't see into. Who gives and who takes says so here, and what came before the one
/// counts as done before the other. In all other builds this is nothing. Any thread.
namespace HandOver {

#ifdef __SANITIZE_THREAD__
inline std::atomic<int> given = 0;
inline void give() {
    given.fetch_add(1, std::memory_order_release);
}
inline void take() {
    given.load(std::memory_order_acquire);
}
#else
inline void give() {}
inline void take() {}
#endif

} // namespace HandOver
