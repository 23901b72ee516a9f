#pragma once

#include "stage/LoopbackGateway.h"

#include <QHash>
#include <QString>
#include <QStringList>

/// The site the demonstration plays on: a few issues, a comment and a page.
namespace SampleSite {

/// The address of the site as a user would enter it.
QString address();

/// The host names that are asked: the site's and the gateway's.
QStringList hosts();

/// What site and gateway answer, by target.
QHash<QString, GatewayReply> replies();

} // namespace SampleSite
