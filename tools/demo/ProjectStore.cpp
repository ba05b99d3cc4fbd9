#include "ProjectStore.h"

#include <korvane/MDEventBus.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

namespace {

// Hidden, so that the folder pane shows only what the panel and the user put there.
const char* const kListFileName = ".fast-demo-project.json";

bool isKnownLocation(int value)
{
    return value == fast::OSDU || value == fast::LOCAL_FILE || value == fast::CLOUD_URL;
}

} // namespace

ProjectStore::ProjectStore(const QString& folder, QObject* parent)
    : QObject(parent), m_folder(QDir(folder).absolutePath())
{
    load();
}

QString ProjectStore::listFile() const
{
    return QDir(m_folder).filePath(kListFileName);
}

QSet<QString> ProjectStore::addedPaths(fast::eVdsLocation location) const
{
    QSet<QString> paths;
    for (const AddedFile& file : m_added) {
        if (file.location == location)
            paths.insert(QDir(m_folder).filePath(file.name));
    }
    return paths;
}

bool ProjectStore::holds(const QString& name, fast::eVdsLocation location) const
{
    return std::any_of(m_added.begin(), m_added.end(),
                       [&](const AddedFile& file) { return file.name == name && file.location == location; });
}

QStringList ProjectStore::folderFiles() const
{
    return QDir(m_folder).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
}

void ProjectStore::add(const QString& name, fast::eVdsLocation location)
{
    const auto same = [&name](const AddedFile& file) { return file.name == name; };
    m_added.erase(std::remove_if(m_added.begin(), m_added.end(), same), m_added.end());
    m_added.append({name, location});
    save();
    Q_EMIT addedFilesChanged();
}

void ProjectStore::remove(const QString& name)
{
    const auto same = [&name](const AddedFile& file) { return file.name == name; };
    const auto end = std::remove_if(m_added.begin(), m_added.end(), same);
    if (end == m_added.end())
        return;
    m_added.erase(end, m_added.end());
    // Only a plain file name: a name with a path in it is not one the panel could have added.
    if (!name.isEmpty() && QFileInfo(name).fileName() == name)
        QFile::remove(QDir(m_folder).filePath(name));
    save();
    Q_EMIT addedFilesChanged();
}

QString ProjectStore::locationName(fast::eVdsLocation location)
{
    switch (location) {
    case fast::OSDU:
        return QStringLiteral("OSDU");
    case fast::LOCAL_FILE:
        return QStringLiteral("local file");
    case fast::CLOUD_URL:
        return QStringLiteral("cloud URL");
    }
    return QStringLiteral("unknown (%1)").arg(static_cast<int>(location));
}

void ProjectStore::load()
{
    QFile file(listFile());
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        MDEventBus::sendMessage(MDEventBus::Error,
                                tr("Demo host: cannot read the project list %1: %2")
                                    .arg(file.fileName(), file.errorString()),
                                false);
        return;
    }
    const QJsonArray files = QJsonDocument::fromJson(file.readAll()).object().value("addedFiles").toArray();
    for (const QJsonValue& value : files) {
        const QJsonObject entry = value.toObject();
        const QString name = entry.value("name").toString();
        const int location = entry.value("location").toInt();
        if (!name.isEmpty() && isKnownLocation(location))
            m_added.append({name, static_cast<fast::eVdsLocation>(location)});
    }
}

void ProjectStore::save()
{
    QJsonArray files;
    for (const AddedFile& file : m_added)
        files.append(QJsonObject{{"name", file.name}, {"location", static_cast<int>(file.location)}});
    QSaveFile out(listFile());
    if (!out.open(QIODevice::WriteOnly) || out.write(QJsonDocument(QJsonObject{{"addedFiles", files}}).toJson()) < 0
        || !out.commit()) {
        MDEventBus::sendMessage(MDEventBus::Error,
                                tr("Demo host: cannot save the project list %1: %2")
                                    .arg(out.fileName(), out.errorString()),
                                false);
    }
}
