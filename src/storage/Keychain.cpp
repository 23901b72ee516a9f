#include "storage/Keychain.h"

#include "model/Text.h"
#include "platform/Platform.h"

#include <QStringDecoder>

bool Keychain::saveToken(const QString &token, const QString &account) {
    SecretStore &store = *Platform::current().secretStore;
    store.remove(AppInfo::keychainService(), account);
    return store.add(AppInfo::keychainService(), account, token.toUtf8());
}

std::optional<QString> Keychain::loadToken(const QString &account) {
    const auto bytes = Platform::current().secretStore->copy(AppInfo::keychainService(), account);
    if (!bytes)
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString token = decoder(*bytes);
    if (decoder.hasError())
        return std::nullopt;
    return Text::trimmed(token);
}

void Keychain::deleteToken(const QString &account) {
    Platform::current().secretStore->remove(AppInfo::keychainService(), account);
}
