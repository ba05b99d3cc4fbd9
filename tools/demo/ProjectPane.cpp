#include "ProjectPane.h"

#include "ProjectStore.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QSplitter>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QWidget* titled(const QString& title, QWidget* content, QWidget* parent)
{
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(title, box);
    label->setBuddy(content);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    layout->addWidget(label);
    content->setParent(box);
    layout->addWidget(content);
    return box;
}

} // namespace

ProjectPane::ProjectPane(ProjectStore* project, QWidget* parent)
    : QWidget(parent), m_project(project), m_folderLabel(new QLabel(this)), m_folderFiles(new QListWidget(this)),
      m_addedFiles(new QTreeWidget(this))
{
    m_folderLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_folderLabel->setWordWrap(true);
    m_folderLabel->setText(tr("Project folder: %1").arg(QDir::toNativeSeparators(project->folder())));

    m_addedFiles->setColumnCount(2);
    m_addedFiles->setHeaderLabels({tr("File"), tr("Came from")});
    m_addedFiles->setRootIsDecorated(false);
    m_addedFiles->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_addedFiles->header()->setStretchLastSection(false);
    m_addedFiles->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_addedFiles->setToolTip(tr("Kept in %1").arg(QDir::toNativeSeparators(project->listFile())));

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(titled(tr("&Folder"), m_folderFiles, splitter));
    splitter->addWidget(titled(tr("&Added by the panel"), m_addedFiles, splitter));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_folderLabel);
    layout->addWidget(splitter);

    connect(project, &ProjectStore::addedFilesChanged, this, &ProjectPane::refreshAddedFiles);
    refreshFolder();
}

void ProjectPane::refreshFolder()
{
    m_folderFiles->clear();
    const QIcon fileIcon = style()->standardIcon(QStyle::SP_FileIcon);
    for (const QString& name : m_project->folderFiles())
        m_folderFiles->addItem(new QListWidgetItem(fileIcon, name));
    refreshAddedFiles();
}

void ProjectPane::refreshAddedFiles()
{
    m_addedFiles->clear();
    const QIcon volumeIcon = style()->standardIcon(QStyle::SP_DriveHDIcon);
    for (const ProjectStore::AddedFile& file : m_project->addedFiles()) {
        auto* item = new QTreeWidgetItem(m_addedFiles, {file.name, ProjectStore::locationName(file.location)});
        item->setIcon(0, volumeIcon);
        // A file that is listed but gone from the folder shows faded, as a broken link would.
        if (!QFileInfo::exists(QDir(m_project->folder()).filePath(file.name)))
            item->setForeground(0, palette().brush(QPalette::Disabled, QPalette::Text));
    }
}
