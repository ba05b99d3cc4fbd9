#include "BenchSettings.h"

#include <QCoreApplication>
#include <QSettings>
#include <QString>

void useScratchSettings(const QString& folder)
{
    QCoreApplication::setOrganizationName(QStringLiteral("FastPanelBench"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder);
}
