#pragma once

#include "desktop/AppDelegate.h"
#include "platform/Platform.h"

#include <QHash>
#include <QVariantHash>

#include <list>
#include <map>

/// A main queue, a background queue and a clock that move only when told.
class ManualDispatch : public Dispatch {
public:
    bool isMainThread() const override { return m_onMain; }
    void toMain(Task task) override { m_main.push_back(std::move(task)); }
    void toBackground(Task task) override { m_background.push_back(std::move(task)); }
    WorkItem after(std::chrono::milliseconds delay, Task task) override {
        return at(m_now + delay, std::move(task));
    }
    WorkItem at(Clock::time_point time, Task task) override;
    Clock::time_point now() const override { return m_now; }
    QDateTime wallTime() const override { return m_wall; }
    void finish() override { m_background.clear(); }
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

/// A pasteboard of several items in memory, which answers at once. Its native names are short
/// words.
class FakePasteboard : public Pasteboard {
public:
    QString unavailableBecause() const override { return unavailable; }
    void read(Read done) override;
    void write(const QList<std::pair<PasteboardType, QByteArray>> &flavours,
               std::optional<qint64> ifCountIs, Written done) override;
    void restore(const QList<PasteboardItem> &items, std::optional<qint64> ifCountIs,
                 Written done) override;
    PasteboardUse use() const override { return used; }
    void onUseChange(std::function<void()> changed) override { m_useChanged = std::move(changed); }
    void finish(const QList<PasteboardItem> &original) override { finished = original; }

    /// What the user or another program copies.
    void copy(const QList<PasteboardItem> &items);
    void copyText(const QString &text, const QString &html = {});
    /// Others fetch what we own, or take it.
    void beUsed(const PasteboardUse &use);

    /// The text of that type in what is on the pasteboard.
    std::optional<QString> text(PasteboardType type) const;

    std::optional<QList<PasteboardItem>> contents = QList<PasteboardItem>();
    qint64 count = 0;
    int reads = 0;
    PasteboardUse used;
    std::function<void()> beforeWrite; ///< what happens just before a write is carried out
    std::optional<QList<PasteboardItem>> finished;
    QString unavailable;
    bool refusesWrites = false;
    std::shared_ptr<ManualDispatch> clock; ///< of the writes

private:
    void put(const QList<PasteboardItem> &items, std::optional<qint64> ifCountIs,
             const Written &done);
    PasteboardItem item(const QList<std::pair<PasteboardType, QByteArray>> &flavours) const;

    std::function<void()> m_useChanged;
    /// In the order of PasteboardType.
    const QList<QByteArray> names{"string", "html", "rtf", "rtfd", "url", "file", "table"};
};

class FakePasteKeys : public PasteKeys {
public:
    PasteAccess access() const override { return granted; }
    void requestAccess(std::function<void(const PasteAccess &)> done) override {
        ++requests;
        granted = answered.value_or(granted);
        done(granted);
    }
    std::optional<KeyLayout> layout() override { return keys; }
    void prepare() override { ++prepared; }
    void settle(std::function<void()> done) override {
        events.append(QStringLiteral("settle"));
        done();
    }
    void press(const PasteChord &chord, std::function<void(bool)> done) override {
        if (canPost)
            events.append(QStringLiteral(u"paste %1%2")
                              .arg(QString(chord.withShift ? QStringLiteral("Shift+") : QString()),
                                   QString::number(chord.vKey)));
        if (canPost && onPaste)
            onPaste();
        done(canPost);
    }
    std::optional<ScriptedPaste> scriptedPaste() const override {
        return ScriptedPaste{QStringLiteral("/usr/bin/keypresser"), {QStringLiteral("ctrl+v")}};
    }

    PasteAccess granted;
    std::optional<PasteAccess> answered; ///< what the user makes of it when asked
    bool canPost = true;
    std::optional<KeyLayout> keys;
    int requests = 0;
    int prepared = 0;
    QStringList events; ///< "settle", "paste 9", "paste Shift+9"
    std::function<void()> onPaste;
};

class FakeSecureInput : public SecureInput {
public:
    void check(std::chrono::milliseconds, std::function<void(Answer)> done) override {
        done(answer);
    }

