#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <thread>

/// A clipboard manager: asked to, it takes the plain text of the clipboard over from a program that
/// is about to end. Works in a thread of its own.
class ClipboardManager {
public:
    explicit ClipboardManager(const QString &display);
    ~ClipboardManager();

    /// Whether it has its place on the display.
    bool isThere() const { return m_isThere; }
    /// Whether it has taken something over.
    bool hasSaved() const { return m_hasSaved; }

private:
    void run(const QString &display);

    std::atomic<bool> m_isThere = false;
    std::atomic<bool> m_hasSaved = false;
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};
