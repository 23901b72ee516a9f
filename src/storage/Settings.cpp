#include "storage/Settings.h"

#include "model/HotkeyFormat.h"
#include "platform/Platform.h"
#include "platform/wording.h"

#include <QTimeZone>

#include <cmath>
#include <limits>
#include <memory>

namespace {

using HotkeyFormat::defaultHotkey;

Defaults &store() {
    return *Platform::current().defaults;
}

auto text(const QString &whenMissing = {}) {
    return [whenMissing](const Defaults &defaults, const QString &key) {
        return defaults.string(key).value_or(whenMissing);
    };
}

auto textNotEmpty(const QString &otherwise) {
    return [otherwise](const Defaults &defaults, const QString &key) {
        const QString stored = defaults.string(key).value_or(QString());
        return stored.isEmpty() ? otherwise : stored;
    };
}

auto unsigned32(quint32 insteadOfZero) {
    return [insteadOfZero](const Defaults &defaults, const QString &key) {
        const qint64 stored = defaults.integer(key).value_or(0);
        const bool fits = stored > 0 && stored <= std::numeric_limits<quint32>::max();
        return fits ? static_cast<quint32>(stored) : insteadOfZero;
    };
}

std::optional<PasteFormat> storedFormat(const Defaults &defaults, const QString &key) {
    return PasteFormats::fromRawValue(defaults.string(key).value_or(QString()));
}

PasteFormat loadLinkFormat(const Defaults &defaults, const QString &key) {
    const PasteFormat format = storedFormat(defaults, key).value_or(PasteFormat::RichLink);
    return format == PasteFormat::UrlOnly ? PasteFormat::RichLink : format;
}

PasteFormat loadAccountFormat(const Defaults &defaults, const QString &key) {
    return storedFormat(defaults, key).value_or(PasteFormat::UrlOnly);
}

QList<TypeEmojiMapping> loadMappings(const Defaults &defaults, const QString &key) {
    const auto bytes = defaults.data(key);
    const auto mappings = bytes ? decodeTypeEmojiMappings(*bytes) : std::nullopt;
    return mappings.value_or(Settings::defaultTypeEmojiMappings());
}

std::optional<QDateTime> loadDate(const Defaults &defaults, const QString &key) {
    const double seconds = defaults.real(key).value_or(0);
    // The largest instant a QDateTime holds is far beyond this; a NaN fails the comparison too.
    constexpr double latest = 1e14;
    if (!(seconds > 0 && seconds < latest))
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000), QTimeZone::utc());
}

std::unique_ptr<Settings> &slot() {
    static std::unique_ptr<Settings> settings;
    return settings;
}

} // namespace

std::optional<QVariant> storedForm(const QString &value) {
    return value;
}
std::optional<QVariant> storedForm(quint32 value) {
    return static_cast<qint64>(value);
}
std::optional<QVariant> storedForm(bool value) {
    return value;
}
std::optional<QVariant> storedForm(PasteFormat value) {
    return PasteFormats::rawValue(value);
}

std::optional<QVariant> storedForm(const QList<TypeEmojiMapping> &value) {
    return encodeTypeEmojiMappings(value);
}

std::optional<QVariant> storedForm(const std::optional<QDateTime> &value) {
    if (!value)
        return std::nullopt;
    return static_cast<double>(value->toMSecsSinceEpoch()) / 1000;
}

template <class T>
Setting<T>::Setting(Settings &owner, const QString &key, const Load &load, AfterStore afterStore)
    : m_owner(owner), m_key(key), m_value(load(store(), key)), m_afterStore(afterStore) {}

template <class T>
Setting<T> &Setting<T>::operator=(T value) {
    assign(std::move(value));
    m_owner.flush();
    return *this;
}

template <class T>
void Setting<T>::type(T value) {
    if (value == m_value)
        return;
    assign(std::move(value));
    m_owner.flushSoon();
}

template <class T>
void Setting<T>::assign(T value) {
    const T previous = std::exchange(m_value, std::move(value));
    if (const auto stored = storedForm(m_value))
        store().set(m_key, *stored);
    else
        store().remove(m_key);
    if (m_afterStore)
        (m_owner.*m_afterStore)(previous);
    Q_EMIT m_owner.didChange();
}

