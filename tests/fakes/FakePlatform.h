#pragma once

#include "desktop/AppDelegate.h"
#include "platform/Platform.h"

#include <QHash>
#include <QVariantHash>

#include <map>

/// A main queue, a background queue and a clock that move only when told.
class ManualDispatch : public Dispatch {
public:
    bool isMainThread() const override { return m_onMain; }
    void toMain(Task task) override { m_main.push_back(std::move(task)); }
    void toBackground(Task task) override { m_background.push_back(std::move(task)); }
    WorkItem after(std::chrono::milliseconds delay, Task task) override;
    Clock::time_point now() const override { return m_now; }
    QDateTime wallTime() const override { return m_wall; }
    void sleepUntil(Clock::time_point time) override { m_now = std::max(m_now, time); }
    std::shared_ptr<Semaphore> makeSemaphore() override;

    /// Runs one thing that is queued or due; false when there is none.
    bool runNext();
    /// Runs everything queued, background work included, and every timer that is due.
    void drain() {
        while (runNext()) {
        }
    }
    /// Lets time pass timer by timer, draining along the way.
    void advance(std::chrono::milliseconds time);
    /// Runs `task` as if on a background thread.
    void onBackground(const Task &task);
    void setWallTime(const QDateTime &time) { m_wall = time; }

private:
    bool m_onMain = true;
    Clock::time_point m_now{};
    QDateTime m_wall{QDate(2026, 1, 2), QTime(14, 3, 9)};
    QList<Task> m_main;
    QList<Task> m_background;
    std::multimap<Clock::time_point, Task> m_timers;
};

/// A pasteboard of several items in memory. Its native names are short words.
class FakePasteboard : public Pasteboard {
public:
    qint64 changeCount() override { return count; }
    std::optional<QString> text(PasteboardType type) override;
    std::optional<QList<QList<PasteboardOffer>>> items() override;
    PasteboardItem read(qsizetype item, const QList<PasteboardOffer> &offers) override;
    void write(const QList<std::pair<PasteboardType, QByteArray>> &flavours) override;
    void restore(const QList<PasteboardItem> &items) override {
        contents = items;
        ++count;
    }
    PasteboardFetches fetches() override { return fetched; }
    void handOver() override {}

    /// What the user or another program copies.
    void copy(const QList<PasteboardItem> &items) { restore(items); }
    void copyText(const QString &text, const QString &html = {});

    std::optional<QList<PasteboardItem>> contents = QList<PasteboardItem>();
    qint64 count = 0;
    PasteboardFetches fetched;

private:
    /// In the order of PasteboardType.
    const QList<QByteArray> names{"string", "html", "rtf", "rtfd", "url", "file", "table"};
};

class FakeKeyboard : public Keyboard {
public:
    bool isTrusted() override { return trusted; }
    bool isSecureInputActive() override { return secureInput; }
    bool isPasswordFieldFocused(std::chrono::milliseconds) override { return passwordField; }
    std::optional<KeyLayout> currentLayout() override { return layout; }
    void settleHeldKeys() override { events.append(QStringLiteral("settle")); }
    bool postPaste(quint16 vKey) override {
        if (canPost)
            events.append(QStringLiteral("paste %1").arg(vKey));
        if (canPost && onPaste)
            onPaste();
        return canPost;
    }
    ScriptedPaste scriptedPaste() const override {
        return {QStringLiteral("/usr/bin/keypresser"), {QStringLiteral("ctrl+v")}};
    }

    bool trusted = true;
    bool secureInput = false;
    bool passwordField = false;
    bool canPost = true;
    std::optional<KeyLayout> layout;
    QStringList events; ///< "settle", "paste 9"
    std::function<void()> onPaste;
};

class FakeHotkeys : public Hotkeys {
public:
    bool add(const KeyCombo &combo, std::function<void()> pressed) override {
        if (!taken.contains(combo))
            registered.append({combo, std::move(pressed)});
        return !taken.contains(combo);
    }
    void removeAll() override { registered.clear(); }
    std::optional<quint32> virtualKey(quint32 scanCode) const override {
        return virtualKeys.contains(scanCode) ? std::optional(virtualKeys[scanCode]) : std::nullopt;
    }

    QList<std::pair<KeyCombo, std::function<void()>>> registered;
    QList<KeyCombo> taken;
    QHash<quint32, quint32> virtualKeys; ///< by native scan code
};

class FakeChildProcess : public ChildProcess {
public:
    ChildResult run(const QString &program, const QStringList &arguments) override {
        runs.append(program + u' ' + arguments.join(u' '));
        return result;
    }

    ChildResult result;
    QStringList runs;
};

class FakeNotifications : public Notifications {
public:
    void show(const QString &title, const QString &body,
              std::function<void(const QString &)> failed) override {
        if (!failure.isEmpty())
            failed(failure);
        else
            shown.append(title + u'|' + body);
    }

    QStringList shown; ///< "title|body"
    QString failure;
};

