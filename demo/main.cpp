// The demonstration: the real application at work on a private desktop, with a site of its own on
// loopback, seen from outside. Exit status 0 only if every step was right.
// Usage: brindle_demo [FOLDER FOR PICTURES]

#include "Demo.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    QString pictures = QCoreApplication::arguments().value(1);
    if (pictures.isEmpty()) {
        QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/brindle-demo-XXXXXX"));
        folder.setAutoRemove(false);
        pictures = folder.path();
    }
    if (!QDir().mkpath(pictures)) {
        std::fprintf(stderr, "Cannot make the folder %s\n", qUtf8Printable(pictures));
        return 1;
    }
    const bool isRight = Demo(pictures).play();
    std::puts(isRight ? "Every step was right." : "Something went wrong; see above.");
    return isRight ? 0 : 1;
}
