#include "bench/Benches.h"
#include "bench/Side.h"

namespace {

const QByteArray record = "507f1f77bcf86cd799439011";
const QByteArray recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";

constexpr int rounds = 40;

Row benchFormat(const QString &what, const QString &format, const QByteArray &type) {
    // A desktop each, so that both have the same key, and what one still does after a paste does
    // not meet the other.
    const QMap<QString, QString> settings{{"accountPasteFormat", format}};
    Side ours(settings, BRINDLE_PROGRAM);
    Side bare(settings, BARE_PASTE_PROGRAM, {type});
    QList<double> brindleTimes, floorTimes;
    for (int round = -1; round < rounds; ++round) {
        const double oursTook = ours.paste(record, type, recordLink);
        const double bareTook = bare.paste(record, type, recordLink);
        ours.waitForRestore(record);
        if (round < 0) // what happens once only belongs to no press
            continue;
        brindleTimes.append(oursTook);
        floorTimes.append(bareTook);
    }
    return ratioRow(what, median(brindleTimes), median(floorTimes), "ms", "1.25 at most");
}

} // namespace

QList<Row> benchPastes() {
    return {benchFormat("Key press to text, record id, URL only", "urlOnly", "UTF8_STRING"),
            benchFormat("Key press to text, record id, rich link", "richLink", "text/html")};
}
