#pragma once

#include "platform/FrontWindow.h"
#include "platform/x11/X11Connection.h"

#include <memory>

/// The window in focus by its WM_CLASS.
class X11FrontWindow : public FrontWindow {
public:
    explicit X11FrontWindow(std::shared_ptr<X11Connection> x11);

    void find(std::function<void(Kind)> done) override;

private:
    Kind kind() const;

    std::shared_ptr<X11Connection> m_x11;
};
