#include "fakes/FakePlatform.h"

#include "clipboard/ClipboardRestorer.h"
#include "platform/wording.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

std::shared_ptr<Semaphore> ManualDispatch::makeSemaphore() {
    struct ManualSemaphore : Semaphore {
        explicit ManualSemaphore(ManualDispatch &owner) : dispatch(owner) {}
        void signal() override { ++count; }
        bool wait(std::chrono::milliseconds timeout) override {
            if (count == 0)
                dispatch.sleepUntil(dispatch.now() + timeout); // time passes for who waits in vain
            return count > 0 && count-- > 0;
        }
        ManualDispatch &dispatch;
        int count = 0;
    };
    return std::make_shared<ManualSemaphore>(*this);
}

WorkItem ManualDispatch::after(std::chrono::milliseconds delay, Task task) {
    auto cancelled = std::make_shared<bool>(false);
    m_timers.emplace(m_now + delay, [cancelled, task = std::move(task)] {
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

std::optional<QString> FakePasteboard::text(PasteboardType type) {
    for (const PasteboardItem &item : contents.value_or(QList<PasteboardItem>())) {
        for (const PasteboardRepresentation &one : item) {
            if (one.name == names.at(static_cast<int>(type)))
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
        all.emplace_back();
        for (const PasteboardRepresentation &one : item) {
            all.last().append({one.name, {}});
            if (const auto type = names.indexOf(one.name); type >= 0)
                all.last().last().type = static_cast<PasteboardType>(type);
        }
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
        item.append({names.at(static_cast<int>(type)), {}, data});
    restore({item});
}

void FakePasteboard::copyText(const QString &text, const QString &html) {
    write({{PasteboardType::String, text.toUtf8()}});
    if (!html.isEmpty())
        contents->first().append({"html", {}, html.toUtf8()});
}

FakePlatform::FakePlatform() {
    Platform::install({dispatch, pasteboard, keyboard, hotkeys, childProcess, notifications,
                       defaults, secretStore, alerts, workspace, trayHost, urlSession, loginItems});
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
