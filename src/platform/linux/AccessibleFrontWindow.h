#pragma once

#include "platform/Dispatch.h"
#include "platform/FrontWindow.h"

#include <memory>

/// The application whose window calls itself active on the accessibility bus.
class AccessibleFrontWindow : public FrontWindow {
public:
    explicit AccessibleFrontWindow(std::shared_ptr<Dispatch> dispatch);

    void find(std::function<void(Kind)> done) override;

private:
    std::shared_ptr<Dispatch> m_dispatch;
};
