#include "stage/MessageBus.h"

using namespace Qt::StringLiterals;

namespace {

constexpr char configuration[] = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1</listen>
  <auth>EXTERNAL</auth>
  %2
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

QString beginMessageBus(DesktopHome &home, const QString &name, const QStringList &serviceFolders) {
    QString folders;
    for (const QString &folder : serviceFolders)
        folders += u"<servicedir>%1</servicedir>"_s.arg(folder.toHtmlEscaped());
    const QString text =
        QString::fromLatin1(configuration).arg(home.path() + u"/run/"_s + name, folders);
    const StageProcess *daemon = home.begin(
        u"dbus-daemon"_s, {u"--config-file="_s + home.write(name + u".conf"_s, text.toUtf8()),
                           u"--nofork"_s, u"--print-address"_s});
    return home.firstLine(*daemon);
}
