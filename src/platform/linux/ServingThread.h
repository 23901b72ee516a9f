#pragma once

#include <poll.h>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// A thread that serves a connection to a display server: it lets the connection handle what
/// arrives and runs what is posted to it, in the order of posting. Made, posted to and ended on one
/// thread.
class ServingThread {
public:
    /// What the thread serves; made, used and gone on the thread.
    class Connection {
    public:
        virtual ~Connection() = default;

        /// Before the thread sleeps: handles what is there already, sends what is to be sent, and
        /// appends to `wanted` what to wake up for. Returns the milliseconds after which to wake up
        /// all the same, or -1.
        virtual int prepare(std::vector<pollfd> &wanted) = 0;

        /// Handles what has arrived; `ready` are the descriptors of prepare() with what they
        /// answered.
        virtual void serve(const pollfd *ready) = 0;
    };

    /// Starts the thread; `make` runs on it. While the descriptor it gets is readable, nothing
    /// inside of serve() or of posted work may go on waiting for another program.
    explicit ServingThread(std::function<std::unique_ptr<Connection>(int interrupt)> make);

    /// Interrupts what waits, drops what has not begun, and joins.
    ~ServingThread();
    ServingThread(const ServingThread &) = delete;
    ServingThread &operator=(const ServingThread &) = delete;

    void post(std::function<void()> work);

    /// Interrupts what waits, drops what has not begun, and runs `last`; to be followed by the end.
    void finishWith(std::function<void()> last);

private:
    void run(const std::function<std::unique_ptr<Connection>(int)> &make);
    void runPosted();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_posted;
    std::atomic<bool> m_isEnding = false;
    int m_wakeUp = -1;
    int m_interrupt = -1;
    std::thread m_thread;
};
