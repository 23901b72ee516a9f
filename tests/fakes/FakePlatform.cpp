#include "fakes/FakePlatform.h"

#include "clipboard/ClipboardRestorer.h"
#include "desktop/CurrentRun.h"
#include "platform/wording.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

std::shared_ptr<Semaphore> ManualDispatch::makeSemaphore() {
    struct ManualSemaphore : Semaphore {
        explicit ManualSemaphore(ManualDispatch &owner) : dispatch(owner) {}
        void signal() override { ++count; }
        bool wait(std::chrono::milliseconds timeout) override {
            if (count == 0)
                dispatch.m_now += timeout; // time passes for who waits in vain
            return count > 0 && count-- > 0;
        }
        ManualDispatch &dispatch;
        int count = 0;
    };
    return std::make_shared<ManualSemaphore>(*this);
}

WorkItem ManualDispatch::at(Clock::time_point time, Task task) {
    auto cancelled = std::make_shared<bool>(false);
    m_timers.emplace(time, [cancelled, task = std::move(task)] {
        if (!*cancelled)
            task();
    });
    return WorkItem(cancelled);
}

bool ManualDispatch::runNext() {
    Task task;
    if (!m_main.empty())
        task = m_main.takeFirst();
    else if (!m_background.empty())
        task = [this, work = m_background.takeFirst()] { onBackground(work); };
    else if (!m_timers.empty() && m_timers.begin()->first <= m_now)
        task = m_timers.extract(m_timers.begin()).mapped();
    else
        return false;
    task();
    return true;
}

void ManualDispatch::advance(std::chrono::milliseconds time) {
    const auto end = m_now + time;
    for (drain(); m_now < end; drain())
        m_now = m_timers.empty() ? end : std::min(end, m_timers.begin()->first);
}

void ManualDispatch::onBackground(const Task &task) {
    m_onMain = false;
    task();
    m_onMain = true;
}

std::optional<QString> FakePasteboard::text(PasteboardType type) const {
    for (const PasteboardItem &item : contents.value_or(QList<PasteboardItem>())) {
        for (const PasteboardRepresentation &one : item) {
            if (one.name == names.at(static_cast<int>(type)))
                return QString::fromUtf8(one.data);
        }
    }
    return std::nullopt;
}

void FakePasteboard::read(Read done) {
    ++reads;
    ClipboardContents read{count, text(PasteboardType::String), text(PasteboardType::Html),
                           contents};
    if (read.items) {
        for (PasteboardItem &item : *read.items)
            item.removeIf([this](const auto &one) { return !names.contains(one.name); });
    }
    done(read);
}

PasteboardItem
FakePasteboard::item(const QList<std::pair<PasteboardType, QByteArray>> &flavours) const {
    PasteboardItem item;
    for (const auto &[type, data] : flavours)
        item.append({names.at(static_cast<int>(type)), {}, data});
    return item;
}

void FakePasteboard::put(const QList<PasteboardItem> &items, std::optional<qint64> ifCountIs,
                         const Written &done) {
    if (beforeWrite)
        std::exchange(beforeWrite, nullptr)();
    if (refusesWrites || (ifCountIs && *ifCountIs != count)) {
        done(std::nullopt);
        return;
    }
    contents = items;
    used = {true, {}, false};
    done(PasteboardWrite{++count, clock->now()});
}

void FakePasteboard::write(const QList<std::pair<PasteboardType, QByteArray>> &flavours,
                           std::optional<qint64> ifCountIs, Written done) {
    put({item(flavours)}, ifCountIs, done);
}

void FakePasteboard::restore(const QList<PasteboardItem> &items, std::optional<qint64> ifCountIs,
                             Written done) {
    put(items, ifCountIs, done);
}

void FakePasteboard::copy(const QList<PasteboardItem> &items) {
    contents = items;
    ++count;
    beUsed({});
}

