#include "app/ActivationToken.h"

namespace {

constexpr const char *variable = "XDG_ACTIVATION_TOKEN";
const QString key = QStringLiteral("activation-token");

} // namespace

ActivationToken::ActivationToken(const QVariantMap &platformData) {
    // Launchers from before the key of its own put it under that of X11.
    const QVariant token =
        platformData.value(key, platformData[QStringLiteral("desktop-startup-id")]);
    if (const QByteArray bytes = token.toString().toUtf8(); !bytes.isEmpty())
        qputenv(variable, bytes);
}

ActivationToken::~ActivationToken() {
    drop();
}

QVariantMap ActivationToken::platformData() {
    const QString token = qEnvironmentVariable(variable);
    return token.isEmpty() ? QVariantMap() : QVariantMap{{key, token}};
}

bool ActivationToken::isThere() {
    return !qEnvironmentVariableIsEmpty(variable);
}

void ActivationToken::drop() {
    qunsetenv(variable);
}