template class Setting<QString>;
template class Setting<quint32>;
template class Setting<bool>;
template class Setting<PasteFormat>;
template class Setting<QList<TypeEmojiMapping>>;
template class Setting<std::optional<QDateTime>>;

Settings &Settings::shared() {
    if (!slot())
        slot().reset(new Settings);
    return *slot();
}

void Settings::restart() {
    slot().reset();
}

Settings::~Settings() {
    m_flush.cancel();
}

const QList<TypeEmojiMapping> &Settings::defaultTypeEmojiMappings() {
    return ::defaultTypeEmojiMappings();
}

Settings::Settings()
    : baseURL(*this, QStringLiteral("jiraBaseURL"), text(), &Settings::forgetCloudIdIfMoved),
      email(*this, QStringLiteral("jiraEmail"), text()),
      cloudId(*this, QStringLiteral("jiraCloudId"), text()),
      hotkeyKeyCode(*this, QStringLiteral("hotkeyKeyCode"), unsigned32(defaultHotkey.keyCode)),
      hotkeyModifiers(*this, QStringLiteral("hotkeyModifiers"),
                      unsigned32(defaultHotkey.modifiers)),
      hotkey2KeyCode(*this, QStringLiteral("hotkey2KeyCode"), unsigned32(0)),
      hotkey2Modifiers(*this, QStringLiteral("hotkey2Modifiers"), unsigned32(0)),
      displayTemplate(*this, QStringLiteral("displayTemplate"),
                      textNotEmpty(defaultDisplayTemplate())),
      confluenceTemplate(*this, QStringLiteral("confluenceTemplate"),
                         textNotEmpty(defaultConfluenceTemplate())),
      accountBaseURL(*this, QStringLiteral("accountBaseURL"), text(defaultAccountBaseURL())),
      pasteFormat(*this, QStringLiteral("pasteFormat"), loadLinkFormat),
      accountPasteFormat(*this, QStringLiteral("accountPasteFormat"), loadAccountFormat),
      restoreClipboardAfterPaste(*this, QStringLiteral("restoreClipboardAfterPaste"),
                                 [](const Defaults &defaults, const QString &key) {
                                     return defaults.boolean(key).value_or(true);
                                 }),
      toldWithoutTray(*this, QStringLiteral("toldWithoutTray"),
                      [](const Defaults &defaults, const QString &key) {
                          return defaults.boolean(key).value_or(false);
                      }),
      commentEmoji(*this, QStringLiteral("commentEmoji"), text(QStringLiteral(u"\U0001F4AC"))),
      typeEmojiMappings(*this, QStringLiteral("typeEmojiMappings"), loadMappings),
      tokenSavedAt(*this, QStringLiteral("tokenSavedAt"), loadDate) {}

void Settings::forgetCloudIdIfMoved(const QString &previousBaseURL) {
    if (baseURL() != previousBaseURL)
        cloudId.assign(QString());
}

void Settings::flush() {
    m_flush.cancel();
    store().flush();
}

void Settings::flushSoon() {
    constexpr std::chrono::milliseconds pause(500);
    if (!m_flush)
        m_flush = Platform::current().dispatch->after(pause, [this] { flush(); });
}

std::optional<qint64> Settings::daysSinceTokenSaved() const {
    if (!tokenSavedAt())
        return std::nullopt;
    constexpr qint64 millisecondsPerDay = qint64{86400} * 1000;
    const qint64 age = tokenSavedAt()->msecsTo(Platform::current().dispatch->wallTime());
    return std::max<qint64>(0, age / millisecondsPerDay);
}

bool Settings::tokenIsAging() const {
    return daysSinceTokenSaved().value_or(0) >= tokenRotateNudgeAfterDays;
}

QString Settings::hotkeyDisplay() const {
    return wording().describeHotkey(hotkeyKeyCode(), hotkeyModifiers());
}

bool Settings::hotkey2IsSet() const {
    return hotkey2KeyCode() != 0 && hotkey2Modifiers() != 0;
}

QString Settings::hotkey2Display() const {
    return hotkey2IsSet() ? wording().describeHotkey(hotkey2KeyCode(), hotkey2Modifiers())
                          : QStringLiteral("Not set");
}
