#pragma once

#include "platform/FrontWindow.h"
#include "platform/Hotkeys.h"
#include "platform/PasteKeys.h"
#include "platform/Pasteboard.h"
#include "platform/SecureInput.h"

/// What stands in for a capability that this desktop does not offer, and says why. The rest of the
/// program works with any of them.

class UnavailablePasteboard : public Pasteboard {
public:
    explicit UnavailablePasteboard(const QString &reason) : m_reason(reason) {}

    QString unavailableBecause() const override { return m_reason; }
    void read(Read done) override { done({}); }
    void write(const QList<std::pair<PasteboardType, QByteArray>> &, std::optional<qint64>,
               Written done) override {
        done(std::nullopt);
    }
    void restore(const QList<PasteboardItem> &, std::optional<qint64>, Written done) override {
        done(std::nullopt);
    }
    PasteboardUse use() const override { return {}; }
    void onUseChange(std::function<void()>) override {}
    void finish(const QList<PasteboardItem> &) override {}

private:
    QString m_reason;
};

class UnavailablePasteKeys : public PasteKeys {
public:
    explicit UnavailablePasteKeys(const QString &reason)
        : m_access{PasteAccess::State::Impossible, reason} {}

    PasteAccess access() const override { return m_access; }
    void requestAccess(std::function<void(const PasteAccess &)> done) override { done(m_access); }
    std::optional<KeyLayout> layout() override { return std::nullopt; }
    void settle(std::function<void()> done) override { done(); }
    void press(const PasteChord &, std::function<void(bool)> done) override { done(false); }
    std::optional<ScriptedPaste> scriptedPaste() const override { return std::nullopt; }

private:
    PasteAccess m_access;
};

class UnavailableHotkeys : public Hotkeys {
public:
    explicit UnavailableHotkeys(const QString &reason) : m_reason(reason) {}

    QString unavailableBecause() const override { return m_reason; }
    void bind(const QList<KeyCombo> &all, std::function<void()>, std::function<void()>,
              Outcome outcome) override {
        QList<Refusal> refusals;
        for (const KeyCombo &combo : all)
            refusals.append({combo, QStringLiteral("can't be had: ") + m_reason});
        outcome(refusals);
    }
    void unbind() override {}
    std::optional<quint32> virtualKey(quint32) const override { return std::nullopt; }

private:
    QString m_reason;
};

class UnavailableSecureInput : public SecureInput {
public:
    void check(std::chrono::milliseconds, std::function<void(Answer)> done) override {
        done(Answer::Unknown);
    }
};

class UnavailableFrontWindow : public FrontWindow {
public:
    void find(std::function<void(Kind)> done) override { done(Kind::Unknown); }
};