    Answer answer = Answer::No;
};

class FakeFrontWindow : public FrontWindow {
public:
    void find(std::function<void(Kind)> done) override { done(kind); }

    Kind kind = Kind::Application;
};

class FakeHotkeys : public Hotkeys {
public:
    QString unavailableBecause() const override { return unavailable; }
    std::optional<DesktopsChoice> desktopsChoice() const override { return choice; }
    void bind(const QList<KeyCombo> &all, std::function<void()> pressed, std::function<void()>,
              Outcome outcome) override;
    void unbind() override { registered.clear(); }
    std::optional<quint32> virtualKey(quint32 scanCode) const override {
        return virtualKeys.contains(scanCode) ? std::optional(virtualKeys[scanCode]) : std::nullopt;
    }

    QList<std::pair<KeyCombo, std::function<void()>>> registered;
    QList<KeyCombo> taken;
    QString unavailable;
    std::optional<DesktopsChoice> choice;
    QHash<quint32, quint32> virtualKeys; ///< by native scan code
};

class FakeChildProcess : public ChildProcess {
public:
    void run(const QString &program, const QStringList &arguments,
             std::function<void(const ChildResult &)> done) override {
        runs.append(program + u' ' + arguments.join(u' '));
        done(result);
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
    void findServer(std::function<void(const QString &, const QString &)> done) override {
        done(failure.isEmpty() ? QStringLiteral("fake 1") : QString(), failure);
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
    bool isWritable() const override { return true; }
    void flush() override {
        ++flushes;
        onDisk = stored;
    }
    void onProblem(std::function<void(const QString &)>) override {}

    QVariantHash stored;
    QVariantHash onDisk; ///< what was stored at the last flush
    int flushes = 0;

private:
    template <class T>
    std::optional<T> as(const QString &key) const {
        const auto value = stored.constFind(key);
        if (value == stored.constEnd() || value->typeId() != qMetaTypeId<T>())
            return std::nullopt;
        return value->template value<T>();
    }
};

/// A keyring in memory that can be locked; its user answers the prompt when told to.
class MemorySecretStore : public SecretStore {
public:
    void add(const QString &service, const QString &account, const QByteArray &secret,
             std::function<void(Outcome)> done) override;
    void copy(const QString &service, const QString &account,
              std::function<void(const Answer &)> done,
              std::function<void()> waitsForUser) override;
    void remove(const QString &service, const QString &account,
                std::function<void(Outcome)> done) override;
    void cancelAll() override { m_requests.clear(); }
    void findState(std::function<void(State)> done) override {
        done(failure ? State::None : isLocked ? State::Locked : State::Ready);
    }

    bool isPrompting() const { return m_isPrompting; }
    /// The user unlocks the keyring or dismisses its prompt.
    void answerPrompt(bool unlock);

    QHash<QString, QByteArray> secrets; ///< by "service/account"
    bool isLocked = false;
    std::optional<Outcome> failure; ///< of every request, instead of what it would do
    bool refusesAdditions = false;
    int reads = 0;

private:
    struct Request {
        std::function<Answer()> perform;
        std::function<void(const Answer &)> done;
        std::function<void()> waitsForUser{};
        QString item{}; ///< "service/account" that has to be there; none for an addition
    };
    void ask(Request request);
    void runNext();
    void answer(const Answer &answer);

    std::list<Request> m_requests; ///< one at a time, the first is under way
    bool m_isPrompting = false;
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
    void cancelAll() override {}
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
    std::optional<bool> isAvailable() const override { return false; }
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
    std::shared_ptr<FakePasteKeys> pasteKeys = std::make_shared<FakePasteKeys>();
    std::shared_ptr<FakeSecureInput> secureInput = std::make_shared<FakeSecureInput>();
    std::shared_ptr<FakeFrontWindow> frontWindow = std::make_shared<FakeFrontWindow>();
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
