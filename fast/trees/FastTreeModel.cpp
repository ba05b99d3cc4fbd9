#include <fast/trees/FastTreeModel.h>

#include <fast/client/Utf8Text_p.h>
#include <fast/client/VirtualDrive.h>
#include <fast/osdu/OsduTreeItem.h>

#include <algorithm>

namespace fast {

FastTreeModel::FastTreeModel(QObject* parent) : QStandardItemModel(parent)
{
}

void FastTreeModel::addVds(const VdsModel& vds)
{
    m_vdsList.append(vds);
}

int FastTreeModel::vdsCount() const
{
    return m_vdsList.size();
}

std::optional<VdsModel> FastTreeModel::vdsAt(int index) const
{
    if (index < 0 || index >= m_vdsList.size())
        return std::nullopt;
    return m_vdsList.at(index);
}

QList<VdsModel> FastTreeModel::vdsList() const
{
    return m_vdsList;
}

std::optional<VdsModel> FastTreeModel::findVds(const std::string& vdsId) const
{
    return vdsAt(indexOf(vdsId));
}

void FastTreeModel::removeVdsRecord(const std::string& vdsId)
{
    const int index = indexOf(vdsId);
    if (index >= 0)
        m_vdsList.removeAt(index);
}

void FastTreeModel::removeAllRecords()
{
    m_vdsList.clear();
}

void FastTreeModel::setVdsIdForUrl(const std::string& url, const std::string& vdsId)
{
    for (VdsModel& record : m_vdsList) {
        if (samePath(text(record.url), text(url))) {
            record.vdsId = vdsId;
            return;
        }
    }
}

void FastTreeModel::removeRecordForUrl(const std::string& url)
{
    const auto found = std::find_if(m_vdsList.begin(), m_vdsList.end(),
                                    [&url](const VdsModel& record) { return samePath(text(record.url), text(url)); });
    if (found != m_vdsList.end())
        m_vdsList.erase(found);
}

QStandardItem* FastTreeModel::findVdsRowItem(const std::string& url) const
{
    const QList<QStandardItem*> matches = findItems(text(url), Qt::MatchExactly | Qt::MatchRecursive, 1);
    return matches.size() == 1 ? matches.first()->parent() : nullptr;
}

void FastTreeModel::addFile(const std::string& vdsId, const std::string& fileId, const std::string& fileName)
{
    const int index = indexOf(vdsId);
    if (index < 0)
        return;
    VdsModel& record = m_vdsList[index];
    record.files.push_back(VdsFile{fileId, fileName});
    const int fileIndex = static_cast<int>(record.files.size()) - 1;

    QStandardItem* vdsRow = findVdsRowItem(record.url);
    if (!vdsRow)
        return;
    if (!vdsRow->child(0) || vdsRow->child(0)->text() != filesRowText())
        vdsRow->insertRow(0, makeRow({filesRowText()}, index));

    QList<QStandardItem*> fileRow = makeRow({text(fileName), text(fileId)}, index, fileIndex);
    static_cast<OsduTreeItem*>(fileRow.last())->setAction(deleteFileText(text(fileName)));
    appendChild(vdsRow->child(0), fileRow);
}

void FastTreeModel::removeFile(const std::string& vdsId, const VdsFile& file)
{
    const int index = indexOf(vdsId);
    if (index < 0)
        return;
    const QList<QStandardItem*> matches = findItems(text(file.fileId), Qt::MatchExactly | Qt::MatchRecursive, 1);
    if (matches.size() == 1 && matches.first()->parent())
        matches.first()->parent()->removeRow(matches.first()->row());

    std::vector<VdsFile>& files = m_vdsList[index].files;
    const auto found = std::find_if(files.begin(), files.end(),
                                    [&file](const VdsFile& candidate) { return candidate.fileId == file.fileId; });
    if (found != files.end())
        files.erase(found);
}

void FastTreeModel::removeFilesGroup(const std::string& url)
{
    QStandardItem* vdsRow = findVdsRowItem(url);
    if (vdsRow && vdsRow->child(0) && vdsRow->child(0)->text() == filesRowText())
        vdsRow->removeRow(0);
}

void FastTreeModel::removeAllFiles(const std::string& vdsId)
{
    const int index = indexOf(vdsId);
    if (index < 0)
        return;
    m_vdsList[index].files.clear();
    removeFilesGroup(m_vdsList[index].url);
}

QList<QStandardItem*> FastTreeModel::makeRow(const QStringList& texts, int vdsIndex, int fileIndex) const
{
    QList<QStandardItem*> row;
    const int width = std::max(columnCount(), static_cast<int>(texts.size()));
    row.reserve(width);
    for (int column = 0; column < width; ++column)
        row.append(new OsduTreeItem(column < texts.size() ? texts.at(column) : QString(), vdsIndex, fileIndex));
    return row;
}

void FastTreeModel::appendChild(QStandardItem* parent, const QList<QStandardItem*>& row)
{
    parent->insertRow(parent->rowCount(), row);
}

void FastTreeModel::rebuildWithout(const std::string& vdsId)
{
    const std::optional<VdsModel> record = findVds(vdsId);
    if (!record || !findVdsRowItem(record->url))
        return;
    clearRows();
    removeVdsRecord(vdsId);
    populate();
}

QString FastTreeModel::filesRowText()
{
    return tr("Files");
}

QString FastTreeModel::mountText(const QString& volumeName)
{
    return tr("Mount %1").arg(volumeName);
}

QString FastTreeModel::unmountText(const QString& volumeName)
{
    return tr("Unmount %1").arg(volumeName);
}

QString FastTreeModel::deleteFileText(const QString& fileName)
{
    return tr("Delete file %1").arg(fileName);
}

int FastTreeModel::indexOf(const std::string& vdsId) const
{
    for (int i = 0; i < m_vdsList.size(); ++i) {
        if (m_vdsList.at(i).vdsId == vdsId)
            return i;
    }
    return -1;
}

} // namespace fast