void FakePasteboard::copyText(const QString &text, const QString &html) {
    QList<std::pair<PasteboardType, QByteArray>> flavours{{PasteboardType::String, text.toUtf8()}};
    if (!html.isEmpty())
        flavours.append({PasteboardType::Html, html.toUtf8()});
    copy({item(flavours)});
}

void FakePasteboard::beUsed(const PasteboardUse &use) {
    used = use;
    if (const auto changed = m_useChanged)
        changed();
}

void FakeHotkeys::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                       std::function<void()>, Outcome outcome) {
    registered.clear();
    QList<Refusal> refusals;
    for (const KeyCombo &combo : all) {
        if (taken.contains(combo))
            refusals.append({combo, QStringLiteral("is taken by another program")});
        else
            registered.append({combo, pressed});
    }
    outcome(refusals);
}

void MemorySecretStore::add(const QString &service, const QString &account,
                            const QByteArray &secret, std::function<void(Outcome)> done) {
    const QString item = service + u'/' + account;
    ask({[this, item, secret]() -> Answer {
             if (refusesAdditions)
                 return {};
             secrets[item] = secret;
             return {Outcome::Done, {}};
         },
         [done = std::move(done)](const Answer &given) { done(given.outcome); }});
}

void MemorySecretStore::copy(const QString &service, const QString &account,
                             std::function<void(const Answer &)> done,
                             std::function<void()> waitsForUser) {
    const QString item = service + u'/' + account;
    ask({[this, item]() -> Answer {
             ++reads;
             return {Outcome::Done, secrets.value(item)};
         },
         std::move(done), std::move(waitsForUser)});
    m_requests.back().item = item;
}

void MemorySecretStore::remove(const QString &service, const QString &account,
                               std::function<void(Outcome)> done) {
    const QString item = service + u'/' + account;
    ask({[this, item]() -> Answer {
             secrets.remove(item);
             return {Outcome::Done, {}};
         },
         [done = std::move(done)](const Answer &given) { done(given.outcome); }});
    m_requests.back().item = item;
}

void MemorySecretStore::ask(Request request) {
    m_requests.push_back(std::move(request));
    if (m_requests.size() == 1)
        Platform::current().dispatch->toMain([this] { runNext(); });
}

void MemorySecretStore::runNext() {
    if (m_requests.empty()) // cancelled
        return;
    const Request &request = m_requests.front();
    if (failure) {
        answer({*failure, {}});
    } else if (!request.item.isEmpty() && !secrets.contains(request.item)) {
        answer({Outcome::Absent, {}});
    } else if (isLocked) {
        m_isPrompting = true;
        if (request.waitsForUser)
            request.waitsForUser();
    } else {
        answer(request.perform());
    }
}

void MemorySecretStore::answerPrompt(bool unlock) {
    m_isPrompting = false;
    isLocked = !unlock;
    answer(unlock ? m_requests.front().perform() : Answer{Outcome::Refused, {}});
}

void MemorySecretStore::answer(const Answer &answer) {
    const auto done = std::move(m_requests.front().done);
    m_requests.pop_front();
    if (!m_requests.empty())
        Platform::current().dispatch->toMain([this] { runNext(); });
    done(answer);
}

FakePlatform::FakePlatform() {
    pasteboard->clock = dispatch;
    Platform::install({dispatch, pasteboard, pasteKeys, secureInput, frontWindow, hotkeys,
                       childProcess, notifications, defaults, secretStore, alerts, workspace,
                       trayHost, urlSession, loginItems});
    CurrentRun::startAfresh();
    Settings::restart();
    setWording(macWording());
}

FakePlatform::~FakePlatform() {
    // Work that a test left queued runs out here, with nothing of the test's own any more.
    pasteKeys->onPaste = nullptr;
    takeLog();
    ClipboardRestorer::abandon();
    takeLog();
}

QStringList FakePlatform::takeLog() {
    QStringList messages;
    for (const LogStore::Entry &entry : LogStore::shared().entries())
        messages.append(entry.message);
    LogStore::shared().clear();
    dispatch->drain();
    return messages;
}
