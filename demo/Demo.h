#pragma once

#include "stage/Workplace.h"

#include <QImage>
#include <QString>

/// One thing the user of the demonstration copies, and what is to come of it.
struct DemoStep {
    QString name;
    QString copied;          ///< as plain text
    QString copiedHtml = {}; ///< empty when only plain text is copied
    QString link;            ///< the address that is to be pasted
    QString title;           ///< and the text before it
    QString styledTitle;     ///< the same as HTML
};

/// A user at a private desktop with Brindle running and an editor in front, who copies links and
/// presses the hotkey. Everything is printed as it happens.
class Demo {
public:
    /// Pictures go into `pictures`, which must exist.
    explicit Demo(const QString &pictures);

    /// Plays it to the end; whether every step was right.
    bool play();

private:
    bool isUp();
    bool playStep(const DemoStep &step);
    bool clipboardBecomes(const DemoStep &step);
    bool showWindow(const QString &action, const QString &title, const QString &file);
    bool takePicture(const QString &title, const QString &file, const QImage &before = {});
    void printLog();

    QString m_pictures;
    Workplace m_desk;
};
