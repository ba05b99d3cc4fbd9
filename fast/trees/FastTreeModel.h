#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsDescriptors.h>

#include <QList>
#include <QStandardItemModel>

#include <optional>
#include <string>

namespace fast {

// The item model behind every volume tree: the list of records a page shows, and the
// operations by which pages add volumes, record newly mounted files and drop files or volumes.
// Top-level row i stands for record i; the rows reach their record only through the index
// roles, so every operation that removes records rebuilds all rows.
class FASTPANEL_EXPORT FastTreeModel : public QStandardItemModel
{
    Q_OBJECT

public:
    explicit FastTreeModel(QObject* parent = nullptr);

    // Rows are built later, by populate().
    void addVds(const VdsModel& vds);
    int vdsCount() const;
    std::optional<VdsModel> vdsAt(int index) const;
    QList<VdsModel> vdsList() const;
    std::optional<VdsModel> findVds(const std::string& vdsId) const;
    // Drops the record; its rows stay until the next rebuild.
    void removeVdsRecord(const std::string& vdsId);
    // Drops every record; the rows stay until the next rebuild.
    void removeAllRecords();
    // Gives the first record registered under url its FAST id, once FAST knows the volume.
    void setVdsIdForUrl(const std::string& url, const std::string& vdsId);
    // Forgets the record for that URL (rows untouched).
    void removeRecordForUrl(const std::string& url);

    // The volume row whose "Path" row holds url in column 1; null unless exactly one cell of
    // column 1, at any depth, holds that text.
    QStandardItem* findVdsRowItem(const std::string& url) const;

    // Records a newly mounted file and shows it under the volume's "Files" row, made if needed.
    void addFile(const std::string& vdsId, const std::string& fileId, const std::string& fileName);
    // The other file rows keep their file index until the next populate().
    void removeFile(const std::string& vdsId, const VdsFile& file);
    void removeFilesGroup(const std::string& url);
    void removeAllFiles(const std::string& vdsId);

    // Removes the rows; the records stay.
    virtual void clearRows() = 0;
    // Builds the rows of every record, appending to what is there.
    virtual void populate() = 0;
    // Drops the volume's record and rebuilds the tree, when the volume's row is found.
    virtual void vdsUnmounted(const std::string& vdsId) = 0;

protected:
    // One row of cells for record vdsIndex, padded with empty cells to the model's width.
    QList<QStandardItem*> makeRow(const QStringList& texts, int vdsIndex, int fileIndex = -1) const;
    // appendRow at the parent's current row count, so children keep the order they are made in.
    static void appendChild(QStandardItem* parent, const QList<QStandardItem*>& row);
    // The VDS tree's answer to a volume that goes: rebuild without it.
    void rebuildWithout(const std::string& vdsId);
    // The first record with that id, or -1.
    int indexOf(const std::string& vdsId) const;
    // The label of the row that gathers a volume's files.
    static QString filesRowText();
    // What an action cell does, as its tool tip and accessible text say it.
    static QString mountText(const QString& volumeName);
    static QString unmountText(const QString& volumeName);
    static QString deleteFileText(const QString& fileName);

    QList<VdsModel> m_vdsList;
};

} // namespace fast
