#include "fakes/FakePlatform.h"

#include "clipboard/ClipboardRestorer.h"
#include "platform/wording.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

namespace {

/// Time passes for who waits in vain.
class ManualSemaphore : public Semaphore {
public:
    explicit ManualSemaphore(ManualDispatch &dispatch) : m_dispatch(dispatch) {}
    void signal() override { ++m_count; }
    bool wait(std::chrono::milliseconds timeout) override {
        if (m_count > 0) {
            --m_count;
            return true;
        }
        m_dispatch.sleepUntil(m_dispatch.now() + timeout);
        return false;
    }

private:
    ManualDispatch &m_dispatch;
    int m_count = 0;
};

} // namespace

std::shared_ptr<Semaphore> ManualDispatch::makeSemaphore() {
    return std::make_shared<ManualSemaphore>(*this);
}

WorkItem ManualDispatch::after(std::chrono::milliseconds delay, Task task) {
    auto cancelled = std::make_shared<bool>(false);
    m_timers.append({m_now + delay, cancelled, std::move(task)});
    return WorkItem(cancelled);
}

bool ManualDispatch::runDueTimer() {
    for (qsizetype i = 0; i < m_timers.size(); ++i) {
        if (m_timers[i].due > m_now)
            continue;
        const Timer timer = m_timers.takeAt(i);
        if (!*timer.cancelled)
            timer.task();
        return true;
    }
    return false;
}

void ManualDispatch::drain() {
    for (;;) {
        if (!m_main.empty()) {
            const Task task = std::move(m_main.front());
            m_main.pop_front();
            task();
        } else if (!m_background.empty()) {
            const Task task = std::move(m_background.front());
            m_background.pop_front();
            onBackground(task);
        } else if (!runDueTimer()) {
            return;
        }
    }
}

void ManualDispatch::advance(std::chrono::milliseconds time) {
    const auto end = m_now + time;
    drain();
    for (;;) {
        auto next = end;
        for (const Timer &timer : m_timers)
            next = std::min(next, timer.due);
        m_now = std::max(m_now, next);
        drain();
        if (m_now >= end)
            return;
    }
}

void ManualDispatch::onBackground(const Task &task) {
    m_onMain = false;
    task();
    m_onMain = true;
}

QByteArray FakePasteboard::nameOf(PasteboardType type) {
    static const QList<QByteArray> names{"string", "html", "rtf", "rtfd", "url", "file", "table"};
    return names.at(static_cast<int>(type));
}

std::optional<QString> FakePasteboard::text(PasteboardType type) {
    for (const PasteboardItem &item : contents.value_or(QList<PasteboardItem>())) {
        for (const PasteboardRepresentation &one : item) {
            if (one.name == nameOf(type))
                return QString::fromUtf8(one.data);
        }
    }
    return std::nullopt;
}

std::optional<QList<QList<PasteboardOffer>>> FakePasteboard::items() {
    if (!contents)
        return std::nullopt;
    QList<QList<PasteboardOffer>> all;
    for (const PasteboardItem &item : *contents) {
        QList<PasteboardOffer> offers;
        for (const PasteboardRepresentation &one : item) {
            std::optional<PasteboardType> type;
            for (int i = 0; i <= static_cast<int>(PasteboardType::TabularText); ++i) {
                if (nameOf(static_cast<PasteboardType>(i)) == one.name)
                    type = static_cast<PasteboardType>(i);
            }
            offers.append({one.name, type});
        }
        all.append(offers);
    }
    return all;
}

PasteboardItem FakePasteboard::read(qsizetype item, const QList<PasteboardOffer> &offers) {
    PasteboardItem given;
    for (const PasteboardOffer &offer : offers) {
        for (const PasteboardRepresentation &one : contents->at(item)) {
            if (one.name == offer.name)
                given.append(one);
        }
    }
    return given;
}

void FakePasteboard::write(const QList<std::pair<PasteboardType, QByteArray>> &flavours) {
    PasteboardItem item;
    for (const auto &[type, data] : flavours)
        item.append({nameOf(type), {}, data});
    copy({item});
}

void FakePasteboard::restore(const QList<PasteboardItem> &items) {
    copy(items);
}

void FakePasteboard::copy(const QList<PasteboardItem> &items) {
    contents = items;
    ++count;
}

void FakePasteboard::copyText(const QString &text, const QString &html) {
    PasteboardItem item{{"string", {}, text.toUtf8()}};
    if (!html.isEmpty())
        item.append({"html", {}, html.toUtf8()});
    copy({item});
}

bool FakeKeyboard::postPaste(quint16 vKey) {
    if (!canPost)
        return false;
    events.append(QStringLiteral("paste %1").arg(vKey));
    if (onPaste)
        onPaste();
    return true;
}

std::optional<quint32> FakeHotkeys::virtualKey(quint32 nativeScanCode) const {
    const auto found = virtualKeys.constFind(nativeScanCode);
    return found == virtualKeys.constEnd() ? std::nullopt : std::optional(*found);
}

bool FakeHotkeys::add(const KeyCombo &combo, std::function<void()> pressed) {
    if (taken.contains(combo))
        return false;
    registered.append({combo, std::move(pressed)});
    return true;
}

ChildResult FakeChildProcess::run(const QString &program, const QStringList &arguments) {
    runs.append(program + u' ' + arguments.join(u' '));
    return result;
}

void FakeNotifications::show(const QString &title, const QString &body,
                             std::function<void(const QString &)> failed) {
    if (!failure.isEmpty())
        failed(failure);
    else
        shown.append(title + u'|' + body);
}

bool MemorySecretStore::add(const QString &service, const QString &account,
                            const QByteArray &secret) {
    if (refusesAdditions)
        return false;
    secrets.insert(service + u'/' + account, secret);
    return true;
}

std::optional<QByteArray> MemorySecretStore::copy(const QString &service, const QString &account) {
    ++reads;
    const auto found = secrets.constFind(service + u'/' + account);
    return found == secrets.constEnd() ? std::nullopt : std::optional(*found);
}

void MemorySecretStore::remove(const QString &service, const QString &account) {
    secrets.remove(service + u'/' + account);
}

UrlSession::TaskId FakeUrlSession::start(const UrlRequest &request, Completion completion) {
    requests.append(request);
    const auto answer = answers.constFind(request.url.toString(QUrl::FullyEncoded));
    if (answer != answers.constEnd())
        completion(*answer);
    return static_cast<TaskId>(requests.size());
}

FakePlatform::FakePlatform() {
    Platform platform;
    platform.dispatch = dispatch;
    platform.pasteboard = pasteboard;
    platform.keyboard = keyboard;
    platform.hotkeys = hotkeys;
    platform.childProcess = childProcess;
    platform.notifications = notifications;
    platform.defaults = defaults;
    platform.secretStore = secretStore;
    platform.alerts = alerts;
    platform.workspace = workspace;
    platform.urlSession = urlSession;
    platform.loginItems = loginItems;
    platform.trayHost = std::make_shared<FakeTrayHost>();
    Platform::install(std::move(platform));
    Settings::restart();
    setWording(macWording());
}

FakePlatform::~FakePlatform() {
    // Work that a test left queued runs out here, with nothing of the test's own any more.
    keyboard->onPaste = nullptr;
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
