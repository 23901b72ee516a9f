#include "bench/Benches.h"
#include "bench/Side.h"

namespace {

const QByteArray record = "507f1f77bcf86cd799439011";
const QByteArray recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";

constexpr int rounds = 9;

/// The median of some presses with these flavours beside the text.
double press(Side &side, const QList<OwnedFlavour> &flavours) {
    QList<double> times;
    for (int round = 0; round < rounds; ++round) {
        times.append(side.paste(record, "UTF8_STRING", recordLink, flavours));
        side.waitForRestore(record);
    }
    return median(times);
}

QList<OwnedFlavour> manyFlavours(int count) {
    QList<OwnedFlavour> flavours;
    for (int i = 0; i < count; ++i)
        flavours.append({"text/x-flavour-" + QByteArray::number(i), QByteArray(1000, 'x')});
    return flavours;
}

} // namespace

QList<Row> benchGrowth() {
    Side side({{"accountPasteFormat", "urlOnly"}}, BRINDLE_PROGRAM);
    press(side, {}); // what happens once only
    const double alone = press(side, {});
    QList<Row> rows;
    for (const int kilobytes : {1, 100, 1000, 10'000, 100'000}) {
        const QByteArray rtf = "{\\rtf1 " + QByteArray(kilobytes * 1000, 'x') + '}';
        rows.append(
            ratioRow(QString("The same with RTF of %1 kB copied, against none").arg(kilobytes),
                     press(side, {{"text/rtf", rtf}}), alone, "ms", "linear at most"));
    }
    for (const int count : {1, 10, 50})
        rows.append(ratioRow(QString("The same with %1 more flavours, against none").arg(count),
                             press(side, manyFlavours(count)), alone, "ms", "linear at most"));
    return rows;
}
