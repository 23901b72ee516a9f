#include "platform/linux/AccessibleFrontWindow.h"

#include "platform/linux/AccessibleFocus.h"
#include "platform/linux/Terminals.h"

#include <utility>

namespace {

/// A paste may wait for the answer.
constexpr std::chrono::milliseconds longestLook{100};

FrontWindow::Kind kindOf(const QString &application) {
    if (application.isEmpty())
        return FrontWindow::Kind::Unknown;
    return Terminals::isTerminal(application.toUtf8()) ? FrontWindow::Kind::Terminal
                                                       : FrontWindow::Kind::Application;
}

} // namespace

AccessibleFrontWindow::AccessibleFrontWindow(std::shared_ptr<Dispatch> dispatch)
    : m_dispatch(std::move(dispatch)) {}

void AccessibleFrontWindow::find(std::function<void(Kind)> done) {
    m_dispatch->toBackground([dispatch = m_dispatch.get(), done = std::move(done)] {
        const QString name = AccessibleFocus::activeApplication(longestLook);
        dispatch->toMain([done, kind = kindOf(name)] { done(kind); });
    });
}
