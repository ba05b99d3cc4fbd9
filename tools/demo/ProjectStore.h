#pragma once

#include <fast/panel/FastWidget.h>

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

// The project as the demo host keeps it: a folder, and the files the panel added to it with
// where each came from. The list lives in a small JSON file inside the folder, so that it
// outlives the demo like a real host's project file would.
class ProjectStore : public QObject
{
    Q_OBJECT

public:
    struct AddedFile
    {
        QString name;
        fast::eVdsLocation location;
    };

    // Reads the list left by an earlier run; a missing list is an empty project.
    explicit ProjectStore(const QString& folder, QObject* parent = nullptr);

    QString folder() const { return m_folder; }
    QString listFile() const;
    QList<AddedFile> addedFiles() const { return m_added; }
    // The paths of the added files that came from this location, as fillTrees takes them.
    QSet<QString> addedPaths(fast::eVdsLocation location) const;
    bool holds(const QString& name, fast::eVdsLocation location) const;
    // Plain files of the folder, without the demo's own list.
    QStringList folderFiles() const;

    // A name added again keeps one entry, with the newer location.
    void add(const QString& name, fast::eVdsLocation location);
    // Also deletes the file's link in the folder: it points at a mount that is gone.
    void remove(const QString& name);

    static QString locationName(fast::eVdsLocation location);

Q_SIGNALS:
    void addedFilesChanged();

private:
    void load();
    void save();

    QString m_folder;
    QList<AddedFile> m_added;
};
