#include "platform/linux/ServingThread.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace {

void signal(int descriptor) {
    const std::uint64_t one = 1;
    // A counter that is full already is a signal as well.
    [[maybe_unused]] const auto written = write(descriptor, &one, sizeof one);
}

void clear(int descriptor) {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(descriptor, &count, sizeof count);
}

} // namespace

ServingThread::ServingThread(std::function<std::unique_ptr<Connection>(int)> make)
    : m_wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_interrupt(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_thread([this, make = std::move(make)] { run(make); }) {}

ServingThread::~ServingThread() {
    m_isEnding = true;
    signal(m_interrupt);
    signal(m_wakeUp);
    m_thread.join();
    close(m_wakeUp);
    close(m_interrupt);
}

void ServingThread::post(std::function<void()> work) {
    {
        const std::scoped_lock lock(m_mutex);
        m_posted.push_back(std::move(work));
    }
    signal(m_wakeUp);
}

void ServingThread::finishWith(std::function<void()> last) {
    {
        const std::scoped_lock lock(m_mutex);
        m_posted.clear();
        m_posted.push_back([this, last = std::move(last)] {
            clear(m_interrupt);
            last();
        });
    }
    signal(m_interrupt);
    signal(m_wakeUp);
}

void ServingThread::run(const std::function<std::unique_ptr<Connection>(int)> &make) {
    const std::unique_ptr<Connection> connection = make(m_interrupt);
    std::vector<pollfd> wanted;
    while (!m_isEnding) {
        runPosted();
        wanted.assign(1, {m_wakeUp, POLLIN, 0});
        const int timeout = connection->prepare(wanted);
        if (poll(wanted.data(), wanted.size(), timeout) < 0)
            continue; // a signal
        if (wanted[0].revents)
            clear(m_wakeUp);
        connection->serve(wanted.data() + 1);
    }
}

void ServingThread::runPosted() {
    for (;;) {
        std::function<void()> work;
        {
            const std::scoped_lock lock(m_mutex);
            if (m_posted.empty() || m_isEnding)
                return;
            work = std::move(m_posted.front());
            m_posted.pop_front();
        }
        work();
    }
}
