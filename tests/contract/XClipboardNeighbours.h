#pragma once

#include "contract/PasteboardContract.h"
#include "stage/Actors.h"
#include "stage/ClipboardReader.h"

/// Programs on an X display.
class XClipboardNeighbours : public ClipboardNeighbours {
public:
    explicit XClipboardNeighbours(const VirtualDesktop &desktop) : m_desktop(desktop) {}

    void copy(const QString &text, const QString &html) override {
        QList<OwnedFlavour> flavours{{"UTF8_STRING", text.toUtf8()}};
        if (!html.isEmpty())
            flavours.prepend({"text/html", html.toUtf8()});
        m_owner = std::make_unique<ClipboardOwner>(m_desktop, flavours);
    }

    QStringList paste() override {
        ClipboardReader reader(m_desktop.display(), 15000);
        QStringList pasted;
        for (const char *name : {"UTF8_STRING", "text/html"})
            pasted.append(QString::fromUtf8(reader.data(name).value_or("(nothing)")));
        return pasted;
    }

private:
    const VirtualDesktop &m_desktop;
    std::unique_ptr<ClipboardOwner> m_owner;
};
