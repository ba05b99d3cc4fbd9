#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsDescriptors.h>

#include <QDialog>

#include <atomic>
#include <memory>
#include <string>

class QFileInfo;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace kvWidgets {
class DoubleSlider;
}

namespace fast {

class Fast;

// The dialog in which the user names the file to mount from a registered volume and narrows
// it to a zone of interest. Save mounts it with a link in the project folder, renames the link
// once FAST has written it, and reports the new file. Ends with 1 after a mount, 0 otherwise.
class FASTPANEL_EXPORT MountNewVolume : public QDialog
{
    Q_OBJECT

public:
    // Throws std::invalid_argument or std::out_of_range when a bound of range is not a number.
    MountNewVolume(const std::shared_ptr<Fast>& fast, const std::string& vdsId, const SubvolumeRange& range,
                   const QString& projectPath, QWidget* parent = nullptr);
    ~MountNewVolume() override;

    // Ignored while a mount is under way: the page would take 0 for "nothing mounted" and drop
    // the registration under a file that FAST is mounting.
    void reject() override;

Q_SIGNALS:
    void vdsMounted(std::string vdsId, std::string fileId, std::string fileName);

private:
    struct AxisRow
    {
        kvWidgets::DoubleSlider* slider = nullptr;
        QSpinBox* lower = nullptr;
        QSpinBox* upper = nullptr;
    };

    AxisRow addAxisRow(const QString& title, int firstRow);
    void applyRange(const SubvolumeRange& range);
    void onFileNameEdited();
    void onSave();
    // False, with the label saying why in red, for a name the drive cannot take: empty, one it
    // cannot hold, or one it holds already.
    bool acceptsFileName(const QString& name);
    struct MountAnswer
    {
        int status = 0;
        std::string fileId;
        // What to show of the answer: FAST's body, or why no answer came.
        QString body;
    };
    // Asks FAST to mount the file; a missing or odd answer is settled by FAST's listing.
    MountAnswer requestMount(const QString& name) const;
    void renameLinkOnceWritten(const QFileInfo& link, const std::string& fileId);
    // The id FAST lists for the file name mounted from this volume; empty when it lists none.
    std::string mountedFileId(const std::string& name) const;
    void onRenameFinished(bool renamed, const std::string& fileId, const QString& fileName);
    void showMountError(const QString& fileName, int status, const QString& body);

    std::shared_ptr<Fast> m_fast;
    std::string m_vdsId;
    QString m_projectPath;
    bool m_mounting = false;
    // Set when the dialog goes: the rename under way gives up after its current try.
    std::shared_ptr<std::atomic<bool>> m_gone = std::make_shared<std::atomic<bool>>(false);

    QLabel* m_fileNameLabel = nullptr;
    QLineEdit* m_fileNameEdit = nullptr;
    QPushButton* m_saveButton = nullptr;
    QPushButton* m_cancelButton = nullptr;
    AxisRow m_inline;
    AxisRow m_crossline;
    AxisRow m_z;
};

} // namespace fast
