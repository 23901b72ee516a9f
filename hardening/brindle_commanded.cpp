// The product; each line on its input is the raw value of a format for links to records, assigned
// as the preferences assign it.

#include "app/Launch.h"
#include "platform/linux/LinuxPlatform.h"
#include "stage/JsonLines.h"
#include "storage/Settings.h"

#include <QApplication>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

void obey(const QByteArray &line) {
    const auto format = PasteFormats::fromRawValue(QString::fromLatin1(line.trimmed()));
    if (!format)
        return;
    Settings::shared().accountPasteFormat = *format;
    say(QStringLiteral("format"));
}

} // namespace

int main(int argc, char *argv[]) {
    const QApplication qt(argc, argv);
    nameApplication();
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&input] {
        char line[64]; // one is sent only when the one before has been answered
        const ssize_t length = read(STDIN_FILENO, line, sizeof line);
        input.setEnabled(length > 0);
        obey(QByteArray(line, std::max<ssize_t>(length, 0)));
    });
    return runBrindle(makeLinuxPlatform());
}
