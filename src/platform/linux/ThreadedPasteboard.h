#pragma once

#include "platform/linux/ClipboardServer.h"

#include <future>
#include <memory>

/// The pasteboard of a desktop: a ClipboardServer on a thread of its own, so that who pastes into
/// one of our own windows, and makes the main thread wait, is answered all the same.
class ThreadedPasteboard : public Pasteboard {
public:
    /// What the server calls, on its thread, whenever others have fetched or taken what we own,
    /// and when it can serve no longer.
    using News = std::function<void(const PasteboardUse &)>;
    using MakeServer = std::function<std::unique_ptr<ClipboardServer>(int interrupt, News news)>;

    ThreadedPasteboard(std::shared_ptr<Dispatch> dispatch, MakeServer make);
    ~ThreadedPasteboard() override;

    /// Waits until the server has reached its desktop, `limit` at most; then why it could not.
    QString problem(std::chrono::milliseconds limit);

    /// Instead of problem(): what is asked before the server has answered is done then. If it has
    /// not by `limit`, unavailableBecause() says so, and what waits is answered with nothing.
    void awaitServer(std::chrono::milliseconds limit);

    /// Whether the server has reached its desktop or given up. As long as it has not, this must not
    /// be destroyed: its thread can't be ended.
    bool hasAnswered() const;

    QString unavailableBecause() const override;
    void read(Read done) override;
    void write(const QList<std::pair<PasteboardType, QByteArray>> &flavours,
               std::optional<qint64> ifCountIs, Written done) override;
    void restore(const QList<PasteboardItem> &items, std::optional<qint64> ifCountIs,
                 Written done) override;
    PasteboardUse use() const override;
    void onUseChange(std::function<void()> changed) override;
    void finish(const QList<PasteboardItem> &original) override;

private:
    struct Shared;

    void own(const PasteboardItem &contents, std::optional<qint64> ifCountIs, Written done);

    std::shared_ptr<Dispatch> m_dispatch;
    std::shared_ptr<Shared> m_shared;
    std::future<QString> m_problem;
    ServingThread m_thread;
};
