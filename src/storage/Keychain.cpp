#include "storage/Keychain.h"

#include "model/Text.h"
#include "platform/Platform.h"

#include <QStringDecoder>

namespace {

Keychain::TokenAnswer read(const SecretStore::Answer &answer) {
    if (answer.outcome != Keychain::Outcome::Done)
        return {answer.outcome, {}};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString token = decoder(answer.secret);
    if (decoder.hasError())
        return {Keychain::Outcome::Absent, {}};
    return {Keychain::Outcome::Done, Text::trimmed(token)};
}

} // namespace

void Keychain::saveToken(const QString &token, const QString &account,
                         std::function<void(Outcome)> done) {
    deleteToken(account, [token, account, done = std::move(done)](Outcome outcome) {
        // What could not be taken out is not to be doubled, nor is the user to be asked twice.
        if (outcome == Outcome::Done || outcome == Outcome::Absent)
            Platform::current().secretStore->add(AppInfo::keychainService(), account,
                                                 token.toUtf8(), done);
        else
            done(outcome);
    });
}

void Keychain::loadToken(const QString &account, std::function<void(const TokenAnswer &)> done,
                         std::function<void()> waitsForUser) {
    Platform::current().secretStore->copy(
        AppInfo::keychainService(), account,
        [done = std::move(done)](const SecretStore::Answer &answer) { done(read(answer)); },
        std::move(waitsForUser));
}

void Keychain::deleteToken(const QString &account, std::function<void(Outcome)> done) {
    Platform::current().secretStore->remove(AppInfo::keychainService(), account, std::move(done));
}