class MemoryDefaults : public Defaults {
public:
    std::optional<QString> string(const QString &key) const override { return as<QString>(key); }
    std::optional<qint64> integer(const QString &key) const override { return as<qint64>(key); }
    std::optional<bool> boolean(const QString &key) const override { return as<bool>(key); }
    std::optional<double> real(const QString &key) const override { return as<double>(key); }
    std::optional<QByteArray> data(const QString &key) const override {
        return as<QByteArray>(key);
    }
    void set(const QString &key, const QVariant &value) override { stored[key] = value; }
    void remove(const QString &key) override { stored.remove(key); }
    void onProblem(std::function<void(const QString &)>) override {}

    QVariantHash stored;

private:
    template <class T>
    std::optional<T> as(const QString &key) const {
        const auto value = stored.constFind(key);
        if (value == stored.constEnd() || value->typeId() != qMetaTypeId<T>())
            return std::nullopt;
        return value->template value<T>();
    }
};

class MemorySecretStore : public SecretStore {
public:
    bool add(const QString &service, const QString &account, const QByteArray &secret) override {
        if (!refusesAdditions)
            secrets[service + u'/' + account] = secret;
        return !refusesAdditions;
    }
    std::optional<QByteArray> copy(const QString &service, const QString &account) override {
        ++reads;
        const auto found = secrets.constFind(service + u'/' + account);
        return found == secrets.constEnd() ? std::nullopt : std::optional(*found);
    }
    void remove(const QString &service, const QString &account) override {
        secrets.remove(service + u'/' + account);
    }

    QHash<QString, QByteArray> secrets; ///< by "service/account"
    bool refusesAdditions = false;
    int reads = 0;
};

class FakeAlerts : public Alerts {
public:
    void show(const Alert &alert, std::function<void(int)> chosen) override {
        shown.append(alert);
        chosen(answer);
    }

    QList<Alert> shown;
    int answer = 1;
};

class FakeWorkspace : public Workspace {
public:
    QString openAccessibilitySettings() override {
        ++opened;
        return missing;
    }
    bool openUrl(const QUrl &url) override {
        urls.append(url.toString());
        return opensUrls;
    }

    QStringList urls;
    bool opensUrls = true;
    int opened = 0;
    QString missing;
};

/// Answers each request at once from a script, or never.
class FakeUrlSession : public UrlSession {
public:
    TaskId start(const UrlRequest &request, Completion completion) override {
        requests.append(request);
        const auto answer = answers.constFind(request.url.toString(QUrl::FullyEncoded));
        if (answer != answers.constEnd())
            completion(*answer);
        return static_cast<TaskId>(requests.size());
    }
    void cancel(TaskId task) override { cancelled.append(task); }
    void warmUp() override {}
    void prepareConnection(const QUrl &url) override { prepared.append(url.toString()); }

    /// By URL; a URL that is not in it is never answered.
    QHash<QString, UrlResponse> answers;
    QList<UrlRequest> requests;
    QList<TaskId> cancelled;
    QStringList prepared;
};

class FakeLoginItems : public LoginItems {
public:
    Status status() override { return current; }
    QString add() override { return change(Status::Enabled); }
    QString remove() override { return change(Status::NotRegistered); }

    Status current = Status::NotRegistered;
    QString error;

private:
    QString change(Status wanted) {
        current = error.isEmpty() ? wanted : current;
        return error;
    }
};

/// A desktop without a place for icons.
class FakeTrayHost : public TrayHost {
public:
    bool isAvailable() override { return false; }
    void onChange(std::function<void()>) override {}
};

class FakeApp : public AppDelegate {
public:
    FakeApp() { publish(); }
    void openPreferences() override { ++preferencesOpened; }
    void refreshStatusItemImage() override { fetchingStates.append(isFetching()); }
    void reinstallHotkey() override { ++hotkeyReinstalls; }

    int preferencesOpened = 0;
    int hotkeyReinstalls = 0;
    QList<bool> fetchingStates; ///< isFetching at each refresh of the icon
};

/// Installs fakes for every port and starts every shared instance afresh.
struct FakePlatform {
    FakePlatform();
    ~FakePlatform();

    /// The messages of the activity log since the last call.
    QStringList takeLog();

    std::shared_ptr<ManualDispatch> dispatch = std::make_shared<ManualDispatch>();
    std::shared_ptr<FakePasteboard> pasteboard = std::make_shared<FakePasteboard>();
    std::shared_ptr<FakeKeyboard> keyboard = std::make_shared<FakeKeyboard>();
    std::shared_ptr<FakeHotkeys> hotkeys = std::make_shared<FakeHotkeys>();
    std::shared_ptr<FakeChildProcess> childProcess = std::make_shared<FakeChildProcess>();
    std::shared_ptr<FakeNotifications> notifications = std::make_shared<FakeNotifications>();
    std::shared_ptr<MemoryDefaults> defaults = std::make_shared<MemoryDefaults>();
    std::shared_ptr<MemorySecretStore> secretStore = std::make_shared<MemorySecretStore>();
    std::shared_ptr<FakeAlerts> alerts = std::make_shared<FakeAlerts>();
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    std::shared_ptr<FakeTrayHost> trayHost = std::make_shared<FakeTrayHost>();
    std::shared_ptr<FakeUrlSession> urlSession = std::make_shared<FakeUrlSession>();
    std::shared_ptr<FakeLoginItems> loginItems = std::make_shared<FakeLoginItems>();
    FakeApp app;
};
