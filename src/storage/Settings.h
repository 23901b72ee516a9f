#pragma once

#include "platform/Dispatch.h"
#include "storage/Setting.h"

#include <QObject>

/// Every preference that is not a secret. Loaded once on first use; each assignment is on disk at
/// once, what is typed a little later. Main thread only.
class Settings : public QObject {
    Q_OBJECT

public:
    static Settings &shared();

    /// Drops the instance, so that the next use loads afresh. For tests.
    static void restart();

    ~Settings() override;

    static QString defaultDisplayTemplate() { return QStringLiteral("{key} - {TYPE} - {summary}"); }
    static QString defaultConfluenceTemplate() { return QStringLiteral(u"{title} \u2014 {space}"); }
    static QString defaultAccountBaseURL() { return {}; }
    static const QList<TypeEmojiMapping> &defaultTypeEmojiMappings();
    static constexpr qint64 tokenRotateNudgeAfterDays = 80;

    Setting<QString> baseURL;
    Setting<QString> email;
    Setting<QString> cloudId;
    Setting<quint32> hotkeyKeyCode;
    Setting<quint32> hotkeyModifiers;
    Setting<quint32> hotkey2KeyCode;
    Setting<quint32> hotkey2Modifiers;
    Setting<QString> displayTemplate;
    Setting<QString> confluenceTemplate;
    Setting<QString> accountBaseURL;
    Setting<PasteFormat> pasteFormat;
    Setting<PasteFormat> accountPasteFormat;
    Setting<bool> restoreClipboardAfterPaste;
    Setting<bool> toldWithoutTray; ///< where Brindle is to be found without its icon
    Setting<QString> commentEmoji;
    Setting<QList<TypeEmojiMapping>> typeEmojiMappings;
    Setting<std::optional<QDateTime>> tokenSavedAt;

    /// Whole days since the Jira token was saved, never negative; nothing when there is no date.
    std::optional<qint64> daysSinceTokenSaved() const;
    bool tokenIsAging() const;

    /// Has on disk what was typed. To be called when a field is left.
    void flush();

    QString hotkeyDisplay() const;
    bool hotkey2IsSet() const;
    QString hotkey2Display() const;

Q_SIGNALS:
    /// A property has been assigned.
    void didChange();

private:
    template <class T>
    friend class Setting;

    Settings();
    void forgetCloudIdIfMoved(const QString &previousBaseURL);
    void flushSoon();

    WorkItem m_flush; ///< of what was typed
};
