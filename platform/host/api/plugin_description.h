#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QIcon>

// What a plugin tells the host about itself. The host titles the plugin's menu
// with `name` and `icon`.
struct PLUGIN_DESCRIPTION
{
    QString name;
    QIcon icon;
    // Free-form words the plugin files itself under; the host lists them in
    // its log and does nothing else with them.
    QStringList categories;
    // False greys the plugin's menu out.
    bool enabled = true;
};
