#pragma once

#include <QWidget>

class ProjectStore;
class QLabel;
class QListWidget;
class QTreeWidget;

// The host's project browser: what lies in the project folder, and which of those files the
// panel added, with where each volume came from.
class ProjectPane : public QWidget
{
    Q_OBJECT

public:
    explicit ProjectPane(ProjectStore* project, QWidget* parent = nullptr);

    // The panel says when the folder changed; the pane does not watch it itself.
    void refreshFolder();

private:
    void refreshAddedFiles();

    ProjectStore* m_project;
    QLabel* m_folderLabel;
    QListWidget* m_folderFiles;
    QTreeWidget* m_addedFiles;
};
