#include "platform/linux/SecureInputs.h"

#include "platform/linux/AccessibleFocus.h"

#include <utility>

SecureInputs::SecureInputs(std::shared_ptr<Dispatch> dispatch,
                           std::vector<std::shared_ptr<SecureInput>> looks)
    : m_dispatch(std::move(dispatch)), m_looks(std::move(looks)) {}

void SecureInputs::check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) {
    struct State {
        std::function<void(Answer)> done;
        size_t outstanding;
        Answer answer = Answer::No; ///< the gravest so far
        WorkItem timeOut;
    };
    const auto state = std::make_shared<State>(State{std::move(done), m_looks.size(), {}, {}});
    const auto decide = [state](Answer answer) {
        state->timeOut.cancel();
        if (const auto tell = std::exchange(state->done, nullptr))
            tell(answer);
    };
    state->timeOut = m_dispatch->after(deadline, [decide] { decide(Answer::Unknown); });
    for (const auto &look : m_looks) {
        look->check(deadline, [state, decide](Answer answer) {
            --state->outstanding;
            if (answer == Answer::Unknown)
                state->answer = answer;
            if (answer == Answer::Yes || state->outstanding == 0)
                decide(answer == Answer::Yes ? answer : state->answer);
        });
    }
}

AccessiblePasswordField::AccessiblePasswordField(std::shared_ptr<Dispatch> dispatch)
    : m_dispatch(std::move(dispatch)) {}

void AccessiblePasswordField::check(std::chrono::milliseconds deadline,
                                    std::function<void(Answer)> done) {
    m_dispatch->toBackground([dispatch = m_dispatch.get(), deadline, done = std::move(done)] {
        const bool isPassword = AccessibleFocus::isPasswordField(deadline);
        dispatch->toMain([done, isPassword] { done(isPassword ? Answer::Yes : Answer::No); });
    });
}
