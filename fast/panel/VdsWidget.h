#pragma once

#include <fast/panel/FastWidget.h>

#include <QSet>
#include <QString>

#include <exception>

class QLineEdit;
class QPushButton;

namespace fast {

class VdsTreeModel;

// A page for one kind of VDS: a local .vds file or a cloud URL. It registers the chosen VDS
// with FAST when needed, opens the mount dialog for it, and lists the VDS whose mounted files
// belong to the host project.
class FASTPANEL_EXPORT VdsWidget : public FastWidget
{
    Q_OBJECT

public:
    enum eWidgetType { LOCAL_FILE = 0, CLOUD_URL = 1 };

    VdsWidget(eWidgetType type, const std::shared_ptr<Fast>& fast, const QString& projectPath,
              QWidget* parent = nullptr);

    // Lists, from FAST, every VDS at least one of whose mounted files is in projectFiles.
    void init(const QSet<QString>& projectFiles);
    void clear();
    eWidgetType getType() const { return m_type; }

    void setConnectedToFast(bool connected) override;

    // Registers the VDS if FAST does not know it yet, then opens the mount dialog.
    void onMountVds(const QString& projectPath, const VdsModel& vdsModel);

public Q_SLOTS:
    void onVdsMounted(const std::string& vdsId, const std::string& fileId, const std::string& fileName) override;

private:
    void onBrowseClicked(const QString& projectPath);
    void onDownloadClicked(const QString& projectPath);
    VdsTreeModel* vdsModel() const;
    // The record for url: the one in the tree, or a new one added under the given name (then
    // recordAdded is set).
    VdsModel recordFor(const std::string& url, const QString& newName, bool& recordAdded);
    // recordAdded: this action put the record into the tree, so a failure takes it out again.
    void mount(const QString& projectPath, const VdsModel& vdsModel, bool recordAdded);
    // Empty when FAST could not be made to know the VDS; the user has been told why.
    std::string registeredId(const VdsModel& vdsModel);
    void storeId(const std::string& url, const std::string& vdsId);
    // After a failure: unregister, forget the record this mount is about, tell the user.
    void abandonMount(const VdsModel& vdsModel, const std::string& vdsId, bool recordAdded,
                      const std::exception& failure, bool badJson);
    QString displayName(const std::string& url) const;

    eWidgetType m_type;
    QLineEdit* m_lineEdit = nullptr;
    QPushButton* m_actionButton = nullptr;
};

} // namespace fast
