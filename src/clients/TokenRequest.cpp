#include "clients/TokenRequest.h"

void TokenRequest::start(const QString &account, const Steps &steps) {
    const auto answered = [steps](const Keychain::TokenAnswer &answer) {
        if (answer.token.isEmpty()) {
            steps.withoutToken(answer);
            return;
        }
        if (steps.maySend && !steps.maySend(answer))
            return;
        Platform::current().dispatch->toBackground(
            [send = steps.send, token = answer.token] { send(token); });
        if (steps.sent)
            steps.sent();
    };
    Keychain::loadToken(account, answered, steps.waitsForUser);
}
