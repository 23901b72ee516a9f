#include "bench/Benches.h"
#include "bench/Side.h"

namespace {

const QByteArray record = "507f1f77bcf86cd799439011";
const QByteArray recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";

constexpr int rounds = 40;

struct Format {
    QString name;
    QByteArray data;
    QStringList flavours; ///< those that Brindle owns; the last is the one that is pasted
};

Row benchFormat(const Format &format) {
    // A desktop each, so that both have the same key, and what one still does after a paste does
    // not meet the other.
    const QMap<QString, QString> settings{{"accountPasteFormat", format.name}};
    const QByteArray type = format.flavours.constLast().toLatin1();
    Side ours(settings, BRINDLE_PROGRAM);
    Side bare(settings, BARE_PASTE_PROGRAM,
              QStringList{QString::fromUtf8(format.data)} + format.flavours);
    QList<double> brindleTimes, floorTimes;
    for (int round = -1; round < rounds; ++round) {
        const double oursTook = ours.paste(record, type, format.data);
        const double bareTook = bare.paste(record, type, format.data);
        ours.waitForRestore(record);
        if (round < 0) // what happens once only belongs to no press
            continue;
        brindleTimes.append(oursTook);
        floorTimes.append(bareTook);
    }
    return ratioRow("Key press to text, record id, " + format.name, median(brindleTimes),
                    median(floorTimes), "ms", "1.2 at most");
}

} // namespace

QList<Row> benchPastes() {
    const QStringList text{"text/plain;charset=utf-8", "text/plain", "STRING", "TEXT",
                           "UTF8_STRING"};
    const QStringList rich =
        QStringList{"text/rtf", "application/rtf"} + text + QStringList{"text/html"};
    const QByteArray id = record;
    return {benchFormat({"urlOnly", recordLink, text}),
            benchFormat({"plainText", id + " (" + recordLink + ")", text}),
            benchFormat({"markdown", "[" + id + "](" + recordLink + ")", text}),
            benchFormat({"richLink", "<a href=\"" + recordLink + "\">" + id + "</a>", rich})};
}
