#include "app/Diagnosis.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString word(Finding::Mark mark) {
    switch (mark) {
    case Finding::Mark::Ok:
        return u"ok"_s;
    case Finding::Mark::Note:
        return u"note"_s;
    case Finding::Mark::Problem:
        break;
    }
    return u"PROBLEM"_s;
}

} // namespace

bool Diagnosis::isGood() const {
    return std::none_of(findings.begin(), findings.end(), [](const Finding &finding) {
        return finding.mark == Finding::Mark::Problem;
    });
}

QString Diagnosis::text() const {
    QString text = heading + u'\n';
    for (const Finding &finding : findings) {
        text += u"%1  %2  %3\n"_s.arg(word(finding.mark), -7)
                    .arg(finding.capability, -14)
                    .arg(finding.text);
        if (!finding.advice.isEmpty())
            text += QString(9, u' ') + u"-> "_s + finding.advice + u'\n';
    }
    text += isGood() ? u"Links can be pasted.\n"_s
                     : u"Links can't be pasted by the hotkey before the problem is solved.\n"_s;
    const QString home = QDir::homePath();
    return home.size() > 1 ? text.replace(home, u"~"_s) : text;
}
