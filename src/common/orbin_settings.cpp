#include "orbin_settings.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

ORBIN_SETTINGS::ORBIN_SETTINGS(const QString& organisation_path, QObject* parent)
    : QSettings(QSettings::NativeFormat, QSettings::UserScope, names_for(organisation_path).organisation,
                names_for(organisation_path).application, parent)
{
    setFallbacksEnabled(false);
}

ORBIN_SETTINGS::NAMES ORBIN_SETTINGS::names_for(const QString& organisation_path)
{
    static const QRegularExpression separators(QStringLiteral("[\\\\/]+"));
    QStringList parts = organisation_path.split(separators, Qt::SkipEmptyParts);
    NAMES names;
    if (parts.isEmpty())
        return names;
    if (parts.size() == 1)
    {
        names.organisation = parts.first();
        return names;
    }
    names.application = parts.takeLast();
    names.organisation = parts.join(QLatin1Char('/'));
    return names;
}
