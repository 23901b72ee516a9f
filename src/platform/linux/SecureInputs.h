#pragma once

#include "platform/Dispatch.h"
#include "platform/SecureInput.h"

#include <memory>
#include <vector>

/// Several looks at once: one that finds something decides at once; without, all must have looked.
class SecureInputs : public SecureInput {
public:
    SecureInputs(std::shared_ptr<Dispatch> dispatch,
                 std::vector<std::shared_ptr<SecureInput>> looks);

    void check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) override;

private:
    std::shared_ptr<Dispatch> m_dispatch;
    std::vector<std::shared_ptr<SecureInput>> m_looks;
};

/// Whether the object in focus calls itself a password field on the accessibility bus.
class AccessiblePasswordField : public SecureInput {
public:
    explicit AccessiblePasswordField(std::shared_ptr<Dispatch> dispatch);

    void check(std::chrono::milliseconds deadline, std::function<void(Answer)> done) override;

private:
    std::shared_ptr<Dispatch> m_dispatch;
};
