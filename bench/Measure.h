#pragma once

#include <QList>
#include <QString>

/// One line of the table, ready to be read.
struct Row {
    QString what;
    QString brindle;
    QString floor;
    QString ratio;
    QString wanted;
};

/// Milliseconds on the monotonic clock.
double now();

/// The middle one of `figures`; of an even number the mean of the middle two. Not for none at all.
double median(QList<double> figures);

/// The row for two figures of the same `unit`, with their ratio.
Row ratioRow(const QString &what, double brindle, double floor, const QString &unit,
             const QString &wanted);

/// Prints the rows under headings on the standard output.
void printTable(const QList<Row> &rows);

/// Gives the whole measurement up (by an exception that main() reports) unless `holds`: a figure
/// taken of something that does not work would mislead.
void require(bool holds, const QString &problem);
