#include "hardening/Parts.h"

#include <QCoreApplication>
#include <QRandomGenerator>

namespace {

/// One argument: a part, how often and from which seed.
struct Choice {
    explicit Choice(const QString &argument) : name(argument.section('=', 0, 0)) {
        const QString numbers = argument.section('=', 1);
        count = numbers.section(':', 0, 0).toInt();
        seed = numbers.section(':', 1).toUInt();
    }

    QString name;
    int count = 0;    ///< 0 for the usual
    quint32 seed = 0; ///< 0 for any
};

bool run(const Choice &choice, Findings &findings) {
    Findings::note("== " + choice.name);
    if (choice.name == "soak")
        soak(findings, choice.count > 0 ? choice.count : 1000);
    else if (choice.name == "kill")
        killWriters(findings, choice.count > 0 ? choice.count : 200,
                    choice.seed ? choice.seed : QRandomGenerator::system()->generate());
    else if (choice.name == "network")
        misbehavingNetwork(findings);
    else
        return findings.check(false, "no such part");
    return true;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    QStringList chosen = QCoreApplication::arguments().sliced(1);
    if (chosen.isEmpty())
        chosen = {"kill", "network", "soak"};
    Findings findings;
    for (const QString &argument : chosen)
        run(Choice(argument), findings);
    Findings::note(QString("%1 fault(s)").arg(findings.faults()));
    return findings.faults() == 0 ? 0 : 1;
}
